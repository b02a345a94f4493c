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
#include <stdexcept>

namespace ox::test {

// --- Scanner ---------------------------------------------------------------------------------

char Scanner::peek() {
    while (!rest_.empty() && (rest_[0] == ' ' || rest_[0] == '\n')) rest_.remove_prefix(1);
    return rest_.empty() ? '\0' : rest_[0];
}

char Scanner::next() {
    if (rest_.empty()) fail("unexpected end");
    return take(1)[0];
}

bool Scanner::accept(char c) { return peek() == c && !take(1).empty(); }

void Scanner::expect(char c) {
    if (!accept(c)) fail((std::string("expected ") + c).c_str());
}

std::string_view Scanner::take(std::size_t n) {
    const std::string_view w = rest_.substr(0, n);
    rest_.remove_prefix(w.size());
    return w;
}

std::string_view Scanner::word() {
    peek();
    return take(static_cast<std::size_t>(
        std::find_if(rest_.begin(), rest_.end(),
                     [](unsigned char c) { return !std::isalnum(c) && c != '_'; }) -
        rest_.begin()));
}

std::string_view Scanner::number() {
    if (!peek()) fail("expected a number");
    return take(rest_.find_first_of(" \n;|{},)"));
}

kwSize Scanner::size() {
    if (!at_digit()) fail("expected a size");
    kwSize n = 0;
    for (; at_digit(); next()) n = n * 10 + static_cast<kwSize>(rest_[0] - '0');
    return n;
}

void Scanner::fail(const char *what) const {
    throw std::invalid_argument(std::string(what) + " before \"" + std::string(rest_) + "\" in \"" +
                                std::string(whole_) + '"');
}

// --- Numbers ---------------------------------------------------------------------------------

NumberText read_number(Scanner &in) {
    const std::string_view token = in.number();
    if (token.back() != 'i') return {token, {}};
    std::string_view body = token.substr(0, token.size() - 1);
    if (body.ends_with('*')) body.remove_suffix(1);
    std::size_t cut = body.size();
    while (cut-- > 1) // the sign between the parts, not that of an exponent
        if ((body[cut] == '+' || body[cut] == '-') && body[cut - 1] != 'e') break;
    if (cut == 0 || cut >= body.size()) return {"0", body};
    return {body.substr(0, cut), body[cut] == '+' ? body.substr(cut + 1) : body.substr(cut)};
}

namespace {

template<class T> using WideOf =
    std::conditional_t<std::is_same_v<T, bool> || std::is_same_v<T, oxChar>, uint32_t, T>;

template<class T> T value_of(std::string_view s) {
    WideOf<T> v{};
    const auto end = std::from_chars(s.data(), s.data() + s.size(), v);
    if (end.ec != std::errc() || end.ptr != s.data() + s.size())
        throw std::invalid_argument("not a number of this class: " + std::string(s));
    return static_cast<T>(v);
}

template<class T> void print_value(T v, std::string &out) {
    if (v != v) return void(out += "NaN"); // without a sign
    if constexpr (std::is_floating_point_v<T>)
        if (std::isinf(v)) return void(out += v < 0 ? "-Inf" : "Inf");
    char buffer[64];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<WideOf<T>>(v));
    out.append(buffer, end.ptr);
}

} // namespace

void store_number(oxArray *a, kwSize k, const NumberText &n) {
    visit_class(a->class_code, false, [&]<class T>(std::type_identity<T>) {
        data<T>(a)[k] = value_of<T>(n.re);
        if (is_complex(a)) imag<T>(a)[k] = n.im.empty() ? T{} : value_of<T>(n.im);
        return true;
    });
}

void print_number(const oxArray *a, kwSize k, std::string &out) {
    visit_class(a->class_code, false, [&]<class T>(std::type_identity<T>) {
        if constexpr (std::is_same_v<T, bool>)
            print_value(data<uint8_t>(a)[k], out); // the byte as it is
        else
            print_value(data<T>(a)[k], out);
        if (!has_imag_block(a)) return true;
        std::string im;
        print_value(imag<T>(a)[k], im);
        if (im[0] != '-') out += '+';
        out += im;
        out += im.back() == 'N' || im.back() == 'f' ? "*i" : "i";
        return true;
    });
}

// --- Characters ------------------------------------------------------------------------------

namespace {

// \\uXXXX, or a backslash and the character itself.
oxChar read_escape(Scanner &in) {
    const char c = in.next();
    if (c != 'u') return static_cast<unsigned char>(c);
    std::string digits;
    while (digits.size() < 4) digits += in.next();
    return static_cast<oxChar>(std::stoul(digits, nullptr, 16));
}

void read_quoted(Scanner &in, std::vector<oxChar> &units) {
    in.expect('\'');
    for (char c; (c = in.next()) != '\'';)
        units.push_back(c == '\\' ? read_escape(in) : static_cast<unsigned char>(c));
}

void print_unit(char16_t c, std::string &out) {
    if (c == '\'' || c == '\\') out += '\\';
    if (c >= 0x20 && c < 0x7F) return void(out += static_cast<char>(c));
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(c));
    out += escape;
}

