// Pure-ASCII runs, found and copied sixteen characters at a time; a plain loop does the rest.
#include "ut/converters.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ut {
namespace {

bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool is_ascii(utChar16 c) { return c < 0x80; }

#if defined(__SSE2__)

constexpr std::size_t step = 16;

__m128i load(const void *p) { return _mm_loadu_si128(static_cast<const __m128i *>(p)); }
void store(void *p, __m128i v) { _mm_storeu_si128(static_cast<__m128i *>(p), v); }

bool ascii_block(const char *src) { return _mm_movemask_epi8(load(src)) == 0; }

bool ascii_block(const utChar16 *src) {
    const __m128i high =
        _mm_and_si128(_mm_or_si128(load(src), load(src + 8)), _mm_set1_epi16(-0x80));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xffff;
}

void copy_block(utChar16 *dst, const char *src) {
    const __m128i bytes = load(src);
    store(dst, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    store(dst + 8, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

void copy_block(char *dst, const utChar16 *src) {
    store(dst, _mm_packus_epi16(load(src), load(src + 8)));
}

#else

constexpr std::size_t step = 1;

template<class S> bool ascii_block(const S *src) { return is_ascii(*src); }
template<class D, class S> void copy_block(D *dst, const S *src) { *dst = static_cast<D>(*src); }

#endif

template<class D, class S> std::size_t copy_ascii(D *dst, const S *src, std::size_t n) {
    std::size_t k = 0;
    for (; k + step <= n && ascii_block(src + k); k += step) copy_block(dst + k, src + k);
    for (; k < n && is_ascii(src[k]); ++k) dst[k] = static_cast<D>(src[k]);
    return k;
}

template<class S> std::size_t skip_ascii(const S *src, std::size_t n) {
    std::size_t k = 0;
    while (k + step <= n && ascii_block(src + k)) k += step;
    while (k < n && is_ascii(src[k])) ++k;
    return k;
}

} // namespace

std::size_t widen_ascii(utChar16 *dst, const char *src, std::size_t n) {
    return copy_ascii(dst, src, n);
}
std::size_t narrow_ascii(char *dst, const utChar16 *src, std::size_t n) {
    return copy_ascii(dst, src, n);
}
std::size_t ascii_prefix(const char *src, std::size_t n) { return skip_ascii(src, n); }
std::size_t ascii_prefix(const utChar16 *src, std::size_t n) { return skip_ascii(src, n); }

} // namespace ut

size_t utWidenAscii(utChar16 *dst, const char *src, size_t n) {
    return ut::widen_ascii(dst, src, n);
}
size_t utNarrowAscii(char *dst, const utChar16 *src, size_t n) {
    return ut::narrow_ascii(dst, src, n);
}
