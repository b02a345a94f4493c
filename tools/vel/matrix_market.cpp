// Reading Matrix Market files: the banner, the sizes, then one entry a line.
#include "matrix_market.h"

#include "failure.h"
#include "lines.h"
#include "numbers.h"
#include "triplets.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace vel {
namespace {

enum class Field { real, integer, complex, pattern };
enum class Symmetry { general, symmetric, skew, hermitian };

struct Banner {
    bool coordinate = false;
    Field field = Field::real;
    Symmetry symmetry = Symmetry::general;
};

std::string lower(std::string_view text) {
    std::string s(text);
    for (char &c : s)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return s;
}

template<class E, size_t N>
bool look_up(const std::string &word, const char *const (&names)[N], E &value) {
    const auto at = std::find(std::begin(names), std::end(names), word);
    if (at == std::end(names)) return false;
    value = static_cast<E>(at - std::begin(names));
    return true;
}

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// A number at p behind blanks, the first of them optional when it begins a line; p moves behind it.
// The text ends with a line end.
bool take(const char *&p, const char *end, size_t &x) {
    while (is_blank(*p)) ++p;
    const auto [stop, error] = std::from_chars(p, end, x);
    p = stop;
    return error == std::errc();
}
bool take(const char *&p, const char *end, double &x) {
    if (!is_blank(*p)) return false;
    while (is_blank(*p)) ++p;
    const auto [stop, error] = read_number(p, end, x);
    p = stop;
    return error == std::errc();
}

class Parser {
public:
    Parser(SizedSource &in, const std::string &name, bool force)
        : lines_(in), name_(name), force_(force) {}

    oxArray *parse() {
        read_banner();
        do {
            if (!next_line()) fail("the file ends before the sizes");
        } while (line_.empty() || line_[0] == '%');
        m_ = whole("the number of rows"), n_ = whole("the number of columns");
        return banner_.coordinate ? coordinates() : array();
    }

private:
    // --- Lines and words ---
    bool next_line() {
        if (!lines_.next(line_)) return false;
        skip_blanks();
        return true;
    }
    void skip_blanks() {
        while (!line_.empty() && is_blank(line_[0])) line_.remove_prefix(1);
    }
    std::string_view word(const char *what) {
        if (line_.empty()) fail(std::string(what) + " is missing");
        const auto end = std::find_if(line_.begin(), line_.end(), is_blank);
        const std::string_view w = line_.substr(0, static_cast<size_t>(end - line_.begin()));
        line_.remove_prefix(w.size());
        skip_blanks();
        return w;
    }
    size_t whole(const char *what) {
        const std::string_view w = word(what);
        size_t x = 0;
        const auto [end, error] = std::from_chars(w.data(), w.data() + w.size(), x);
        if (error != std::errc() || end != w.data() + w.size())
            fail(std::string(what) + " must be a whole number, found '" + std::string(w) + "'");
        return x;
    }
    double value() {
        const std::string_view w = word("a value");
        double x = 0;
        if (!parse_number(w, x)) fail("'" + std::string(w) + "' is not a number");
        return x;
    }
    void end_line() const {
        if (!line_.empty()) fail("text follows the entry: '" + std::string(line_) + "'");
    }
    void next_entry(size_t k, size_t count) {
        do {
            if (!next_line())
                fail("the file ends after " + std::to_string(k) + " of " + std::to_string(count) +
                     " entries");
        } while (line_.empty());
    }
    void end_file(size_t count) {
        while (next_line())
            if (!line_.empty())
                fail("text follows the last of " + std::to_string(count) + " entries");
    }
    [[noreturn]] void fail(const std::string &what) const {
        throw Failure(Exit::data, name_ + ":" +
                                      std::to_string(std::max<size_t>(lines_.number(), 1)) + ": " +
                                      what);
    }

