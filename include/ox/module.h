/* The entry point of an extension module (a VEX module). */
#ifndef OX_MODULE_H
#define OX_MODULE_H

#include <ox/types.h>

/* Exports the entry point, whatever else the module hides. */
#if defined(_WIN32)
#define OX_MODULE_ENTRY __declspec(dllexport)
#else
#define OX_MODULE_ENTRY __attribute__((visibility("default")))
#endif

OX_BEGIN_C

/* Every extension module defines this function; the interpreter calls it. prhs holds the nrhs
   inputs, which belong to the caller and must not be changed; plhs takes the outputs: nlhs were
   asked for, and plhs[0] may be set even when none was. The interpreter keeps the outputs; every
   other array and every listed block that the call made and left behind is reclaimed. */
OX_MODULE_ENTRY void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);

OX_END_C

#endif
