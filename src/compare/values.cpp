// Comparing runs of elements: one loop per class, block-wise reading for pairs of classes.
#include <compare/values.h>
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/tuning.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

constexpr kwSize block = tuning::compare_block;

template<class T> constexpr bool is_wide = std::is_integral_v<T> && sizeof(T) == 8;
// The value that a rounded 64-bit integer reaches although its class does not hold it.
template<class T> constexpr double beyond = std::is_signed_v<T> ? 0x1p63 : 0x1p64;

// A negative number equals no unsigned one; all others have the same bits.
bool equal_signed_unsigned(const void *a, const void *b, kwSize n) {
    const auto *s = static_cast<const int64_t *>(a);
    if (std::memcmp(a, b, n * 8) != 0) return false;
    return std::all_of(s, s + n, [](int64_t x) { return x >= 0; });
}

// Reads n elements as doubles; false when one is beyond its class's range, and equals nothing.
using ReadBlock = bool (*)(double *out, const void *values, kwSize first, kwSize n);

template<class T> bool read_block(double *out, const void *values, kwSize first, kwSize n) {
    const T *v = static_cast<const T *>(values) + first;
    bool in_range = true;
    for (kwSize k = 0; k < n; ++k) {
        out[k] = static_cast<double>(v[k]);
        if constexpr (is_wide<T>) in_range &= out[k] != beyond<T>;
    }
    return in_range;
}

ReadBlock block_reader(int id) {
    return visit_class(
        id, static_cast<ReadBlock>(nullptr),
        []<class T>(std::type_identity<T>) -> ReadBlock { return read_block<Stored<T>>; });
}

bool wide_class(int id) { return id == oxINT64_CLASS || id == oxUINT64_CLASS; }

// Of two classes the higher is read into doubles: whole where it is double, else by blocks.
int reading_order(int id) { return wide_class(id) ? 2 : id == oxDOUBLE_CLASS; }

bool equal_mixed(int class_a, const void *a, int class_b, const void *b, kwSize n, bool nan_equal) {
    if (reading_order(class_a) < reading_order(class_b)) {
        std::swap(class_a, class_b);
        std::swap(a, b);
    }
    const EqualKernel equal = equal_to_doubles(class_b);
    if (class_a == oxDOUBLE_CLASS) return equal(a, b, n, nan_equal);
    const ReadBlock read = block_reader(class_a);
    const kwSize size = class_info(class_b).element_size;
    double x[block];
    for (kwSize i = 0; i < n; i += block) {
        const kwSize count = std::min(block, n - i);
        if (!read(x, a, i, count)) return false;
        if (!equal(x, static_cast<const char *>(b) + i * size, count, nan_equal)) return false;
    }
    return true;
}

template<class T> Element read_element(const void *values, kwSize k) {
    const T v = static_cast<const T *>(values)[k];
    Element e = zero_element;
    e.value = static_cast<double>(v);
    if constexpr (is_wide<T>) {
        e.bits = static_cast<uint64_t>(v);
        e.wide = true;
        e.negative = v < T{};
        e.beyond = e.value == beyond<T>;
    }
    return e;
}

} // namespace

ReadElement element_reader(int id) {
    return visit_class(
        id, static_cast<ReadElement>(nullptr),
        []<class T>(std::type_identity<T>) -> ReadElement { return read_element<Stored<T>>; });
}

bool equal_elements(const Element &x, const Element &y, bool nan_equal) {
    if (x.wide && y.wide) return x.bits == y.bits && x.negative == y.negative;
    return !x.beyond && !y.beyond && equal_elements(x.value, y.value, nan_equal);
}

bool equal_runs(int class_a, const void *a, int class_b, const void *b, kwSize n, bool nan_equal) {
    if (n == 0) return true;
    if (class_a != class_b) {
        if (wide_class(class_a) && wide_class(class_b)) return equal_signed_unsigned(a, b, n);
        return equal_mixed(class_a, a, class_b, b, n, nan_equal);
    }
    if (class_a == oxDOUBLE_CLASS) return equal_to_doubles(class_a)(a, b, n, nan_equal);
    if (class_a == oxSINGLE_CLASS) return equal_singles()(a, b, n, nan_equal);
    return a == b || std::memcmp(a, b, n * class_info(class_a).element_size) == 0;
}

bool all_zero(int id, const void *values, kwSize first, kwSize n) {
    return visit_class(id, true, [&]<class T>(std::type_identity<T>) {
        const auto *v = static_cast<const Stored<T> *>(values) + first;
        return std::all_of(v, v + n, [](Stored<T> x) { return x == 0; });
    });
}

} // namespace ox
