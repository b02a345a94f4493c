// The elements of an array with their C++ type.
#pragma once
#include <ox.h>

namespace vel {

template<class T> struct Elements {
    const T *re;
    const T *im; // null for real arrays
};

// Whether the array has elements that visit_elements knows: numbers, characters, logicals.
inline bool has_elements(const oxArray *a) {
    const oxClassID id = oxGetClassID(a);
    return id >= oxLOGICAL_CLASS && id <= oxUINT64_CLASS && id != oxVOID_CLASS;
}

// f(Elements<T>) with the element type of the array, which has_elements; a sparse array gives its
// stored values.
template<class F> decltype(auto) visit_elements(const oxArray *a, F &&f) {
    const void *re = oxGetData(a);
    const void *im = oxIsComplex(a) ? oxGetImagData(a) : nullptr;
    const auto as = [&]<class T>(const T *) {
        return f(Elements<T>{static_cast<const T *>(re), static_cast<const T *>(im)});
    };
    switch (oxGetClassID(a)) {
    case oxLOGICAL_CLASS:
        return as(static_cast<const bool *>(nullptr));
    case oxCHAR_CLASS:
        return as(static_cast<const oxChar *>(nullptr));
    case oxSINGLE_CLASS:
        return as(static_cast<const float *>(nullptr));
    case oxINT8_CLASS:
        return as(static_cast<const int8_t *>(nullptr));
    case oxUINT8_CLASS:
        return as(static_cast<const uint8_t *>(nullptr));
    case oxINT16_CLASS:
        return as(static_cast<const int16_t *>(nullptr));
    case oxUINT16_CLASS:
        return as(static_cast<const uint16_t *>(nullptr));
    case oxINT32_CLASS:
        return as(static_cast<const int32_t *>(nullptr));
    case oxUINT32_CLASS:
        return as(static_cast<const uint32_t *>(nullptr));
    case oxINT64_CLASS:
        return as(static_cast<const int64_t *>(nullptr));
    case oxUINT64_CLASS:
        return as(static_cast<const uint64_t *>(nullptr));
    default:
        return as(static_cast<const double *>(nullptr));
    }
}

} // namespace vel
