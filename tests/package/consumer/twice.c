/* B = twice(A) doubles a full real double array; anything else is refused by raising through this
 * frame. */
#include <ox.h>

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    (void)nlhs;
    if (nrhs != 1 || !oxIsDouble(prhs[0]) || oxIsComplex(prhs[0]) || oxIsSparse(prhs[0]))
        oxErrMsgIdAndTxt("twice:input", "One full real double array is needed.");
    const kwSize m = oxGetM(prhs[0]), n = oxGetN(prhs[0]);
    const double *x = oxGetPr(prhs[0]);
    plhs[0] = oxCreateDoubleMatrix(m, n, oxREAL);
    double *y = oxGetPr(plhs[0]);
    for (kwSize i = 0; i < m * n; i++) y[i] = 2 * x[i];
}
