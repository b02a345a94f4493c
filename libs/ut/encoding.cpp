// Conversions between encodings and UTF-16; pure ASCII is copied, everything else goes through ICU.
#include "ut.hpp"
#include "ut/converters.h"

#include <cstring>

namespace {

using ut::Codec;

std::size_t at_least_zero(int32_t n) { return n < 0 ? 0 : static_cast<std::size_t>(n); }

// What fits is written, the rest only counted: ICU's pre-flight does both in one call.
void to_utf16(const Codec &codec, utChar16 *dst, int32_t *n, const char *src, int32_t length) {
    const std::size_t units = at_least_zero(length);
    const std::size_t capacity = at_least_zero(*n);
    if (codec.ascii && ut::ascii_prefix(src, units) == units) {
        ut::widen_ascii(dst, src, units < capacity ? units : capacity);
        *n = length;
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    *n = codec.converter && units > 0
             ? ucnv_toUChars(codec.converter, dst, static_cast<int32_t>(capacity), src, length,
                             &status)
             : 0;
}

void from_utf16(const Codec &codec, char *dst, int32_t *n, const utChar16 *src, int32_t length) {
    const std::size_t units = at_least_zero(length);
    const std::size_t capacity = at_least_zero(*n);
    if (codec.ascii && ut::ascii_prefix(src, units) == units) {
        ut::narrow_ascii(dst, src, units < capacity ? units : capacity);
        *n = length;
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    *n = codec.converter && units > 0
             ? ucnv_fromUChars(codec.converter, dst, static_cast<int32_t>(capacity), src, length,
                               &status)
             : 0;
}

} // namespace

void lcp_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length) {
    to_utf16(ut::codec(nullptr), dst, n, src, length);
}

void utf8_to_utf16_n(utChar16 *dst, int32_t *n, const char *src, int32_t length) {
    to_utf16(ut::codec("UTF-8"), dst, n, src, length);
}

void utf16_to_lcp_n(char *dst, int32_t *n, const utChar16 *src, int32_t length) {
    from_utf16(ut::codec(nullptr), dst, n, src, length);
}

namespace ut {

utf16_out::utf16_out(const utChar16 *units, int32_t count, const char *encoding)
    : units_(units), count_(count < 0 ? 0 : count), converter_(nullptr) {
    Codec codec = ut::codec(encoding);
    if (!codec.converter) codec = ut::codec(nullptr);
    const auto n = static_cast<std::size_t>(count_);
    if (codec.ascii && ascii_prefix(units, n) == n) {
        length_ = n;
        if (is_inline()) narrow_ascii(inline_, units, n);
        return;
    }
    converter_ = codec.converter;
    int32_t bytes = sizeof inline_;
    from_utf16({converter_, false}, inline_, &bytes, units, count_);
    length_ = static_cast<std::size_t>(bytes);
}

void utf16_out::convert(char *dst) const {
    if (is_inline()) {
        std::memcpy(dst, inline_, length_);
    } else if (!converter_) {
        narrow_ascii(dst, units_, length_);
    } else {
        ucnv_reset(converter_);
        auto bytes = static_cast<int32_t>(length_);
        from_utf16({converter_, false}, dst, &bytes, units_, count_);
    }
}

void utf16_out::append_to(std::string &out) const {
    const std::size_t before = out.size();
    out.resize(before + length_);
    convert(out.data() + before);
}

} // namespace ut
