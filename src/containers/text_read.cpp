// Reading char arrays into buffers of the caller, into byte arrays, and overwriting them.
#include <containers/encoding.h>
#include <core/create.h>
#include <core/tuning.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

bool has_text(const oxArray *a) { return a && a->is_char(); }

// The units of a char array; none where it has no data.
kwSize unit_count(const oxArray *a) { return a->num.pdata ? a->get_number_of_elements() : 0; }

void copy_units(oxChar *dst, const oxArray *a, kwSize n) {
    if (n > 0) std::memcpy(dst, a->num.pdata, n * sizeof(oxChar));
}

int get_string(const Encoding &e, const oxArray *a, char *buf, kwSize buflen) {
    if (!buf || buflen == 0) return 0;
    if (!has_text(a)) return 1;
    const kwSize n = unit_count(a);
    converter_length(n);
    const Written w = from_utf16(e, buf, buflen - 1, data<oxChar>(a), n);
    buf[w.bytes] = 0;
    return w.cut ? 1 : 0;
}

void get_nchars(const Encoding &e, const oxArray *a, char *buf, kwSize buflen) {
    if (!buf || buflen == 0 || !has_text(a)) return;
    const auto n = static_cast<kwSize>(a->get_string_length());
    converter_length(buflen);
    const Written w = from_utf16(e, buf, buflen, data<oxChar>(a), n);
    if (w.bytes < buflen) buf[w.bytes] = 0;
}

// Deliberate: where a is no row, the L bytes stand at the head of L rows by the columns of a.
oxArray *make_byte_chars(const oxArray *a) {
    char buffer[tuning::text_buffer];
    const int32_t n = converter_length(unit_count(a));
    auto length = static_cast<int32_t>(tuning::text_buffer);
    utf16_to_lcp_n(buffer, &length, data<oxChar>(a), n);
    const auto bytes = static_cast<kwSize>(length);
    const bool row = rows(a) == 1;
    oxArray *b =
        make_full(row ? 1 : bytes, row ? bytes : a->get_dimensions()[1], oxUINT8_CLASS, false);
    if (!b || bytes == 0) return b;
    if (bytes <= tuning::text_buffer)
        std::memcpy(b->num.pdata, buffer, bytes);
    else
        utf16_to_lcp_n(data<char>(b), &length, data<oxChar>(a), n);
    return b;
}

} // namespace
} // namespace ox

using namespace ox;

int32_t oxArray_tag::get_string_length() const {
    if (!is_char() || !num.pdata) return 0;
    return converter_length(utf16_strlen_lim(get_chars(), get_number_of_elements()));
}

extern "C" {

int oxGetString_730(const oxArray *a, char *buf, kwSize buflen) {
    return get_string(local_encoding, a, buf, buflen);
}

int oxGetString_UTF8(const oxArray *a, char *buf, kwSize buflen) {
    return get_string(utf8_encoding, a, buf, buflen);
}

// Deliberate: 1 means that the text fits, the opposite of the byte forms, and all units are copied
// into a buffer however short it is said to be.
int oxGetString_UTF16(const oxArray *a, oxChar *buf, kwSize buflen) {
    if (!has_text(a)) return buflen > 0;
    if (!buf || buflen == 0) return 0;
    const kwSize n = unit_count(a), k = std::min(n, buflen - 1);
    if (k > 0) copy_units(buf, a, n);
    buf[k] = 0;
    return n < buflen;
}

void oxGetNChars_730(const oxArray *a, char *buf, kwSize buflen) {
    get_nchars(local_encoding, a, buf, buflen);
}

void oxGetNChars_UTF8(const oxArray *a, char *buf, kwSize buflen) {
    get_nchars(utf8_encoding, a, buf, buflen);
}

// Deliberate: bounded by the array, not by buflen.
void oxGetNChars_UTF16(const oxArray *a, oxChar *buf, kwSize buflen) {
    if (!buf || !has_text(a)) return;
    const kwSize n = unit_count(a);
    copy_units(buf, a, n);
    if (n < buflen) buf[n] = 0;
}

oxArray *oxArrayToByteChars(const oxArray *a) {
    if (!has_text(a)) return nullptr;
    oxArray *b = hand_over(make_byte_chars(a));
    if (b && !b->num.pdata) {
        oxDestroyArray(b);
        b = nullptr;
    }
    return b;
}

int oxArrayStrCpy(oxArray *a, const char *str) {
    if (!str || !has_text(a) || unit_count(a) == 0) return 0;
    const int32_t length = converter_length(std::strlen(str));
    int32_t needed = utf16_length(local_encoding, str, length);
    if (static_cast<kwSize>(needed) <= unit_count(a))
        lcp_to_utf16_n(data<oxChar>(a), &needed, str, length); // exactly, so without a terminator
    return needed;
}

} // extern "C"
