// UTF-16 string helpers: length and copying of NUL-terminated units.
#include "ut.h"

#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

size_t utf16_strlen(const utChar16 *text) {
    size_t n = 0;
    while (text[n] != 0) ++n;
    return n;
}

size_t utf16_strlen_lim(const utChar16 *text, size_t limit) {
    size_t n = 0;
#if defined(__SSE2__)
    for (; n + 8 <= limit; n += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + n));
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(units, _mm_setzero_si128())) != 0) break;
    }
#endif
    while (n < limit && text[n] != 0) ++n;
    return n;
}

utChar16 *utf16_strcpy(utChar16 *dst, const utChar16 *src) {
    std::memcpy(dst, src, (utf16_strlen(src) + 1) * sizeof *src);
    return dst;
}

utChar16 *utf16_strncpy(utChar16 *dst, const utChar16 *src, size_t n) {
    size_t count = utf16_strlen_lim(src, n);
    if (count < n) ++count; // the NUL unit
    if (count > 0) std::memcpy(dst, src, count * sizeof *src);
    return dst;
}
