// A(:, J) = B, and the exported assignment kernels.
#include <errors/raise.h>
#include <sparse/assign.h>
#include <sparse/operands.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

namespace ox {
namespace {

// Rows of a 0-by-0 target: what b has beside the columns that are named.
bool rows_from_source(const AssignSource &b, kwSize columns, kwSize *m) {
    if (b.scalar() || b.empty()) {
        *m = b.scalar() ? 1 : b.rows();
        return true;
    }
    const bool vector = b.rows() == 1 || b.columns() == 1;
    if (columns == 1)
        *m = vector ? b.rows() * b.columns() : 0;
    else
        *m = b.columns() == columns ? b.rows() : vector && b.rows() == columns ? 1 : 0;
    return *m != 0;
}

bool is_deletion(const oxArray *b) {
    return !b ||
           (b->has_flag(oxFLAG_EMPTY_BRACKET) && b->ndims == 2 && rows(b) == 0 && cols(b) == 0);
}

spStatus status_of(SubscriptFault fault) {
    if (fault == SubscriptFault::no_memory) raise_out_of_memory();
    if (fault == SubscriptFault::none) return spOK;
    return fault == SubscriptFault::zero ? spZeroIndex : spBadIndex;
}

// Column indices of a subscript array. Full real doubles stay what they are, because they are
// tested one by one while columns are assigned; every other kind is read at once.
class ColumnSubscript {
public:
    spStatus read(const oxArray *sub, kwSize extent) {
        if (oxIsDouble(sub) && !is_sparse(sub) && !is_complex(sub) &&
            !sub->has_flag(oxFLAG_COLON)) {
            indices_ = {data<double>(sub), nullptr, sub->get_number_of_elements()};
            return spOK;
        }
        const spStatus status = status_of(read_.read(sub, extent));
        if (status != spOK) return status;
        indices_ = {nullptr, nullptr, read_.count};
        if (read_.is_all()) return spOK;
        list_ = scratch<kwIndex>(read_.count);
        read_.copy_positions(list_.get());
        indices_.positions = list_.get();
        return spOK;
    }
    const ColumnIndices &indices() const { return indices_; }

private:
    Subscript read_;
    RawArray<kwIndex> list_;
    ColumnIndices indices_{nullptr, nullptr, 0};
};

// A right-hand side that is a temporary goes with a successful assignment or deletion.
spStatus consume(const oxArray *a, oxArray *b, spStatus status) {
    if (status == spOK && b && b != a && oxIsTemp(b)) oxDestroyArray(b);
    return status;
}

// The columns that ':' means for an assignment: those of b when a has none.
kwSize colon_extent(const oxArray *a, const oxArray *b) {
    const kwSize n = cols(a);
    return n == 0 && b && !is_deletion(b) ? cols(b) : n;
}

} // namespace

spStatus sparse_assign_columns(oxArray *a, oxArray *b, const ColumnIndices &columns) {
    AssignSource source(a, b);
    kwSize m = rows(a);
    const bool takes_rows = m == 0 && cols(a) == 0;
    if (source.folds() || (takes_rows && !rows_from_source(source, columns.count, &m)) ||
        !source.fits(m, columns.count))
        return spDimMismatch;
    make_sparse_target(a, b);
    if (takes_rows) store_mn(a, m, 0);
    const ColumnSource from = source.as_columns(m, columns.count);
    spStatus status = reserve_target(a, from, columns.count);
    if (status == spOK) status = assign_columns(a, columns, from);
    finish_target(a, status);
    return status;
}

} // namespace ox

using namespace ox;

extern "C" {

spStatus spAss4(oxArray *a, oxArray *b, const oxArray *cols_sub) {
    ColumnSubscript columns;
    const spStatus status = columns.read(cols_sub, colon_extent(a, b));
    if (status != spOK) return status;
    return consume(a, b,
                   is_deletion(b) ? sparse_delete_columns(a, columns.indices())
                                  : sparse_assign_columns(a, b, columns.indices()));
}

spStatus spAss3(oxArray *a, oxArray *b, const oxArray *rows_sub, const oxArray *cols_sub) {
    if (is_deletion(b)) {
        if (is_colon_character(rows_sub)) return spAss4(a, b, cols_sub);
        if (is_colon_character(cols_sub)) return spAss5(a, b, rows_sub);
        oxErrMsg(FBADNULLASSIGN);
    }
    Subscript row, column;
    spStatus status = status_of(row.read(rows_sub, rows(a)));
    if (status == spOK) status = status_of(column.read(cols_sub, colon_extent(a, b)));
    return status == spOK ? consume(a, b, sparse_assign_block(a, b, row, column)) : status;
}

spStatus spAss5(oxArray *a, oxArray *b, const oxArray *rows_sub) {
    Subscript row, column;
    const spStatus status = status_of(row.read(rows_sub, rows(a)));
    if (status != spOK) return status;
    column.set_all(colon_extent(a, b));
    return consume(
        a, b, is_deletion(b) ? sparse_delete_rows(a, row) : sparse_assign_block(a, b, row, column));
}

spStatus spAss6(oxArray *a, oxArray *b, const oxArray *index_sub) {
    Subscript index;
    const kwSize count = saturating_multiply(rows(a), cols(a));
    const spStatus status = status_of(index.read(index_sub, count));
    if (status != spOK) return status;
    return consume(
        a, b, is_deletion(b) ? sparse_delete_linear(a, index) : sparse_assign_linear(a, b, index));
}

} // extern "C"
