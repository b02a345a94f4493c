// Reversing the bytes of data elements, unit by unit; data need not be aligned.
#pragma once
#include <ox/types.h>

#include <cstdint>
#include <cstring>

namespace ox {

template<class T> T load(const void *p) {
    T x;
    std::memcpy(&x, p, sizeof x);
    return x;
}
template<class T> void store(void *p, T x) { std::memcpy(p, &x, sizeof x); }

inline uint16_t reverse_bytes(uint16_t x) { return __builtin_bswap16(x); }
inline uint32_t reverse_bytes(uint32_t x) { return __builtin_bswap32(x); }
inline uint64_t reverse_bytes(uint64_t x) { return __builtin_bswap64(x); }

// Eight bytes as units of 1, 2 or 4.
inline uint64_t reverse_units(uint64_t x, kwSize unit) {
    constexpr uint64_t low = 0x00FF00FF00FF00FF;
    if (unit == 2) return (x & low) << 8 | (x >> 8 & low);
    if (unit == 4) return reverse_bytes(x) << 32 | reverse_bytes(x) >> 32;
    return x;
}

// Whole units only: a tail of fewer bytes than a unit is copied as it is. dst may be src.
template<class T> void copy_reversed_units(void *dst, const void *src, kwSize bytes) {
    auto *d = static_cast<unsigned char *>(dst);
    auto *s = static_cast<const unsigned char *>(src);
    const kwSize whole = bytes / sizeof(T) * sizeof(T);
    for (kwSize k = 0; k < whole; k += sizeof(T)) store(d + k, reverse_bytes(load<T>(s + k)));
    if (d != s && whole < bytes) std::memcpy(d + whole, s + whole, bytes - whole);
}

// unit is 2, 4 or 8, or 1 for data that have no byte order.
inline void copy_reversed(void *dst, const void *src, kwSize bytes, kwSize unit) {
    if (unit == 2)
        copy_reversed_units<uint16_t>(dst, src, bytes);
    else if (unit == 4)
        copy_reversed_units<uint32_t>(dst, src, bytes);
    else if (unit == 8)
        copy_reversed_units<uint64_t>(dst, src, bytes);
    else if (dst != src && bytes > 0)
        std::memcpy(dst, src, bytes);
}
inline void reverse_in_place(void *data, kwSize bytes, kwSize unit) {
    copy_reversed(data, data, bytes, unit);
}

} // namespace ox
