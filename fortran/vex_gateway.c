/* The entry point of a module whose vexFunction is a Fortran external with an implicit interface:
   passes everything by reference. */
#include <ox.h>

void vexfunction_(const int *nlhs, oxArray *plhs[], const int *nrhs, const oxArray *prhs[]);

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    vexfunction_(&nlhs, plhs, &nrhs, prhs);
}
