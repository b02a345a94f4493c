// Conversions between encodings and UTF-16; pure ASCII is copied, everything else goes through ICU.
#include "ut.hpp"
#include "ut/converters.h"

#include <algorithm>
#include <cstring>

namespace {

using ut::Codec;

std::size_t size_of(int32_t n) { return n < 0 ? 0 : static_cast<std::size_t>(n); }

// ICU fills what fits and counts the rest in one call.
int32_t icu_convert(UConverter *converter, utChar16 *dst, int32_t capacity, const char *src,
                    int32_t n) {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_toUChars(converter, dst, capacity, src, n, &status);
}

int32_t icu_convert(UConverter *converter, char *dst, int32_t capacity, const utChar16 *src,
                    int32_t n) {
    UErrorCode status = U_ZERO_ERROR;
    return ucnv_fromUChars(converter, dst, capacity, src, n, &status);
}

std::size_t copy_ascii(utChar16 *dst, const char *src, std::size_t n) {
    return ut::widen_ascii(dst, src, n);
}
std::size_t copy_ascii(char *dst, const utChar16 *src, std::size_t n) {
    return ut::narrow_ascii(dst, src, n);
}

// Copies what fits and answers whether the whole text is ASCII.
template<class D, class S>
bool ascii_convert(D *dst, std::size_t capacity, const S *src, std::size_t n) {
    const std::size_t fit = std::min(n, capacity);
    return copy_ascii(dst, src, fit) == fit && ut::ascii_prefix(src + fit, n - fit) == n - fit;
}

// The units or bytes that the whole text needs; at most `capacity` of them are written.
template<class D, class S>
int32_t converted(const Codec &codec, D *dst, int32_t capacity, const S *src, int32_t n) {
    if (n <= 0) return 0;
    if (codec.ascii && ascii_convert(dst, size_of(capacity), src, size_of(n))) return n;
    if (!codec.converter) return 0;
    return icu_convert(codec.converter, dst, std::max(capacity, 0), src, n);
}

} // namespace

void lcp_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length) {
    *n = converted(ut::codec(nullptr), dst, *n, src, length);
}

void utf8_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length) {
    *n = converted(ut::codec("UTF-8"), dst, *n, src, length);
}

void utf16_to_lcp_n(char *dst, int32_t *n, const utChar16 *src, int32_t length) {
    *n = converted(ut::codec(nullptr), dst, *n, src, length);
}

namespace ut {

utf16_out::utf16_out(const utChar16 *units, int32_t count, const char *encoding)
    : units_(units), count_(count < 0 ? 0 : count), converter_(nullptr) {
    Codec codec = ut::codec(encoding);
    if (!codec.converter) codec = ut::codec(nullptr);
    const auto n = static_cast<std::size_t>(count_);
    if (codec.ascii && ascii_convert(inline_, sizeof inline_, units, n)) {
        length_ = n;
        return;
    }
    converter_ = codec.converter;
    length_ = size_of(converted({converter_, false}, inline_, sizeof inline_, units, count_));
}

void utf16_out::convert(char *dst) const {
    if (is_inline())
        std::memcpy(dst, inline_, length_);
    else if (converter_)
        icu_convert(converter_, dst, static_cast<int32_t>(length_), units_, count_);
    else
        narrow_ascii(dst, units_, length_);
}

void utf16_out::append_to(std::string &out) const {
    const std::size_t before = out.size();
    out.resize(before + length_);
    convert(out.data() + before);
}

} // namespace ut
