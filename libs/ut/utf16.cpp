// UTF-16 string helpers: length and copying of NUL-terminated units.
#include "ut.h"

#include <cstring>

size_t utf16_strlen(const utChar16 *text) {
    size_t n = 0;
    while (text[n] != 0) ++n;
    return n;
}

size_t utf16_strlen_lim(const utChar16 *text, size_t limit) {
    size_t n = 0;
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
