/* A module that uses functions with sizes of the level it is built for. */
#include <ox.h>

#if defined(PLAIN_NAMES) /* what a header of the int level declared before there were levels */
oxArray *oxCreateCellMatrix(int m, int n);
oxArray *oxCreateNumericArray(int ndim, const int *dims, oxClassID id, oxComplexity c);
oxArray *oxCreateSparse(int m, int n, int nzmax, oxComplexity c);
const int *oxGetDimensions(const oxArray *a);
int oxGetNumberOfDimensions(const oxArray *a);
int oxGetNzmax(const oxArray *a);
void oxSetCell(oxArray *a, int i, oxArray *v);
size_t *oxGetIr(const oxArray *a);
typedef int Size;
#elif OX_API_LEVEL == 700
typedef int Size;
#else
typedef kwSize Size;
#endif

/* The dimensions of the input, and of a sparse array the capacity, or, with a second argument, a
 * row index, which the int level refuses. */
void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    const Size ndims = oxGetNumberOfDimensions(prhs[0]), *dims = oxGetDimensions(prhs[0]);
    const Size ten[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 3};
    oxArray *row = oxCreateNumericArray(10, ten, oxDOUBLE_CLASS, oxREAL);
    const oxArray *sparse = oxCreateSparse(4, 2, 5, oxREAL);
    const double of_sparse = nrhs > 1 ? (double)*oxGetIr(sparse) : (double)oxGetNzmax(sparse);
    (void)nlhs;

    for (Size k = 0; k < ndims; ++k) oxGetPr(row)[k] = (double)dims[k];
    plhs[0] = oxCreateCellMatrix(1, 2);
    oxSetCell(plhs[0], 0, row);
    oxSetCell(plhs[0], 1, oxCreateDoubleScalar(of_sparse));
}
