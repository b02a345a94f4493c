// Arrays from and to text: the scanner, numbers and characters.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <ox.h>
#include <support/array_text.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace ox::test {

constexpr const char *token_ends = " \n:;|{}(),=";

// --- Scanner ---------------------------------------------------------------------------------

void Scanner::expect(bool holds) const {
    if (!holds) throw std::invalid_argument("array malformed before \"" + std::string(rest_) + '"');
}

char Scanner::peek() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \n"), rest_.size()));
    return rest_.empty() ? '\0' : rest_[0];
}

char Scanner::next() {
    expect(!rest_.empty());
    const char c = rest_[0];
    rest_.remove_prefix(1);
    return c;
}

bool Scanner::accept(char c) { return peek() == c && (rest_.empty() || next()); }

std::string Scanner::token() {
    peek();
    const std::string s(rest_.substr(0, rest_.find_first_of(token_ends)));
    rest_.remove_prefix(s.size());
    return s;
}

Dims Scanner::dims() {
    Dims dims(1);
    std::istringstream sizes(token());
    for (sizes >> dims[0]; sizes.get() == 'x';) sizes >> dims.emplace_back();
    expect(dims.size() >= 2 && sizes.eof());
    return dims;
}

// --- Numbers ---------------------------------------------------------------------------------

namespace {

template<class T> T read_value(std::string_view &s) {
    if (s.starts_with('+')) s.remove_prefix(1);
    T v{};
    const auto end = std::from_chars(s.data(), s.data() + s.size(), v);
    if (end.ec != std::errc()) throw std::invalid_argument("no such number: " + std::string(s));
    s.remove_prefix(static_cast<std::size_t>(end.ptr - s.data()));
    return v;
}

template<class T> void print_value(T v, std::string &out) {
    if (v != v) return void(out += "NaN"); // without a sign
    if constexpr (std::is_floating_point_v<T>)
        if (std::isinf(v)) return void(out += v < 0 ? "-Inf" : "Inf");
    char buffer[64];
    out.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, v).ptr);
}

} // namespace

void store_number(oxArray *a, kwSize k, const std::string &number) {
    visit_class(a->class_code, false, [&]<class T>(std::type_identity<T>) {
        std::string_view rest = number;
        auto re = read_value<Stored<T>>(rest), im = decltype(re){};
        if (rest.starts_with('+') || rest.starts_with('-'))
            im = read_value<Stored<T>>(rest);
        else if (!rest.empty())
            std::swap(re, im);
        if (number.ends_with('i') ? rest != "i" && rest != "*i" : !rest.empty())
            throw std::invalid_argument("not a number of this class: " + number);
        data<Stored<T>>(a)[k] = re;
        if (is_complex(a)) imag<Stored<T>>(a)[k] = im;
        return true;
    });
}

void print_number(const oxArray *a, kwSize k, std::string &out) {
    visit_class(a->class_code, false, [&]<class T>(std::type_identity<T>) {
        print_value(data<Stored<T>>(a)[k], out);
        if (!has_imag_block(a)) return true;
        std::string im;
        print_value(imag<Stored<T>>(a)[k], im);
        if (im[0] != '-') out += '+';
        out += im;
        out += im.back() == 'N' || im.back() == 'f' ? "*i" : "i";
        return true;
    });
}

// --- The body of a full array ------------------------------------------------------------------

