// Reading a table of numbers from comma-separated text.
#include "csv.h"

#include "failure.h"
#include "lines.h"
#include "numbers.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <vector>

namespace vel {
namespace {

// Rows are gathered before they go into their columns, where each takes its own cache line.
constexpr size_t rows_together = 8;

class Table {
public:
    Table(SizedSource &in, const std::string &name, char separator)
        : in_(in), lines_(in), name_(name), separator_(separator) {}

    oxArray *read() {
        rows_ = count_lines(in_);
        if (next_row()) begin();
        if (!a_) throw Failure(Exit::data, name_ + ":1:1: the file holds no rows of numbers");
        do {
            parse_row(block_.data() + n_ * (m_ % rows_together));
            if (++m_ % rows_together == 0) store();
        } while (next_row());
        store();
        cut();
        return a_;
    }

private:
    // --- Rows ---
    // The next row that is not blank, with all lines that its quotations span.
    bool next_row() {
        do {
            if (!lines_.next(row_)) return false;
        } while (row_.empty());
        first_line_ = lines_.number();
        if (row_.find('"') == row_.npos) return true;
        for (size_t seen = 0, marks = 0;;) {
            marks += static_cast<size_t>(std::count(row_.begin() + seen, row_.end(), '"'));
            if (marks % 2 == 0) return true;
            seen = row_.size();
            if (!lines_.extend(row_)) fail(row_.rfind('"'), "the quotation is never closed");
        }
    }

    // Counts the columns in the first row and leaves it out when it is a header.
    void begin() {
        if (first_line_ == 1 && row_.starts_with("\xEF\xBB\xBF")) row_.remove_prefix(3);
        size_t numbers = 0, empty = 0;
        for (size_t at = 0; at <= row_.size(); ++n_) {
            double x;
            const std::string text = cell(at);
            numbers += parse_number(text, x);
            empty += trimmed(text).empty();
        }
        if (numbers + empty == 0 && (--rows_, !next_row())) return;
        // Each row takes a byte for each cell at least, which bounds what blank lines can ask for.
        rows_ = std::min<uint64_t>(rows_, (in_.size() + 1) / n_);
        a_ = oxCreateDoubleMatrix(rows_, n_, oxREAL);
        block_.resize(n_ * rows_together);
    }

    void parse_row(double *to) {
        size_t at = 0, j = 0;
        for (; at <= row_.size() && j < n_; ++j) {
            const char *p = row_.data() + at, *end = row_.data() + row_.size();
            const auto [stop, error] = std::from_chars(p, end, to[j]);
            if (error == std::errc() && (stop == end || *stop == separator_))
                at = static_cast<size_t>(stop - row_.data()) + 1;
            else
                to[j] = unusual(at);
        }
        if (j == n_ && at > row_.size()) return;
        const size_t last = at;
        for (; at <= row_.size(); ++j) cell(at);
        fail(std::min(last, row_.size()), "the row has " + std::to_string(j) +
                                              " cells, the first row has " + std::to_string(n_));
    }

    // --- Cells ---
    // The cell that begins at a place in the row, and moves the place behind its separator.
    std::string cell(size_t &at) {
        if (at < row_.size() && row_[at] == '"') return quoted(at);
        const size_t end = std::min(row_.find(separator_, at), row_.size());
        const std::string text(row_.substr(at, end - at));
        at = end + 1;
        return text;
    }
    std::string quoted(size_t &at) {
        std::string text;
        for (++at; at < row_.size(); ++at) {
            if (row_[at] == '"' && (++at >= row_.size() || row_[at] != '"')) break;
            text += row_[at];
        }
        if (at < row_.size() && row_[at] != separator_)
            fail(at, "text follows the closing quotation mark");
        ++at;
        return text;
    }
    // Blank, quoted, with a plus sign, out of range, or no number at all.
    double unusual(size_t &at) {
        const size_t start = at;
        const std::string text = cell(at);
        double x = oxGetNaN();
        if (!trimmed(text).empty() && !parse_number(text, x))
            fail(start, "\"" + text + "\" is not a number");
        return x;
    }

    // --- The matrix ---
    void store() {
        const size_t last = m_, first = (m_ - 1) / rows_together * rows_together;
        if (stored_ == last) return;
        double *p = oxGetPr(a_);
        for (size_t j = 0; j < n_; ++j)
            for (size_t i = first; i < last; ++i) p[j * rows_ + i] = block_[(i - first) * n_ + j];
        stored_ = last;
    }
    // Blank lines, and lines inside of quotations, were taken for rows.
    void cut() {
        if (m_ == rows_) return;
        double *p = oxGetPr(a_);
        for (size_t j = 1; j < n_; ++j)
            std::memmove(p + j * m_, p + j * rows_, m_ * sizeof(double));
        oxSetM(a_, m_);
    }

    [[noreturn]] void fail(size_t at, const std::string &what) const {
        const std::string_view before = row_.substr(0, at);
        const auto line = first_line_ + std::count(before.begin(), before.end(), '\n');
        const size_t column = at - (before.rfind('\n') + 1) + 1; // npos + 1 is 0
        throw Failure(Exit::data, name_ + ":" + std::to_string(line) + ":" +
                                      std::to_string(column) + ": " + what);
    }

    SizedSource &in_;
    Lines lines_;
    const std::string &name_;
    char separator_;
    std::string_view row_;
    size_t first_line_ = 0, rows_ = 0, n_ = 0, m_ = 0, stored_ = 0;
    std::vector<double> block_;
    oxArray *a_ = nullptr;
};

} // namespace

oxArray *read_csv(SizedSource &in, const std::string &name, char separator) {
    return Table(in, name, separator).read();
}

} // namespace vel
