// The smallest array of a class that has given attributes.
#include <core/array.h>
#include <ox/cells.h>
#include <ox/create.h>
#include <ox/sparse.h>
#include <ox/structs.h>
#include <ox/text.h>

namespace {

constexpr oxArray_attributes complexity_group = oxATTR_REAL | oxATTR_COMPLEX;
constexpr oxArray_attributes density_group = oxATTR_FULL | oxATTR_SPARSE;

// Number of dimensions, each 2 but for the sides that are 1; ndims 0: no single shape is asked for.
struct Shape {
    kwSize ndims;
    kwSize dims[5];
};

Shape smallest(oxArray_attributes attributes) {
    switch (attributes & ~(complexity_group | density_group)) {
    case oxATTR_SCALAR:
        return {2, {1, 1}};
    case oxATTR_ROW:
        return {2, {1, 2}};
    case oxATTR_COLUMN:
        return {2, {2, 1}};
    case oxATTR_MATRIX:
        return {2, {2, 2}};
    case oxATTR_3D:
        return {3, {2, 2, 2}};
    case oxATTR_4D:
        return {4, {2, 2, 2, 2}};
    case oxATTR_ND:
        return {5, {2, 2, 2, 2, 2}};
    default:
        return {0, {}};
    }
}

oxArray *create_full(oxClassID id, const Shape &s, oxComplexity c) {
    switch (id) {
    case oxCELL_CLASS:
        return oxCreateCellArray(s.ndims, s.dims);
    case oxSTRUCT_CLASS:
        return oxCreateStructArray(s.ndims, s.dims, 0, nullptr);
    case oxLOGICAL_CLASS:
        return oxCreateLogicalArray(s.ndims, s.dims);
    case oxCHAR_CLASS:
        return oxCreateCharArray(s.ndims, s.dims);
    default:
        return oxCreateNumericArray(s.ndims, s.dims, id, c);
    }
}

// Classes that are never sparse give a sparse double, which the caller finds out.
oxArray *create_sparse(oxClassID id, const Shape &s, oxComplexity c) {
    const kwSize m = s.dims[0], n = s.dims[1];
    if (id == oxLOGICAL_CLASS) return oxCreateSparseLogicalMatrix(m, n, 1);
    if (id < oxLOGICAL_CLASS || id == oxCHAR_CLASS) return oxCreateSparse(m, n, 1, c);
    return oxCreateSparseNumericMatrix(m, n, 1, id, c);
}

} // namespace

oxArray *oxCreateArrayFromTypeAttr(oxClassID id, oxArray_attributes attributes) {
    const oxArray_attributes density = attributes & density_group;
    const oxArray_attributes complexity = attributes & complexity_group;
    const Shape shape = smallest(attributes);
    if (complexity != oxATTR_REAL && complexity != oxATTR_COMPLEX) return nullptr;
    if (density != oxATTR_FULL && density != oxATTR_SPARSE) return nullptr;
    if (shape.ndims == 0 || id < oxCELL_CLASS || id > oxUINT64_CLASS || id == oxVOID_CLASS)
        return nullptr;

    const oxComplexity c = complexity == oxATTR_COMPLEX ? oxCOMPLEX : oxREAL;
    oxArray *a = density == oxATTR_FULL ? create_full(id, shape, c) : create_sparse(id, shape, c);
    if (!a || (a->get_class_id() == id && a->get_attributes() == attributes)) return a;
    oxDestroyArray(a); // no array of the class has these attributes
    return nullptr;
}
