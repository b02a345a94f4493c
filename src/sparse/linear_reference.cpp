// B = A(I) by linear positions, and the whole array as one column.
#include <core/array_list.h>
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <core/size_check.h>
#include <errors/raise.h>
#include <ox/sparse.h>
#include <sparse/reference.h>
#include <sparse/storage/csc.h>

#include <algorithm>

namespace ox {
namespace {

// Calls f(q, k) for every q with I[q] stored as element k, by increasing q. A range of steps other
// than 0 is met by its stored elements, so that its length does not matter.
template<class F> void for_each_stored(const oxArray *a, const Subscript &index, F &&f) {
    const kwSize m = rows(a), n = cols(a);
    if (index.count == 0) return;
    if (index.kind == Subscript::Kind::list || index.kind == Subscript::Kind::scalar ||
        (index.kind == Subscript::Kind::range && index.step == 0)) {
        kwSize q = 0;
        index.for_each([&](kwIndex position) {
            const kwIndex k = find_stored(a, position);
            if (k != not_stored) f(q, k);
            ++q;
        });
        return;
    }
    const bool all = index.is_all(), down = !all && index.step < 0;
    const kwIndex first = all ? 0 : index.first;
    const kwSize step = all ? 1 : static_cast<kwSize>(down ? -index.step : index.step);
    for (kwSize c = 0; c < n; ++c) {
        const kwSize j = down ? n - 1 - c : c, count = a->num.jc[j + 1] - a->num.jc[j];
        for (kwSize e = 0; e < count; ++e) {
            const kwIndex k = down ? a->num.jc[j + 1] - 1 - e : a->num.jc[j] + e;
            const kwIndex position = j * m + a->num.ir[k];
            const kwIndex distance = down ? first - position : position - first; // wraps outside
            if (distance % step == 0 && distance / step < index.count) f(distance / step, k);
        }
    }
}

template<class T>
void gather(const oxArray *a, const Subscript &index, kwSize m, oxArray *b, bool complex) {
    kwIndex end = 0;
    for_each_stored(a, index, [&](kwSize q, kwIndex k) {
        b->num.ir[end] = q % m;
        ++b->num.jc[q / m + 1];
        data<T>(b)[end] = data<T>(a)[k];
        if (complex) imag<T>(b)[end] = imag<T>(a)[k];
        ++end;
    });
    const kwSize n = cols(b);
    for (kwSize j = 0; j < n; ++j) b->num.jc[j + 1] += b->num.jc[j];
}

} // namespace

oxArray *sparse_linear_reference(const oxArray *a, Subscript &index, kwSize m, kwSize n) {
    if (!index.mask_to_list()) raise_out_of_memory();
    kwSize nnz = 0;
    for_each_stored(a, index, [&](kwSize, kwIndex) { ++nnz; });
    const bool complex = has_imag_block(a);
    oxArray *b = make_sparse(m, n, nnz, a->class_code, complex);
    if (!b) raise_out_of_memory();
    visit_width(class_info(a->class_code).element_size,
                [&]<class T>(std::type_identity<T>) { gather<T>(a, index, m, b, complex); });
    return b;
}

} // namespace ox

using namespace ox;

extern "C" oxArray *oxSparseColonReference(const oxArray *a) {
    kwSize count;
    if (!check_size(rows(a), cols(a), 1, &count)) oxHandleSparseSubscriptError(spTooLarge);
    Subscript all;
    all.set_all(count);
    return hand_over(sparse_linear_reference(a, all, count, 1));
}
