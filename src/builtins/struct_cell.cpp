// The builtins struct2cell and cell2struct.
#include <containers/structs.h>
#include <containers/vel_names.h>
#include <core/array_list.h>
#include <errors/raise.h>
#include <ox/memory.h>
#include <ox/structs.h>
#include <ox/subscripts.h>
#include <ox/text.h>

#include <cstring>

namespace ox {
namespace {

bool is_cell(const oxArray *a) { return a->class_code == oxCELL_CLASS; }

// The dimension argument, from one; beyond the cell's own the cell counts as padded with ones.
kwSize fields_dimension(int nrhs, const oxArray *prhs[]) {
    if (nrhs < 3) return 1;
    if (prhs[2]->class_code != oxDOUBLE_CLASS) oxErrMsg(FBADOPT);
    kwSize d;
    oxArgMustBeIndices(prhs[2], 1, &d);
    if (d == 0)
        oxErrMsgIdAndTxt("VELTRO:Cell2Struct:DimensionNumber", "Dimension number out of range.");
    return d;
}

// A block from the listed allocator, which does not raise before its manager is installed.
template<class T> T *required(T *block) {
    if (!block) raise_out_of_memory();
    return block;
}

// A list of n texts on the allocation list, so that every raise frees it.
char **names_from_cell(const oxArray *cell, kwSize n) {
    auto **names = required(static_cast<char **>(oxCalloc(n + 1, sizeof(char *))));
    for (kwSize k = 0; k < n; ++k) {
        const oxArray *name = cell->cell.slots[k];
        if (!name || !name->is_char())
            oxErrMsgIdAndTxt("VELTRO:Cell2Struct:NonStringFieldNames",
                             "Field names must be strings.");
        if (rows(name) != 1)
            oxErrMsgIdAndTxt("VELTRO:Cell2Struct:NonStringVector",
                             "Field name must be a string vector.");
        names[k] = required(oxCreateCStrFromArray(name, oxMalloc));
    }
    return names;
}

char **names_from_chars(const oxArray *chars) {
    if (chars->ndims > 2)
        oxErrMsgIdAndTxt("VELTRO:Cell2Struct:Non2DCharArray",
                         "Field names must be a 2 dimensional character array.");
    char **names = required(oxCreateCStrArrayFromMatrix(chars, oxMalloc, oxFree));
    for (kwSize k = 0; k < rows(chars); ++k) required(names[k]);
    return names;
}

char **field_names(const oxArray *arg, kwSize n) {
    if (!is_cell(arg) && !arg->is_char()) oxErrMsg(FBADOPT);
    if ((arg->is_char() ? rows(arg) : arg->get_number_of_elements()) != n)
        oxErrMsgIdAndTxt("VELTRO:Cell2Struct:NumberOfNamesMismatch",
                         "Number of field names must match number of fields in new structure.");
    return is_cell(arg) ? names_from_cell(arg, n) : names_from_chars(arg);
}

// Each name is cut, tested and compared with the later ones, which may still be too long, before
// the next one.
void check_names(char **names, kwSize n) {
    for (kwSize k = 0; k < n; ++k) {
        oxTruncateVelName(names[k]);
        if (!oxIsValidVelName(names[k]))
            oxErrMsgIdAndTxt("VELTRO:Cell2Struct:InvalidFieldName", "Invalid field name \"%s\"",
                             names[k]);
        for (kwSize j = k + 1; j < n; ++j)
            if (std::strncmp(names[k], names[j], max_name_length) == 0)
                oxErrMsgIdAndTxt("VELTRO:DuplicateFieldName", "Duplicate field name \"%s\"",
                                 names[k]);
    }
}

void free_names(char **names, kwSize n) {
    for (kwSize k = 0; k < n; ++k) oxFree(names[k]);
    oxFree(names);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

void oxStruct2cell(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nlhs > 1) oxErrMsg(FMAXLHS);
    if (nrhs > 1) oxErrMsg(FMAXRHS);
    if (nrhs < 1) oxErrMsg(FMINRHS);
    if (!is_struct_like(prhs[0])) oxFcnUndefinedForClass("struct2cell", oxGetClassName(prhs[0]));
    plhs[0] = hand_over(struct_to_cell(prhs[0]));
}

void oxCell2struct(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nlhs > 1) oxErrMsg(FMAXLHS);
    if (nrhs < 2) oxErrMsg(FMINRHS);
    if (nrhs >= 4) oxErrMsg(FMAXRHS);
    if (!is_cell(prhs[0])) oxErrMsg(FBADOPT);
    const oxArray *cell = prhs[0];
    const kwSize d = fields_dimension(nrhs, prhs) - 1;
    const kwSize n = d < cell->ndims ? cell->get_dimensions()[d] : 1;
    char **names = field_names(prhs[1], n);
    check_names(names, n);
    plhs[0] = hand_over(cell_to_struct(cell, d, names));
    free_names(names, n);
}

} // extern "C"
