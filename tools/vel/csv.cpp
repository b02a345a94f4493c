// Reading a table of numbers from comma-separated text.
#include "csv.h"

#include "failure.h"
#include "lines.h"
#include "numbers.h"

#include <algorithm>
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
        if (!next_row() || !begin())
            throw Failure(Exit::data, name_ + ":1:1: the file holds no rows of numbers");
        do {
            parse_row(row_to());
            end_row();
            plain_rows();
        } while (next_row());
        store();
        set_rows(m_);
        oxSetM(a_, m_);
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
    bool begin() {
        if (first_line_ == 1 && row_.starts_with("\xEF\xBB\xBF")) row_.remove_prefix(3);
        size_t numbers = 0, empty = 0;
        for (size_t at = 0; at <= row_.size(); ++n_) {
            double x;
            const std::string text = cell(at);
            numbers += parse_number(text, x);
            empty += trimmed(text).empty();
        }
        if (numbers + empty == 0 && !next_row()) return false;
        block_.resize(n_ * rows_together);
        a_ = oxCreateDoubleMatrix(0, n_, oxREAL);
        return true;
    }

    // Rows of numbers and nothing else, without looking for their ends first.
    void plain_rows() {
        for (std::string_view text; !(text = lines_.ahead()).empty();) {
            const char *const end = text.data() + text.size();
            const char *p = text.data();
            size_t rows = 0;
            for (const char *next; p < end && (next = plain_row(p, end, row_to())); p = next) {
                end_row();
                ++rows;
            }
            lines_.pass(static_cast<size_t>(p - text.data()), rows);
            if (p < end) return;
        }
    }
    // Behind the row, or null when it has to be looked at closely. The text ends with a line end.
    const char *plain_row(const char *p, const char *end, double *to) const {
        for (size_t j = 0;; ++p) {
            while (*p == ' ') ++p;
            const auto [stop, error] = read_number(p, end, to[j]);
            if (error == std::errc())
                p = stop;
            else if (stop == p && (*p == separator_ || (j > 0 && (*p == '\r' || *p == '\n'))))
                to[j] = oxGetNaN();
            else
                return nullptr;
            if (++j == n_) break;
            if (*p != separator_) return nullptr;
        }
        p += *p == '\r';
        return *p == '\n' ? p + 1 : nullptr;
    }

    void parse_row(double *to) {
        size_t at = 0, j = 0;
        while (at <= row_.size() && j < n_) to[j++] = value(at);
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
    double value(size_t &at) {
        const size_t start = at;
        const std::string text = cell(at);
        double x = oxGetNaN();
        if (!trimmed(text).empty() && !parse_number(text, x))
            fail(start, "\"" + text + "\" is not a number");
        return x;
    }

    // --- The matrix ---
    double *row_to() { return block_.data() + n_ * (m_ % rows_together); }
    void end_row() {
        if (++m_ % rows_together == 0) store();
    }
    void store() {
        const size_t first = stored_;
        if (m_ > rows_) set_rows(std::max(expected_rows(), m_ + m_ / 4));
        double *p = oxGetPr(a_);
        for (size_t j = 0; j < n_; ++j)
            for (size_t i = first; i < m_; ++i) p[j * rows_ + i] = block_[(i - first) * n_ + j];
        stored_ = m_;
    }
    // What the file will come to if it goes on like the text that is in memory, and a little more.
    size_t expected_rows() {
        const std::string_view text = lines_.ahead();
        double line = static_cast<double>(row_.size() + 1);
        if (!text.empty())
            line = static_cast<double>(text.size()) /
                   static_cast<double>(std::count(text.begin(), text.end(), '\n'));
        return m_ + 8 + static_cast<size_t>(1.02 * static_cast<double>(lines_.left()) / line);
    }
    // The columns get room for so many elements each; a row takes a byte for each cell at least.
    void set_rows(size_t rows) {
        rows = std::max<size_t>(m_, std::min<uint64_t>(rows, in_.size() / n_ + 1));
        double *p = oxGetPr(a_);
        for (size_t j = 1; rows < rows_ && j < n_; ++j)
            std::memmove(p + j * rows, p + j * rows_, stored_ * sizeof *p);
        p = static_cast<double *>(oxRealloc(p, rows * n_ * sizeof *p));
        oxSetPr(a_, p);
        for (size_t j = n_ - 1; rows > rows_ && j > 0; --j)
            std::memmove(p + j * rows, p + j * rows_, stored_ * sizeof *p);
        rows_ = rows;
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
    // There is room for rows_ rows, m_ have been read, of which stored_ are in their columns.
    size_t first_line_ = 0, rows_ = 0, n_ = 0, m_ = 0, stored_ = 0;
    std::vector<double> block_;
    oxArray *a_ = nullptr;
};

} // namespace

oxArray *read_csv(SizedSource &in, const std::string &name, char separator) {
    return Table(in, name, separator).read();
}

} // namespace vel
