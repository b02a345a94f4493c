// The two sides of a sparse assignment, made ready.
#pragma once
#include <core/destroy.h>
#include <sparse/column_assign.h>

namespace ox {

// Makes a sparse, with storage of its own: an array of no class takes b's, an empty one gets column
// starts only (capacity 0), any other full one is converted. Raises error 18, and
// VELTRO:unimplementedSparseType.
void make_sparse_target(oxArray *a, const oxArray *b);
// After the work on a target: one that stores nothing gets room for an element all the same; what
// succeeded drops an imaginary part that is zero.
void finish_target(oxArray *a, spStatus status);
// Storage for what the source brings to an array that has none: nnz elements, or for a value the
// rows times the columns (10 when that overflows). A zero-filled imaginary part when the source
// has one and a does not.
spStatus reserve_target(oxArray *a, const ColumnSource &source, kwSize columns);

// The right-hand side in the target's class.
class AssignSource {
public:
    // b in the class that a has or will take, sparse and two-dimensional; b is copied when it is a
    // itself. Raises what converting raises.
    AssignSource(const oxArray *a, oxArray *b);

    bool scalar() const { return b_->get_number_of_elements() == 1; }
    bool empty() const { return b_->get_number_of_elements() == 0; }
    // More than two dimensions that are not 1.
    bool folds() const { return folds_; }
    kwSize rows() const { return m_; }
    kwSize columns() const { return n_; }
    const oxArray *array() const { return b_; }

    // Whether the sides of a selection, those that are not 1, are those of b in order; a scalar and
    // an empty source for an empty selection fit, too.
    bool fits(kwSize rows, kwSize columns) const;
    // The source for assigning rows-by-columns: a value, or columns of exactly that shape.
    ColumnSource as_columns(kwSize rows, kwSize columns);

private:
    ArrayGuard converted_, sparse_, shaped_;
    const oxArray *b_;
    kwSize m_, n_; // without the dimensions that are 1 between them
    bool folds_ = false;
};

} // namespace ox