    // --- The head ---
    void read_banner() {
        if (!next_line() || lower(line_.substr(0, 14)) != "%%matrixmarket")
            fail("a Matrix Market file begins with %%MatrixMarket");
        word("the banner");
        const std::string object = lower(word("the object")), format = lower(word("the format")),
                          field = lower(word("the field")), symmetry = lower(word("the symmetry"));
        if (object != "matrix") fail("the object '" + object + "' is not matrix");
        banner_.coordinate = format == "coordinate";
        if (!banner_.coordinate && format != "array")
            fail("the format '" + format + "' is neither coordinate nor array");
        if (!look_up(field == "double" ? "real" : field, {"real", "integer", "complex", "pattern"},
                     banner_.field))
            fail("the field '" + field + "' is none of real, integer, complex, pattern");
        if (!look_up(symmetry, {"general", "symmetric", "skew-symmetric", "hermitian"},
                     banner_.symmetry))
            fail("the symmetry '" + symmetry +
                 "' is none of general, symmetric, skew-symmetric, hermitian");
        refuse_nonsense();
    }
    void refuse_nonsense() const {
        if (banner_.field == Field::pattern && !banner_.coordinate)
            fail("an array of a pattern holds no values");
        if (banner_.field == Field::pattern && banner_.symmetry == Symmetry::skew)
            fail("a pattern has no signs and cannot be skew-symmetric");
        if (banner_.symmetry == Symmetry::hermitian && banner_.field != Field::complex)
            fail("only complex matrices can be hermitian");
    }

    // No more entries than there is text for are made room for.
    void check_count(size_t count) const {
        const size_t least =
            (banner_.coordinate ? 4 : 2) + (banner_.field == Field::complex ? 2 : 0);
        const size_t room = (lines_.left() + 1) / least;
        if (count > room)
            fail("the sizes declare " + std::to_string(count) + " entries, the file has room for " +
                 std::to_string(room) + " at most");
    }
    void check_square() const {
        if (banner_.symmetry != Symmetry::general && m_ != n_)
            fail("a matrix with symmetry must be square, not " + std::to_string(m_) + "-by-" +
                 std::to_string(n_));
    }
    // Below (true) or on the diagonal; the half above is not part of the file.
    void check_triangle(size_t i, size_t j, double re, double im) const {
        if (i > j) return;
        const std::string at =
            "entry (" + std::to_string(i + 1) + "," + std::to_string(j + 1) + ")";
        if (i < j) fail(at + " lies above the diagonal of a matrix with symmetry");
        if (banner_.symmetry == Symmetry::skew && (re != 0 || im != 0))
            fail(at + " of a skew-symmetric matrix must be 0");
        if (banner_.symmetry == Symmetry::hermitian && im != 0)
            fail(at + " of a hermitian matrix must be real");
    }

