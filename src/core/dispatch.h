// Branching on the element class and on the element width: the only two places that do.
#pragma once
#include <ox/types.h>

#include <cstdint>
#include <type_traits>
#include <utility>

namespace ox {

// An element that is moved but never looked into: a function handle.
struct alignas(8) Bytes32 {
    unsigned char b[32];
};

// Calls f(std::type_identity<T>{}) with the element type of a class that holds numbers, characters
// or truth values, and returns its answer; other classes get `otherwise`.
template<class R, class F> R visit_class(int id, R otherwise, F &&f) {
    switch (id) {
    case oxLOGICAL_CLASS:
        return f(std::type_identity<bool>{});
    case oxCHAR_CLASS:
        return f(std::type_identity<oxChar>{});
    case oxDOUBLE_CLASS:
        return f(std::type_identity<double>{});
    case oxSINGLE_CLASS:
        return f(std::type_identity<float>{});
    case oxINT8_CLASS:
        return f(std::type_identity<int8_t>{});
    case oxUINT8_CLASS:
        return f(std::type_identity<uint8_t>{});
    case oxINT16_CLASS:
        return f(std::type_identity<int16_t>{});
    case oxUINT16_CLASS:
        return f(std::type_identity<uint16_t>{});
    case oxINT32_CLASS:
        return f(std::type_identity<int32_t>{});
    case oxUINT32_CLASS:
        return f(std::type_identity<uint32_t>{});
    case oxINT64_CLASS:
        return f(std::type_identity<int64_t>{});
    case oxUINT64_CLASS:
        return f(std::type_identity<uint64_t>{});
    default:
        return otherwise;
    }
}

// The plain integer as which elements of logical and char, whatever their bits, are read and
// stored; other element types are themselves.
template<class T> using Stored =
    std::conditional_t<std::is_same_v<T, bool>, uint8_t,
                       std::conditional_t<std::is_same_v<T, oxChar>, uint16_t, T>>;

// Calls f(std::type_identity<T>{}) with an unsigned type of the width; false for other widths.
template<class F> bool visit_width(kwSize width, F &&f) {
    switch (width) {
    case 1:
        f(std::type_identity<uint8_t>{});
        return true;
    case 2:
        f(std::type_identity<uint16_t>{});
        return true;
    case 4:
        f(std::type_identity<uint32_t>{});
        return true;
    case 8:
        f(std::type_identity<uint64_t>{});
        return true;
    case 32:
        f(std::type_identity<Bytes32>{});
        return true;
    default:
        return false;
    }
}

} // namespace ox
