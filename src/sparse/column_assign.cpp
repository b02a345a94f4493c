// A(:, J) = C: one column at a time inside the vectors, or many in one rebuild.
//
// Both ways follow the same plan: each column changes the number of elements by delta, and when
// they exceed the capacity the growth rule, applied with the numbers of that moment, gives the next
// one. The rebuild plays the sequence through on lengths alone and moves every element once.
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

// The capacity that follows from the growth rule, or a raise.
kwSize next_capacity(kwSize nzmax, kwSize q, kwSize delta, kwSize m, kwSize n, kwSize size) {
    const Growth growth = grown_capacity(nzmax, q, delta, m, n);
    kwSize bytes;
    if (!growth.possible) oxErrMsg(FNOMEM);
    if (__builtin_mul_overflow(growth.nzmax, std::max<kwSize>(size, 8), &bytes)) raise_too_large();
    return growth.nzmax;
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

// Moves the elements from `from` on to position `to`, in all vectors.
void move_tail(oxArray *a, kwIndex from, kwIndex to, kwIndex end) {
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
    if (q > old && nnz + (q - old) > a->num.nzmax)
        grow_to(a, next_capacity(a->num.nzmax, q, q - old, m, n, element_size(a)));
    jc = a->num.jc;
    if (q != old) {
        move_tail(a, jc[j + 1], jc[j] + q, nnz);
        for (kwSize c = j + 1; c <= n; ++c) jc[c] += q - old; // wraps when the column shrinks
    }
    write_column(a, jc[j], source, k, m);
}

// What becomes of each column: the index that assigned it last, or none.
constexpr kwIndex untouched = ~kwIndex{0};

struct Rebuild {
    RawArray<kwIndex> last; // by column
    kwSize n, nzmax, nnz;   // after the indices that were played through
    spStatus status = spOK; // of the index that stopped it
    bool stuck = false;     // the growth rule had no answer for the next index
    kwSize done = 0;        // indices played through
};

// The widest array that the indices ask for, up to the first that is no column.
kwSize final_width(const oxArray *a, const ColumnIndices &indices) {
    kwSize n = cols(a);
    kwIndex j;
    for (kwSize k = 0; k < indices.count && indices.column(k, &j) == spOK; ++k)
        n = std::max(n, j + 1);
    return n;
}

// Plays the assignments through on lengths alone, with the width that each moment has.
void play(const oxArray *a, const ColumnIndices &indices, const ColumnSource &source, Rebuild &r) {
    const kwIndex *jc = a->num.jc;
    const kwSize m = rows(a), old_n = cols(a), size = element_size(a);
    kwSize n = old_n;
    r.nnz = jc[old_n];
    r.nzmax = a->num.nzmax;
    for (kwSize k = 0; k < indices.count; ++k) {
        kwIndex j;
        r.status = indices.column(k, &j);
        if (r.status != spOK) return;
        n = std::max(n, j + 1);
        const kwSize q = source.count(k, m);
        const kwSize old = r.last[j] != untouched ? source.count(r.last[j], m)
                           : j < old_n            ? jc[j + 1] - jc[j]
                                                  : 0;
        if (q > old && r.nnz + (q - old) > r.nzmax) {
            const Growth growth = grown_capacity(r.nzmax, q, q - old, m, n);
            kwSize bytes;
            r.stuck = !growth.possible ||
                      __builtin_mul_overflow(growth.nzmax, std::max<kwSize>(size, 8), &bytes);
            if (r.stuck) return;
            r.nzmax = growth.nzmax;
        }
        r.nnz += q - old;
        r.last[j] = k;
        r.n = n;
        r.done = k + 1;
    }
}

// Copies elements from .. to - 1 of a to position `at` of b.
void copy_elements(oxArray *b, kwIndex at, const oxArray *a, kwIndex from, kwIndex to) {
    const kwSize size = element_size(a), count = to - from;
    if (count == 0) return;
    std::copy_n(a->num.ir + from, count, b->num.ir + at);
    std::memcpy(data<unsigned char>(b) + at * size, data<unsigned char>(a) + from * size,
                count * size);
    if (has_imag_block(a))
        std::memcpy(imag<unsigned char>(b) + at * size, imag<unsigned char>(a) + from * size,
                    count * size);
}

// Builds the result beside a and gives a its vectors. Runs of untouched columns are one copy each.
void rebuild(oxArray *a, const ColumnSource &source, const Rebuild &r) {
    const kwSize m = rows(a), old_n = cols(a);
    oxArray *b = make_sparse(m, r.n, r.nzmax, a->class_code, has_imag_block(a));
    if (!b) raise_out_of_memory();
    kwIndex at = 0;
    for (kwSize j = 0; j < r.n;) {
        if (r.last[j] != untouched) {
            write_column(b, at, source, r.last[j], m);
            b->num.jc[j + 1] = at += source.count(r.last[j], m);
            ++j;
            continue;
        }
        const kwSize first = j;
        for (; j < r.n && r.last[j] == untouched; ++j)
            b->num.jc[j + 1] = j < old_n ? at + a->num.jc[j + 1] - a->num.jc[first] : b->num.jc[j];
        const kwSize end = std::min(j, old_n);
        if (first < end) {
            copy_elements(b, at, a, a->num.jc[first], a->num.jc[end]);
            at += a->num.jc[end] - a->num.jc[first];
        }
    }
    std::swap(a->words, b->words);
    store_mn(a, m, r.n);
    oxDestroyArray(b);
}

spStatus assign_rebuilding(oxArray *a, const ColumnIndices &indices, const ColumnSource &source) {
    Rebuild r;
    r.n = cols(a);
    const kwSize width = final_width(a, indices);
    r.last = RawArray<kwIndex>::make(width + 1);
    if (!r.last) raise_out_of_memory();
    std::fill_n(r.last.get(), width + 1, untouched);
    play(a, indices, source, r);
    if (r.done > 0) rebuild(a, source, r);
    if (r.stuck) { // the same step again, in place, raises what it has to
        kwIndex j;
        if (indices.column(r.done, &j) == spOK) assign_in_place(a, j, r.done, source);
    }
    return r.status;
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
    const kwSize old = a->num.nzmax, size = element_size(a);
    kwSize bytes;
    if (__builtin_mul_overflow(nzmax, std::max<kwSize>(size, 8), &bytes)) raise_too_large();
    if (!set_capacity(a, nzmax)) raise_out_of_memory();
    if (has_imag_block(a) && nzmax > old)
        std::memset(imag<unsigned char>(a) + old * size, 0, (nzmax - old) * size);
}

spStatus assign_columns(oxArray *a, const ColumnIndices &indices, const ColumnSource &source) {
    if (indices.count >= tuning::sparse_rebuild_columns)
        return assign_rebuilding(a, indices, source);
    for (kwSize k = 0; k < indices.count; ++k) {
        kwIndex j;
        const spStatus status = indices.column(k, &j);
        if (status != spOK) return status;
        assign_in_place(a, j, k, source);
    }
    return spOK;
}

} // namespace ox
