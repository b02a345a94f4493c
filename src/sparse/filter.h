// Taking elements out of a sparse array in place.
#pragma once
#include <core/class_table.h>
#include <core/imaginary.h>

#include <cstring>

namespace ox {

inline void move_element(oxArray *a, kwIndex to, kwIndex from, kwSize size) {
    const auto move = [&](void *block) {
        auto *bytes = static_cast<unsigned char *>(block);
        std::memcpy(bytes + to * size, bytes + from * size, size);
    };
    if (to == from) return;
    a->num.ir[to] = a->num.ir[from];
    move(a->num.pdata);
    if (has_imag_block(a)) move(a->num.pimag);
}

// Keeps the elements for which keep(row, column) holds; keep may take the row by reference and
// store another, as long as rows keep their order. O(nnz + n).
template<class F> void filter_elements(oxArray *a, F &&keep) {
    const kwSize n = cols(a), size = class_info(a->class_code).element_size;
    kwIndex end = 0, k = 0;
    for (kwSize j = 0; j < n; ++j) {
        for (const kwIndex column_end = a->num.jc[j + 1]; k < column_end; ++k) {
            kwIndex row = a->num.ir[k];
            if (!keep(row, j)) continue;
            move_element(a, end, k, size);
            a->num.ir[end++] = row;
        }
        a->num.jc[j + 1] = end;
    }
}

} // namespace ox
