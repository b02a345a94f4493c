// The copying half of catenation: one pass of block copies, operand by operand.
#include <containers/field_table.h>
#include <containers/object_layer.h>
#include <containers/slots.h>
#include <core/alloc.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/dispatch.h>
#include <core/header_copy.h>
#include <core/imaginary.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <index/catenate_parts.h>
#include <ox/sharing.h>

#include <cstring>

namespace ox {
namespace {

// The result is `outer` stacks of one contiguous run per operand, each of `inner` times its extent.
struct Stacks {
    explicit Stacks(const CatParts &p) {
        for (kwSize k = 0; k < p.ndim; ++k)
            if (k < p.dim)
                inner *= p.dims[k];
            else if (k > p.dim)
                outer *= p.dims[k];
    }
    kwSize inner = 1, outer = 1;
};

// Calls f(operand, source position, target position, count) for every contiguous run, positions
// in elements.
template<class F> void for_each_run(const CatParts &p, F &&f) {
    const Stacks stacks(p);
    kwSize target = 0;
    for (kwSize o = 0; o < stacks.outer; ++o)
        for (kwSize k = 0; k < p.n; ++k) {
            const kwSize count = stacks.inner * extent_along(p.operands[k], p.dim);
            if (count) f(k, o * count, target, count);
            target += count;
        }
}

using Byte = unsigned char;

// One operand's block: a run of `bytes` for every stack. Null stands for zeros.
struct Part {
    const Byte *from;
    kwSize bytes;
};

// The runs of a few parts, side by side at the same place of every stack. Past the caches they are
// written as one run, for short ones would not fill whole lines.
void join_few(Byte *to, const Part *first, const Part *end, kwSize outer, kwSize stack,
              RunCopier &runs) {
    alignas(64) Byte buffer[2 * tuning::join_bytes];
    kwSize joint = 0;
    for (const Part *p = first; p < end; ++p) joint += p->bytes;
    const bool gathers =
        end - first > 1 && joint <= sizeof buffer && outer * stack >= tuning::stream_min_bytes;
    for (kwSize o = 0; o < outer; ++o, to += stack) {
        Byte *at = gathers ? buffer : to;
        for (const Part *p = first; p < end; at += p++->bytes) {
            if (!p->from) {
                std::memset(at, 0, p->bytes);
                continue;
            }
            const Byte *from = p->from + o * p->bytes;
            if (!gathers) {
                runs.copy(at, from, p->bytes);
                continue;
            }
            __builtin_prefetch(from + stream_ahead);
            copy_bytes(at, from, p->bytes);
        }
        if (gathers) stream_copy(to, buffer, joint);
    }
    if (gathers) stream_fence();
}

// A few parts at a time, so that the processor can foresee where each source goes on.
void join_parts(Byte *to, const Part *parts, kwSize n, kwSize outer) {
    kwSize stack = 0;
    for (kwSize k = 0; k < n; ++k) stack += parts[k].bytes;
    RunCopier runs(outer * stack);
    for (kwSize k = 0; k < n;) {
        const kwSize first = k;
        kwSize joint = 0;
        while (k < n && joint < tuning::join_bytes) joint += parts[k++].bytes;
        join_few(to, parts + first, parts + k, outer, stack, runs);
        to += joint;
    }
}

oxArray *join_numbers(const CatParts &p) {
    const Stacks stacks(p);
    const int id = p.reference->class_code;
    const kwSize size = class_info(id).element_size * stacks.inner;
    auto parts = RawArray<Part>::make(p.n);
    if (!parts) return nullptr;
    bool complex = false;
    for (kwSize k = 0; k < p.n; ++k) {
        const oxArray *a = p.operands[k];
        parts[k] = {data<Byte>(a), extent_along(a, p.dim) * size};
        complex = complex || has_imag_block(a);
    }
    ArrayGuard c(make_uninit_nd(p.ndim, p.dims, id, complex));
    if (!c || !c->num.pdata) return c.release();
    join_parts(data<Byte>(c.get()), parts.get(), p.n, stacks.outer);
    if (!complex) return c.release();
    for (kwSize k = 0; k < p.n; ++k)
        parts[k].from = has_imag_block(p.operands[k]) ? imag<Byte>(p.operands[k]) : nullptr;
    join_parts(imag<Byte>(c.get()), parts.get(), p.n, stacks.outer);
    return c.release();
}

oxArray *join_scalars(const CatParts &p) {
    const int id = p.reference->class_code;
    oxArray *c = make_uninit_nd(p.ndim, p.dims, id, false);
    if (!c) return nullptr;
    visit_width(class_info(id).element_size, [&]<class T>(std::type_identity<T>) {
        T *to = data<T>(c);
        for (kwSize k = 0; k < p.n; ++k) {
            const T *from = data<T>(p.operands[k]);
            to[k] = from ? *from : T{};
        }
    });
    return c;
}

// A header like the reference's with zeroed storage for the result; null without memory.
oxArray *make_like_reference(const CatParts &p, kwSize bytes_each) {
    oxArray *c = copy_header(p.reference, copy_clears | oxFLAG_SCALAR_DOUBLE, CopyDims::zero);
    if (!c) return nullptr;
    c->num.pdata = nullptr;
    ArrayGuard guard(c);
    if (store_dimensions(c, p.ndim, p.dims) != 0) return nullptr;
    const kwSize count = c->get_number_of_elements();
    if (count && bytes_each) c->num.pdata = oxCallocEx(count, bytes_each);
    if (count && bytes_each && !c->num.pdata) return nullptr;
    notify_object_copy(c, p.reference);
    return guard.release();
}

oxArray *join_cells(const CatParts &p) {
    oxArray *c = make_like_reference(p, sizeof(oxArray *));
    if (!c) return nullptr;
    for_each_run(p, [&](kwSize k, kwSize from, kwSize to, kwSize count) {
        for (kwSize i = 0; i < count; ++i)
            c->cell.slots[to + i] = oxCreateReference(p.operands[k]->cell.slots[from + i]);
    });
    return c;
}

// Field f of the result is field number[k * fields + f] of operand k.
oxArray *join_structs(const CatParts &p) {
    const kwSize fields = static_cast<kwSize>(field_count(p.reference));
    oxArray *c = make_like_reference(p, fields * sizeof(oxArray *));
    if (!c || fields == 0) return c;
    ArrayGuard guard(c);
    auto number = RawArray<int32_t>::make(p.n * fields);
    if (!number) return nullptr;
    const name_index_info *names = p.reference->record.names;
    for (kwSize k = 0; k < p.n; ++k)
        for (kwSize f = 0; f < fields; ++f) {
            const name_index_info *own = p.operands[k]->record.names;
            number[k * fields + f] =
                own == names ? static_cast<int32_t>(f) : find_field(own, names->names[f]);
        }
    for_each_run(p, [&](kwSize k, kwSize from, kwSize to, kwSize count) {
        const int32_t *field = &number[k * fields];
        oxArray *const *source = p.operands[k]->record.slots + from * fields;
        oxArray **target = c->record.slots + to * fields;
        for (kwSize i = 0; i < count; ++i, source += fields)
            for (kwSize f = 0; f < fields; ++f) *target++ = oxCreateReference(source[field[f]]);
    });
    return guard.release();
}

// Elements of 32 bytes that the class layer may have to copy one by one.
oxArray *join_handles(const CatParts &p) {
    const kwSize size = class_info(oxFUNCTION_CLASS).element_size;
    ArrayGuard c(make_like_reference(p, size));
    if (!c) return nullptr;
    const auto copy = object_layer().fh_copy_element;
    bool copied = true;
    for_each_run(p, [&](kwSize k, kwSize from, kwSize to, kwSize count) {
        auto *target = data<unsigned char>(c.get()) + to * size;
        const auto *source = data<unsigned char>(p.operands[k]) + from * size;
        if (!copy) std::memcpy(target, source, count * size);
        for (kwSize i = 0; copy && copied && i < count; ++i)
            copied = copy(target + i * size, source + i * size);
    });
    return copied ? c.release() : nullptr;
}

oxArray *join_opaque(const CatParts &p) {
    xxInfo *info = p.reference->opaque.info;
    if (!info || p.reference->is_indexing_opaque())
        raise_layer_missing(oxGetClassName(p.reference));
    ArrayGuard c(make_like_reference(p, sizeof(void *)));
    if (!c) return nullptr;
    bool copied = true;
    for_each_run(p, [&](kwSize k, kwSize from, kwSize to, kwSize count) {
        for (kwSize i = 0; copied && i < count; ++i)
            copied = info->copy_element(data<void *>(c.get()) + to + i,
                                        data<void *>(p.operands[k])[from + i]);
    });
    return copied ? c.release() : nullptr;
}

} // namespace

oxArray *join_full(const CatParts &parts) {
    const oxArray *a = parts.reference;
    if (a->class_code == oxCELL_CLASS) return join_cells(parts);
    if (is_struct_like(a)) return join_structs(parts);
    if (a->class_code == oxFUNCTION_CLASS) return join_handles(parts);
    if (a->class_code == oxOPAQUE_CLASS) return join_opaque(parts);
    return parts.scalars ? join_scalars(parts) : join_numbers(parts);
}

} // namespace ox