// --- The body of a full array ------------------------------------------------------------------

bool body_ends(Scanner &in) {
    const char c = in.peek();
    return c == '\0' || c == '}' || c == ',';
}

// Pages of rows, in the order of the text, and the shape that they have.
template<class Item> struct Rows {
    std::vector<Item> items;
    Dims dims;

    template<class ReadRow> Rows(Scanner &in, const Dims &given, ReadRow &&read_row) : dims(given) {
        kwSize rows = 0, pages = 0;
        do {
            ++pages;
            do {
                ++rows;
                read_row(items);
            } while (in.accept(';'));
        } while (in.accept('|'));
        const kwSize m = rows / pages, n = items.size() / rows;
        if (given.empty()) dims = {m, n};
        if (dims[0] != m || dims[1] != n || element_count(dims) != items.size())
            in.fail("elements do not fill the dimensions");
    }
    // Position in memory of the item that was read k-th.
    kwSize position(kwSize k) const {
        const kwSize m = dims[0], n = dims[1], page = k / (m * n);
        return page * m * n + k % n * m + k / n % m;
    }
};

oxArray *create(const Dims &dims, int id, bool complex) {
    if (id == oxLOGICAL_CLASS) return oxCreateLogicalArray(dims.size(), dims.data());
    return oxCreateNumericArray(dims.size(), dims.data(), static_cast<oxClassID>(id),
                                complex ? oxCOMPLEX : oxREAL);
}

oxArray *read_chars(Scanner &in, const Dims &given) {
    const Rows<oxChar> r(in, given, [&](std::vector<oxChar> &items) { read_quoted(in, items); });
    oxArray *a = create(r.dims, oxCHAR_CLASS, false);
    for (kwSize k = 0; k < r.items.size(); ++k) a->get_chars()[r.position(k)] = r.items[k];
    return a;
}

oxArray *read_numbers(Scanner &in, const Dims &given, int id) {
    const Rows<NumberText> r(in, given, [&](std::vector<NumberText> &items) {
        while (!body_ends(in) && in.peek() != ';' && in.peek() != '|')
            items.push_back(read_number(in));
    });
    const bool complex = std::any_of(r.items.begin(), r.items.end(),
                                     [](const NumberText &n) { return !n.im.empty(); });
    oxArray *a = create(r.dims, id, complex);
    for (kwSize k = 0; k < r.items.size(); ++k) store_number(a, r.position(k), r.items[k]);
    return a;
}

void print_full(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const kwSize count = a->get_number_of_elements(), m = rows(a), n = a->get_dimensions()[1];
    if (count == 0) return;
    if (!a->num.pdata) return void(out += ", no data");
    if (a->is_imag_marked()) out += ", imaginary part announced";
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

int class_of_word(std::string_view word) {
    for (const ClassInfo &info : class_table)
        if (word == info.name && holds_values(info.id)) return info.id;
    return 0;
}

} // namespace

kwSize element_count(const Dims &dims) {
    kwSize count = 1;
    for (const kwSize d : dims) count *= d;
    return count;
}

Dims read_dims(Scanner &in) {
    Dims dims{in.size()};
    while (in.accept('x')) dims.push_back(in.size());
    if (dims.size() < 2) in.fail("expected at least two dimensions");
    return dims;
}

void print_dims(const oxArray *a, std::string &out) {
    const kwSize *d = a->get_dimensions();
    for (kwSize k = 0; k < a->ndims; ++k) out += (k ? "x" : " ") + std::to_string(d[k]);
}

oxArray *read_array(Scanner &in) {
    const Scanner start = in;
    const std::string_view word = in.word();
    for (const TextForm *f : forms)
        if (word == f->word) return f->make(in);
    int id = class_of_word(word);
    Dims dims;
    if (!id) {
        in = start; // the elements themselves
        id = oxDOUBLE_CLASS;
    } else {
        if (in.at_digit()) dims = read_dims(in);
        if (!in.accept(':')) {
            if (dims.empty() || element_count(dims)) in.fail("expected elements");
            return create(dims, id, false);
        }
    }
    return id == oxCHAR_CLASS ? read_chars(in, dims) : read_numbers(in, dims, id);
}

oxArray *read_in_braces(Scanner &in) {
    in.expect('{');
    if (in.accept('}')) return nullptr;
    oxArray *a = read_array(in);
    in.expect('}');
    return a;
}

void print_in_braces(const oxArray *a, std::string &out) {
    out += '{';
    if (a) out += text(a);
    out += '}';
}

oxArray *arr(std::string_view text) {
    if (text == "null") return nullptr;
    Scanner in(text);
    oxArray *a = read_array(in);
    if (in.peek()) in.fail("text goes on");
    return a;
}

std::string text(const oxArray *a) {
    if (!a) return "null";
    for (const TextForm *f : forms) {
        if (!f->is(a)) continue;
        std::string out(f->word);
        f->print(a, out);
        return out;
    }
    std::string out = oxArrayClassIDName(static_cast<oxClassID>(a->class_code));
    if (holds_values(a->class_code))
        print_full(a, out);
    else
        print_dims(a, out);
    return out;
}

} // namespace ox::test
