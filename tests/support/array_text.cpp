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
    const char c = rest_[0];
    rest_.remove_prefix(1);
    return c;
}

bool Scanner::accept(char c) {
    if (peek() != c || rest_.empty()) return false;
    rest_.remove_prefix(1);
    return true;
}

void Scanner::expect(char c) {
    if (!accept(c)) fail((std::string("expected ") + c).c_str());
}

std::string_view Scanner::word() {
    peek();
    std::size_t n = 0;
    while (n < rest_.size() &&
           (std::isalnum(static_cast<unsigned char>(rest_[n])) || rest_[n] == '_'))
        ++n;
    const std::string_view w = rest_.substr(0, n);
    rest_.remove_prefix(n);
    return w;
}

std::string_view Scanner::number() {
    peek();
    const std::size_t n = std::min(rest_.find_first_of(" \n;|{},)"), rest_.size());
    const std::string_view w = rest_.substr(0, n);
    if (w.empty()) fail("expected a number");
    rest_.remove_prefix(n);
    return w;
}

kwSize Scanner::size() {
    if (!at_digit()) fail("expected a size");
    kwSize n = 0;
    for (; at_digit(); rest_.remove_prefix(1)) n = n * 10 + static_cast<kwSize>(rest_[0] - '0');
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

char16_t read_escape(Scanner &in) {
    const char c = in.next();
    if (c != 'u') return static_cast<unsigned char>(c);
    std::string digits;
    for (int k = 0; k < 4; ++k) digits += in.next();
    return static_cast<char16_t>(std::stoul(digits, nullptr, 16));
}

std::u16string read_quoted(Scanner &in) {
    std::u16string units;
    in.expect('\'');
    for (char c; (c = in.next()) != '\'';)
        units += c == '\\' ? read_escape(in) : static_cast<char16_t>(c);
    return units;
}

void print_unit(char16_t c, std::string &out) {
    if (c == '\'' || c == '\\') out += '\\';
    if (c >= 0x20 && c < 0x7F) return void(out += static_cast<char>(c));
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(c));
    out += escape;
}

// --- The body of a full array ------------------------------------------------------------------

// What was read, in the order of the text, with the shape it has.
template<class Item> struct Rows {
    std::vector<Item> items;
    kwSize rows = 0, cols = 0, pages = 0;

    // Position in memory of the item that was read k-th.
    kwSize position(kwSize k) const {
        const kwSize page = k / (rows * cols), r = k / cols % rows, c = k % cols;
        return page * rows * cols + c * rows + r;
    }
};

bool body_ends(Scanner &in) {
    const char c = in.peek();
    return c == '\0' || c == '}' || c == ',';
}

template<class Item, class ReadRow> Rows<Item> read_rows(Scanner &in, ReadRow &&read_row) {
    Rows<Item> r;
    do {
        kwSize rows = 0;
        do {
            const kwSize before = r.items.size();
            read_row(r.items);
            const kwSize cols = r.items.size() - before;
            if (r.cols != cols && (rows || r.pages)) in.fail("rows differ in length");
            r.cols = cols;
            ++rows;
        } while (in.accept(';'));
        if (r.pages && rows != r.rows) in.fail("pages differ in size");
        r.rows = rows;
        ++r.pages;
    } while (in.accept('|'));
    return r;
}

template<class Item> Dims shape(Scanner &in, const Dims &given, const Rows<Item> &r) {
    if (given.empty()) return {r.rows, r.cols};
    if (given[0] != r.rows || given[1] != r.cols || element_count(given) != r.items.size())
        in.fail("elements do not fill the dimensions");
    return given;
}

oxArray *create(const Dims &dims, int id, bool complex) {
    if (id == oxLOGICAL_CLASS) return oxCreateLogicalArray(dims.size(), dims.data());
    return oxCreateNumericArray(dims.size(), dims.data(), static_cast<oxClassID>(id),
                                complex ? oxCOMPLEX : oxREAL);
}

oxArray *read_chars(Scanner &in, const Dims &given) {
    const auto r = read_rows<oxChar>(in, [&](std::vector<oxChar> &items) {
        for (const char16_t c : read_quoted(in)) items.push_back(c);
    });
    oxArray *a = create(shape(in, given, r), oxCHAR_CLASS, false);
    for (kwSize k = 0; k < r.items.size(); ++k) a->get_chars()[r.position(k)] = r.items[k];
    return a;
}

oxArray *read_numbers(Scanner &in, const Dims &given, int id) {
    const auto r = read_rows<NumberText>(in, [&](std::vector<NumberText> &items) {
        while (!body_ends(in) && in.peek() != ';' && in.peek() != '|')
            items.push_back(read_number(in));
    });
    const bool complex = std::any_of(r.items.begin(), r.items.end(),
                                     [](const NumberText &n) { return !n.im.empty(); });
    oxArray *a = create(shape(in, given, r), id, complex);
    for (kwSize k = 0; k < r.items.size(); ++k) store_number(a, r.position(k), r.items[k]);
    return a;
}

void print_char_row(const oxArray *a, kwSize first, kwSize m, kwSize n, std::string &out) {
    out += '\'';
    for (kwSize c = 0; c < n; ++c) print_unit(a->get_chars()[first + c * m], out);
    out += '\'';
}

void print_full(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const kwSize count = a->get_number_of_elements(), m = rows(a), n = a->get_dimensions()[1];
    if (count == 0) return;
    if (!a->num.pdata) return void(out += ", no data");
    if (a->is_imag_marked()) out += ", imaginary part announced";
    for (kwSize k = 0; k < count / n; ++k) {
        const kwSize page = k / m, first = page * m * n + k % m;
        out += k == 0 ? ": " : k % m == 0 ? " | " : "; ";
        if (a->is_char()) {
            print_char_row(a, first, m, n, out);
            continue;
        }
        for (kwSize c = 0; c < n; ++c) {
            if (c) out += ' ';
            print_number(a, first + c * m, out);
        }
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
    int id = oxDOUBLE_CLASS;
    Dims dims;
    if (const Scanner start = in; true) {
        const std::string_view word = in.word();
        for (const TextForm *f : forms)
            if (word == f->word) return f->make(in);
        if (const int named = class_of_word(word)) {
            id = named;
            if (in.at_digit()) dims = read_dims(in);
            if (!in.accept(':')) {
                if (dims.empty() || element_count(dims)) in.fail("expected elements");
                return create(dims, id, false);
            }
        } else {
            in = start; // the elements themselves
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