    // --- The entries ---
    oxArray *coordinates() {
        const size_t count = whole("the number of entries");
        end_line();
        check_square();
        check_count(count);
        if (too_many_columns(n_) && !force_) fail(too_many_columns_text(n_));
        Triplets t{m_, n_, banner_.field == Field::complex, banner_.field == Field::pattern, {}};
        t.entries.reserve(banner_.symmetry == Symmetry::general ? count : 2 * count);
        for (size_t k = 0; (k += plain_entries(t, count - k)) < count; ++k) {
            next_entry(k, count);
            coordinate(t);
        }
        end_file(count);
        return make_sparse(std::move(t));
    }
    // Entries as they are usually written, taken where they lie in memory; their number.
    size_t plain_entries(Triplets &t, size_t most) {
        size_t taken = 0;
        for (std::string_view text; taken < most && !(text = lines_.ahead()).empty();) {
            const char *const end = text.data() + text.size();
            const char *p = text.data();
            const size_t before = taken;
            Triplet e{0, 0, 1, 0};
            for (const char *next; taken < most && p < end && (next = plain_entry(p, end, t, e));
                 p = next) {
                add(t, e);
                ++taken;
            }
            lines_.pass(p - text.data(), taken - before);
            if (p < end) break;
        }
        return taken;
    }
    // Behind the entry's line, or null when it has to be looked at closely.
    const char *plain_entry(const char *p, const char *end, const Triplets &t, Triplet &e) const {
        if (!take(p, end, e.i) || !is_blank(*p) || !take(p, end, e.j)) return nullptr;
        if ((!t.logical && !take(p, end, e.re)) || (t.complex && !take(p, end, e.im)))
            return nullptr;
        while (is_blank(*p)) ++p;
        // What is on the diagonal or above it may be a fault.
        const bool good =
            --e.i < m_ && --e.j < n_ && (banner_.symmetry == Symmetry::general || e.i > e.j);
        return good && *p == '\n' ? p + 1 : nullptr;
    }
    void coordinate(Triplets &t) {
        const size_t i = position("row", m_), j = position("column", n_);
        const double re = t.logical ? 1 : value(), im = t.complex ? value() : 0;
        end_line();
        add(t, {i, j, re, im});
    }
    void add(Triplets &t, const Triplet &e) const {
        t.entries.push_back(e);
        if (banner_.symmetry == Symmetry::general) return;
        check_triangle(e.i, e.j, e.re, e.im);
        if (e.i != e.j) t.entries.push_back({e.j, e.i, mirrored(e.re), mirrored_imag(e.im)});
    }
    size_t position(const char *what, size_t size) {
        const size_t i = whole(what);
        if (i < 1 || i > size)
            fail(std::string(what) + " " + std::to_string(i) + " lies outside of 1 to " +
                 std::to_string(size));
        return i - 1;
    }
    double mirrored(double re) const { return banner_.symmetry == Symmetry::skew ? -re : re; }
    double mirrored_imag(double im) const {
        return banner_.symmetry == Symmetry::general || banner_.symmetry == Symmetry::symmetric
                   ? im
                   : -im;
    }

    oxArray *array() {
        end_line();
        check_square();
        size_t count = 0;
        if (__builtin_mul_overflow(m_, n_, &count)) count = ~size_t{0};
        if (banner_.symmetry == Symmetry::symmetric || banner_.symmetry == Symmetry::hermitian)
            count = count / 2 + m_ / 2 + (m_ % 2);
        if (banner_.symmetry == Symmetry::skew) count = count / 2 - m_ / 2;
        check_count(count);
        const bool complex = banner_.field == Field::complex;
        oxArray *a = oxCreateDoubleMatrix(m_, n_, complex ? oxCOMPLEX : oxREAL);
        size_t k = 0;
        for (size_t j = 0; j < n_; ++j)
            for (size_t i = first_row(j); i < m_; ++i, ++k) {
                next_entry(k, count);
                element(a, i, j, complex);
            }
        end_file(count);
        return a;
    }
    size_t first_row(size_t j) const {
        return banner_.symmetry == Symmetry::general ? 0
               : banner_.symmetry == Symmetry::skew  ? j + 1
                                                     : j;
    }
    void element(oxArray *a, size_t i, size_t j, bool complex) {
        const double re = value(), im = complex ? value() : 0;
        end_line();
        oxGetPr(a)[j * m_ + i] = re;
        if (complex) oxGetPi(a)[j * m_ + i] = im;
        if (banner_.symmetry == Symmetry::general) return;
        check_triangle(i, j, re, im);
        if (i == j) return;
        oxGetPr(a)[i * m_ + j] = mirrored(re);
        if (complex) oxGetPi(a)[i * m_ + j] = mirrored_imag(im);
    }

    Lines lines_;
    std::string_view line_;
    const std::string &name_;
    bool force_;
    Banner banner_;
    size_t m_ = 0, n_ = 0;
};

} // namespace

oxArray *read_matrix_market(SizedSource &in, const std::string &name, bool force) {
    return Parser(in, name, force).parse();
}

} // namespace vel
