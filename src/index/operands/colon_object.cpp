// The colon object: a range kept as its three operands.
//
// The data block holds the step as an 8-byte double, then first and last as elements of the class;
// so the array is 1-by-(8 / element size + 2).
#include <core/class_table.h>
#include <core/create.h>
#include <core/dispatch.h>
#include <core/header_copy.h>
#include <errors/raise.h>
#include <index/operands/colon_range.h>
#include <ox/subscripts.h>

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace ox;

namespace {

// Cut towards zero, then narrowed by dropping high bits; NaN is 0.
template<class T> T cut(double x) {
    if constexpr (std::is_floating_point_v<T>) return static_cast<T>(x);
    if (std::isnan(x)) return T{0};
    if (x < 0) return static_cast<T>(static_cast<int64_t>(std::max(x, -0x1p63)));
    return static_cast<T>(x >= 0x1p64 ? ~uint64_t{0} : static_cast<uint64_t>(x));
}

void fill_record(oxArray *a, double first, double step, double last) {
    visit_class(a->class_code, false, [&](auto tag) {
        using T = typename decltype(tag)::type;
        const T ends[2] = {cut<T>(first), cut<T>(last)};
        auto *record = data<unsigned char>(a);
        std::memcpy(record, &step, sizeof step);
        std::memcpy(record + sizeof step, ends, sizeof ends);
        return true;
    });
}

double as_double(uint64_t v) { // through the signed reading
    const auto s = static_cast<int64_t>(v);
    return s < 0 ? static_cast<double>(s) + 0x1p64 : static_cast<double>(s);
}
template<class T> double as_double(T v) { return static_cast<double>(v); }

} // namespace

namespace ox {

ColonRecord read_colon_object(const oxArray *a) {
    ColonRecord r{0, 0, 0};
    visit_class(a->class_code, false, [&](auto tag) {
        using T = typename decltype(tag)::type;
        const auto *record = data<const unsigned char>(a);
        T ends[2];
        std::memcpy(&r.step, record, sizeof r.step);
        std::memcpy(ends, record + sizeof r.step, sizeof ends);
        r.first = as_double(ends[0]);
        r.last = as_double(ends[1]);
        return true;
    });
    return r;
}

oxArray *expand_colon(const oxArray *a) {
    const ColonRecord r = read_colon_object(a);
    return make_colon(r.first, r.step, r.last, a->class_code);
}

} // namespace ox

oxArray *oxCreateColonObject(double first, double step, double last, oxClassID cls) {
    const bool known = cls == oxCHAR_CLASS || (cls >= oxDOUBLE_CLASS && cls <= oxUINT64_CLASS);
    if (!known) return nullptr;
    oxArray *a = make_full(1, sizeof(double) / class_info(cls).element_size + 2, cls, false);
    if (a) {
        a->set_flag(oxFLAG_COLON, true);
        // Deliberate: records of the 64-bit classes stay empty; callers write exact values.
        if (cls != oxINT64_CLASS && cls != oxUINT64_CLASS) fill_record(a, first, step, last);
    }
    return hand_over(a);
}

oxArray *oxCreateColonObj(double first, double step, double last) {
    return oxCreateColonObject(first, step, last, oxDOUBLE_CLASS);
}

void oxGetColonObjValues(const oxArray *obj, double out[3]) {
    const ColonRecord r = read_colon_object(obj);
    out[0] = r.first;
    out[1] = r.step;
    out[2] = r.last;
}

oxArray *oxExpandColonObj(oxArray *a) {
    if (!a->has_flag(oxFLAG_COLON)) return a;
    const uint32_t kept = a->flag_word & (oxUSER_BITS_MASK | oxFLAG_GLOBAL_WS | oxFLAG_COMMA_LIST);
    oxArray *expanded = expand_colon(a);
    if (!expanded) raise_out_of_memory();
    move_onto_header(a, expanded); // its only owner, so it cannot fail
    a->flag_word |= kept;
    return a;
}
