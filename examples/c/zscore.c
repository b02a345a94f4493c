/* zscore: every column of a matrix standardised to mean 0 and standard deviation 1.
   [z, mean, deviation] = zscore(x) */
#include <math.h>
#include <ox.h>

/* A column of zero deviation stays at 0, the distance of its values from their mean. */
static void standardise(const double *x, size_t m, double *z, double *mean, double *deviation) {
    double sum = 0, squares = 0;
    for (size_t i = 0; i < m; ++i) sum += x[i];
    *mean = m ? sum / (double)m : oxGetNaN();
    for (size_t i = 0; i < m; ++i) squares += (x[i] - *mean) * (x[i] - *mean);
    *deviation = m > 1 ? sqrt(squares / (double)(m - 1)) : 0;
    for (size_t i = 0; i < m; ++i) z[i] = *deviation > 0 ? (x[i] - *mean) / *deviation : 0;
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs != 1) oxErrMsgIdAndTxt("VELTRO:zscore:arguments", "zscore takes one matrix.");
    if (nlhs > 3) oxErrMsg(FMAXLHS);
    const oxArray *x = prhs[0];
    if (!oxIsDouble(x) || oxIsSparse(x) || oxIsComplex(x))
        oxErrMsgIdAndTxt("VELTRO:zscore:class", "The input must be a full real double matrix.");

    const size_t m = oxGetM(x), n = oxGetN(x);
    oxArray *z = oxCreateDoubleMatrix(m, n, oxREAL);
    oxArray *mean = oxCreateDoubleMatrix(1, n, oxREAL);
    oxArray *deviation = oxCreateDoubleMatrix(1, n, oxREAL);
    for (size_t j = 0; j < n; ++j)
        standardise(oxGetPr(x) + j * m, m, oxGetPr(z) + j * m, oxGetPr(mean) + j,
                    oxGetPr(deviation) + j);
    plhs[0] = z;
    if (nlhs > 1) plhs[1] = mean;
    if (nlhs > 2) plhs[2] = deviation; /* what is not returned is reclaimed */
}
