// Copying a run past the caches, for results that are too large to be found there again.
#pragma once
#include <ox/types.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ox {

// dst = src. Whole 64-byte lines of dst are written without being read first; src should be in the
// first-level cache. Call stream_fence after the last run.
inline void stream_copy(void *dst, const void *src, kwSize bytes) {
#if defined(__SSE2__)
    auto *d = static_cast<unsigned char *>(dst);
    auto *s = static_cast<const unsigned char *>(src);
    const kwSize head = std::min<kwSize>(-reinterpret_cast<std::uintptr_t>(d) & 63, bytes);
    std::memcpy(d, s, head);
    for (d += head, s += head, bytes -= head; bytes >= 64; d += 64, s += 64, bytes -= 64) {
        auto *to = reinterpret_cast<__m128i *>(d);
        auto *from = reinterpret_cast<const __m128i *>(s);
        const __m128i a = _mm_loadu_si128(from), b = _mm_loadu_si128(from + 1),
                      c = _mm_loadu_si128(from + 2), e = _mm_loadu_si128(from + 3);
        _mm_stream_si128(to, a);
        _mm_stream_si128(to + 1, b);
        _mm_stream_si128(to + 2, c);
        _mm_stream_si128(to + 3, e);
    }
    std::memcpy(d, s, bytes);
#else
    std::memcpy(dst, src, bytes);
#endif
}

inline void stream_fence() {
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

} // namespace ox
