// Counting and expanding ranges.
#include <core/class_table.h>
#include <core/create.h>
#include <core/dispatch.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/operands/colon_range.h>
#include <ox/subscripts.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace ox;

namespace {

__extension__ using Wide = __int128; // holds sums of 64-bit values and steps

bool is_whole(double x) { return x == std::trunc(x) && std::isfinite(x); }
bool is_float_class(int id) { return id == oxDOUBLE_CLASS || id == oxSINGLE_CLASS; }
bool has_ranges(int id) {
    return id == oxCHAR_CLASS || (id >= oxDOUBLE_CLASS && id <= oxUINT64_CLASS);
}

// Exact within any 64-bit class; a step beyond is as good as one that leaves the range at once.
Wide to_wide(double x) { return static_cast<Wide>(std::clamp(x, -0x1p70, 0x1p70)); }

bool is_whole_range(double first, double step, double last) {
    return is_whole(first) && is_whole(step) && is_whole(last);
}

double int_count(double first, double step, double last) {
    if (step == 0 || (step > 0 ? first > last : first < last)) return 0;
    return static_cast<double>((to_wide(last) - to_wide(first)) / to_wide(step) + 1);
}

template<class T> T saturate(Wide v) {
    using Limits = std::numeric_limits<T>;
    return static_cast<T>(std::clamp(v, Wide{Limits::min()}, Wide{Limits::max()}));
}

template<class T> void int_fill(T *x, kwSize n, double first, double step, double last) {
    if (is_whole_range(first, step, last)) {
        const Wide f = to_wide(first), s = to_wide(step);
        for (kwSize k = 0; k < n; ++k) x[k] = saturate<T>(f + static_cast<Wide>(k) * s);
        return;
    }
    for (kwSize k = 0; k < n; ++k) { // rounds halves away from zero
        const double v = std::round(first + static_cast<double>(k) * step);
        x[k] = std::isnan(v) ? T{0} : saturate<T>(to_wide(v));
    }
}

} // namespace

namespace ox {

oxArray *make_colon(double first, double step, double last, int id) {
    if (!has_ranges(id)) return nullptr;
    const double count = oxColonop_size(first, step, last, static_cast<oxClassID>(id));
    const kwSize n = std::isnan(count) ? 1 : double_to_size(count);
    oxCheckMN(kwSize{1}, n, class_info(id).element_size);
    oxArray *a = make_uninit(1, n, id, false);
    if (!a || n == 0) return a;
    const bool single = id == oxSINGLE_CLASS;
    const double end = std::isnan(count) ? count : colon_end(first, step, last, n, single);
    visit_class(id, false, [&](auto tag) {
        using T = typename decltype(tag)::type;
        if constexpr (std::is_floating_point_v<T>)
            colon_fill(data<T>(a), n, std::isnan(count) ? count : first, step, end);
        else if constexpr (!std::is_same_v<T, bool>)
            int_fill(data<T>(a), n, first, step, last);
        return true;
    });
    return a;
}

} // namespace ox

double oxColonop_size(double first, double step, double last, oxClassID cls) {
    if (!is_float_class(cls) && is_whole_range(first, step, last))
        return int_count(first, step, last);
    return colon_count(first, step, last, cls == oxSINGLE_CLASS);
}

void oxColonop_fill_with_doubles(double *dst, kwSize n, double first, double step, double last) {
    colon_fill(dst, n, first, step, colon_end(first, step, last, n, false));
}

oxArray *oxColonop(double first, double step, double last, oxClassID cls) {
    return has_ranges(cls) ? hand_over(make_colon(first, step, last, cls)) : nullptr;
}

oxArray *oxIntColonop(double first, double step, double last, oxClassID cls) {
    return is_float_class(cls) ? nullptr : oxColonop(first, step, last, cls);
}

int64_t *oxSignedIndexColonop(double first, double step, double last, kwSize *count) {
    const IndexRange range = colon_index_range(first, step, last);
    *count = range.count;
    if (range.count == 0) return nullptr;
    if (range.count > max_size / sizeof(int64_t)) raise_out_of_memory();
    auto *list = static_cast<int64_t *>(oxMalloc(range.count * sizeof(int64_t)));
    if (!list) raise_out_of_memory();
    for (kwSize k = 0; k < range.count; ++k)
        list[k] = range.whole ? range.first + static_cast<int64_t>(k) * range.step
                              : colon_index_floor(first, step, k);
    return list;
}

kwSize oxCountColonObj(const oxArray *a) {
    if (!a->has_flag(oxFLAG_COLON)) return a->get_number_of_elements();
    const ColonRecord r = read_colon_object(a);
    const double count = oxColonop_size(r.first, r.step, r.last, a->get_class_id());
    return std::isnan(count) ? 1 : double_to_size(count);
}

kwSize oxCountIntColonObj(const oxArray *a) {
    if (!a->has_flag(oxFLAG_COLON)) return a->get_number_of_elements();
    const ColonRecord r = read_colon_object(a);
    if (!colon_index_range(r.first, r.step, r.last).whole) return oxCountColonObj(a);
    // Of the ends as they are: as positions they would saturate.
    return double_to_size(int_count(r.first, r.step, r.last));
}
