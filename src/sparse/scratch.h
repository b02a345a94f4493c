// Work space of the sparse kernels.
#pragma once
#include <core/alloc.h>
#include <errors/raise.h>

namespace ox {

// At least n undefined elements, n may be 0; raises error 18.
template<class T> RawArray<T> scratch(kwSize n) {
    auto block = RawArray<T>::make(n + 1);
    if (!block) raise_out_of_memory();
    return block;
}

} // namespace ox
