// Pure-ASCII runs: found and copied sixteen characters at a time.
#include "ut/converters.h"

namespace ut {
namespace {

constexpr std::size_t step = 16;

// The compiler turns both loops into vector code.
template<class C> bool all_ascii(const C *src) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < step; ++k) bits |= static_cast<std::make_unsigned_t<C>>(src[k]);
    return bits < 0x80;
}

template<> bool all_ascii(const char16_t *src) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < step; ++k) bits |= src[k];
    return bits < 0x80;
}

bool is_ascii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool is_ascii(utChar16 c) { return c < 0x80; }

template<class D, class S> std::size_t copy_ascii(D *dst, const S *src, std::size_t n) {
    std::size_t k = 0;
    for (; k + step <= n && all_ascii(src + k); k += step)
        for (std::size_t j = 0; j < step; ++j) dst[k + j] = static_cast<D>(src[k + j]);
    for (; k < n && is_ascii(src[k]); ++k) dst[k] = static_cast<D>(src[k]);
    return k;
}

template<class S> std::size_t skip_ascii(const S *src, std::size_t n) {
    std::size_t k = 0;
    while (k + step <= n && all_ascii(src + k)) k += step;
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
