// Arrays as text files for other programs.
#include "write_text.h"

#include "elements.h"
#include "failure.h"
#include "output_file.h"

#include <charconv>
#include <cmath>
#include <type_traits>

namespace vel {
namespace {

constexpr size_t piece = size_t{64} << 10;

// Text on its way to a file.
class Text {
public:
    explicit Text(const std::string &path) : out_(path) {}
    void flush(size_t at_least) {
        if (text.size() < at_least) return;
        out_.write(text.data(), text.size());
        text.clear();
    }
    void commit() {
        flush(1);
        out_.commit();
    }
    std::string text;

private:
    OutputFile out_;
};

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

void append_coordinates(Text &out, const oxArray *a) {
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    visit_elements(a, [&](auto e) {
        for (size_t j = 0; j < oxGetN(a); ++j)
            for (size_t k = jc[j]; k < jc[j + 1]; ++k, out.flush(piece)) {
                append(out.text, ir[k] + 1), out.text += ' ', append(out.text, j + 1);
                if (oxIsLogical(a))
                    out.text += '\n';
                else
                    out.text += ' ', append_value(out.text, e, k);
            }
    });
}

} // namespace

void write_csv(const oxArray *a, char separator, const std::string &path) {
    check_matrix(a, path, false, "such a");
    if (oxIsSparse(a)) throw Failure(Exit::data, path + ": such a file holds full matrices only");
    const size_t m = oxGetM(a), n = oxGetN(a);
    Text out(path);
    visit_elements(a, [&](auto e) {
        for (size_t i = 0; i < m; ++i, out.flush(piece))
            for (size_t j = 0; j < n; ++j)
                append(out.text, e.re[j * m + i]), out.text += j + 1 < n ? separator : '\n';
    });
    out.commit();
}

void write_matrix_market(const oxArray *a, const std::string &path) {
    check_matrix(a, path, true, "a Matrix Market");
    const bool sparse = oxIsSparse(a);
    Text out(path);
    out.text = std::string("%%MatrixMarket matrix ") + (sparse ? "coordinate " : "array ") +
               field_of(a) + " general\n" + std::to_string(oxGetM(a)) + " " +
               std::to_string(oxGetN(a));
    if (sparse) {
        out.text += " " + std::to_string(oxGetNumNonZeroEl(a)) + "\n";
        append_coordinates(out, a);
    } else {
        out.text += '\n';
        visit_elements(a, [&](auto e) {
            for (size_t k = 0; k < oxGetNumberOfElements(a); ++k, out.flush(piece))
                append_value(out.text, e, k);
        });
    }
    out.commit();
}

} // namespace vel
