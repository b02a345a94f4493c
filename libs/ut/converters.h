// The per-thread ICU converters and what is known of their encodings.
#pragma once
#include "ut/internal.h"

#include <unicode/ucnv.h>

namespace ut {

// A converter and whether ASCII bytes always stand for themselves in its encoding.
struct Codec {
    UConverter *converter; // null where the encoding is unknown
    bool ascii;
};

// This thread's converter in whatever state its last user left it; null encoding: local code page.
// ICU's whole-text calls reset it themselves.
Codec codec(const char *encoding);

// Leading ASCII characters that could be copied one to one.
std::size_t widen_ascii(utChar16 *dst, const char *src, std::size_t n);
std::size_t narrow_ascii(char *dst, const utChar16 *src, std::size_t n);
// Leading ASCII characters; copies nothing.
std::size_t ascii_prefix(const char *src, std::size_t n);
std::size_t ascii_prefix(const utChar16 *src, std::size_t n);

} // namespace ut
