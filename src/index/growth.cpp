// How assignment grows an array.
#include <index/growth.h>
#include <ox/subscripts.h>

#include <algorithm>

namespace ox {

namespace {

// A(p) with p beyond the elements of a 2-D array.
void grow_linear(kwSize m, kwSize n, kwSize p, Extents &dims) {
    if (m == 0 || n == 0)
        n == 1 ? dims.assign(p, 1) : dims.assign(kwSize{1}, p);
    else if (m == 1)
        dims.assign(kwSize{1}, p);
    else if (n == 1)
        dims.assign(p, 1);
    else
        dims.assign(m, p / m + (p % m != 0));
}

} // namespace

bool grown_dimensions(const oxArray *a, const kwSize *largest, kwSize nsubs, Extents &dims) {
    const kwSize *old = a->get_dimensions(), nd = a->ndims;
    dims.resize(std::max(nsubs, nd));
    bool grows = false;
    for (kwSize k = 0; k < dims.size(); ++k) dims[k] = k < nd ? old[k] : 1;
    for (kwSize k = 0; k < nsubs; ++k) {
        if (largest[k] <= effective_extent(old, nd, k, nsubs)) continue;
        grows = true;
        if (k + 1 < nsubs || nsubs >= nd)
            dims[k] = largest[k];
        else if (nd != 2)
            oxHandleAmbiguousArrayGrowth(nullptr);
        else
            grow_linear(old[0], old[1], largest[k], dims);
    }
    dims.trim();
    return grows;
}

} // namespace ox
