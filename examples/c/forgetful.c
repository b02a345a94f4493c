/* forgetful: makes arrays and blocks and gives none of them back, to show who cleans up. */
#include <ox.h>

enum { arrays = 10, blocks = 5 };

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    (void)nlhs, (void)nrhs, (void)prhs;
    for (int k = 0; k < arrays; ++k) oxCreateDoubleMatrix(100, 100, oxREAL);
    for (int k = 0; k < blocks; ++k) oxMalloc(1000);
    plhs[0] = oxCreateDoubleScalar(arrays + blocks);
}
