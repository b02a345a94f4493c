/* The modules of both levels, one after the other on the same input. */
#include <ox.h>

void vex_700(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);
void vex_730(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    vex_700(1, plhs, nrhs, prhs);
    if (nlhs > 1) vex_730(1, plhs + 1, nrhs, prhs);
}
