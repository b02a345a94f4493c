// Reading a table of numbers from comma-separated text.
#include "csv.h"

#include "failure.h"
#include "files.h"
#include "numbers.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace vel {
namespace {

struct Cell {
    std::string text;
    size_t line, column; // both from 1; the column counts characters
};

// Walks the text record by record.
class Reader {
public:
    Reader(std::string_view text, const std::string &name, char separator)
        : text_(text), name_(name), separator_(separator) {
        if (text_.starts_with("\xEF\xBB\xBF")) text_.remove_prefix(3);
    }

    // The cells of the next row that is not blank; false at the end.
    bool next(std::vector<Cell> &row) {
        row.clear();
        while (at_ < text_.size() && end_of_line()) skip_line_end();
        if (at_ >= text_.size()) return false;
        for (;;) {
            row.push_back(cell());
            if (at_ >= text_.size() || end_of_line()) break;
            ++at_; // the separator
        }
        skip_line_end();
        return true;
    }

    [[noreturn]] void fail(size_t line, size_t column, const std::string &what) const {
        throw Failure(Exit::data, name_ + ":" + std::to_string(line) + ":" +
                                      std::to_string(column) + ": " + what);
    }

private:
    bool end_of_line() const { return text_[at_] == '\n' || text_[at_] == '\r'; }

    void skip_line_end() {
        if (at_ < text_.size() && text_[at_] == '\r') ++at_;
        if (at_ < text_.size() && text_[at_] == '\n') ++at_;
        ++line_;
        line_start_ = at_;
    }

    Cell cell() {
        Cell c{{}, line_, at_ - line_start_ + 1};
        if (at_ < text_.size() && text_[at_] == '"') {
            quoted(c);
            return c;
        }
        while (at_ < text_.size() && text_[at_] != separator_ && !end_of_line())
            c.text += text_[at_++];
        return c;
    }

    void quoted(Cell &c) {
        for (++at_;; ++at_) {
            if (at_ >= text_.size()) fail(c.line, c.column, "the quotation is never closed");
            if (text_[at_] == '"' && (++at_ >= text_.size() || text_[at_] != '"')) break;
            if (text_[at_] == '\n') ++line_, line_start_ = at_ + 1;
            c.text += text_[at_];
        }
        if (at_ < text_.size() && text_[at_] != separator_ && !end_of_line())
            fail(line_, at_ - line_start_ + 1, "text follows the closing quotation mark");
    }

    std::string_view text_;
    const std::string &name_;
    char separator_;
    size_t at_ = 0, line_ = 1, line_start_ = 0;
};

bool is_header(const std::vector<Cell> &row) {
    double ignored;
    return std::none_of(row.begin(), row.end(), [&](const Cell &c) {
        return trimmed(c.text).empty() || parse_number(c.text, ignored);
    });
}

oxArray *to_columns(const std::vector<double> &by_rows, size_t m, size_t n) {
    oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
    double *p = oxGetPr(a);
    for (size_t i = 0; i < m; ++i)
        for (size_t j = 0; j < n; ++j) p[j * m + i] = by_rows[i * n + j];
    return a;
}

} // namespace

oxArray *parse_csv(std::string_view text, const std::string &name, char separator) {
    Reader reader(text, name, separator);
    std::vector<Cell> row;
    std::vector<double> values;
    size_t m = 0, n = 0;
    bool first = true;
    while (reader.next(row)) {
        if (first) n = row.size();
        if (row.size() != n)
            reader.fail(row[0].line, row.back().column,
                        "the row has " + std::to_string(row.size()) + " cells, the first row has " +
                            std::to_string(n));
        if (std::exchange(first, false) && is_header(row)) continue;
        for (const Cell &c : row) {
            double x = oxGetNaN();
            if (!trimmed(c.text).empty() && !parse_number(c.text, x))
                reader.fail(c.line, c.column, "\"" + c.text + "\" is not a number");
            values.push_back(x);
        }
        ++m;
    }
    if (m == 0) throw Failure(Exit::data, name + ":1:1: the file holds no rows of numbers");
    return to_columns(values, m, n);
}

oxArray *read_csv(const std::string &path, char separator) {
    return parse_csv(read_file(path), path, separator);
}

} // namespace vel
