// A(:, J) = C: one column at a time inside the vectors, or many in one rebuild.
//
// Both ways follow the same plan: each column changes the number of elements by delta, and when
// they exceed the capacity the growth rule, applied with the numbers of that moment, gives the next
// one. The rebuild plays the sequence through on lengths alone and moves what stays once.
#include <core/alloc.h>
#include <core/dispatch.h>
#include <core/tuning.h>
#include <errors/raise.h>
#include <sparse/column_assign.h>
#include <sparse/growth.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ox {
namespace {

kwSize element_size(const oxArray *a) { return class_info(a->class_code).element_size; }

[[noreturn]] void raise_too_large() {
    // Deliberate: the identifier has no mnemonic.
    oxErrMsgIdAndTxt("VELTRO:", "Indices are too large to convert to linear index.");
}

// Whether the bytes of the longest vector of so many elements can be counted.
bool bytes_fit(kwSize nzmax, kwSize size) {
    kwSize bytes;
    return !__builtin_mul_overflow(nzmax, std::max(size, sizeof(kwIndex)), &bytes);
}

// Writes what index k gives its column at position `at` of the target's vectors.
void write_column(oxArray *a, kwIndex at, const ColumnSource &source, kwSize k, kwSize m) {
    const kwSize q = source.count(k, m), size = element_size(a);
    if (q == 0) return;
    auto *re = data<unsigned char>(a) + at * size;
    auto *im = has_imag_block(a) ? imag<unsigned char>(a) + at * size : nullptr;
    if (source.columns) {
        const kwIndex from = source.columns->num.jc[k];
        std::copy_n(source.columns->num.ir + from, q, a->num.ir + at);
        std::memcpy(re, data<unsigned char>(source.columns) + from * size, q * size);
        if (im && source.complex())
            std::memcpy(im, imag<unsigned char>(source.columns) + from * size, q * size);
    } else {
        for (kwSize i = 0; i < q; ++i) a->num.ir[at + i] = i;
        visit_width(size, [&]<class T>(std::type_identity<T>) {
            std::fill_n(reinterpret_cast<T *>(re), q, *static_cast<const T *>(source.re));
            if (im && source.im)
                std::fill_n(reinterpret_cast<T *>(im), q, *static_cast<const T *>(source.im));
        });
    }
    if (im && !source.complex()) std::memset(im, 0, q * size);
}

// Moves the elements from .. end - 1 to position `to`, in all vectors.
void move_elements(oxArray *a, kwIndex from, kwIndex to, kwIndex end) {
    const kwSize size = element_size(a), count = end - from;
    const auto shift = [&](void *block, kwSize each) {
        auto *bytes = static_cast<unsigned char *>(block);
        std::memmove(bytes + to * each, bytes + from * each, count * each);
    };
    if (count == 0 || from == to) return;
    shift(a->num.pdata, size);
    shift(a->num.ir, sizeof(kwIndex));
    if (has_imag_block(a)) shift(a->num.pimag, size);
}

void assign_in_place(oxArray *a, kwIndex j, kwSize k, const ColumnSource &source) {
    const kwSize m = rows(a);
    if (j >= cols(a) && !widen(a, j + 1)) raise_out_of_memory();
    const kwSize n = cols(a), q = source.count(k, m), nnz = nonzeros(a);
    kwIndex *jc = a->num.jc;
    const kwSize old = jc[j + 1] - jc[j];
    if (q > old && nnz + (q - old) > a->num.nzmax) {
        const Growth growth = grown_capacity(a->num.nzmax, q, q - old, m, n);
        if (!growth.possible) oxErrMsg(FNOMEM);
        grow_to(a, growth.nzmax);
    }
    if (q != old) {
        move_elements(a, jc[j + 1], jc[j] + q, nnz);
        for (kwSize c = j + 1; c <= n; ++c) jc[c] += q - old; // wraps when the column shrinks
    }
    write_column(a, jc[j], source, k, m);
}

// What becomes of the columns from the first one that is named: nothing, or the content that the
// last index for it brings.
constexpr kwIndex untouched = ~kwIndex{0};

struct Plan {
    kwSize first, n;          // the first column that is named; the width in the end
    RawArray<kwIndex> last;   // by column from first
    RawArray<kwIndex> starts; // column starts from first, in the end
    kwSize nzmax = 0;         // the capacity in the end
    kwSize done = 0;          // indices played through

