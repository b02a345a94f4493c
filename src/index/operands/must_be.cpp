// Arguments that must have a class or a form: themselves, a converted copy, or an error.
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/operands/colon_range.h>
#include <index/operands/convert.h>
#include <ox/errors.h>
#include <ox/warnings.h>
#include <sparse/storage/csc.h>

namespace ox {
namespace {

bool is_unknown_empty(const oxArray *a) {
    return a->class_code == oxUNKNOWN_CLASS && a->ndims == 2 && a->get_number_of_elements() == 0;
}

[[noreturn]] void raise_invalid(const oxArray *a, oxClassID to) {
    oxErrMsgIdAndTxt("VELTRO:invalidConversion", "Conversion to %s from %s is not possible.",
                     oxArrayClassIDName(to), oxGetClassName(a));
}

template<class T> bool any_outside_char(const T *p, kwSize n) {
    for (kwSize i = 0; i < n; ++i)
        if (!(p[i] >= 0 && p[i] <= 65535)) return true;
    return false;
}

// Deliberate: a fraction such as 3.7 is cut in silence although the text speaks of non-integer
// values.
void warn_of_cut_chars(const oxArray *a) {
    const kwSize n = is_sparse(a) ? nonzeros(a) : a->get_number_of_elements();
    const bool outside = a->class_code == oxDOUBLE_CLASS   ? any_outside_char(data<double>(a), n)
                         : a->class_code == oxSINGLE_CLASS ? any_outside_char(data<float>(a), n)
                                                           : false;
    if (outside)
        oxWarningMsgIdAndTxt("VELTRO:nonIntegerTruncatedInConversionToChar",
                             "Out of range or non-integer values truncated during conversion to "
                             "character.");
}

// What a source with values meets on its way to logical and char before it is converted.
void check_values(const oxArray *a, oxClassID to) {
    if (to == oxLOGICAL_CLASS && is_complex(a)) oxErrMsg(FNOLOGICALCOMPLEX);
    if (to != oxCHAR_CLASS) return;
    if (is_complex(a))
        oxErrMsgIdAndTxt("VELTRO:noConversionComplexToChar",
                         "Complex values cannot be converted to chars");
    warn_of_cut_chars(a);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxMustBe(oxArray *a, oxClassID to) {
    if (a->class_code == to) return a;
    if (to == oxVOID_CLASS) return oxMustBeSparse(a);
    if (a->has_flag(oxFLAG_COLON)) { // its range is looked at and converted, not its record
        const ArrayGuard range(expand_colon(a));
        if (!range) raise_invalid(a, to);
        return oxMustBe(range.get(), to);
    }
    oxArray *copy = nullptr;
    if (holds_values(a->class_code)) check_values(a, to);
    if (holds_values(a->class_code) || is_unknown_empty(a) || a->class_code == oxOPAQUE_CLASS ||
        a->class_code == oxOBJECT_CLASS)
        copy = oxCreateConvertedCopy(a, to);
    if (!copy) raise_invalid(a, to);
    return copy;
}

oxArray *oxMustBeFullDouble(oxArray *a) {
    if (a->class_code == oxDOUBLE_CLASS) return oxMustBeFull(a);
    oxArray *copy = nullptr;
    if (is_unknown_empty(a))
        copy = hand_over(make_full(rows(a), cols(a), oxDOUBLE_CLASS, false));
    else if (holds_values(a->class_code) || a->class_code == oxOPAQUE_CLASS ||
             a->class_code == oxOBJECT_CLASS)
        copy = oxCreateConvertedCopy(a, oxDOUBLE_CLASS);
    if (!copy) raise_invalid(a, oxDOUBLE_CLASS);
    oxArray *full = oxMustBeFull(copy);
    if (full != copy) oxDestroyArray(copy);
    return full;
}

oxArray *oxMustBeFull(oxArray *a) { return is_sparse(a) ? hand_over(sparse_to_full(a)) : a; }

oxArray *oxMustBeSparse(oxArray *a) {
    if (is_sparse(a)) return a;
    const bool has_form = a->class_code == oxDOUBLE_CLASS || a->class_code == oxLOGICAL_CLASS;
    if (a->ndims > 2 || !has_form) raise_sparse_class();
    return hand_over(full_to_sparse(a));
}

oxArray *oxMustBeComplex(oxArray *a) {
    if (is_complex(a)) return a;
    oxArray *copy =
        is_numeric(a) ? oxCreateConvertedCopy(a, oxGetClassID(a)) : oxMustBe(a, oxDOUBLE_CLASS);
    if (!copy) raise_out_of_memory();
    const kwSize count = is_sparse(copy) ? copy->num.nzmax : copy->get_number_of_elements();
    if (!count || is_complex(copy)) return copy;
    copy->num.pimag = oxCallocEx(count, class_info(copy->class_code).element_size);
    if (!copy->num.pimag) raise_out_of_memory();
    return copy;
}

} // extern "C"
