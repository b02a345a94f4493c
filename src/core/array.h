// The record with its fixed layout, and the small questions that every floor asks about it.
#pragma once
#include <ox.hpp>

#include <cstddef>
#include <type_traits>

static_assert(sizeof(kwSize) == 8 && sizeof(void *) == 8, "the library is 64-bit");
static_assert(sizeof(oxArray) == 104 && std::is_trivially_copyable_v<oxArray>);
static_assert(offsetof(oxArray, reserved) == 0 && offsetof(oxArray, class_code) == 8);
static_assert(offsetof(oxArray, scope) == 12 && offsetof(oxArray, cross_link) == 16);
static_assert(offsetof(oxArray, ndims) == 24 && offsetof(oxArray, reference_count) == 32);
static_assert(offsetof(oxArray, flag_word) == 36 && offsetof(oxArray, mn) == 40);
static_assert(offsetof(oxArray, words) == 56 && offsetof(oxArray, dim32) == 96);

namespace ox {

// Storage of a new header; the class decides what else is set.
oxArray *allocate_header(); // zero-filled, null when no memory is left
void free_header(oxArray *a);

// Stores the class code (mapped through the class index) and the numeric flag that goes with it.
void set_class(oxArray *a, int id);

inline bool is_sparse(const oxArray *a) { return a->has_flag(oxFLAG_SPARSE); }
inline bool is_numeric(const oxArray *a) { return a->has_flag(oxFLAG_NUMERIC); }
inline bool is_struct_like(const oxArray *a) {
    return a->class_code == oxSTRUCT_CLASS || a->class_code == oxOBJECT_CLASS;
}
inline bool is_container(const oxArray *a) {
    return a->class_code == oxCELL_CLASS || is_struct_like(a);
}

// Rows, and the product of all further dimensions.
inline kwSize rows(const oxArray *a) { return a->get_dimensions()[0]; }
inline kwSize cols(const oxArray *a) {
    const kwSize *d = a->get_dimensions();
    kwSize n = d[1];
    for (kwSize k = 2; k < a->ndims; ++k) n *= d[k];
    return n;
}

// Dimension k (from 0) of an array that has ones without end behind its last.
inline kwSize extent_along(const oxArray *a, kwSize k) {
    const kwSize *d = a->get_dimensions(); // may yet change ndims
    return k < a->ndims ? d[k] : 1;
}

inline bool is_0_by_0(const oxArray *a) {
    const kwSize *d = a->get_dimensions();
    return a->ndims == 2 && d[0] == 0 && d[1] == 0;
}

inline bool same_dimensions(const oxArray *a, const oxArray *b) {
    const kwSize *da = a->get_dimensions(), *db = b->get_dimensions();
    if (a->ndims != b->ndims) return false;
    for (kwSize k = 0; k < a->ndims; ++k)
        if (da[k] != db[k]) return false;
    return true;
}

// Stores dimensions as given (at least two): 0, or 1 without memory and then a is untouched.
// Sets no flag; dims may be the array's own vector.
int store_dimensions(oxArray *a, kwSize ndim, const kwSize *dims);
// Frees the vector of an array of more than two dimensions and makes it m-by-n.
void store_mn(oxArray *a, kwSize m, kwSize n);

template<class T> T *data(const oxArray *a) { return static_cast<T *>(a->num.pdata); }
template<class T> T *imag(const oxArray *a) { return static_cast<T *>(a->num.pimag); }

} // namespace ox
