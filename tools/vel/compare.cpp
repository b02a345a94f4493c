// Where two arrays differ: containers are walked here, whole leaves are compared by the library.
#include "compare.h"

#include "elements.h"
#include "paths.h"
#include "print.h"

#include <cmath>
#include <cstring>

namespace vel {
namespace {

using Found = std::optional<Difference>;

bool same_fields(const oxArray *a, const oxArray *b) {
    const int n = oxGetNumberOfFields(a);
    if (n != oxGetNumberOfFields(b)) return false;
    for (int k = 0; k < n; ++k)
        if (std::strcmp(oxGetFieldNameByNumber(a, k), oxGetFieldNameByNumber(b, k)) != 0)
            return false;
    return true;
}

bool same_shape(const oxArray *a, const oxArray *b) {
    const size_t n = oxGetNumberOfDimensions(a);
    if (oxGetClassID(a) != oxGetClassID(b) || oxIsComplex(a) != oxIsComplex(b) ||
        oxIsSparse(a) != oxIsSparse(b) || n != oxGetNumberOfDimensions(b))
        return false;
    for (size_t k = 0; k < n; ++k)
        if (oxGetDimensions(a)[k] != oxGetDimensions(b)[k]) return false;
    return !oxIsStruct(a) || same_fields(a, b);
}

Found in_containers(const std::string &path, const oxArray *a, const oxArray *b,
                    const Tolerance &t) {
    const size_t fields = oxIsCell(a) ? 1 : static_cast<size_t>(oxGetNumberOfFields(a));
    for (size_t i = 0; i < oxGetNumberOfElements(a); ++i)
        for (size_t k = 0; k < fields; ++k) {
            const auto value = [&](const oxArray *of) {
                return oxIsCell(of) ? oxGetCell(of, i)
                                    : oxGetFieldByNumber(of, i, static_cast<int>(k));
            };
            if (Found f = first_difference(path + step_label(a, i, k), value(a), value(b), t))
                return f;
        }
    return {};
}

template<class T> bool equal(T x, T y, const Tolerance &t) {
    if (x == y) return true;
    if constexpr (std::is_floating_point_v<T>) {
        if (std::isnan(x) && std::isnan(y)) return t.nan_equal;
    }
    return std::abs(static_cast<double>(x) - static_cast<double>(y)) <= t.absolute;
}

std::string place(const oxArray *a, size_t k) {
    if (oxIsSparse(a)) return " (stored value " + std::to_string(k + 1) + ")";
    std::string s;
    for (size_t d = 0; d < oxGetNumberOfDimensions(a); ++d) {
        const size_t n = oxGetDimensions(a)[d];
        s += (d ? "," : "(") + std::to_string(k % n + 1);
        k /= n;
    }
    return s + ")";
}

// Arrays of one shape, and for sparse ones of one pattern.
Found in_values(const std::string &path, const oxArray *a, const oxArray *b, const Tolerance &t) {
    const size_t n = oxIsSparse(a) ? oxGetNumNonZeroEl(a) : oxGetNumberOfElements(a);
    return visit_elements(a, [&](auto x) -> Found {
        const decltype(x) y = {static_cast<decltype(x.re)>(oxGetData(b)),
                               x.im ? static_cast<decltype(x.im)>(oxGetImagData(b)) : nullptr};
        for (size_t k = 0; k < n; ++k)
            if (!equal(x.re[k], y.re[k], t) || (x.im && !equal(x.im[k], y.im[k], t)))
                return Difference{path + place(a, k),
                                  format_element(a, k) + " against " + format_element(b, k)};
        return {};
    });
}

bool same_pattern(const oxArray *a, const oxArray *b) {
    const size_t n = oxGetN(a), stored = oxGetJc(a)[n];
    return std::memcmp(oxGetJc(a), oxGetJc(b), (n + 1) * sizeof(kwIndex)) == 0 &&
           std::memcmp(oxGetIr(a), oxGetIr(b), stored * sizeof(kwIndex)) == 0;
}

} // namespace

std::optional<Difference> first_difference(const std::string &path, const oxArray *a,
                                           const oxArray *b, const Tolerance &t) {
    if (!a && !b) return {};
    if (!a || !b || !same_shape(a, b))
        return Difference{path,
                          (a ? describe(a) : "empty") + " against " + (b ? describe(b) : "empty")};
    if (oxIsCell(a) || oxIsStruct(a)) return in_containers(path, a, b, t);
    if (oxAreMatricesEqualNanOptional(a, b, !t.nan_equal)) return {};
    if (!has_elements(a)) return Difference{path, "the values differ"};
    if (oxIsSparse(a) && !same_pattern(a, b)) return Difference{path, "the patterns differ"};
    return in_values(path, a, b, t);
}

} // namespace vel
