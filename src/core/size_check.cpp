// The size checks in all their forms.
#include <core/size_check.h>
#include <errors/raise.h>
#include <ox/create.h>

#include <climits>

namespace ox {
namespace {

using Wide = unsigned __int128;

// The walk behind every check: counts up to `most` elements, and bytes up to the limit. Once too
// large, the count is not multiplied further; only a size of 0 can still save it.
template<class Size> bool count_elements(const Size *dims, kwSize ndim, kwSize element_size,
                                         kwSize most, kwSize *count) {
    kwSize product = 1;
    bool too_large = false;
    for (kwSize k = 0; k < ndim; ++k) {
        const kwSize size = static_cast<kwSize>(dims[k]); // a negative size becomes huge
        if (size == 0) {
            *count = 0;
            return true;
        }
        const Wide wide = Wide{product} * size;
        if (wide > most) too_large = true;
        if (!too_large) product = static_cast<kwSize>(wide);
    }
    *count = product;
    return !too_large && (element_size == 1 || Wide{product} * element_size <= max_size);
}

bool check_int_size(const int *dims, int ndim, kwSize element_size, int *count) {
    kwSize product = 0;
    const kwSize n = ndim > 0 ? static_cast<kwSize>(ndim) : 0;
    const bool fits = count_elements(dims, n, element_size, INT_MAX, &product);
    *count = fits ? static_cast<int>(product) : INT_MAX;
    return fits;
}

int double_to_int(double x) {
    if (x < INT_MIN) return INT_MIN;
    return x <= INT_MAX ? static_cast<int>(x) : INT_MAX; // NaN too
}

template<class Count> Count checked(bool fits, Count count) {
    if (!fits) oxErrMsg(FPMAXSIZE);
    return count;
}

} // namespace

bool check_size(const kwSize *dims, kwSize ndim, kwSize element_size, kwSize *count) {
    const bool fits = count_elements(dims, ndim, element_size, max_size, count);
    if (!fits) *count = max_size;
    return fits;
}

} // namespace ox

using namespace ox;

bool oxCheckDim_nothrow(const kwSize *dims, kwSize ndim, kwSize element_size, kwSize *count) {
    kwSize ignored;
    return check_size(dims, ndim, element_size, count ? count : &ignored);
}

bool oxCheckDim_nothrow(const int *dims, int ndim, kwSize element_size, int *count) {
    int ignored;
    return check_int_size(dims, ndim, element_size, count ? count : &ignored);
}

kwSize oxCheckDim(const kwSize *dims, kwSize ndim, kwSize element_size) {
    kwSize count;
    const bool fits = check_size(dims, ndim, element_size, &count);
    return checked(fits, count);
}

int oxCheckDim(const int *dims, int ndim, kwSize element_size) {
    int count;
    const bool fits = check_int_size(dims, ndim, element_size, &count);
    return checked(fits, count);
}

bool oxCheckMN_nothrow(kwSize m, kwSize n, kwSize element_size, kwSize *count) {
    const kwSize dims[2] = {m, n};
    return oxCheckDim_nothrow(dims, 2, element_size, count);
}

bool oxCheckMN_nothrow(double m, double n, kwSize element_size, kwSize *count) {
    return oxCheckMN_nothrow(double_to_size(m), double_to_size(n), element_size, count);
}

bool oxCheckMN_nothrow(int m, int n, kwSize element_size, int *count) {
    const int dims[2] = {m, n};
    return oxCheckDim_nothrow(dims, 2, element_size, count);
}

kwSize oxCheckMN(kwSize m, kwSize n, kwSize element_size) {
    const kwSize dims[2] = {m, n};
    return oxCheckDim(dims, kwSize{2}, element_size);
}

kwSize oxCheckMN(double m, double n, kwSize element_size) {
    return oxCheckMN(double_to_size(m), double_to_size(n), element_size);
}

int oxCheckMN(int m, int n, kwSize element_size) {
    const int dims[2] = {m, n};
    return oxCheckDim(dims, 2, element_size);
}

extern "C" {

int oxCheckDim_700(const int *dims, int ndim, kwSize element_size) {
    return oxCheckDim(dims, ndim, element_size);
}

int oxCheckMN_700(double m, double n, kwSize element_size) {
    return oxCheckMN(double_to_int(m), double_to_int(n), element_size);
}

kwSize oxGetMaxNumberOfElements(void) { return max_size; }
kwSize oxGetMaxNumberOfBytes(void) { return max_size; }

} // extern "C"
