// The cell constructor function, and reading its size arguments.
#include <core/array_list.h>
#include <core/position.h>
#include <errors/raise.h>
#include <ox/cells.h>
#include <ox/convert.h>
#include <ox/memory.h>
#include <ox/sharing.h>
#include <ox/subscripts.h>

#include <algorithm>

namespace ox {
namespace {

constexpr kwSize dims_on_stack = 10;

// An argument as a full double array; a converted one is destroyed by release().
struct SizeArgument {
    explicit SizeArgument(const oxArray *given)
        : a(oxMustBeFullDouble(const_cast<oxArray *>(given))), converted(a != given) {}
    void release() const {
        if (converted) oxDestroyArray(a);
    }
    oxArray *a;
    bool converted;
};

void read_size_vector(const oxArray *a, kwSize *dims, kwSize *ndim) {
    const kwSize m = rows(a), n = cols(a);
    if (a->ndims > 2 || m != 1)
        oxErrMsgIdAndTxt("VELTRO:NonIntegerInput",
                         "Size vector must be a row vector with real elements.");
    oxArgMustBeIndices(a, n, dims);
    if (n == 0) dims[0] = 0;
    if (n <= 1) dims[1] = dims[0];
    *ndim = std::max(n, kwSize{2});
}

oxArray *empty_cells(kwSize ndim, const kwSize *dims) {
    kwSize count = 1;
    for (kwSize k = 0; k < ndim; ++k) count = saturating_multiply(count, dims[k]);
    oxArray *a = oxCreateCellMatrix_730(1, count);
    if (!a || oxSetDimensions_730(a, dims, ndim) == 0) return a;
    oxDestroyArray(a);
    return hand_over(nullptr);
}

// The list of sizes is listed memory: a raise while it is filled frees it.
oxArray *cells_of_sizes(int nargs, const oxArray *args[]) {
    kwSize on_stack[dims_on_stack], ndim;
    const kwSize room = nargs == 1 ? oxGetNumberOfElements(args[0]) : static_cast<kwSize>(nargs);
    kwSize *dims = on_stack;
    if (room > dims_on_stack) dims = static_cast<kwSize *>(oxCalloc(room, sizeof(kwSize)));
    if (!dims) return hand_over(nullptr);
    oxGetDims(nargs, args, dims, &ndim);
    oxArray *a = empty_cells(ndim, dims);
    if (dims != on_stack) oxFree(dims);
    return a;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

void oxCellConstructorFcn(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nlhs >= 2) oxErrMsg(FMAXLHS);
    if (nrhs < 1) oxErrMsg(FMINRHS);
    if (nrhs > 1 || oxIsDouble(prhs[0])) {
        plhs[0] = cells_of_sizes(nrhs, prhs);
        return;
    }
    oxArray *cell = oxMustBe(const_cast<oxArray *>(prhs[0]), oxCELL_CLASS);
    plhs[0] = cell == prhs[0] ? oxCreateSharedDataCopy(cell) : cell;
}

void oxGetDims(int nargs, const oxArray *args[], kwSize *dims, kwSize *ndim) {
    if (nargs == 1) {
        const SizeArgument argument(args[0]);
        read_size_vector(argument.a, dims, ndim);
        argument.release();
        return;
    }
    dims[0] = dims[1] = 1;
    *ndim = nargs == 0 ? 2 : static_cast<kwSize>(nargs);
    for (int k = 0; k < nargs; ++k) {
        const SizeArgument argument(args[k]);
        oxArgMustBeIndices(argument.a, 1, &dims[k]);
        argument.release();
    }
}

} // extern "C"
