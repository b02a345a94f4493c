/* covariance: the covariance matrix of the columns of a matrix, rows being observations. */
#include <ox.h>

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs != 1 || nlhs > 1)
        oxErrMsgIdAndTxt("VELTRO:covariance:arguments", "c = covariance(x) takes one matrix.");
    const oxArray *x = prhs[0];
    if (!oxIsDouble(x) || oxIsSparse(x) || oxIsComplex(x) || oxGetM(x) < 2)
        oxErrMsgIdAndTxt("VELTRO:covariance:input",
                         "The input must be a full real double matrix of at least two rows.");

    const size_t m = oxGetM(x), n = oxGetN(x);
    const double *p = oxGetPr(x);
    double *mean = oxCalloc(n, sizeof *mean); /* listed: freed with the call, whatever happens */
    plhs[0] = oxCreateDoubleMatrix(n, n, oxREAL);
    double *c = oxGetPr(plhs[0]);

    for (size_t j = 0; j < n; ++j) {
        for (size_t i = 0; i < m; ++i) mean[j] += p[j * m + i];
        mean[j] /= (double)m;
    }
    for (size_t j = 0; j < n; ++j)
        for (size_t k = 0; k <= j; ++k) {
            double sum = 0;
            for (size_t i = 0; i < m; ++i)
                sum += (p[j * m + i] - mean[j]) * (p[k * m + i] - mean[k]);
            c[j * n + k] = c[k * n + j] = sum / (double)(m - 1);
        }
    oxFree(mean);
}
