// The sizes of a reshape, read from its arguments and checked against the number of elements.
#include <core/alloc.h>
#include <core/class_table.h>
#include <core/destroy.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/operands/convert.h>
#include <ox/permute.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ox {
namespace {

// Products of sizes are exact in 128 bits, or saturate there: ones(0, 1) has not the elements of
// 2^64-by-2^64.
using Count = unsigned __int128;
constexpr Count most = ~Count{0};

Count times(Count a, Count b) {
    if (a == 0 || b == 0) return 0;
    return a > most / b ? most : a * b;
}

Count element_count(const oxArray *a) {
    const kwSize *dims = a->get_dimensions();
    Count n = 1;
    for (kwSize k = 0; k < a->ndims; ++k) n = times(n, dims[k]);
    return n;
}

// Decimal digits, which no format of the messages has for 128 bits.
struct Decimal {
    explicit Decimal(Count n) {
        do *--text = static_cast<char>('0' + static_cast<int>(n % 10));
        while (n /= 10);
    }
    char digits[40] = {};
    char *text = digits + sizeof digits - 1;
};

[[noreturn]] void raise_not_real_int() {
    oxErrMsgIdAndTxt("VELTRO:getReshapeDims:notRealInt", "Size arguments must be real integers.");
}

// The values of a size argument; none for classes that hold no values.
RawArray<double> read_values(const oxArray *a) {
    const kwSize n = a->get_number_of_elements();
    if (n == 0 || !holds_values(a->class_code)) return {};
    ArrayGuard full(is_sparse(a) ? sparse_to_full(a) : nullptr);
    auto x = RawArray<double>::make(n);
    if (!x || (is_sparse(a) && !full)) raise_out_of_memory();
    convert_elements(x.get(), oxDOUBLE_CLASS, (full ? full.get() : a)->num.pdata, a->class_code, n);
    return x;
}

// What both forms ask of the values first.
void check_common(const oxArray *a, const double *x, kwSize n) {
    if (is_complex(a))
        oxErrMsgIdAndTxt("VELTRO:checkDimCommon:complexSize", "Size argument cannot be complex.");
    for (kwSize k = 0; x && k < n; ++k)
        if (x[k] < 0)
            oxErrMsgIdAndTxt("VELTRO:checkDimCommon:nonnegativeSize",
                             "Size vector elements should be nonnegative.");
}

// Value k, a finite integer, as a size; x holds it rounded, which matters to 64-bit classes. What
// 64 bits cannot hold no array has; the largest stands for it.
kwSize to_size(const oxArray *a, kwSize k, double x) {
    if (!is_numeric(a) || !std::isfinite(x) || x != std::trunc(x)) raise_not_real_int();
    const bool wide = a->class_code == oxINT64_CLASS || a->class_code == oxUINT64_CLASS;
    if (wide && !is_sparse(a)) return data<kwSize>(a)[k];
    return x < 0x1p64 ? static_cast<kwSize>(x) : std::numeric_limits<kwSize>::max();
}

// A row of at least two sizes.
kwSize *read_size_vector(const oxArray *a, kwSize *ndims) {
    const kwSize n = a->get_number_of_elements();
    if (n < 2)
        oxErrMsgIdAndTxt("VELTRO:getReshapeDims:sizeVector",
                         "Size vector must have at least two elements.");
    const RawArray<double> x = read_values(a);
    check_common(a, x.get(), n);
    bool row = a->ndims == 2 && rows(a) == 1;
    for (kwSize k = 0; x && k < n; ++k) row = row && x[k] == std::trunc(x[k]);
    if (!row)
        oxErrMsgIdAndTxt("VELTRO:checkDimRow:rowSize",
                         "Size vector must be a row vector with integer elements.");
    if (!x) raise_not_real_int();
    auto *dims = static_cast<kwSize *>(oxMalloc(n * sizeof(kwSize)));
    for (kwSize k = 0; k < n; ++k) dims[k] = to_size(a, k, x[k]);
    *ndims = n;
    return dims;
}

kwSize read_scalar_size(const oxArray *a) {
    if (a->get_number_of_elements() != 1)
        oxErrMsgIdAndTxt("VELTRO:checkDimScalar:scalarSize",
                         "Size arguments must be integer scalars.");
    const RawArray<double> x = read_values(a);
    check_common(a, x.get(), 1);
    return to_size(a, 0, x ? x[0] : 0);
}

constexpr int none = -1;

// One size per argument; *unknown is the empty one, if any, and 1 for now.
kwSize *read_size_arguments(const oxArray *args[], int nargs, kwSize *ndims, int *unknown) {
    *ndims = std::max(nargs, 2);
    auto *dims = static_cast<kwSize *>(oxMalloc(*ndims * sizeof(kwSize)));
    std::fill_n(dims, *ndims, kwSize{1});
    for (int k = 0; k < nargs; ++k) {
        if (!oxIsEmpty(args[k])) {
            dims[k] = read_scalar_size(args[k]);
            continue;
        }
        if (*unknown != none)
            oxErrMsgIdAndTxt("VELTRO:getReshapeDims:unknownDim",
                             "Size can only have one unknown dimension.");
        *unknown = k;
    }
    return dims;
}

// N / P, where that is a size. A zero product leaves any size or none.
kwSize unknown_size(Count product, Count count) {
    if (product == 0 ? count != 0 : count % product != 0)
        oxErrMsgIdAndTxt("VELTRO:getReshapeDims:notDivisible",
                         "Product of known dimensions, %s, not divisible into total number of "
                         "elements, %s.",
                         Decimal(product).text, Decimal(count).text);
    if (product == 0 || count / product > std::numeric_limits<kwSize>::max())
        oxErrMsgIdAndTxt("VELTRO:getReshapeDims:indeterminateAction",
                         "Indeterminate reshape action requested.");
    return static_cast<kwSize>(count / product);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" kwSize *oxGetReshapeDims(bool size_as_vector, const oxArray *args[], int nargs,
                                    const oxArray *a, kwSize *ndims) {
    int unknown = none;
    kwSize *dims = size_as_vector ? read_size_vector(args[0], ndims)
                                  : read_size_arguments(args, nargs, ndims, &unknown);
    Count product = 1;
    for (kwSize k = 0; k < *ndims; ++k) product = times(product, dims[k]);
    const Count count = element_count(a);
    if (unknown != none)
        dims[unknown] = unknown_size(product, count);
    else if (product != count)
        oxErrMsgIdAndTxt("VELTRO:getReshapeDims:notSameNumel",
                         "To RESHAPE the number of elements must not change.");
    while (*ndims > 2 && dims[*ndims - 1] == 1) --*ndims;
    return dims;
}
