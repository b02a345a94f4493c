// The two sides of a sparse assignment, made ready.
#include <containers/copies.h>
#include <containers/unshare.h>
#include <core/dispatch.h>
#include <core/header_copy.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/operands/convert.h>
#include <sparse/operands.h>
#include <sparse/scratch.h>
#include <sparse/storage/csc.h>

namespace ox {
namespace {

oxArray *or_raise(oxArray *a) {
    if (!a) raise_out_of_memory();
    return a;
}

void make_empty_sparse(oxArray *a) {
    const kwSize m = rows(a), n = cols(a);
    auto *jc = n < max_size ? static_cast<kwIndex *>(oxCallocEx(n + 1, sizeof(kwIndex))) : nullptr;
    if (!jc) raise_out_of_memory();
    store_mn(a, m, n);
    a->set_flag(oxFLAG_SPARSE, true);
    for (void *&word : a->words) word = nullptr;
    a->num.jc = jc;
    a->num.nzmax = 0;
}

bool is_zero(const oxArray *b, const void *part) {
    return visit_class(b->class_code, true, [&]<class T>(std::type_identity<T>) {
        return *static_cast<const T *>(part) == T{};
    });
}

} // namespace

void make_sparse_target(oxArray *a, const oxArray *b) {
    if (a->class_code == oxUNKNOWN_CLASS) set_class(a, b ? b->class_code : oxDOUBLE_CLASS);
    a->set_flag(oxFLAG_EMPTY_BRACKET, false);
    if (!is_sparse(a)) {
        if (a->get_number_of_elements() == 0)
            make_empty_sparse(a);
        else if (oxArray *s = oxMustBeSparse(a); !move_onto_header(a, s))
            raise_out_of_memory();
    }
    if (!own_storage(a)) raise_out_of_memory();
}

void finish_target(oxArray *a, spStatus status) {
    if (a->num.nzmax == 0 && !set_capacity(a, 1)) raise_out_of_memory();
    if (status == spOK) oxFreeImagIfZero(a);
    if (rows(a) != 1 || cols(a) != 1) a->set_flag(oxFLAG_SCALAR_DOUBLE, false);
}

spStatus reserve_target(oxArray *a, const ColumnSource &source, kwSize columns) {
    if (a->num.nzmax == 0) {
        kwSize wanted = source.columns ? nonzeros(source.columns) : 0;
        if (source.re && __builtin_mul_overflow(rows(a), columns, &wanted)) return spTooLarge;
        if (wanted > 0) grow_to(a, wanted);
    }
    if (!source.complex() || has_imag_block(a)) return spOK;
    const kwSize size = class_info(a->class_code).element_size;
    a->num.pimag = oxCallocEx(a->num.nzmax ? a->num.nzmax : 1, size);
    if (!a->num.pimag) raise_out_of_memory();
    return spOK;
}

AssignSource::AssignSource(const oxArray *a, oxArray *b) : b_(b) {
    const int id = a->class_code == oxUNKNOWN_CLASS ? b->class_code : a->class_code;
    if (b == a) {
        converted_.reset(or_raise(deep_copy(b)));
        b_ = converted_.get();
    } else if (b->class_code != id) {
        converted_.reset(oxMustBe(b, static_cast<oxClassID>(id)));
        b_ = converted_.get();
    }
    if (!is_numeric(b_) && id != oxLOGICAL_CLASS) raise_sparse_class();
    if (!is_sparse(b_)) sparse_.reset(or_raise(full_to_sparse(b_)));
    // Sides without the dimensions that are 1: a column unless there are two, or it lies across.
    const kwSize *dims = b_->get_dimensions();
    kwSize sides[2] = {1, 1}, found = 0;
    for (kwSize k = 0; k < b_->ndims; ++k)
        if (dims[k] != 1 && found++ < 2) sides[found - 1] = dims[k];
    folds_ = found > 2;
    const bool across = found == 1 && dims[0] == 1;
    m_ = across ? 1 : sides[0];
    n_ = across ? sides[0] : sides[1];
    if (sparse_) b_ = sparse_.get();
}

bool AssignSource::fits(kwSize rows, kwSize columns) const {
    if (scalar()) return true;
    if (rows == 0 || columns == 0) return empty();
    const bool plain = m_ == rows && n_ == columns;
    const bool vector = (rows == 1 || columns == 1) && (m_ == 1 || n_ == 1);
    return plain || (vector && m_ * n_ == rows * columns);
}

ColumnSource AssignSource::as_columns(kwSize rows, kwSize columns) {
    ColumnSource source;
    if (scalar()) {
        if (nonzeros(b_) == 0) return source;
        const void *im = has_imag_block(b_) ? b_->num.pimag : nullptr;
        if (is_zero(b_, b_->num.pdata) && (!im || is_zero(b_, im))) return source;
        source.re = b_->num.pdata;
        source.im = im;
        return source;
    }
    if (ox::rows(b_) != rows || cols(b_) != columns) {
        shaped_.reset(or_raise(deep_copy(b_)));
        auto new_jc = scratch<kwIndex>(columns + 1);
        oxArray *s = shaped_.get();
        reshape_indices(ox::rows(s), cols(s), s->num.jc, s->num.ir, rows, columns, new_jc.get());
        oxFreeEx(s->num.jc);
        s->num.jc = new_jc.release();
        store_mn(s, rows, columns);
        b_ = s;
    }
    source.columns = b_;
    return source;
}

} // namespace ox
