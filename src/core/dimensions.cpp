// Reading and storing dimensions.
#include <core/alloc.h>
#include <core/array.h>

#include <cstring>

namespace ox {

int store_dimensions(oxArray *a, kwSize ndim, const kwSize *dims) {
    if (ndim <= 2) {
        store_mn(a, dims[0], dims[1]);
        return 0;
    }
    auto *own = static_cast<kwSize *>(oxMallocEx(ndim * sizeof(kwSize)));
    if (!own) return 1;
    std::memcpy(own, dims, ndim * sizeof(kwSize)); // before the old vector goes: dims may be it
    if (a->ndims > 2) oxFreeEx(a->dim_vector);
    a->dim_vector = own;
    a->ndims = ndim;
    return 0;
}

void store_mn(oxArray *a, kwSize m, kwSize n) {
    if (a->ndims > 2) oxFreeEx(a->dim_vector);
    a->ndims = 2;
    a->mn[0] = m;
    a->mn[1] = n;
}

} // namespace ox

using namespace ox;

extern "C" {

kwSize oxGetNumberOfDimensions_730(const oxArray *a) { return a->get_number_of_dims(); }
const kwSize *oxGetDimensions_730(const oxArray *a) { return a->get_dimensions(); }
kwSize oxGetNumberOfElements(const oxArray *a) { return a->get_number_of_elements(); }
kwSize oxGetM(const oxArray *a) { return rows(a); }
kwSize oxGetN(const oxArray *a) { return cols(a); }
bool oxIsEmpty(const oxArray *a) { return a->get_number_of_elements() == 0; }

int oxSetDimensions_730(oxArray *a, const kwSize *dims, kwSize ndim) {
    int status = 0;
    if (!dims || ndim == 0)
        store_mn(a, 0, 0);
    else if (ndim == 1)
        store_mn(a, dims[0], 1);
    else
        status = store_dimensions(a, ndim, dims);
    oxSetScalarDoubleFlagIfAppropiate(a);
    return status;
}

void oxSetM_730(oxArray *a, kwSize m) {
    (a->ndims > 2 ? a->dim_vector : a->mn)[0] = m;
    oxSetScalarDoubleFlagIfAppropiate(a);
}

void oxSetN_730(oxArray *a, kwSize n) {
    store_mn(a, a->ndims > 2 ? a->dim_vector[0] : a->mn[0], n);
    oxSetScalarDoubleFlagIfAppropiate(a);
}

kwIndex oxCalcSingleSubscript_730(const oxArray *a, kwSize nsubs, const kwIndex *subs) {
    const kwSize *dims = a->get_dimensions();
    kwIndex position = 0, stride = 1;
    for (kwSize k = 0; k < nsubs; ++k) {
        position += subs[k] * stride;
        if (k < a->ndims) stride *= dims[k]; // dimensions beyond the last are 1
    }
    return position;
}

} // extern "C"