namespace {

oxChar read_escape(Scanner &in) {
    const char c = in.next();
    if (c != 'u') return static_cast<unsigned char>(c);
    std::string digits;
    while (digits.size() < 4) digits += in.next();
    return static_cast<oxChar>(std::stoul(digits, nullptr, 16));
}

// Numbers as they are written, or those of the characters between quotes.
void read_row(Scanner &in, std::vector<std::string> &items) {
    if (in.accept('\''))
        for (char c; (c = in.next()) != '\'';)
            items.push_back(
                std::to_string(c == '\\' ? read_escape(in) : static_cast<unsigned char>(c)));
    else
        while (in.peek() && !std::strchr(token_ends, in.peek())) items.push_back(in.token());
}

oxArray *create(const Dims &dims, int id, bool complex) {
    if (id == oxLOGICAL_CLASS) return oxCreateLogicalArray(dims.size(), dims.data());
    return oxCreateNumericArray(dims.size(), dims.data(), static_cast<oxClassID>(id),
                                complex ? oxCOMPLEX : oxREAL);
}

// Pages of rows.
oxArray *read_full(Scanner &in, int id, Dims dims) {
    std::vector<std::string> items;
    kwSize rows = 0, pages = 0;
    do {
        ++pages;
        do {
            ++rows;
            read_row(in, items);
        } while (in.accept(';'));
    } while (in.accept('|'));
    const kwSize m = rows / pages, n = items.size() / rows;
    if (dims.empty()) dims = {m, n};
    in.expect(dims[0] == m && dims[1] == n && element_count(dims) == items.size());
    const bool complex = std::any_of(items.begin(), items.end(),
                                     [](const std::string &item) { return item.ends_with('i'); });
    oxArray *a = create(dims, id, complex);
    for (kwSize k = 0; k < items.size(); ++k)
        store_number(a, k / (m * n) * m * n + k % n * m + k / n % m, items[k]);
    return a;
}

void print_unit(char16_t c, std::string &out) {
    if (c == '\'' || c == '\\') out += '\\';
    if (c >= 0x20 && c < 0x7F) return void(out += static_cast<char>(c));
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(c));
    out += escape;
}

void print_full(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const kwSize count = a->get_number_of_elements(), m = rows(a), n = a->get_dimensions()[1];
    if (count == 0) return;
    if (!a->num.pdata) return void(out += ", no data");
    for (kwSize k = 0; k < count / n; ++k) {
        out += k == 0 ? ": " : k % m == 0 ? " | " : "; ";
        if (a->is_char()) out += '\'';
        for (kwSize c = 0, at = k / m * m * n + k % m; c < n; ++c, at += m) {
            if (a->is_char()) {
                print_unit(a->get_chars()[at], out);
            } else {
                if (c) out += ' ';
                print_number(a, at, out);
            }
        }
        if (a->is_char()) out += '\'';
    }
}

const TextForm *const forms[] = {&sparse_form, &cell_form,   &struct_form, &object_form,
                                 &lazy_form,   &opaque_form, &handle_form};

bool holds_values(int id) {
    return visit_class(id, false, []<class T>(std::type_identity<T>) { return true; });
}

} // namespace

kwSize element_count(const Dims &dims) {
    return std::accumulate(dims.begin(), dims.end(), kwSize{1}, std::multiplies<>());
}

void print_dims(const oxArray *a, std::string &out) {
    const kwSize *d = a->get_dimensions();
    for (kwSize k = 0; k < a->ndims; ++k) out += (k ? "x" : " ") + std::to_string(d[k]);
}

oxArray *read_array(Scanner &in) {
    const Scanner start = in;
    const std::string word = in.token();
    for (const TextForm *f : forms)
        if (word == f->word) return f->make(in);
    const int id = oxClassIDFromClassName(word.c_str());
    if (!holds_values(id)) return read_full(in = start, oxDOUBLE_CLASS, {});
    const Dims dims = in.peek() == ':' ? Dims() : in.dims();
    if (in.accept(':')) return read_full(in, id, dims);
    in.expect(element_count(dims) == 0);
    return create(dims, id, false);
}

oxArray *arr(std::string_view text) {
    if (text == "null") return nullptr;
    Scanner in(text);
    oxArray *a = read_array(in);
    in.expect(!in.peek());
    return a;
}

std::string text(const oxArray *a) {
    if (!a) return "null";
    std::string out = oxArrayClassIDName(static_cast<oxClassID>(a->class_code));
    auto print = holds_values(a->class_code) ? print_full : print_dims;
    for (const TextForm *f : forms) {
        if (!f->is(a)) continue;
        out = f->word;
        print = f->print;
        break;
    }
    print(a, out);
    return out;
}

} // namespace ox::test