    bool touches(kwSize j) const { return last[j - first] != untouched; }
};

// The columns that the indices name, up to the first that is no column.
bool prepare_plan(const oxArray *a, const ColumnIndices &indices, Plan &plan) {
    plan.first = plan.n = cols(a);
    kwIndex j;
    for (kwSize k = 0; k < indices.count && indices.column(k, &j) == spOK; ++k) {
        plan.first = std::min(plan.first, j);
        plan.n = std::max(plan.n, j + 1);
    }
    const kwSize width = plan.n - plan.first;
    plan.last = RawArray<kwIndex>::make(width + 1);
    plan.starts = RawArray<kwIndex>::make(width + 1);
    if (!plan.last || !plan.starts) return false;
    std::fill_n(plan.last.get(), width, untouched);
    return true;
}

// Elements of column j before the assignment.
kwSize old_length(const oxArray *a, kwSize j) {
    return j < cols(a) ? a->num.jc[j + 1] - a->num.jc[j] : 0;
}

// Plays the assignments through on lengths alone, with the width and the capacity that each moment
// has. Stops before an index that is no column, or for which the growth rule has no answer.
void play(const oxArray *a, const ColumnIndices &indices, const ColumnSource &source, Plan &plan) {
    const kwSize m = rows(a), size = element_size(a);
    kwSize n = cols(a), nnz = nonzeros(a);
    plan.nzmax = a->num.nzmax;
    kwIndex j;
    for (kwSize k = 0; k < indices.count && indices.column(k, &j) == spOK; ++k) {
        kwIndex &last = plan.last[j - plan.first];
        const kwSize q = source.count(k, m);
        const kwSize old = last != untouched ? source.count(last, m) : old_length(a, j);
        n = std::max(n, j + 1);
        if (q > old && nnz + (q - old) > plan.nzmax) {
            const Growth growth = grown_capacity(plan.nzmax, q, q - old, m, n);
            if (!growth.possible || !bytes_fit(growth.nzmax, size)) break;
            plan.nzmax = growth.nzmax;
        }
        nnz += q - old;
        last = k;
        plan.done = k + 1;
    }
    plan.n = n;
}

// Moves the columns that stay to their new starts: to the left those that go left, in order, then
// to the right the others, from the end; so none is overwritten before it has moved.
void move_kept(oxArray *a, const Plan &plan) {
    const kwIndex *jc = a->num.jc;
    const auto move_run = [&](kwSize begin, kwSize end, bool left) {
        const kwIndex to = plan.starts[begin - plan.first];
        if (left ? to < jc[begin] : to > jc[begin]) move_elements(a, jc[begin], to, jc[end]);
    };
    const kwSize n = std::min(cols(a), plan.n);
    for (kwSize j = plan.first, begin; j < n;) {
        for (; j < n && plan.touches(j); ++j) {
        }
        for (begin = j; j < n && !plan.touches(j); ++j) {
        }
        move_run(begin, j, true);
    }
    for (kwSize j = n, end; j > plan.first;) {
        for (; j > plan.first && plan.touches(j - 1); --j) {
        }
        for (end = j; j > plan.first && !plan.touches(j - 1); --j) {
        }
        move_run(j, end, false);
    }
}

// The new column starts from the first column on.
void lay_out(const oxArray *a, const ColumnSource &source, Plan &plan) {
    kwIndex at = a->num.jc[std::min(plan.first, cols(a))];
    for (kwSize j = plan.first; j < plan.n; ++j) {
        plan.starts[j - plan.first] = at;
        at += plan.touches(j) ? source.count(plan.last[j - plan.first], rows(a)) : old_length(a, j);
    }
    plan.starts[plan.n - plan.first] = at;
}

// Assigns as many of the indices as it can in one rebuild and answers how many; 0 without memory,
// with a as before but for slack.
kwSize assign_rebuilding(oxArray *a, const ColumnIndices &indices, const ColumnSource &source) {
    Plan plan;
    if (!prepare_plan(a, indices, plan)) return 0;
    play(a, indices, source, plan);
    if (plan.done == 0) return 0;
    const kwSize old_nzmax = a->num.nzmax, m = rows(a);
    if (plan.nzmax > old_nzmax && !set_capacity(a, plan.nzmax)) return 0;
    lay_out(a, source, plan); // of the old column starts
    const kwSize old_n = cols(a);
    if (plan.n > old_n && !widen(a, plan.n)) {
        a->num.nzmax = old_nzmax;
        return 0;
    }
    move_kept(a, plan);
    for (kwSize j = plan.first; j < plan.n; ++j)
        if (plan.touches(j))
            write_column(a, plan.starts[j - plan.first], source, plan.last[j - plan.first], m);
    std::copy_n(plan.starts.get(), plan.n - plan.first + 1, a->num.jc + plan.first);
    return plan.done;
}

} // namespace

spStatus ColumnIndices::column(kwSize k, kwIndex *j) const {
    if (!values) {
        *j = positions ? positions[k] : k;
        return spOK;
    }
    const double x = values[k];
    if (std::isnan(x) || std::isinf(x) || x != std::floor(x)) return spBadIndex;
    if (x <= 0) return spZeroIndex;
    *j = double_to_size(x) - 1;
    return spOK;
}

bool widen(oxArray *a, kwSize n) {
    const kwSize old = cols(a);
    if (n >= max_size) return false;
    auto *jc = static_cast<kwIndex *>(oxReallocEx(a->num.jc, (n + 1) * sizeof(kwIndex)));
    if (!jc) return false;
    std::fill(jc + old + 1, jc + n + 1, jc[old]);
    a->num.jc = jc;
    store_mn(a, rows(a), n);
    return true;
}

void grow_to(oxArray *a, kwSize nzmax) {
    if (!bytes_fit(nzmax, element_size(a))) raise_too_large();
    if (!set_capacity(a, nzmax)) raise_out_of_memory();
}

// What a rebuild does not do, for want of memory or because an index is no column or cannot be
// met, is left to the one-by-one way, which then answers or raises what it must.
spStatus assign_columns(oxArray *a, const ColumnIndices &indices, const ColumnSource &source) {
    const bool many = indices.count >= tuning::sparse_rebuild_columns;
    for (kwSize k = many ? assign_rebuilding(a, indices, source) : 0; k < indices.count; ++k) {
        kwIndex j;
        const spStatus status = indices.column(k, &j);
        if (status != spOK) return status;
        assign_in_place(a, j, k, source);
    }
    return spOK;
}

} // namespace ox
