/* raising: raises in the middle of its work, holding arrays and blocks. No clean-up is written:
   the raise frees the blocks, and leaving the context destroys the arrays. */
#include <ox.h>

static double *work_space(size_t n) {
    double *w = oxMalloc(n * sizeof *w);
    w[0] = 1;
    return w;
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    (void)nlhs, (void)prhs;
    plhs[0] = oxCreateDoubleMatrix(10, 10, oxREAL);
    for (size_t n = 1; n <= 3; ++n) work_space(1000 * n);
    if (nrhs < 2)
        oxErrMsgIdAndTxt("VELTRO:raising:halfway", "Stopped halfway, after %d of %d inputs.", nrhs,
                         2);
}
