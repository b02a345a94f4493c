// The scalar transpose kernels, and those of widths that vectors do not serve.
#include <index/transpose_kernels.h>

namespace ox {
namespace {

template<class T>
void plain(void *dst, kwSize ldd, const void *src, kwSize lds, kwSize m, kwSize n) {
    transpose_plain(static_cast<T *>(dst), ldd, static_cast<const T *>(src), lds, m, n);
}
template<class T> void plain_in_place(void *data, kwSize n) {
    swap_mirrored(static_cast<T *>(data), n, 1);
}

} // namespace

const TransposeKernels *scalar_transpose(kwSize width) {
    const TransposeKernels *found = nullptr;
    visit_width(width, [&]<class T>(std::type_identity<T>) {
        static constexpr TransposeKernels kernels = {plain<T>, plain<T>, plain_in_place<T>};
        found = &kernels;
    });
    return found;
}

} // namespace ox
