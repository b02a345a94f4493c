// Reading the numbers, characters and sparse vectors of an array element, converted silently where
// they are stored as another type.
#include <core/dispatch.h>
#include <index/operands/convert_rules.h>
#include <sparse/storage/csc.h>
#include <stream/array_reader.h>

#include <ut.h>

namespace ox {
namespace {

// Stored elements become elements of the array; dst and src are aligned.
using Convert = void (*)(void *dst, const void *src, kwSize n);

template<class D, class S> void widen(void *dst, const void *src, kwSize n) {
    auto *d = static_cast<D *>(dst);
    auto *s = static_cast<const S *>(src);
    for (kwSize k = 0; k < n; ++k) d[k] = static_cast<D>(s[k]);
}

// NaN is true here, and any byte but 0 becomes 1.
template<class S> void truth(void *dst, const void *src, kwSize n) {
    auto *d = static_cast<unsigned char *>(dst);
    auto *s = static_cast<const S *>(src);
    for (kwSize k = 0; k < n; ++k) d[k] = s[k] != S{};
}

Convert truth_from(int src_class) {
    return visit_class<Convert>(src_class, nullptr,
                                []<class S>(std::type_identity<S>) -> Convert { return truth<S>; });
}

// Sign-extended, so that what is negative is larger than every row and every count.
Convert index_from(uint32_t type) {
    switch (type) {
    case oiINT32:
        return widen<kwIndex, int32_t>;
    case oiUINT32:
        return widen<kwIndex, uint32_t>;
    case oiINT64:
    case oiUINT64:
        return widen<kwIndex, uint64_t>;
    default:
        return nullptr;
    }
}

constexpr kwSize piece_bytes = 4096;

// f(dst, src, n) for pieces of the stored elements.
template<class F> int32_t take_pieces(Input &in, SubElement &e, unsigned char *dst, kwSize dst_size,
                                      kwSize n, F &&f) {
    alignas(8) unsigned char piece[piece_bytes];
    const kwSize src_size = type_unit(e.type), most = piece_bytes / src_size;
    while (n > 0) {
        const kwSize k = std::min(n, most);
        if (!in.take_units(e, piece, k * src_size)) return oiSHORT_READ;
        f(dst, piece, k);
        dst += k * dst_size;
        n -= k;
    }
    return oiSUCCESS;
}

// --- Full arrays -------------------------------------------------------------------------------

// n elements of the class into a block of `capacity`.
int32_t read_part(Input &in, int id, kwSize n, kwSize capacity, void **block) {
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    const int stored = type_class(e.type);
    const kwSize stored_size = type_unit(e.type), size = class_info(id).element_size;
    if (stored == 0 || e.count % stored_size != 0 || e.count / stored_size != n)
        return oiBAD_ELEMENT;
    int32_t status;
    if (id == oxLOGICAL_CLASS) {
        const Convert f = truth_from(stored);
        status = read_block(in, n, capacity, size, block, [&](unsigned char *dst, kwSize k) {
            return take_pieces(in, e, dst, size, k, f);
        });
    } else if (id == stored) {
        status = read_block(in, n, capacity, size, block, [&](unsigned char *dst, kwSize k) {
            return in.take_units(e, dst, k * size) ? oiSUCCESS : oiSHORT_READ;
        });
    } else {
        const ConvertKernel f = vector_kernel(id, stored);
        if (!f) return oiBAD_ELEMENT;
        status = read_block(in, n, capacity, size, block, [&](unsigned char *dst, kwSize k) {
            return take_pieces(in, e, dst, size, k,
                               [f](void *d, const void *s, kwSize m) { f(d, s, m, 0); });
        });
    }
    if (status != oiSUCCESS) return status;
    return in.close(e) ? oiSUCCESS : oiSHORT_READ;
}

// --- Characters --------------------------------------------------------------------------------

// The units of UTF-8 text; their number must be n.
int32_t decode_utf8(const char *text, kwSize bytes, kwSize n, void **block) {
    if (bytes > INT32_MAX) return oiBAD_ELEMENT;
    const auto length = static_cast<int32_t>(bytes);
    int32_t units = 0;
    utf8_to_utf16_n(nullptr, &units, text, length);
    if (units < 0 || static_cast<kwSize>(units) != n) return oiBAD_ELEMENT;
    if (n == 0) return oiSUCCESS;
    *block = oxMallocEx(n * sizeof(oxChar));
    if (!*block) return oiREFUSED;
    utf8_to_utf16_n(static_cast<oxChar *>(*block), &units, text, length);
    return oiSUCCESS;
}

// One unit for each byte up to 127; other text is decoded.
int32_t read_utf8(Input &in, SubElement &e, kwSize n, void **block) {
    RawBlock copy;
    const char *text;
    if (const int32_t status = read_bytes(in, e, &copy, &text)) return status;
    unsigned above = 0;
    for (kwSize k = 0; k < e.count; ++k) above |= static_cast<unsigned char>(text[k]);
    if (above > 127) return decode_utf8(text, e.count, n, block);
    if (e.count != n) return oiBAD_ELEMENT;
    if (n == 0) return oiSUCCESS;
    *block = oxMallocEx(n * sizeof(oxChar));
    if (!*block) return oiREFUSED;
    widen<oxChar, unsigned char>(*block, text, n);
    return oiSUCCESS;
}

int32_t read_units(Input &in, SubElement &e, kwSize n, void **block) {
    const kwSize size = type_unit(e.type);
    if (e.count % size != 0 || e.count / size != n) return oiBAD_ELEMENT;
    return read_block(in, n, n, sizeof(oxChar), block, [&](unsigned char *dst, kwSize k) {
        if (size == 1) return take_pieces(in, e, dst, 2, k, widen<oxChar, unsigned char>);
        return static_cast<int32_t>(in.take_units(e, dst, 2 * k) ? oiSUCCESS : oiSHORT_READ);
    });
}

int32_t read_text(Input &in, kwSize n, void **block) {
    SubElement e;
    int32_t status = in.open(&e);
    if (status != oiSUCCESS) return status;
    if (e.type == oiUTF8)
        status = read_utf8(in, e, n, block);
    else if (e.type == oiINT8 || e.type == oiUINT8 || type_unit(e.type) == 2)
        status = read_units(in, e, n, block);
    else
        return oiBAD_ELEMENT;
    if (status != oiSUCCESS) return status;
    return in.close(e) ? oiSUCCESS : oiSHORT_READ;
}

// --- Sparse vectors ------------------------------------------------------------------------------

// All entries of an index vector; the count comes back. `fit` turns it into the capacity, or 0.
template<class Fit>
int32_t read_index(Input &in, kwSize *count, Fit &&fit, RawArray<kwIndex> *index) {
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    const Convert f = index_from(e.type);
    const kwSize size = type_unit(e.type);
    if (!f || e.count % size != 0) return oiBAD_ELEMENT;
    *count = e.count / size;
    const kwSize capacity = fit(*count);
    if (capacity == 0) return oiBAD_ELEMENT;
    void *block;
    const int32_t status = read_block(in, *count, capacity, sizeof(kwIndex), &block,
                                      [&](unsigned char *dst, kwSize k) {
                                          return take_pieces(in, e, dst, sizeof(kwIndex), k, f);
                                      });
    index->reset(static_cast<kwIndex *>(block));
    if (status != oiSUCCESS) return status;
    return in.close(e) ? oiSUCCESS : oiSHORT_READ;
}

// The capacity as recorded, unless it is more than the stored elements make believable; 0 when it
// is too small for them.
kwSize sparse_capacity(uint64_t recorded, kwSize stored) {
    const kwSize capacity = std::max<kwSize>(recorded, 1);
    if (capacity < stored) return 0;
    return capacity > 4 * stored + 16 ? std::max<kwSize>(stored, 1) : capacity;
}

} // namespace

int32_t read_full(Input &in, const ArrayHead &head, oxArray *a) {
    if (a->class_code == oxCHAR_CLASS) return read_text(in, head.elements, &a->num.pdata);
    int32_t status = read_part(in, a->class_code, head.elements, head.elements, &a->num.pdata);
    if (status == oiSUCCESS && head.complex) {
        status = read_part(in, a->class_code, head.elements, head.elements, &a->num.pimag);
    }
    return status;
}

int32_t read_sparse(Input &in, const ArrayHead &head, oxArray *a) {
    const kwSize m = head.dims[0], n = head.dims[1];
    kwSize nnz, starts, capacity = 0;
    RawArray<kwIndex> ir, jc;
    int32_t status = read_index(
        in, &nnz, [&](kwSize k) { return capacity = sparse_capacity(head.capacity, k); }, &ir);
    if (status == oiSUCCESS)
        status = read_index(
            in, &starts, [&](kwSize k) { return k == n + 1 ? k : 0; }, &jc);
    if (status != oiSUCCESS) return status;
    if (broken_csc_rule(m, n, capacity, jc.get(), ir.get()) != 0 || jc[n] != nnz)
        return oiBAD_ELEMENT;
    void *re = nullptr, *im = nullptr;
    status = read_part(in, a->class_code, nnz, capacity, &re);
    if (status == oiSUCCESS && head.complex)
        status = read_part(in, a->class_code, nnz, capacity, &im);
    if (status != oiSUCCESS) {
        oxFreeEx(re);
        oxFreeEx(im);
        return status;
    }
    a->num = {re, im, ir.release(), jc.release(), capacity};
    return oiSUCCESS;
}

} // namespace ox
