/* A module that uses a function of every family with sizes of the level it is built for. */
#include <ox.h>

#if defined(PLAIN_NAMES) /* what a header of the int level declared before there were levels */
oxArray *oxCreateCellMatrix(int m, int n);
oxArray *oxCreateNumericArray(int ndim, const int *dims, oxClassID id, oxComplexity c);
oxArray *oxCreateStringFromNChars(const char *str, int n);
oxArray *oxCreateStructMatrix(int m, int n, int nfields, const char **names);
oxArray *oxCreateSparse(int m, int n, int nzmax, oxComplexity c);
int oxCalcSingleSubscript(const oxArray *a, int nsubs, const int *subs);
const int *oxGetDimensions(const oxArray *a);
int oxGetNumberOfDimensions(const oxArray *a);
int oxGetNzmax(const oxArray *a);
void oxSetCell(oxArray *a, int i, oxArray *v);
void oxSetField(oxArray *a, int i, const char *name, oxArray *v);
void oxSetN(oxArray *a, int n);
size_t *oxGetIr(const oxArray *a);
typedef int Size;
#elif OX_API_LEVEL == 700
typedef int Size;
#else
typedef kwSize Size;
#endif

/* A cell of everything; with a second argument row indices, too, which the int level refuses. */
void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    const oxArray *a = prhs[0];
    const Size ndims = oxGetNumberOfDimensions(a), *dims = oxGetDimensions(a);
    const Size ten[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 3}, last[] = {1, 2, 1};
    const char *name = "field";
    oxArray *row = oxCreateNumericArray(10, ten, oxDOUBLE_CLASS, oxREAL);
    oxArray *sparse = oxCreateSparse(4, 2, 5, oxREAL), *s = oxCreateStructMatrix(1, 2, 1, &name);
    (void)nlhs;

    plhs[0] = oxCreateCellMatrix(1, 4);
    for (Size k = 0; k < ndims; ++k) oxGetPr(row)[k] = (double)dims[k];
    oxSetN(row, 3);
    oxSetCell(plhs[0], 0, row);
    oxSetCell(plhs[0], 1, oxCreateStringFromNChars("level", 3));
    oxSetField(s, 1, name, oxCreateDoubleScalar((double)oxCalcSingleSubscript(a, 3, last)));
    oxSetCell(plhs[0], 2, s);
    oxSetCell(
        plhs[0], 3,
        oxCreateDoubleScalar(nrhs > 1 ? (double)*oxGetIr(sparse) : (double)oxGetNzmax(sparse)));
}
