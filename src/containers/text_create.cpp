// Creating char arrays: single strings, and matrices with one string per row.
#include <containers/encoding.h>
#include <containers/text.h>
#include <core/alloc.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/tuning.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

kwSize length_of(const char *str) { return str ? std::strlen(str) : 0; }
kwSize length_of(const oxChar *str) { return str ? utf16_strlen(str) : 0; }

// Gives an empty header its units, or gives the header back when there is no block for them.
oxArray *with_units(oxArray *a, oxChar *block, kwSize n) {
    if (!block) {
        free_header(a);
        return nullptr;
    }
    a->num.pdata = block;
    store_mn(a, 1, n);
    return a;
}

// The units of an ASCII text, which most are, in one pass over it; null for any other.
oxChar *widen_ascii(const char *str, kwSize n) {
    if (!utIsAsciiSuperset(nullptr)) return nullptr;
    auto block = RawArray<oxChar>::make(n);
    return block && utWidenAscii(block.get(), str, n) == n ? block.release() : nullptr;
}

// Row i of an m-row matrix.
void scatter(oxChar *matrix, kwSize m, kwSize i, const oxChar *row, kwSize n) {
    for (kwSize j = 0; j < n; ++j) matrix[i + j * m] = row[j];
}

// Deliberate: short rows end in NUL units, never in blanks.
oxArray *make_char_matrix(const Encoding &e, kwSize m, const char *const *strs) {
    kwSize w = 0;
    for (kwSize i = 0; i < m; ++i) {
        const int32_t n = utf16_length(e, strs[i], converter_length(length_of(strs[i])));
        w = std::max(w, static_cast<kwSize>(n));
    }
    ArrayGuard a(make_full(m, w, oxCHAR_CLASS, false));
    if (!a || w == 0) return a.release();
    auto row = RawArray<oxChar>::make(w);
    if (!row) return nullptr;
    for (kwSize i = 0; i < m; ++i) {
        auto n = static_cast<int32_t>(w);
        e.to_utf16(row.get(), &n, strs[i], converter_length(length_of(strs[i])));
        scatter(data<oxChar>(a.get()), m, i, row.get(), std::min(static_cast<kwSize>(n), w));
    }
    return a.release();
}

oxArray *make_char_matrix(kwSize m, const oxChar *const *strs) {
    kwSize w = 0;
    for (kwSize i = 0; i < m; ++i) w = std::max(w, length_of(strs[i]));
    oxArray *a = make_full(m, w, oxCHAR_CLASS, false);
    if (!a || w == 0) return a;
    for (kwSize i = 0; i < m; ++i) scatter(data<oxChar>(a), m, i, strs[i], length_of(strs[i]));
    return a;
}

} // namespace

oxArray *make_string(const char *str, kwSize n) {
    const int32_t length = converter_length(n);
    oxArray *a = make_header(oxCHAR_CLASS, 0, 0);
    if (!a || n == 0) return a;
    if (oxChar *block = widen_ascii(str, n)) return with_units(a, block, n);
    oxChar buffer[tuning::text_buffer];
    auto k = static_cast<int32_t>(tuning::text_buffer);
    lcp_to_utf16_n(buffer, &k, str, length);
    if (k <= 0) return a; // a byte-order mark alone makes no unit
    const auto units = static_cast<kwSize>(k);
    auto *block = static_cast<oxChar *>(oxMallocEx(units * sizeof(oxChar)));
    if (block && units <= tuning::text_buffer)
        std::memcpy(block, buffer, units * sizeof(oxChar));
    else if (block)
        lcp_to_utf16_n(block, &k, str, length);
    return with_units(a, block, units);
}

oxArray *make_string(const oxChar *str, kwSize n) {
    oxArray *a = make_header(oxCHAR_CLASS, 0, 0);
    if (!a || n == 0) return a;
    auto *block = static_cast<oxChar *>(oxCallocEx(n, sizeof(oxChar)));
    if (block) std::memcpy(block, str, n * sizeof(oxChar));
    return with_units(a, block, n);
}

} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxCreateString(const char *str) { return hand_over(make_string(str, length_of(str))); }

// Deliberate: the _UTF8 creators of single strings read the local code page, not UTF-8.
oxArray *oxCreateString_UTF8(const char *str) { return oxCreateString(str); }

oxArray *oxCreateString_UTF16(const oxChar *str) {
    return hand_over(make_string(str, length_of(str)));
}

oxArray *oxCreateStringFromNChars_730(const char *str, kwSize n) {
    return hand_over(make_string(str, n));
}

oxArray *oxCreateStringFromNChars_UTF8(const char *str, kwSize n) {
    return oxCreateStringFromNChars_730(str, n);
}

oxArray *oxCreateStringFromNChars_UTF16(const oxChar *str, kwSize n) {
    return hand_over(make_string(str, n));
}

oxArray *oxCreateCharMatrixFromStrings_730(kwSize m, const char **strs) {
    return hand_over(make_char_matrix(local_encoding, m, strs));
}

oxArray *oxCreateCharMatrixFromStrings_UTF8(kwSize m, const char **strs) {
    return hand_over(make_char_matrix(utf8_encoding, m, strs));
}

oxArray *oxCreateCharMatrixFromStrings_UTF16(kwSize m, const oxChar **strs) {
    return hand_over(make_char_matrix(m, strs));
}

oxArray *oxCreateCharArray_730(kwSize ndim, const kwSize *dims) {
    return hand_over(make_full_nd(ndim, dims, oxCHAR_CLASS, false));
}

} // extern "C"
