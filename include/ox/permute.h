/* Rearranging the elements of full arrays: transpose, permute, and the sizes of a reshape. */
#ifndef OX_PERMUTE_H
#define OX_PERMUTE_H

#include <ox/types.h>

OX_BEGIN_C

/* Returned arrays are new temporaries of the current array-list context; raises error 18 when no
   memory is left. Before oxInitArrayListManager the arrays are the caller's, and null then. */

/* The transpose of a matrix, without conjugation; a real vector shares a's data. When a is square
   and reusable its block is transposed in place and shared. Raises
   VELTRO:transpose:notImplemented for more than two dimensions, and for matrices of opaque and
   object arrays. */
OX_API oxArray *oxTranspose(const oxArray *a);

/* Transposes the m-by-n block src of a's class into the n-by-m block dst, both the caller's and
   apart. Classes other than logical, char and numbers: nothing. */
OX_API void oxTransposeArray(const oxArray *a, const void *src, void *dst, kwSize m, kwSize n);
/* The same for elements of 8, 16, 32 and 64 bits: dst[i * n + j] = src[i + j * m]. */
OX_API void BlockTranspose8(const uint8_t *src, uint8_t *dst, kwSize m, kwSize n);
OX_API void BlockTranspose16(const uint16_t *src, uint16_t *dst, kwSize m, kwSize n);
OX_API void BlockTranspose32(const uint32_t *src, uint32_t *dst, kwSize m, kwSize n);
OX_API void BlockTranspose64(const uint64_t *src, uint64_t *dst, kwSize m, kwSize n);
/* Raises VELTRO:transpose:notImplemented. */
OX_API OX_NORETURN void BlockTransposeN(const void *src, void *dst, kwSize m, kwSize n,
                                        kwSize element_size);
/* Transposes the m-by-n block data of a's class where it is; classes as oxTransposeArray. */
OX_API void oxInPlaceBlockTranspose(oxArray *a, void *data, kwSize m, kwSize n);

/* plhs[0] = permute(prhs[0], prhs[1]): dimension k of the result is dimension order[k] of the
   array. An order that changes nothing gives a copy that shares the data, whatever the class;
   otherwise cells and structs share their elements, and classes without a permute (int64 and
   uint64 among them) raise VELTRO:permute:unsupportedType. Wrong arguments raise errors 3, 1, 2 or
   VELTRO:permute:badIndexType, tooFewIndices, badIndex, repeatedIndex. */
OX_API void oxPermuteFcn(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);
/* Checks those arguments. True when the order changes nothing, plhs[0] then being the copy.
   Otherwise false, with the array's dimensions padded with 1, the one-based order, and the length
   of both; the two blocks are the caller's, to be freed with oxFree. */
OX_API bool oxIsPermutationTrivial(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[],
                                   kwSize **padded_dims, kwSize **order, kwSize *order_length);

/* The dimensions of reshape(a, args...): one size vector (size_as_vector), or nargs scalars of
   which one may be empty, to be computed. Returns *ndims sizes, at least two and without trailing
   ones beyond, in a block for the caller to oxFree, never null. Raises VELTRO:getReshapeDims:...,
   or VELTRO:checkDimCommon:..., checkDimRow:... and checkDimScalar:... for arguments that are no
   sizes. */
OX_API kwSize *oxGetReshapeDims(bool size_as_vector, const oxArray *args[], int nargs,
                                const oxArray *a, kwSize *ndims);

OX_END_C

#endif
