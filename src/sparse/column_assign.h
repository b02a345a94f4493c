// A(:, J) = C column by column: the core of every sparse assignment.
#pragma once
#include <core/array.h>
#include <core/class_table.h>
#include <core/imaginary.h>
#include <ox/sparse.h>

namespace ox {

// What is assigned: one column of a sparse array for every index, or one value everywhere.
struct ColumnSource {
    const oxArray *columns = nullptr; // sparse, of the target's class, m rows; null for a value
    const void *re = nullptr;         // the value; null: zero, which empties a column
    const void *im = nullptr;         // its imaginary part, or null

    // Elements that index k gives a column of m rows.
    kwSize count(kwSize k, kwSize m) const {
        if (!columns) return re ? m : 0;
        return columns->num.jc[k + 1] - columns->num.jc[k];
    }
    bool complex() const { return columns ? has_imag_block(columns) : im != nullptr; }
};

// One-based column indices as the caller wrote them; they are tested one by one, late.
struct ColumnIndices {
    const double *values;     // null: the positions
    const kwIndex *positions; // zero-based; null: 0, 1, ...
    kwSize count;

    // The zero-based column of index k, or why it has none.
    spStatus column(kwSize k, kwIndex *j) const;
};

// Assigns to the columns in order, widening a as they ask. a is sparse, shares nothing and has the
// source's class; an imaginary part of the source needs one in a. Stops at the first index that is
// no column and answers its status; the columns before it stay assigned. Raises VELTRO:nomem when
// no capacity suffices, "Indices are too large to convert to linear index." when its bytes cannot
// be counted, and error 18; earlier columns stay assigned then, too.
spStatus assign_columns(oxArray *a, const ColumnIndices &indices, const ColumnSource &source);

// Makes a n columns wide, the new ones empty; n is at least its width. False without memory.
bool widen(oxArray *a, kwSize n);

// Reallocates for nzmax elements or raises.
void grow_to(oxArray *a, kwSize nzmax);

} // namespace ox
