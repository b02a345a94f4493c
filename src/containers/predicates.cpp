// Predicates over whole arrays: a small set of tests, and a table of which combine to what.
#include <containers/value_tests.h>
#include <core/array.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <ox/predicates.h>

namespace ox {
namespace {

enum Test : unsigned {
    NOT_EMPTY = 1u << 0,
    FULL_NUMERIC = 1u << 1,
    REAL = 1u << 2, // no imaginary block
    VECTOR = 1u << 3,
    MATRIX = 1u << 4, // exactly two dimensions
    ONE = 1u << 5,
    DOUBLE = 1u << 6,
    SINGLE = 1u << 7,
    FINITE = 1u << 8, // both parts; passes where the class has no other values
    NO_NAN = 1u << 9,
    INT32 = 1u << 10,
    INT32_OR_UINT32 = 1u << 11,

    VALUES = NOT_EMPTY | FULL_NUMERIC,
    REAL_DOUBLE = VALUES | REAL | DOUBLE,
};

bool is_vector(const oxArray *a) {
    const kwSize *d = a->get_dimensions();
    int above_one = 0;
    for (kwSize k = 0; k < a->ndims; ++k) above_one += d[k] > 1;
    return above_one <= 1;
}

bool is_finite(const oxArray *a, kwSize n) {
    if (a->class_code == oxDOUBLE_CLASS)
        return all_finite(data<double>(a), n) &&
               (!has_imag_block(a) || all_finite(imag<double>(a), n));
    if (a->class_code == oxSINGLE_CLASS)
        return all_finite(data<float>(a), n) &&
               (!has_imag_block(a) || all_finite(imag<float>(a), n));
    return true;
}

bool values_pass(const oxArray *a, kwSize n, unsigned tests) {
    if ((tests & FINITE) && !is_finite(a, n)) return false;
    if ((tests & NO_NAN) && any_nan(data<double>(a), n)) return false;
    if ((tests & INT32) && !all_whole_within(data<double>(a), n, -0x1p31, 0x1p31 - 1)) return false;
    if ((tests & INT32_OR_UINT32) && !all_whole_within(data<double>(a), n, -0x1p31, 0x1p32 - 1))
        return false;
    return true;
}

// The flags and the shape first: values are read last, and only of arrays that have them.
bool passes(const oxArray *a, unsigned tests) {
    const kwSize n = a->get_number_of_elements(); // completes dimensions before they are read
    if ((tests & NOT_EMPTY) && n == 0) return false;
    if ((tests & FULL_NUMERIC) && (is_sparse(a) || !is_numeric(a))) return false;
    if ((tests & REAL) && is_complex(a)) return false;
    if ((tests & DOUBLE) && a->class_code != oxDOUBLE_CLASS) return false;
    if ((tests & SINGLE) && a->class_code != oxSINGLE_CLASS) return false;
    if ((tests & VECTOR) && !is_vector(a)) return false;
    if ((tests & MATRIX) && a->ndims != 2) return false;
    if ((tests & ONE) && n != 1) return false;
    return values_pass(a, a->num.pdata ? n : 0, tests);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

bool oxIsVector(const oxArray *a) { return passes(a, VECTOR); }
bool oxIsVector2D(const oxArray *a) {
    return passes(a, MATRIX) && (a->mn[0] == 1 || a->mn[1] == 1);
}
bool oxIsScalar(const oxArray *a) { return passes(a, MATRIX) && a->mn[0] == 1 && a->mn[1] == 1; }
bool oxIsCharVector(const oxArray *a) {
    return passes(a, NOT_EMPTY | MATRIX) && a->is_char() && a->mn[0] == 1;
}

bool oxIsRealVector(const oxArray *a) { return passes(a, REAL_DOUBLE | VECTOR | FINITE); }
bool oxIsRealOrInfVector(const oxArray *a) { return passes(a, REAL_DOUBLE | VECTOR | NO_NAN); }
bool oxIsRealInfOrNaNVector(const oxArray *a) { return passes(a, REAL_DOUBLE | VECTOR); }
bool oxIsComplexVector(const oxArray *a) { return passes(a, VALUES | DOUBLE | VECTOR | FINITE); }
bool oxIsIntVector(const oxArray *a) { return passes(a, REAL_DOUBLE | VECTOR | INT32); }
bool oxIsIntOrUIntVector(const oxArray *a) {
    return passes(a, REAL_DOUBLE | VECTOR | INT32_OR_UINT32);
}
bool oxIsNumericInfOrNaNVector(const oxArray *a) { return passes(a, VALUES | VECTOR); }
bool oxIsSingleVector(const oxArray *a) { return passes(a, VALUES | SINGLE | VECTOR | FINITE); }
bool oxIsFiniteNumericVector(const oxArray *a) { return passes(a, VALUES | VECTOR | FINITE); }

bool oxIsRealScalar(const oxArray *a) { return passes(a, REAL_DOUBLE | ONE | FINITE); }
bool oxIsRealOrInfScalar(const oxArray *a) { return passes(a, REAL_DOUBLE | ONE | NO_NAN); }
bool oxIsIntScalar(const oxArray *a) { return passes(a, REAL_DOUBLE | ONE | INT32); }

bool oxIsFiniteDoubleArray(const oxArray *a) { return passes(a, VALUES | DOUBLE | FINITE); }
bool oxIsFiniteSingleArray(const oxArray *a) { return passes(a, VALUES | SINGLE | FINITE); }
bool oxIsFiniteNumericArray(const oxArray *a) { return passes(a, VALUES | FINITE); }

bool oxIsDouble2dMatrix(const oxArray *a) { return passes(a, VALUES | DOUBLE | MATRIX | FINITE); }
bool oxIsSingle2dMatrix(const oxArray *a) { return passes(a, VALUES | SINGLE | MATRIX | FINITE); }
bool oxIsReal2dMatrix(const oxArray *a) { return passes(a, REAL_DOUBLE | MATRIX | FINITE); }
bool oxIsComplex2dMatrix(const oxArray *a) { return oxIsDouble2dMatrix(a); }
bool oxIsFiniteNumeric2dMatrix(const oxArray *a) { return passes(a, VALUES | MATRIX | FINITE); }
// Deliberate: a single NaN passes here, a double one does not.
bool oxIsFiniteNumeric2dNonComplexMatrix(const oxArray *a) {
    return passes(a, VALUES | REAL | MATRIX) &&
           (a->class_code != oxDOUBLE_CLASS || passes(a, FINITE));
}

void oxCheckOneArg(int nlhs, int nrhs) {
    if (nlhs > 1) oxErrMsg(FMAXLHS);
    if (nrhs > 1) oxErrMsg(FMAXRHS);
    if (nrhs < 1) oxErrMsg(FMINRHS);
}

} // extern "C"
