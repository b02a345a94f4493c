// Copying a run past the caches, for results that are too large to be found there again.
#pragma once
#include <core/tuning.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ox {

inline constexpr kwSize stream_ahead = 512; // bytes of a source that are fetched ahead

// dst = src. Whole 64-byte lines of dst are written without being read first, and src is fetched
// ahead from its first `stream_ahead` bytes on. Call stream_fence after the last run.
inline void stream_copy(void *dst, const void *src, kwSize bytes) {
#if defined(__SSE2__)
    auto *d = static_cast<unsigned char *>(dst);
    auto *s = static_cast<const unsigned char *>(src);
    const kwSize head = std::min<kwSize>(-reinterpret_cast<std::uintptr_t>(d) & 63, bytes);
    std::memcpy(d, s, head);
    for (d += head, s += head, bytes -= head; bytes >= 64; d += 64, s += 64, bytes -= 64) {
        __builtin_prefetch(s + stream_ahead);
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

// memcpy that spares short runs the call.
inline void copy_bytes(void *dst, const void *src, kwSize bytes) {
    auto *d = static_cast<unsigned char *>(dst);
    auto *s = static_cast<const unsigned char *>(src);
    const auto both_ends = [=]<kwSize n>(std::integral_constant<kwSize, n>) {
        unsigned char first[n], last[n];
        std::memcpy(first, s, n);
        std::memcpy(last, s + bytes - n, n);
        std::memcpy(d, first, n);
        std::memcpy(d + bytes - n, last, n);
    };
    if (bytes > 64 || bytes < 4)
        std::memcpy(dst, src, bytes);
    else if (bytes > 32)
        both_ends(std::integral_constant<kwSize, 32>());
    else if (bytes > 16)
        both_ends(std::integral_constant<kwSize, 16>());
    else if (bytes >= 8)
        both_ends(std::integral_constant<kwSize, 8>());
    else
        both_ends(std::integral_constant<kwSize, 4>());
}

// Copies the runs of one result. Where that is large, long runs go past the caches, each one call
// late: while a run is copied the start of the next is on its way from memory, which the processor
// cannot foresee. All are there when this goes.
class RunCopier {
public:
    explicit RunCopier(kwSize result_bytes) : streams_(result_bytes >= tuning::stream_min_bytes) {}
    RunCopier(const RunCopier &) = delete;
    RunCopier &operator=(const RunCopier &) = delete;
    ~RunCopier() {
        if (bytes_ == 0) return;
        stream_copy(dst_, src_, bytes_);
        stream_fence();
    }

    void copy(void *dst, const void *src, kwSize bytes) {
        if (!streams_ || bytes < tuning::stream_min_run) {
            copy_bytes(dst, src, bytes);
            return;
        }
        auto *from = static_cast<const unsigned char *>(src);
        for (kwSize k = 0; k < bytes && k < stream_ahead; k += 64) __builtin_prefetch(from + k);
        stream_copy(dst_, src_, bytes_);
        dst_ = dst;
        src_ = src;
        bytes_ = bytes;
    }

private:
    bool streams_;
    void *dst_ = nullptr; // the run that is still to be copied
    const void *src_ = nullptr;
    kwSize bytes_ = 0;
};

} // namespace ox
