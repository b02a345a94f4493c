// A whole array converted to another class.
#include <containers/copies.h>
#include <containers/object_layer.h>
#include <containers/structs.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/header_copy.h>
#include <core/imaginary.h>
#include <core/size_check.h>
#include <index/operands/colon_range.h>
#include <index/operands/convert.h>
#include <sparse/storage/csc.h>

#include <cstring>

namespace ox {
namespace {

// Whether a block of byte-sized elements holds truth values as it is.
bool all_zero_or_one(const oxArray *a) {
    const kwSize n = is_sparse(a) ? nonzeros(a) : a->get_number_of_elements();
    const uint8_t *p = data<uint8_t>(a);
    constexpr kwSize block = 4096; // looked at before the next chance to stop
    uint8_t other = 0;
    for (kwSize i = 0; i < n && !other;) {
        const kwSize end = n - i < block ? n : i + block;
        for (; i < end; ++i) other |= static_cast<uint8_t>(p[i] >> 1);
    }
    return !other;
}

oxArray *share_as_logical(const oxArray *a) {
    oxArray *copy = shared_copy(a);
    if (copy) set_class(copy, oxLOGICAL_CLASS);
    return copy;
}

oxArray *empty_of_class(const oxArray *a, int to) {
    if (to == oxSTRUCT_CLASS) return make_struct_nd(a->ndims, a->get_dimensions(), 0, nullptr);
    return make_full_nd(a->ndims, a->get_dimensions(), to, false);
}

// The class layer would not hear of the copy again once it is a struct.
oxArray *object_as_struct(const oxArray *a) {
    oxArray *copy = deep_copy(a);
    if (!copy) return nullptr;
    if (object_layer().object_release) object_layer().object_release(copy);
    set_class(copy, oxSTRUCT_CLASS);
    copy->record.classname = nullptr;
    copy->record.tag = 0;
    copy->record.checksum = 0;
    return copy;
}

// B = A with converted stored values; index vectors are copied. Double and logical only.
Converted convert_sparse(const oxArray *a, int to, oxArray **out) {
    if (to == oxLOGICAL_CLASS && is_complex(a)) return Converted::complex_to_logical;
    if (to != oxDOUBLE_CLASS && to != oxLOGICAL_CLASS) return Converted::sparse_class;
    const kwSize n = cols(a), nnz = nonzeros(a);
    const bool complex = has_imag_block(a);
    ArrayGuard b(make_sparse(rows(a), n, nnz, to, complex));
    if (!b) return Converted::impossible;
    std::memcpy(b->num.jc, a->num.jc, (n + 1) * sizeof(kwIndex));
    std::memcpy(b->num.ir, a->num.ir, nnz * sizeof(kwIndex));
    Converted status = convert_elements(b->num.pdata, to, a->num.pdata, a->class_code, nnz);
    if (status == Converted::done && complex)
        status = convert_elements(b->num.pimag, to, a->num.pimag, a->class_code, nnz);
    if (status == Converted::done) *out = b.release();
    return status;
}

// One part of a full array in a block of its own; no block for an empty array.
Converted convert_part(const oxArray *a, int to, const void *part, kwSize count, RawBlock *out) {
    if (count == 0) return Converted::done;
    *out = RawBlock::make(count * class_info(to).element_size);
    return *out ? convert_elements(out->get(), to, part, a->class_code, count)
                : Converted::impossible;
}

Converted convert_full(const oxArray *a, int to, oxArray **out) {
    kwSize count;
    if (!check_size(a->get_dimensions(), a->ndims, class_info(to).element_size, &count))
        return Converted::too_large;
    // A complex array loses its imaginary part on its way to char.
    const bool complex = has_imag_block(a) && to != oxCHAR_CLASS;
    RawBlock re, im;
    Converted status = convert_part(a, to, a->num.pdata, count, &re);
    if (status == Converted::done && complex)
        status = convert_part(a, to, a->num.pimag, count, &im);
    if (status != Converted::done) return status;
    oxArray *b = copy_header(a, copy_clears);
    if (!b) return Converted::impossible;
    set_class(b, to);
    b->set_flag(oxFLAG_SCALAR_DOUBLE, count == 1 && to == oxDOUBLE_CLASS);
    b->num = {re.release(), im.release(), nullptr, nullptr, 0};
    drop_imag_if_zero(b);
    *out = b;
    return Converted::done;
}

// A source of class logical, char or a number. A colon object is converted as the range that it
// stands for: the numbers of its record would be no record of the other class.
Converted convert_values(const oxArray *a, int to, oxArray **out) {
    if (a->has_flag(oxFLAG_COLON)) {
        const ArrayGuard range(expand_colon(a));
        return range ? convert_values(range.get(), to, out) : Converted::impossible;
    }
    const bool empty = a->get_number_of_elements() == 0;
    if (to == oxLOGICAL_CLASS) {
        if (is_complex(a)) return Converted::complex_to_logical;
        if (class_info(a->class_code).element_size == 1 && all_zero_or_one(a)) {
            *out = share_as_logical(a);
            return *out ? Converted::done : Converted::impossible;
        }
    }
    if (to == oxCHAR_CLASS && a->class_code == oxLOGICAL_CLASS) return Converted::impossible;
    if (!holds_values(to)) {
        if (empty) *out = empty_of_class(a, to);
        return *out ? Converted::done : Converted::impossible;
    }
    return is_sparse(a) ? convert_sparse(a, to, out) : convert_full(a, to, out);
}

} // namespace

Converted convert_copy(const oxArray *a, int to, oxArray **out) {
    *out = nullptr;
    if (to == a->class_code)
        *out = deep_copy(a);
    else if (holds_values(a->class_code))
        return convert_values(a, to, out);
    else if (is_struct_like(a) && to == oxCELL_CLASS)
        *out = struct_to_cell(a);
    else if (a->class_code == oxOBJECT_CLASS && to == oxSTRUCT_CLASS)
        *out = object_as_struct(a);
    return *out ? Converted::done : Converted::impossible;
}

} // namespace ox

using namespace ox;

extern "C" oxArray *oxCreateConvertedCopy(const oxArray *a, oxClassID to) {
    if (a->class_code == oxOPAQUE_CLASS && to != oxOPAQUE_CLASS)
        return a->opaque.info ? a->opaque.info->convert(a, to) : nullptr;
    oxArray *copy;
    const Converted status = convert_copy(a, to, &copy);
    raise_unless_converted(status);
    return copy ? hand_over(copy) : nullptr;
}
