// The class queries and the flag and data accessors of the public interface.
#include <core/array.h>
#include <core/class_table.h>
#include <core/destroy.h>

#include <cstring>

namespace ox {
namespace {

// ASCII letters only, whatever the locale.
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equal_ignoring_case(const char *a, const char *b) {
    for (; *a && lower(*a) == lower(*b); ++a, ++b) {
    }
    return lower(*a) == lower(*b);
}

bool has_class(const oxArray *a, int id) { return a->class_code == id; }

} // namespace
} // namespace ox

using namespace ox;

void _complete_opaque_dimensions(oxArray *a) {
    if (a->opaque.info) a->opaque.info->complete_dimensions(a);
}

oxClassID oxArray_tag::_get_class_id_non_trivial() const {
    if (class_code == oxOPAQUE_CLASS && opaque.info) return opaque.info->class_id(this);
    if (class_code == oxOBJECT_CLASS && record.tag != 0) return static_cast<oxClassID>(record.tag);
    return static_cast<oxClassID>(class_code);
}

extern "C" {

oxClassID oxGetClassID(const oxArray *a) { return a->get_class_id(); }

const char *oxGetClassName(const oxArray *a) {
    if (has_class(a, oxOPAQUE_CLASS) && a->opaque.info) return a->opaque.info->class_name(a);
    if (has_class(a, oxOBJECT_CLASS)) return a->record.classname ? a->record.classname : "";
    return class_info(a->class_code).name;
}

const char *oxArrayClassIDName(oxClassID id) { return class_info(id).name; }

oxClassID oxClassIDFromClassName(const char *name) {
    for (const ClassInfo &info : class_table)
        if (equal_ignoring_case(info.name, name ? name : ""))
            return static_cast<oxClassID>(info.id);
    return oxUNKNOWN_CLASS;
}

bool oxIsClass(const oxArray *a, const char *name) {
    if (has_class(a, oxOPAQUE_CLASS) && a->opaque.info) return a->opaque.info->is_class(a, name);
    return std::strcmp(oxGetClassName(a), name) == 0;
}

kwSize oxGetElementSize(const oxArray *a) {
    return a->is_indexing_opaque() ? 0 : class_info(a->class_code).element_size;
}
kwSize oxGetElementSizeofClassID(oxClassID id) { return class_info(id).element_size; }

bool oxIsCell(const oxArray *a) { return has_class(a, oxCELL_CLASS); }
bool oxIsStructClass(const oxArray *a) { return has_class(a, oxSTRUCT_CLASS); }
bool oxIsStruct(const oxArray *a) { return is_struct_like(a); }
bool oxIsLogical(const oxArray *a) { return has_class(a, oxLOGICAL_CLASS); }
bool oxIsChar(const oxArray *a) { return has_class(a, oxCHAR_CLASS); }
bool oxIsDouble(const oxArray *a) { return has_class(a, oxDOUBLE_CLASS); }
bool oxIsSingle(const oxArray *a) { return has_class(a, oxSINGLE_CLASS); }
bool oxIsInt8(const oxArray *a) { return has_class(a, oxINT8_CLASS); }
bool oxIsUint8(const oxArray *a) { return has_class(a, oxUINT8_CLASS); }
bool oxIsInt16(const oxArray *a) { return has_class(a, oxINT16_CLASS); }
bool oxIsUint16(const oxArray *a) { return has_class(a, oxUINT16_CLASS); }
bool oxIsInt32(const oxArray *a) { return has_class(a, oxINT32_CLASS); }
bool oxIsUint32(const oxArray *a) { return has_class(a, oxUINT32_CLASS); }
bool oxIsInt64(const oxArray *a) { return has_class(a, oxINT64_CLASS); }
bool oxIsUint64(const oxArray *a) { return has_class(a, oxUINT64_CLASS); }
bool oxIsFunctionHandle(const oxArray *a) { return has_class(a, oxFUNCTION_CLASS); }
bool oxIsOpaque(const oxArray *a) { return has_class(a, oxOPAQUE_CLASS); }
bool oxIsObject(const oxArray *a) { return has_class(a, oxOBJECT_CLASS); }
bool oxIsFloat(const oxArray *a) { return oxIsDouble(a) || oxIsSingle(a); }
bool oxIsInteger(const oxArray *a) {
    return a->class_code >= oxINT8_CLASS && a->class_code <= oxUINT64_CLASS;
}
bool oxIsIndex(const oxArray *a) { return oxIsUint64(a); }
bool oxIsNumeric(const oxArray *a) { return is_numeric(a); }
bool oxIsComplex(const oxArray *a) { return a->get_complexity_attr() == oxATTR_COMPLEX; }
bool oxIsSparse(const oxArray *a) { return is_sparse(a); }

bool oxIsCommaList(const oxArray *a) { return a->has_flag(oxFLAG_COMMA_LIST); }
bool oxIsReusable(const oxArray *a) { return a->has_flag(oxFLAG_REUSABLE); }
bool oxIsDataPrivate(const oxArray *a) { return a->is_private_data(); }
bool oxIsFromGlobalWS(const oxArray *a) { return a->has_flag(oxFLAG_GLOBAL_WS); }
bool oxIsScalarDoubleFlagSet(const oxArray *a) { return a->has_flag(oxFLAG_SCALAR_DOUBLE); }
void oxSetFromGlobalWS(oxArray *a, bool on) { a->set_flag(oxFLAG_GLOBAL_WS, on); }
void oxSetDataPrivateFlag(oxArray *a, bool on) { a->set_private_data(on); }
void oxSetEmptySqrBrktFlag(oxArray *a, bool on) { a->set_flag(oxFLAG_EMPTY_BRACKET, on); }
void oxSetScalarDoubleFlag(oxArray *a) { a->set_flag(oxFLAG_SCALAR_DOUBLE, true); }
void oxClearScalarDoubleFlag(oxArray *a) { a->set_flag(oxFLAG_SCALAR_DOUBLE, false); }

// Deliberate: complexity and sparsity do not matter, and other classes keep the flag they have.
void oxSetScalarDoubleFlagIfAppropiate(oxArray *a) {
    if (!oxIsDouble(a)) return;
    const kwSize *dims = a->get_dimensions();
    bool all_ones = true;
    for (kwSize k = 0; k < a->ndims && all_ones; ++k) all_ones = dims[k] == 1;
    a->set_flag(oxFLAG_SCALAR_DOUBLE, all_ones);
}

int oxGetUserBits(const oxArray *a) { return static_cast<int>(a->flag_word >> oxUSER_BITS_SHIFT); }
void oxSetUserBits(oxArray *a, int bits) {
    a->flag_word =
        (a->flag_word & ~oxUSER_BITS_MASK) | (static_cast<uint32_t>(bits) << oxUSER_BITS_SHIFT);
}

void *oxGetData(const oxArray *a) { return a->get_pdata(); }
double *oxGetPr(const oxArray *a) { return data<double>(a); }
void *oxGetImagData(const oxArray *a) { return a->get_pimag_data(); }
double *oxGetPi(const oxArray *a) { return imag<double>(a); }
oxChar *oxGetChars(const oxArray *a) { return a->get_chars(); }
oxLogical *oxGetLogicals(const oxArray *a) { return data<oxLogical>(a); }
void oxSetData(oxArray *a, void *block) { a->set_pdata_untrusted(block); }
void oxSetPr(oxArray *a, double *block) { a->set_pdata_untrusted(block); }
void oxSetImagData(oxArray *a, void *block) { a->set_pimag_data_untrusted(block); }
void oxSetPi(oxArray *a, double *block) { a->set_pimag_data_untrusted(block); }
kwIndex *oxGetIr_730(const oxArray *a) { return a->get_ir(); }
kwIndex *oxGetJc_730(const oxArray *a) { return a->get_jc(); }
void oxSetIr_730(oxArray *a, kwIndex *ir) { a->set_ir_untrusted(ir); }
void oxSetJc_730(oxArray *a, kwIndex *jc) { a->set_jc_untrusted(jc); }
kwSize oxGetNzmax_730(const oxArray *a) { return a->get_nelements_allocated(); }
void oxSetNzmax_730(oxArray *a, kwSize nzmax) { a->set_nelements_allocated(nzmax); }

kwSize oxGetPdataOffset(void) { return offsetof(oxArray, words); }
kwSize oxGetCellsOffset(void) { return offsetof(oxArray, words); }
kwSize oxGetLinkOffset(void) { return offsetof(oxArray, cross_link); }
kwSize oxGetScopeOffset(void) { return offsetof(oxArray, scope); }
kwSize oxGetReferenceCountOffset(void) { return offsetof(oxArray, reference_count); }

void oxReInitArray2Type(oxArray *a, oxClassID id) {
    release_contents(a);
    for (void *&word : a->words) word = nullptr;
    a->flag_word = 0;
    set_class(a, id);
    store_mn(a, 1, 1);
    a->set_flag(oxFLAG_SCALAR_DOUBLE, a->class_code == oxDOUBLE_CLASS);
}
void oxReInitArray2ScalarDouble(oxArray *a) { oxReInitArray2Type(a, oxDOUBLE_CLASS); }

} // extern "C"
