/* pagerank: the weight of each node of a graph for someone who follows links at random and starts
   afresh now and then. [rank, rounds] = pagerank(links): a stored entry (i,j) of the sparse square
   matrix is a link from j to i; its value does not matter. The ranks sum to 1. */
#include <math.h>
#include <ox.h>

static const double damping = 0.85, tolerance = 1e-12;
enum { most_rounds = 1000 };

/* y = damping * P * x + what is left, spread evenly; the distance from x to y. */
static double follow_links(const oxArray *links, const double *x, double *y) {
    const kwIndex *ir = oxGetIr(links), *jc = oxGetJc(links);
    const size_t n = oxGetN(links);
    double followed = 0, distance = 0;
    for (size_t i = 0; i < n; ++i) y[i] = 0;
    for (size_t j = 0; j < n; ++j) {
        const size_t degree = jc[j + 1] - jc[j];
        for (size_t k = jc[j]; k < jc[j + 1]; ++k) y[ir[k]] += damping * x[j] / (double)degree;
        if (degree) followed += damping * x[j];
    }
    for (size_t i = 0; i < n; ++i) {
        y[i] += (1 - followed) / (double)n;
        distance += fabs(y[i] - x[i]);
    }
    return distance;
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs != 1 || nlhs > 2 || !oxIsSparse(prhs[0]) || oxGetM(prhs[0]) != oxGetN(prhs[0]))
        oxErrMsgIdAndTxt("VELTRO:pagerank:input",
                         "[rank, rounds] = pagerank(links) takes one sparse square matrix.");
    const size_t n = oxGetN(prhs[0]);
    oxArray *rank = oxCreateDoubleMatrix(n, 1, oxREAL), *next = oxCreateDoubleMatrix(n, 1, oxREAL);
    for (size_t i = 0; i < n; ++i) oxGetPr(rank)[i] = 1 / (double)n;
    double distance = 1;
    int rounds = 0;
    for (; n && distance > tolerance && rounds < most_rounds; ++rounds) {
        distance = follow_links(prhs[0], oxGetPr(rank), oxGetPr(next));
        oxArray *previous = rank;
        rank = next, next = previous;
    }
    plhs[0] = rank; /* the other vector is reclaimed */
    if (nlhs > 1) plhs[1] = oxCreateDoubleScalar(rounds);
}
