// Changing the size or the shape of a sparse array in place.
#include <containers/unshare.h>
#include <core/header_copy.h>
#include <core/position.h>
#include <errors/raise.h>
#include <ox/array_list.h>
#include <ox/sharing.h>
#include <ox/sparse.h>
#include <sparse/filter.h>
#include <sparse/resize.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {

bool sparse_resize(oxArray *a, kwSize m, kwSize n) {
    const kwSize old_m = rows(a), old_n = cols(a);
    if (n >= max_size) return false;
    if (n > old_n) {
        void *jc = oxReallocEx(a->num.jc, (n + 1) * sizeof(kwIndex));
        if (!jc) return false;
        a->num.jc = static_cast<kwIndex *>(jc);
        std::fill(a->num.jc + old_n + 1, a->num.jc + n + 1, a->num.jc[old_n]);
    }
    store_mn(a, m, n);
    if (m < old_m) filter_elements(a, [m](kwIndex row, kwSize) { return row < m; });
    return true;
}

} // namespace ox

using namespace ox;

extern "C" void ox_inResizeSparseArray(oxArray *dst, oxArray *src) {
    const kwSize m = rows(dst), n = cols(dst), old_m = rows(src), old_n = cols(src);
    // A temporary may be taken apart; anything else is copied. Before the array-list manager a copy
    // is no temporary either, but nobody else knows it.
    if (!oxIsTemp(src)) src = oxCreateDeepCopy(src);
    if (!src || !own_storage(src) || !move_onto_header(dst, src)) raise_out_of_memory();
    auto *jc = static_cast<kwIndex *>(oxCallocExCheck(n + 1, sizeof(kwIndex)));
    if (!jc) raise_out_of_memory();
    reshape_indices(old_m, old_n, dst->num.jc, dst->num.ir, m, n, jc);
    oxFreeEx(dst->num.jc);
    dst->num.jc = jc;
    store_mn(dst, m, n);
}
