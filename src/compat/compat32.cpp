// The 32-bit level: every function converts, calls its 64-bit form, and converts back. At the end
// the plain names, for modules that were linked against them.
#define OX_NO_LEVEL_MACROS
#include <compat/sizes.h>
#include <ox/cells.h>
#include <ox/classes.h>
#include <ox/compat.h>
#include <ox/create.h>
#include <ox/structs.h>

#include <ut.h>

#define REFUSE(function) ut_error(UT_MSG_SPARSE_64BIT_OBSOLETE, "compat32", __LINE__, function)

using namespace ox::compat;

extern "C" {

// --- Creation with m and n ---

oxArray *oxCreateDoubleMatrix_700(int m, int n, oxComplexity c) {
    return oxCreateDoubleMatrix_730(wide(m), wide(n), c);
}
oxArray *oxCreateNumericMatrix_700(int m, int n, oxClassID id, oxComplexity c) {
    return oxCreateNumericMatrix_730(wide(m), wide(n), id, c);
}
oxArray *oxCreateLogicalMatrix_700(int m, int n) {
    return oxCreateLogicalMatrix_730(wide(m), wide(n));
}
oxArray *oxCreateCellMatrix_700(int m, int n) { return oxCreateCellMatrix_730(wide(m), wide(n)); }
oxArray *oxCreateStructMatrix_700(int m, int n, int nfields, const char **names) {
    return oxCreateStructMatrix_730(wide(m), wide(n), nfields, names);
}
oxArray *oxCreateSparse_700(int m, int n, int nzmax, oxComplexity c) {
    return oxCreateSparse_730(wide(m), wide(n), wide(nzmax), c);
}
oxArray *oxCreateSparseLogicalMatrix_700(int m, int n, int nzmax) {
    return oxCreateSparseLogicalMatrix_730(wide(m), wide(n), wide(nzmax));
}

// --- Creation with a list of sizes ---

oxArray *oxCreateNumericArray_700(int ndim, const int *dims, oxClassID id, oxComplexity c) {
    const WideList sizes(ndim, dims);
    return oxCreateNumericArray_730(sizes.count(), sizes.get(), id, c);
}
oxArray *oxCreateLogicalArray_700(int ndim, const int *dims) {
    const WideList sizes(ndim, dims);
    return oxCreateLogicalArray_730(sizes.count(), sizes.get());
}
oxArray *oxCreateCharArray_700(int ndim, const int *dims) {
    const WideList sizes(ndim, dims);
    return oxCreateCharArray_730(sizes.count(), sizes.get());
}
oxArray *oxCreateCellArray_700(int ndim, const int *dims) {
    const WideList sizes(ndim, dims);
    return oxCreateCellArray_730(sizes.count(), sizes.get());
}
oxArray *oxCreateStructArray_700(int ndim, const int *dims, int nfields, const char **names) {
    const WideList sizes(ndim, dims);
    return oxCreateStructArray_730(sizes.count(), sizes.get(), nfields, names);
}

// --- Strings ---

oxArray *oxCreateStringFromNChars_700(const char *str, int n) {
    return oxCreateStringFromNChars_730(str, wide(n));
}
oxArray *oxCreateStringFromNChars_UTF8_700(const char *str, int n) {
    return oxCreateStringFromNChars_UTF8(str, wide(n));
}
oxArray *oxCreateStringFromNChars_UTF16_700(const oxChar *str, int n) {
    return oxCreateStringFromNChars_UTF16(str, wide(n));
}
oxArray *oxCreateCharMatrixFromStrings_700(int m, const char **strs) {
    return oxCreateCharMatrixFromStrings_730(wide(m), strs);
}
oxArray *oxCreateCharMatrixFromStrs_700(int m, const char **strs) {
    return oxCreateCharMatrixFromStrings_730(wide(m), strs);
}
oxArray *oxCreateCharMatrixFromStrings_UTF8_700(int m, const char **strs) {
    return oxCreateCharMatrixFromStrings_UTF8(wide(m), strs);
}
oxArray *oxCreateCharMatrixFromStrings_UTF16_700(int m, const oxChar **strs) {
    return oxCreateCharMatrixFromStrings_UTF16(wide(m), strs);
}
int oxGetString_700(const oxArray *a, char *buf, int buflen) {
    return oxGetString_730(a, buf, wide(buflen));
}
int oxGetString_UTF8_700(const oxArray *a, char *buf, int buflen) {
    return oxGetString_UTF8(a, buf, wide(buflen));
}
void oxGetNChars_700(const oxArray *a, char *buf, int buflen) {
    oxGetNChars_730(a, buf, wide(buflen));
}
void oxGetNChars_UTF8_700(const oxArray *a, char *buf, int buflen) {
    oxGetNChars_UTF8(a, buf, wide(buflen));
}

// --- Sizes ---

void oxSetM_700(oxArray *a, int m) { oxSetM_730(a, wide(m)); }
void oxSetN_700(oxArray *a, int n) { oxSetN_730(a, wide(n)); }
void oxSetNzmax_700(oxArray *a, int nzmax) { oxSetNzmax_730(a, wide(nzmax)); }
int oxSetDimensions_700(oxArray *a, const int *dims, int ndim) {
    const WideList sizes(ndim, dims);
    return oxSetDimensions_730(a, sizes.get(), sizes.count());
}
int oxGetNzmax_700(const oxArray *a) { return narrow(oxGetNzmax_730(a)); }
int oxGetNumberOfDimensions_700(const oxArray *a) { return narrow(oxGetNumberOfDimensions_730(a)); }
int oxCalcSingleSubscript_700(const oxArray *a, int nsubs, const int *subs) {
    const WideList positions(nsubs, subs);
    return narrow(oxCalcSingleSubscript_730(a, positions.count(), positions.get()));
}
bool oxSubsCount_700(const oxArray *a, const oxArray *sub, int k, int nsubs, int *count) {
    kwSize selected = 0;
    const bool told = oxSubsCount(a, sub, wide(k), wide(nsubs), &selected);
    *count = narrow(selected);
    return told;
}

// --- Elements of containers ---

oxArray *oxGetCell_700(const oxArray *a, int i) { return oxGetCell_730(a, wide(i)); }
void oxSetCell_700(oxArray *a, int i, oxArray *v) { oxSetCell_730(a, wide(i), v); }
oxArray *oxGetField_700(const oxArray *a, int i, const char *name) {
    return oxGetField_730(a, wide(i), name);
}
oxArray *oxGetFieldByNumber_700(const oxArray *a, int i, int n) {
    return oxGetFieldByNumber_730(a, wide(i), n);
}
void oxSetField_700(oxArray *a, int i, const char *name, oxArray *v) {
    oxSetField_730(a, wide(i), name, v);
}
void oxSetFieldByNumber_700(oxArray *a, int i, int n, oxArray *v) {
    oxSetFieldByNumber_730(a, wide(i), n, v);
}
oxArray *oxGetProperty_700(const oxArray *a, int index, const char *name) {
    return oxGetProperty_730(a, wide(index), name);
}
void oxSetProperty_700(oxArray *a, int index, const char *name, const oxArray *value) {
    oxSetProperty_730(a, wide(index), name, value);
}

// --- Refused: 32-bit row and column vectors cannot describe the 64-bit storage ---

int *oxGetIr_700(const oxArray *) { REFUSE("oxGetIr_700"); }
int *oxGetJc_700(const oxArray *) { REFUSE("oxGetJc_700"); }
void oxSetIr_700(oxArray *, int *) { REFUSE("oxSetIr_700"); }
void oxSetJc_700(oxArray *, int *) { REFUSE("oxSetJc_700"); }
oxArray *oxSparseReference_700(const oxArray *, const int *, int, const int *, int) {
    REFUSE("oxSparseReference_700");
}
void oxReshapeSparse_700(int, int, const int *, int *, int, int, int *) {
    REFUSE("oxReshapeSparse_700");
}

// --- Plain names ---

// With int sizes, as when such modules were built.
#define PLAIN(name) OX_API decltype(name##_700) name __attribute__((alias(#name "_700")));
PLAIN(oxCalcSingleSubscript)
PLAIN(oxCreateCellArray)
PLAIN(oxCreateCellMatrix)
PLAIN(oxCreateCharArray)
PLAIN(oxCreateCharMatrixFromStrings)
PLAIN(oxCreateDoubleMatrix)
PLAIN(oxCreateLogicalArray)
PLAIN(oxCreateLogicalMatrix)
PLAIN(oxCreateNumericArray)
PLAIN(oxCreateNumericMatrix)
PLAIN(oxCreateSparse)
PLAIN(oxCreateSparseLogicalMatrix)
PLAIN(oxCreateStringFromNChars)
PLAIN(oxCreateStructArray)
PLAIN(oxCreateStructMatrix)
PLAIN(oxGetCell)
PLAIN(oxGetField)
PLAIN(oxGetFieldByNumber)
PLAIN(oxGetNChars)
PLAIN(oxGetProperty)
PLAIN(oxGetString)
PLAIN(oxSetCell)
PLAIN(oxSetDimensions)
PLAIN(oxSetField)
PLAIN(oxSetFieldByNumber)
PLAIN(oxSetM)
PLAIN(oxSetN)
PLAIN(oxSetNzmax)
PLAIN(oxSetProperty)

// With 64-bit sizes: an int caller reads the low half of these answers, and index vectors have no
// 32-bit form.
OX_API kwIndex *oxGetIr(const oxArray *a) { return oxGetIr_730(a); }
OX_API kwIndex *oxGetJc(const oxArray *a) { return oxGetJc_730(a); }
OX_API void oxSetIr(oxArray *a, kwIndex *ir) { oxSetIr_730(a, ir); }
OX_API void oxSetJc(oxArray *a, kwIndex *jc) { oxSetJc_730(a, jc); }
OX_API kwSize oxGetNzmax(const oxArray *a) { return oxGetNzmax_730(a); }
OX_API kwSize oxGetNumberOfDimensions(const oxArray *a) { return oxGetNumberOfDimensions_730(a); }

} // extern "C"
