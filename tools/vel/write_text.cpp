// Arrays as text files for other programs.
#include "write_text.h"

#include "elements.h"
#include "failure.h"

#include <charconv>
#include <cmath>
#include <type_traits>

namespace vel {
namespace {

template<class T> void append(std::string &out, T x) {
    if constexpr (std::is_same_v<T, bool>) {
        out += x ? '1' : '0';
    } else if constexpr (std::is_same_v<T, oxChar>) {
        append(out, static_cast<uint16_t>(x));
    } else {
        if constexpr (std::is_floating_point_v<T>) {
            if (std::isnan(x)) {
                out += "NaN";
                return;
            }
            if (std::isinf(x)) {
                out += x < 0 ? "-Inf" : "Inf";
                return;
            }
        }
        char digits[40];
        out.append(digits, std::to_chars(digits, digits + sizeof digits, x).ptr);
    }
}

void check_matrix(const oxArray *a, const std::string &name, bool complex_too, const char *format) {
    if (!a || !has_elements(a) || oxIsChar(a) || oxGetNumberOfDimensions(a) != 2 ||
        (oxIsComplex(a) && !complex_too))
        throw Failure(Exit::data, name + ": " + format + " file holds a matrix of " +
                                      (complex_too ? "" : "real ") + "numbers only");
}

template<class T> void append_value(std::string &out, const Elements<T> &e, size_t k) {
    append(out, e.re[k]);
    if (e.im) out += ' ', append(out, e.im[k]);
    out += '\n';
}

const char *field_of(const oxArray *a) {
    if (oxIsSparse(a) && oxIsLogical(a)) return "pattern";
    if (oxIsComplex(a)) return "complex";
    return oxIsDouble(a) || oxIsSingle(a) ? "real" : "integer";
}

void append_coordinates(std::string &out, const oxArray *a) {
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    visit_elements(a, [&](auto e) {
        for (size_t j = 0; j < oxGetN(a); ++j)
            for (size_t k = jc[j]; k < jc[j + 1]; ++k) {
                append(out, ir[k] + 1), out += ' ', append(out, j + 1);
                if (oxIsLogical(a))
                    out += '\n';
                else
                    out += ' ', append_value(out, e, k);
            }
    });
}

} // namespace

std::string make_csv(const oxArray *a, char separator, const std::string &name) {
    check_matrix(a, name, false, "such a");
    if (oxIsSparse(a)) throw Failure(Exit::data, name + ": such a file holds full matrices only");
    const size_t m = oxGetM(a), n = oxGetN(a);
    std::string out;
    visit_elements(a, [&](auto e) {
        for (size_t i = 0; i < m; ++i)
            for (size_t j = 0; j < n; ++j)
                append(out, e.re[j * m + i]), out += j + 1 < n ? separator : '\n';
    });
    return out;
}

std::string make_matrix_market(const oxArray *a, const std::string &name) {
    check_matrix(a, name, true, "a Matrix Market");
    const bool sparse = oxIsSparse(a);
    std::string out = std::string("%%MatrixMarket matrix ") + (sparse ? "coordinate " : "array ") +
                      field_of(a) + " general\n" + std::to_string(oxGetM(a)) + " " +
                      std::to_string(oxGetN(a));
    if (sparse) {
        out += " " + std::to_string(oxGetNumNonZeroEl(a)) + "\n";
        append_coordinates(out, a);
        return out;
    }
    out += '\n';
    visit_elements(a, [&](auto e) {
        for (size_t k = 0; k < oxGetNumberOfElements(a); ++k) append_value(out, e, k);
    });
    return out;
}

} // namespace vel
