// Arrays as one line, and cells and structs as trees of such lines.
#include "print.h"

#include "elements.h"
#include "numbers.h"
#include "paths.h"
#include "text.h"

#include <ostream>
#include <type_traits>

namespace vel {
namespace {

constexpr size_t most_elements = 12, most_fields = 16, most_depth = 40, most_text = 60;

template<class T> std::string format_value(T x) {
    if constexpr (std::is_floating_point_v<T>)
        return format_number(static_cast<double>(x));
    else
        return std::to_string(+x);
}

// What fits behind the label: text in quotes, a number. "" for everything else.
std::string short_value(const oxArray *a) {
    if (oxIsSparse(a)) return "";
    if (oxIsChar(a) && oxIsVector2D(a) && oxGetM(a) == 1) {
        const std::string text = printable(text_of(a));
        if (text.size() <= most_text) return "'" + text + "'";
    }
    if (oxGetNumberOfElements(a) == 1 && has_elements(a)) return format_element(a, 0);
    return "";
}

bool is_container(const oxArray *a) { return oxIsCell(a) || oxIsStruct(a); }

// One line above a tree stands for what was left out.
void print_gap(std::ostream &out, const std::string &indent) { out << indent << "├─ ...\n"; }

class Tree {
public:
    Tree(std::ostream &out, const std::string &indent, const oxArray *a)
        : out_(out), indent_(indent), a_(a) {}

    void print() {
        const size_t n = oxGetNumberOfElements(a_);
        const size_t fields = oxIsCell(a_) ? 1 : static_cast<size_t>(oxGetNumberOfFields(a_));
        const std::vector<size_t> elements = cut(n, most_elements),
                                  names = cut(fields, most_fields);
        for (size_t i : elements) {
            if (i == n) {
                print_gap(out_, indent_);
                continue;
            }
            for (size_t k : names) branch(i, k, k == fields, i + 1 == n && k + 1 == fields);
        }
    }

private:
    void branch(size_t i, size_t field, bool gap, bool last) {
        if (gap) return print_gap(out_, indent_);
        const oxArray *value =
            oxIsCell(a_) ? oxGetCell(a_, i) : oxGetFieldByNumber(a_, i, static_cast<int>(field));
        print_array(out_, step_label(a_, i, field), value,
                    {indent_ + (last ? "└─ " : "├─ "), indent_ + (last ? "   " : "│  ")});
    }

    std::ostream &out_;
    const std::string &indent_;
    const oxArray *a_;
};

size_t depth_of(const std::string &indent) {
    size_t columns = 0; // each level takes three; the bytes that continue a character take none
    for (const char c : indent) columns += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    return columns / 3;
}

} // namespace

std::string format_element(const oxArray *a, size_t k) {
    return visit_elements(a, [&](auto e) {
        const std::string re = format_value(e.re[k]);
        if (!e.im) return re;
        const std::string im = format_value(e.im[k]);
        return re + (im[0] == '-' ? "" : "+") + im + "i";
    });
}

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

std::string describe(const oxArray *a) {
    std::string s = oxIsSparse(a) ? "sparse " : "";
    if (oxIsComplex(a)) s += "complex ";
    s += oxGetClassName(a);
    for (size_t k = 0; k < oxGetNumberOfDimensions(a); ++k)
        s += (k ? "x" : " ") + std::to_string(oxGetDimensions(a)[k]);
    if (oxIsSparse(a)) s += ", " + std::to_string(oxGetNumNonZeroEl(a)) + " stored";
    if (!oxIsStruct(a)) return s;
    const int fields = oxGetNumberOfFields(a);
    if (fields == 0) s += " without fields";
    for (int k = 0; k < fields; ++k)
        s += (k            ? ", "
              : fields > 1 ? " with fields "
                           : " with field ") +
             printable(oxGetFieldNameByNumber(a, k));
    return s;
}

void print_array(std::ostream &out, const std::string &label, const oxArray *a,
                 const Indent &indent) {
    out << indent.first << label << ": ";
    if (!a) {
        out << "empty\n";
        return;
    }
    const std::string value = short_value(a);
    const bool nested = !indent.first.empty();
    if (!value.empty() && (nested || oxIsChar(a))) {
        out << value << '\n';
        return;
    }
    out << describe(a) << '\n';
    if (oxIsSparse(a)) return print_sparse(out, a, indent.rest);
    if (oxIsEmpty(a)) return;
    if (has_pattern(a)) return print_pattern(out, a, indent.rest);
    if (has_elements(a)) return print_table(out, a, indent.rest);
    if (!is_container(a)) return;
    if (depth_of(indent.rest) >= most_depth)
        out << indent.rest << "└─ ...\n";
    else
        Tree(out, indent.rest, a).print();
}

} // namespace vel
