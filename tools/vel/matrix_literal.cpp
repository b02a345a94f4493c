// Matrices written out in a command line.
#include "matrix_literal.h"

#include "failure.h"
#include "numbers.h"

#include <string_view>
#include <vector>

namespace vel {
namespace {

// Rows end at ';', elements at blanks or one comma.
class MatrixParser {
public:
    explicit MatrixParser(std::string_view word)
        : word_(word), rest_(word.substr(1, word.size() - 2)) {}

    oxArray *parse() {
        for (bool more = true; more;) {
            const size_t end = rest_.find(';');
            more = end != std::string_view::npos;
            const std::string_view row = rest_.substr(0, end);
            if (more) rest_.remove_prefix(end + 1);
            add_row(row);
        }
        oxArray *a = oxCreateDoubleMatrix(m_, n_, oxREAL);
        for (size_t i = 0; i < m_; ++i)
            for (size_t j = 0; j < n_; ++j) oxGetPr(a)[j * m_ + i] = values_[i * n_ + j];
        return a;
    }

private:
    void add_row(std::string_view row) {
        size_t count = 0;
        for (size_t at = 0; at < row.size(); ++count) {
            at = row.find_first_not_of(" \t", at);
            if (at == std::string_view::npos) break;
            const size_t end = std::min(row.find_first_of(" \t,", at), row.size());
            double x;
            const std::string_view element = row.substr(at, end - at);
            if (!parse_number(element, x)) fail("'" + std::string(element) + "' is not a number");
            values_.push_back(x);
            at = std::min(row.find_first_not_of(" \t", end), row.size());
            if (at < row.size() && row[at] == ',') ++at;
        }
        if (count == 0) return; // a blank row adds nothing
        if (m_ == 0) n_ = count;
        if (count != n_)
            fail("row " + std::to_string(m_ + 1) + " has " + std::to_string(count) +
                 " elements, the first has " + std::to_string(n_));
        ++m_;
    }
    [[noreturn]] void fail(const std::string &what) const {
        throw Failure(Exit::usage, "argument " + std::string(word_) + ": " + what);
    }

    std::string_view word_, rest_;
    std::vector<double> values_;
    size_t m_ = 0, n_ = 0;
};

} // namespace

oxArray *parse_matrix(const std::string &word) { return MatrixParser(word).parse(); }

} // namespace vel
