// Text encodings: how long a text may be for the converters, and conversion in both directions.
#pragma once
#include <core/array.h>

#include <ut.h>

namespace ox {

// A length as the converters count; raises error 73 for 2^31 and above.
int32_t converter_length(kwSize n);

// What to convert with: the functions for bytes of one encoding.
struct Encoding {
    const char *name; // as the converters know it; null: the local code page
    // At most *n units of src are written; *n becomes how many the whole of it makes.
    void (*to_utf16)(oxChar *dst, int32_t *n, const char *src, int32_t length);
};
inline constexpr Encoding local_encoding = {nullptr, lcp_to_utf16_n};
inline constexpr Encoding utf8_encoding = {"UTF-8", utf8_to_utf16_n};

// Units that the text makes.
inline int32_t utf16_length(const Encoding &e, const char *src, int32_t length) {
    int32_t n = 0;
    e.to_utf16(nullptr, &n, src, length);
    return n;
}

// What became of a conversion into a buffer.
struct Written {
    kwSize bytes;
    bool cut; // the buffer ended before the text
};
// Converts n units into at most capacity bytes; the last character may be written in part.
Written from_utf16(const Encoding &e, char *dst, kwSize capacity, const oxChar *src, kwSize n);

} // namespace ox
