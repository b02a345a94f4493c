// The reference kernels by number of subscripts: subscripts are read, folded and checked, with a
// status instead of a raise.
#include <core/array_list.h>
#include <core/position.h>
#include <errors/raise.h>
#include <ox/sparse.h>
#include <sparse/reference.h>
#include <sparse/scratch.h>

namespace ox {
namespace {

spStatus status_of(SubscriptFault fault) {
    if (fault == SubscriptFault::no_memory) raise_out_of_memory();
    if (fault == SubscriptFault::none) return spOK;
    return fault == SubscriptFault::zero ? spZeroIndex : spBadIndex;
}

spStatus read(Subscript &s, const oxArray *sub, kwSize extent) {
    const spStatus status = status_of(s.read(sub, extent));
    if (status != spOK) return status;
    return s.inside(extent) ? spOK : spOutOfBounds;
}

// Rows or columns as a list; none when all are meant.
struct PositionList {
    RawArray<kwIndex> block;
    kwSize count = 0;

    void take(const Subscript &s) {
        count = s.count;
        block = scratch<kwIndex>(count);
        s.copy_positions(block.get());
    }
    // The same columns once more for every further subscript's position: there is only one.
    void repeat(kwSize times) {
        const kwSize n = saturating_multiply(count, times);
        auto longer = scratch<kwIndex>(n);
        for (kwSize i = 0; i < n; ++i) longer[i] = block[i % count];
        block = std::move(longer);
        count = n;
    }
};

spStatus scalar_position(double x, kwSize extent, kwIndex *position) {
    if (x == 0) return spZeroIndex;
    const kwSize p = double_to_size(x);
    if (!(x > 0) || static_cast<double>(p) != x) return spBadIndex;
    *position = p - 1;
    return p <= extent ? spOK : spOutOfBounds;
}

spStatus reference_scalar(const oxArray *a, kwSize nsubs, const double *subs, oxArray **result) {
    kwIndex row = 0, column = 0, ignored;
    spStatus status = scalar_position(subs[0], rows(a), &row);
    if (status == spOK) status = scalar_position(subs[1], cols(a), &column);
    for (kwSize k = 2; k < nsubs && status == spOK; ++k)
        status = scalar_position(subs[k], 1, &ignored);
    if (status == spOK) *result = hand_over(sparse_reference(a, &row, 1, &column, 1));
    return status;
}

} // namespace

// Subscripts beyond the second address dimensions of extent 1.
spStatus sparse_reference(const oxArray *a, kwSize nsubs, const oxArray *const *subs,
                          oxArray **result) {
    Subscript row, column;
    spStatus status = read(row, subs[0], rows(a));
    if (status == spOK) status = read(column, subs[1], cols(a));
    kwSize times = 1;
    for (kwSize k = 2; k < nsubs && status == spOK; ++k) {
        Subscript single;
        status = read(single, subs[k], 1);
        times = saturating_multiply(times, single.count);
    }
    if (status != spOK) return status;
    PositionList row_list, column_list;
    if (!row.is_all()) row_list.take(row);
    if (!column.is_all() || times != 1) column_list.take(column);
    if (times != 1) column_list.repeat(times);
    *result = sparse_reference(a, row_list.block.get(), row_list.count, column_list.block.get(),
                               column_list.count);
    return spOK;
}

namespace {

spStatus reference(const oxArray *a, kwSize nsubs, const oxArray *const *subs, oxArray **result) {
    const spStatus status = sparse_reference(a, nsubs, subs, result);
    if (status == spOK) hand_over(*result);
    return status;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

spStatus spRef2(const oxArray *a, const oxArray *const *subs, oxArray **result) {
    return reference(a, 2, subs, result);
}
spStatus spRef3(const oxArray *a, const oxArray *const *subs, oxArray **result) {
    return reference(a, 3, subs, result);
}
spStatus spRef4(const oxArray *a, const oxArray *const *subs, oxArray **result) {
    return reference(a, 4, subs, result);
}
spStatus spRef5(const oxArray *a, const oxArray *const *subs, oxArray **result) {
    return reference(a, 5, subs, result);
}
spStatus spRef6(const oxArray *a, const oxArray *const *subs, oxArray **result) {
    return reference(a, 6, subs, result);
}
spStatus spRef3Scalar(const oxArray *a, const double *subs, oxArray **result) {
    return reference_scalar(a, 3, subs, result);
}
spStatus spRef6Scalar(const oxArray *a, const double *subs, oxArray **result) {
    return reference_scalar(a, 6, subs, result);
}

} // extern "C"
