// Full arrays as aligned tables, cut in the middle where they are long or wide.
#include "print.h"
#include "text.h"

#include <algorithm>
#include <iomanip>
#include <ostream>

namespace vel {
namespace {

constexpr size_t most_rows = 20, most_width = 100, most_pages = 6;

struct Column {
    std::vector<std::string> cells;
    size_t width = 0;
};

Column make_column(const oxArray *a, size_t offset, size_t m, size_t j,
                   const std::vector<size_t> &rows) {
    Column c;
    for (size_t i : rows) {
        c.cells.push_back(i == m ? "..." : format_element(a, offset + j * m + i));
        c.width = std::max(c.width, c.cells.back().size());
    }
    return c;
}

// Columns from both ends inwards for as long as the table is narrow enough.
void print_page(std::ostream &out, const oxArray *a, const std::string &indent, size_t offset,
                size_t m, size_t n) {
    const std::vector<size_t> rows = cut(m, most_rows);
    std::vector<Column> left, right;
    size_t width = 6, taken = 0;
    for (; taken < n; ++taken) {
        const bool at_left = taken % 2 == 0;
        const size_t j = at_left ? taken / 2 : n - 1 - taken / 2;
        Column c = make_column(a, offset, m, j, rows);
        width += c.width + 2;
        if (width > most_width && taken >= 2) break;
        (at_left ? left : right).push_back(std::move(c));
    }
    if (taken < n) left.push_back({std::vector<std::string>(rows.size(), "..."), 3});
    left.insert(left.end(), right.rbegin(), right.rend());
    for (size_t i = 0; i < rows.size(); ++i) {
        out << indent;
        for (const Column &c : left)
            out << "  " << std::setw(static_cast<int>(c.width)) << c.cells[i];
        out << '\n';
    }
}

// A row of text for each row of characters.
void print_text(std::ostream &out, const oxArray *a, const std::string &indent, size_t offset,
                size_t m, size_t n) {
    for (size_t i : cut(m, most_rows))
        out << indent << "  "
            << (i == m ? "..." : "'" + printable(text_of(a, offset + i, n, m)) + "'") << '\n';
}

} // namespace

void print_table(std::ostream &out, const oxArray *a, const std::string &indent) {
    const size_t m = oxGetDimensions(a)[0], n = oxGetDimensions(a)[1];
    const size_t pages = oxGetNumberOfElements(a) / (m * n);
    for (size_t p : cut(pages, most_pages)) {
        if (p == pages) {
            out << indent << "  ...\n";
            continue;
        }
        if (pages > 1) out << indent << " page " << p + 1 << '\n';
        (oxIsChar(a) ? print_text : print_page)(out, a, indent, p * m * n, m, n);
    }
}

} // namespace vel
