// The transpose of an array, and of blocks by class and by element width.
#include <containers/copies.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/create.h>
#include <core/destroy.h>
#include <core/imaginary.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <errors/raise.h>
#include <index/permute.h>
#include <index/transpose_kernels.h>
#include <ox/permute.h>
#include <sparse/storage/csc.h>

#include <cstring>

namespace ox {
namespace {

// Bytes of an element of the classes that are transposed by blocks, else 0.
kwSize block_width(int id) { return holds_values(id) ? class_info(id).element_size : 0; }

// The n-by-m block dst from the m-by-n block src.
void transpose_block(const void *src, void *dst, kwSize m, kwSize n, kwSize width) {
    if (m == 0 || n == 0) return;
    const bool streams = m * n * width >= tuning::stream_min_bytes;
    transpose_for(width, streams)(dst, n, src, m, m, n);
    if (streams) stream_fence();
}

// False without memory, which only other than square blocks need.
bool transpose_in_place(void *block, kwSize m, kwSize n, kwSize width) {
    if (m <= 1 || n <= 1) return true;
    if (m == n) {
        vector_transpose(width)->in_place(block, n);
        return true;
    }
    RawBlock copy = RawBlock::make(m * n * width);
    if (!copy) return false;
    std::memcpy(copy.get(), block, m * n * width);
    transpose_block(copy.get(), block, m, n, width);
    return true;
}

oxArray *shared_vector(const oxArray *a) {
    oxArray *b = shared_copy(a);
    if (b) store_mn(b, cols(a), rows(a));
    return b;
}

// A reusable square array lends its block, which is then transposed where it is.
oxArray *transposed_values(const oxArray *a) {
    const kwSize m = rows(a), n = cols(a), width = block_width(a->class_code);
    const bool complex = has_imag_block(a);
    oxArray *lender = const_cast<oxArray *>(a);
    ArrayGuard b(make_uninit(m, n, a->class_code, complex, {m == n ? kwSize{1} : 0, &lender}));
    if (!b) return nullptr;
    if (b->num.pdata && b->num.pdata == a->num.pdata) {
        if (!transpose_in_place(b->num.pdata, m, n, width)) return nullptr;
        if (complex && !transpose_in_place(b->num.pimag, m, n, width)) return nullptr;
        return b.release();
    }
    store_mn(b.get(), n, m);
    transpose_block(a->num.pdata, b->num.pdata, m, n, width);
    if (complex) transpose_block(a->num.pimag, b->num.pimag, m, n, width);
    return b.release();
}

oxArray *transposed_elements(const oxArray *a) {
    const kwSize dims[2] = {rows(a), cols(a)}, order[2] = {2, 1};
    return permuted_copy(a, 2, dims, order);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxTranspose(const oxArray *a) {
    const kwSize m = rows(a), n = cols(a); // before ndims, which an opaque array completes here
    if (a->ndims > 2)
        oxErrMsgIdAndTxt("VELTRO:transpose:notImplemented", "Transpose on ND array is not defined");
    if (is_sparse(a)) return hand_over(sparse_transpose(a));
    if ((m == 1 || n == 1) && !is_complex(a)) return hand_over(shared_vector(a));
    if (block_width(a->class_code) > 0) return hand_over(transposed_values(a));
    if (a->class_code == oxOPAQUE_CLASS || a->class_code == oxOBJECT_CLASS)
        BlockTransposeN(nullptr, nullptr, m, n, oxGetElementSize(a));
    return hand_over(transposed_elements(a));
}

void oxTransposeArray(const oxArray *a, const void *src, void *dst, kwSize m, kwSize n) {
    if (const kwSize width = block_width(a->class_code)) transpose_block(src, dst, m, n, width);
}

void oxInPlaceBlockTranspose(oxArray *a, void *block, kwSize m, kwSize n) {
    const kwSize width = block_width(a->class_code);
    if (width && !transpose_in_place(block, m, n, width)) raise_out_of_memory();
}

void BlockTranspose8(const uint8_t *src, uint8_t *dst, kwSize m, kwSize n) {
    transpose_block(src, dst, m, n, 1);
}
void BlockTranspose16(const uint16_t *src, uint16_t *dst, kwSize m, kwSize n) {
    transpose_block(src, dst, m, n, 2);
}
void BlockTranspose32(const uint32_t *src, uint32_t *dst, kwSize m, kwSize n) {
    transpose_block(src, dst, m, n, 4);
}
void BlockTranspose64(const uint64_t *src, uint64_t *dst, kwSize m, kwSize n) {
    transpose_block(src, dst, m, n, 8);
}
void BlockTransposeN(const void *, void *, kwSize, kwSize, kwSize) {
    oxErrMsgIdAndTxt("VELTRO:transpose:notImplemented",
                     "Transpose on arbitrary element size is not implemented");
}

} // extern "C"
