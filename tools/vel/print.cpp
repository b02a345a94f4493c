// Arrays as aligned tables, cut in the middle where they are long or wide.
#include "print.h"

#include "numbers.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <string>
#include <vector>

namespace vel {
namespace {

constexpr size_t most_rows = 20, most_width = 100, most_pages = 6;

template<class T> std::string element(const oxArray *a, size_t k) {
    return std::to_string(static_cast<const T *>(oxGetData(a))[k]);
}

std::string number(const oxArray *a, size_t k, bool imaginary) {
    const void *block = imaginary ? oxGetImagData(a) : oxGetData(a);
    if (oxIsSingle(a)) return format_number(static_cast<const float *>(block)[k]);
    return format_number(static_cast<const double *>(block)[k]);
}

std::string format_float(const oxArray *a, size_t k) {
    if (!oxIsComplex(a)) return number(a, k, false);
    const std::string im = number(a, k, true);
    return number(a, k, false) + (im[0] == '-' ? "" : "+") + im + "i";
}

std::string format_element(const oxArray *a, size_t k) {
    switch (oxGetClassID(a)) {
    case oxDOUBLE_CLASS:
    case oxSINGLE_CLASS:
        return format_float(a, k);
    case oxLOGICAL_CLASS:
        return oxGetLogicals(a)[k] ? "1" : "0";
    case oxINT8_CLASS:
        return element<int8_t>(a, k);
    case oxUINT8_CLASS:
        return element<uint8_t>(a, k);
    case oxINT16_CLASS:
        return element<int16_t>(a, k);
    case oxUINT16_CLASS:
    case oxCHAR_CLASS:
        return element<uint16_t>(a, k);
    case oxINT32_CLASS:
        return element<int32_t>(a, k);
    case oxUINT32_CLASS:
        return element<uint32_t>(a, k);
    case oxINT64_CLASS:
        return element<int64_t>(a, k);
    case oxUINT64_CLASS:
        return element<uint64_t>(a, k);
    default:
        return "?";
    }
}

// Indices 0 to n-1, or the first and last of them with one gap marked by n.
std::vector<size_t> cut(size_t n, size_t most) {
    std::vector<size_t> shown;
    for (size_t i = 0; i < n; ++i) {
        if (n > most && i == most / 2) {
            shown.push_back(n);
            i = n - most / 2;
        }
        shown.push_back(i);
    }
    return shown;
}

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
void print_page(std::ostream &out, const oxArray *a, size_t offset, size_t m, size_t n) {
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
        for (const Column &c : left)
            out << "  " << std::setw(static_cast<int>(c.width)) << c.cells[i];
        out << '\n';
    }
}

} // namespace

std::string describe(const oxArray *a) {
    std::string s = oxIsSparse(a) ? "sparse " : "";
    if (oxIsComplex(a)) s += "complex ";
    s += oxGetClassName(a);
    for (size_t k = 0; k < oxGetNumberOfDimensions(a); ++k)
        s += (k ? "x" : " ") + std::to_string(oxGetDimensions(a)[k]);
    return s;
}

void print_array(std::ostream &out, const char *name, const oxArray *a) {
    out << name << ": " << describe(a) << '\n';
    if (oxIsEmpty(a) || oxIsSparse(a)) return;
    const size_t m = oxGetDimensions(a)[0], n = oxGetDimensions(a)[1];
    const size_t pages = oxGetNumberOfElements(a) / (m * n);
    for (size_t p : cut(pages, most_pages)) {
        if (p == pages) {
            out << "  ...\n";
            continue;
        }
        if (pages > 1) out << " page " << p + 1 << '\n';
        print_page(out, a, p * m * n, m, n);
    }
}

} // namespace vel
