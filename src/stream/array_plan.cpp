// What an array element will consist of: types of its parts, names, nested elements.
#include <containers/slots.h>
#include <core/imaginary.h>
#include <sparse/storage/csc.h>
#include <stream/array_plan.h>
#include <stream/compaction.h>
#include <stream/file_class.h>

namespace ox {
namespace {

// --- Storing elements as another type: every value fits, because the type was chosen so ----------

template<class Stored, class T>
void store_as(unsigned char *dst, const void *src, kwSize first, kwSize n) {
    const T *from = static_cast<const T *>(src) + first;
    for (kwSize k = 0; k < n; ++k) store(dst + k * sizeof(Stored), static_cast<Stored>(from[k]));
}

NumberPart plain_part(uint32_t type, const void *data, kwSize count) {
    return {nullptr, data, type, static_cast<uint32_t>(type_unit(type)), count};
}

NumberPart double_part(uint32_t type, const void *data, kwSize count) {
    NumberPart p = plain_part(type, data, count);
    p.store = type == oiUINT8    ? store_as<uint8_t, double>
              : type == oiUINT16 ? store_as<uint16_t, double>
              : type == oiINT16  ? store_as<int16_t, double>
              : type == oiINT32  ? store_as<int32_t, double>
                                 : nullptr;
    return p;
}

NumberPart index_part(TagForm form, const kwIndex *index, kwSize count) {
    NumberPart p = plain_part(form.wide ? oiINT64 : oiINT32, index, count);
    if (!form.wide) p.store = store_as<uint32_t, kwIndex>;
    return p;
}

NumberPart char_part(const oxChar *text, kwSize n, bool utf16) {
    if (utf16) return plain_part(oiUINT16, text, n);
    unsigned above = 0;
    for (kwSize k = 0; k < n; ++k) above |= text[k];
    if (above > 127) return plain_part(oiUTF16, text, n);
    NumberPart p = plain_part(oiUTF8, text, n);
    p.store = store_as<uint8_t, oxChar>;
    return p;
}

// --- Compaction ------------------------------------------------------------------------------

// The types of both parts, in the record that the measuring pass leaves in the user bits: real in
// the low four bits, imaginary in the high ones.
int compact_record(const oxArray *a, kwSize n, PlanPass pass) {
    const int left = oxGetUserBits(a);
    if (pass == PlanPass::writing && left != 0) return left;
    const uint32_t re = compact_type(data<double>(a), n);
    const uint32_t im = is_complex(a) ? compact_type(imag<double>(a), n) : 0;
    const int record = static_cast<int>(re | im << 4);
    if (pass == PlanPass::measuring) oxSetUserBits(const_cast<oxArray *>(a), record);
    return record;
}

// --- Kinds of arrays -------------------------------------------------------------------------

int32_t plan_full(const oxArray *a, EncodeOptions options, PlanPass pass, ArrayPlan *plan) {
    const kwSize n = a->class_code == oxUNKNOWN_CLASS ? 0 : a->get_number_of_elements();
    if (n > 0 && (!a->num.pdata || a->is_imag_marked())) return oiBAD_ELEMENT;
    if (a->class_code == oxCHAR_CLASS) {
        plan->parts[plan->nparts++] = char_part(data<oxChar>(a), n, options.utf16);
        return oiSUCCESS;
    }
    const uint32_t type = natural_type(a->class_code);
    const bool compact = options.compact && a->class_code == oxDOUBLE_CLASS;
    const auto record = static_cast<uint32_t>(compact ? compact_record(a, n, pass) : 0);
    const auto part = [&](uint32_t compacted, const void *block) {
        return compact ? double_part(compacted, block, n) : plain_part(type, block, n);
    };
    plan->parts[plan->nparts++] = part(record & 15, a->num.pdata);
    if (is_complex(a)) plan->parts[plan->nparts++] = part(record >> 4, a->num.pimag);
    return oiSUCCESS;
}

int32_t plan_sparse(const oxArray *a, EncodeOptions options, ArrayPlan *plan) {
    if (!a->num.pdata || !a->num.ir || !a->num.jc || a->is_imag_marked()) return oiBAD_ELEMENT;
    const kwSize nnz = nonzeros(a);
    if (!options.form.wide && nnz > INT32_MAX) return oiSHORT_WRITE;
    const uint32_t type = natural_type(a->class_code);
    const bool fits = options.form.wide || a->num.nzmax <= UINT32_MAX;
    plan->words[1] = fits ? a->num.nzmax : std::max<kwSize>(nnz, 1);
    plan->parts[plan->nparts++] = index_part(options.form, a->num.ir, nnz);
    plan->parts[plan->nparts++] = index_part(options.form, a->num.jc, cols(a) + 1);
    plan->parts[plan->nparts++] = plain_part(type, a->num.pdata, nnz);
    if (is_complex(a)) plan->parts[plan->nparts++] = plain_part(type, a->num.pimag, nnz);
    return oiSUCCESS;
}

// One more than the longest name, and so long that the names of all fields together never travel
// as a small element.
kwSize slot_length(const name_index_info *table, kwSize small_limit) {
    kwSize longest = 0;
    const kwSize fields = table ? static_cast<kwSize>(table->count) : 0;
    for (kwSize k = 0; k < fields; ++k) longest = std::max(longest, std::strlen(table->names[k]));
    const kwSize length = longest + 1;
    return fields > 0 && fields * length <= small_limit ? (fields + small_limit) / fields : length;
}

int32_t plan_container(const oxArray *a, EncodeOptions options, ArrayPlan *plan) {
    plan->nests = true;
    plan->nslots = slot_count(a);
    plan->slots = a->cell.slots;
    if (plan->nslots > 0 && !plan->slots) return oiBAD_ELEMENT;
    if (!is_struct_like(a)) return oiSUCCESS;
    plan->has_fields = true;
    plan->slot_length = slot_length(a->record.names, options.form.small_limit());
    if (plan->slot_length > INT32_MAX) return oiSHORT_WRITE;
    if (a->class_code == oxOBJECT_CLASS)
        plan->class_name = a->record.classname ? a->record.classname : "";
    return oiSUCCESS;
}

int32_t plan_opaque(const oxArray *a, ArrayPlan *plan) {
    if (!a->opaque.info) return oiREFUSED;
    plan->has_dims = false;
    plan->class_name = a->opaque.info->subclass_name(a);
    plan->nests = true;
    plan->nslots = 1;
    return plan->class_name ? oiSUCCESS : oiREFUSED;
}

int32_t plan_contents(const oxArray *a, EncodeOptions options, PlanPass pass, ArrayPlan *plan) {
    switch (a->class_code) {
    case oxCELL_CLASS:
    case oxSTRUCT_CLASS:
    case oxOBJECT_CLASS:
        return plan_container(a, options, plan);
    case oxFUNCTION_CLASS:
        plan->nests = true;
        plan->nslots = a->get_number_of_elements();
        return oiSUCCESS;
    case oxOPAQUE_CLASS:
        return plan_opaque(a, plan);
    default:
        return is_sparse(a) ? plan_sparse(a, options, plan) : plan_full(a, options, pass, plan);
    }
}

} // namespace

int32_t plan_array(const oxArray *a, EncodeOptions options, PlanPass pass, ArrayPlan *plan) {
    uint32_t word = write_file_class(a->class_code, is_sparse(a));
    if (a->has_flag(oxFLAG_GLOBAL_WS)) word |= file_global;
    if (is_complex(a)) word |= file_complex;
    plan->words[0] = word;
    plan->words[1] = 0;
    const kwSize *dims = a->get_dimensions();
    if (!options.form.wide)
        for (kwSize k = 0; k < a->ndims; ++k)
            if (dims[k] > INT32_MAX) return oiSHORT_WRITE;
    return plan_contents(a, options, pass, plan);
}

} // namespace ox
