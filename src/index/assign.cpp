// Subscripted assignment: everything is checked and converted first, then the target grows, then
// elements are scattered into it.
#include <containers/copies.h>
#include <containers/object_layer.h>
#include <core/header_copy.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <index/gather.h>
#include <index/growth.h>
#include <index/operands/colon_range.h>
#include <index/operands/shapes.h>
#include <index/sparse_route.h>
#include <ox.h>
#include <sparse/storage/csc.h>

namespace ox {

namespace {

bool is_scalar(const oxArray *a) { return a->get_number_of_elements() == 1; }

bool is_class_object(const oxArray *a) {
    return a->class_code == oxOPAQUE_CLASS && a->opaque.info && a->opaque.info->is_class_object();
}

// Whether the target takes the class of what is assigned.
bool takes_class(const oxArray *a, const oxArray *rhs) {
    if (a->has_flag(oxFLAG_EMPTY_BRACKET)) return true;
    if (a->get_number_of_elements() != 0) return false;
    if (a->class_code == oxUNKNOWN_CLASS) return true;
    return a->class_code == oxSTRUCT_CLASS && field_count(a) == 0 && is_struct_like(rhs);
}

// An array of rhs's class without data, with the dimensions of a.
oxArray *make_replacement(const oxArray *a, const oxArray *rhs) {
    ArrayGuard target(empty_copy(rhs));
    if (!target) raise_out_of_memory();
    target->set_flag(oxFLAG_HEADER_KEPT | oxFLAG_COLON, false);
    const Extents dims(a->get_dimensions(), a->ndims);
    if (store_dimensions(target.get(), dims.size(), dims.get()) != 0) raise_out_of_memory();
    return target.release();
}

class Assignment {
public:
    Assignment(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs)
        : a_(a), subs_(subs), rhs_(rhs), s_(nsubs), target_(a) {}

    // Returns the default object that growth needed, or null.
    oxArray *run(const oxArray *filler, bool resize_only);

private:
    kwSize nsubs() const { return s_.size(); }
    bool selects_none(bool colon_too) const {
        for (const Subscript &s : s_)
            if (s.is_none() || (colon_too && s.count == 0)) return true;
        return false;
    }
    void read_subscripts();
    void prepare_rhs();
    void replace_target();
    void check_shape() const;
    void plan_growth();
    void convert_rhs();
    oxArray *make_room(const oxArray *filler);
    oxArray *grow(const oxArray *filler);
    Selection select(kwSize parts);
    oxArray *store_bytes(const oxArray *filler);
    oxArray *store_owned(const oxArray *filler);
    void scatter_bytes(const Selection &to);
    void finish();

    oxArray *a_;
    const oxArray *const *subs_;
    const oxArray *rhs_;
    SubscriptSet s_;
    oxArray *target_;              // a_, or what replaces it
    ArrayGuard replacement_;       // owns target_ when it is not a_
    ArrayGuard full_;              // rhs in full storage
    oxArray *converted_ = nullptr; // rhs in the target's class, a listed temporary
    Extents dims_;                 // of the target after growth
    bool all_zero_ = false;        // every dimension of a_ is 0
    bool grows_ = false;
};

void Assignment::read_subscripts() {
    const kwSize *dims = a_->get_dimensions();
    all_zero_ = true;
    for (kwSize k = 0; k < a_->ndims; ++k) all_zero_ = all_zero_ && dims[k] == 0;
    for (kwSize k = 0; k < nsubs(); ++k)
        s_[k].read_or_raise(subs_[k],
                            all_zero_ ? 0 : effective_extent(dims, a_->ndims, k, nsubs()));
}

void Assignment::prepare_rhs() {
    if (is_sparse(rhs_))
        full_.reset(sparse_to_full(rhs_));
    else if (rhs_->has_flag(oxFLAG_COLON))
        full_.reset(expand_colon(rhs_));
    else
        return;
    if (!full_) raise_out_of_memory();
    rhs_ = full_.get();
}

void Assignment::replace_target() {
    if (!takes_class(a_, rhs_)) return;
    if (is_class_object(rhs_) && nsubs() == 1 && s_[0].is_none() &&
        a_->class_code == oxUNKNOWN_CLASS)
        oxErrMsg(FSUBSASSIGNNUMELMISMATCH);
    replacement_.reset(make_replacement(a_, rhs_));
    target_ = replacement_.get();
}

void Assignment::check_shape() const {
    if (all_zero_ || is_scalar(rhs_)) return;
    Extents counts(nsubs());
    for (kwSize k = 0; k < nsubs(); ++k) counts[k] = s_[k].count;
    raise_shape_fault(match_assignment(counts.get(), nsubs(), rhs_));
}

// The dimensions after growth; ':' then means the whole of its new extent.
void Assignment::plan_growth() {
    dims_.assign(a_->get_dimensions(), a_->ndims);
    if (all_zero_) {
        dimensions_from_rhs(s_, rhs_, dims_);
        grows_ = true;
        for (kwSize k = 0; k < nsubs(); ++k)
            if (s_[k].colon_character)
                s_[k].set_all(effective_extent(dims_.get(), dims_.size(), k, nsubs()));
        return;
    }
    Extents largest(nsubs());
    for (kwSize k = 0; k < nsubs(); ++k) largest[k] = s_[k].max;
    grows_ = grown_dimensions(a_, largest.get(), nsubs(), dims_);
}

// An rhs without elements copies nothing, whatever its class.
void Assignment::convert_rhs() {
    if (rhs_->get_number_of_elements() == 0) return;
    const int cls =
        is_struct_like(target_) && is_struct_like(rhs_) ? rhs_->class_code : target_->class_code;
    if (rhs_->class_code == cls) return;
    converted_ = oxMustBe(const_cast<oxArray *>(rhs_), static_cast<oxClassID>(cls));
    rhs_ = converted_;
}

// A target of the final size with storage of its own.
oxArray *Assignment::make_room(const oxArray *filler) {
    if (grows_) return grow(filler);
    if (!own_for_writing(target_)) raise_out_of_memory();
    return nullptr;
}

oxArray *Assignment::grow(const oxArray *filler) {
    kwSize count = 1;
    for (kwSize k = 0; k < dims_.size(); ++k) {
        if (target_->class_code == oxFUNCTION_CLASS && dims_[k] > 1)
            oxErrMsgIdAndTxt("VELTRO:index:internalError",
                             "Arrays of function handles cannot grow.");
        count *= dims_[k];
    }
    oxArray *object = nullptr;
    if (is_class_object(target_) && count > target_->get_number_of_elements())
        object = default_object_of(target_);
    resize_array(target_, dims_, object ? object : filler);
    return object;
}

Selection Assignment::select(kwSize parts) {
    const kwSize *dims = target_->get_dimensions();
    Extents extents(nsubs());
    for (kwSize k = 0; k < nsubs(); ++k)
        extents[k] = effective_extent(dims, target_->ndims, k, nsubs());
    return Selection(s_, extents.get(), parts);
}

oxArray *Assignment::store_bytes(const oxArray *filler) {
    oxArray *object = make_room(filler);
    scatter_bytes(select(1));
    return object;
}

oxArray *Assignment::store_owned(const oxArray *filler) {
    kwSize n = 1;
    for (const Subscript &s : s_) n *= s.count;
    RawArray<int32_t> fields;
    if (is_struct_like(target_)) fields = match_fields(target_, rhs_);
    Incoming incoming(target_, rhs_, n, fields.get());
    oxArray *object = make_room(filler);
    incoming.swap_into(target_, select(element_layout(target_).parts));
    return object;
}

void Assignment::scatter_bytes(const Selection &to) {
    const kwSize width = class_info(target_->class_code).element_size;
    const bool fills = is_scalar(rhs_);
    auto put = [&](void *dst, const void *src) {
        fills ? scatter_value(dst, src, width, to) : scatter(dst, src, width, to);
    };
    const bool rhs_complex = has_imag_block(rhs_);
    if (rhs_complex && !has_imag_block(target_)) {
        target_->num.pimag = oxCallocEx(target_->get_number_of_elements(), width);
        if (!target_->num.pimag) raise_out_of_memory();
    }
    put(target_->num.pdata, rhs_->num.pdata);
    if (rhs_complex) {
        put(target_->num.pimag, rhs_->num.pimag);
    } else if (has_imag_block(target_)) {
        constexpr uint64_t zero = 0;
        scatter_value(target_->num.pimag, &zero, width, to);
    }
}

void Assignment::finish() {
    oxFreeImagIfZero(target_);
    oxSetScalarDoubleFlagIfAppropiate(target_);
    if (target_ != a_) move_onto_header(a_, replacement_.release());
    if (converted_) oxDestroyArray(converted_);
}

oxArray *Assignment::run(const oxArray *filler, bool resize_only) {
    read_subscripts();
    prepare_rhs();
    if (is_scalar(rhs_) && selects_none(!all_zero_)) return nullptr;
    const bool own_shapes = a_->is_indexing_opaque() || rhs_->is_indexing_opaque();
    if (!own_shapes) {
        check_shape();
        plan_growth();
    }
    replace_target();
    if (target_->is_indexing_opaque()) {
        if (!target_->opaque.info) raise_layer_missing("opaque");
        target_->opaque.info->assign(target_, nsubs(), subs_, rhs_);
        if (target_ != a_) move_onto_header(a_, replacement_.release());
        return nullptr;
    }
    if (!resize_only) convert_rhs();
    if (own_shapes) { // now that rhs has elements that can be counted
        check_shape();
        plan_growth();
    }
    grows_ = grows_ || target_ != a_;
    const bool copies = !resize_only && rhs_->get_number_of_elements() != 0 && !selects_none(true);
    oxArray *object = nullptr;
    if (!copies)
        object = grows_ ? grow(filler) : nullptr;
    else if (elements_are_bytes(target_))
        object = store_bytes(filler);
    else
        object = store_owned(filler);
    finish();
    return object;
}

// Operands that are the target itself are replaced by a copy that shares its data: the target
// leaves the ring before it is written, and the copy keeps the old elements.
class Operands {
public:
    Operands(kwSize n, const oxArray *const *list, const oxArray *right, const oxArray *fill)
        : subs(list), rhs(right), filler(fill), nsubs_(n) {}

    void detach_from(const oxArray *a) {
        bool among = false;
        for (kwSize k = 0; k < nsubs_; ++k) among = among || subs[k] == a;
        if (rhs != a && filler != a && !among) return;
        copy_.reset(shared_copy(a));
        if (!copy_) raise_out_of_memory();
        if (rhs == a) rhs = copy_.get();
        if (filler == a) filler = copy_.get();
        if (!among) return;
        list_ = RawArray<const oxArray *>::make(nsubs_);
        if (!list_) raise_out_of_memory();
        for (kwSize k = 0; k < nsubs_; ++k) list_[k] = subs[k] == a ? copy_.get() : subs[k];
        subs = list_.get();
    }

    const oxArray *const *subs;
    const oxArray *rhs, *filler;

private:
    kwSize nsubs_;
    ArrayGuard copy_;
    RawArray<const oxArray *> list_;
};

oxArray *assign(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs,
                const oxArray *filler, bool resize_only) {
    if (!resize_only && assign_element(a, nsubs, subs, rhs)) return nullptr;
    if (nsubs == 0) raise_no_subscripts();
    if (is_sparse(a) && !a->has_flag(oxFLAG_EMPTY_BRACKET)) {
        assign_sparse(a, nsubs, subs, rhs, resize_only);
        return nullptr;
    }
    oxExpandColonObj(a);
    Operands o(nsubs, subs, rhs, filler);
    o.detach_from(a);
    return Assignment(a, nsubs, o.subs, o.rhs).run(o.filler, resize_only);
}

} // namespace

void raise_no_subscripts() {
    oxErrMsgIdAndTxt(
        "VELTRO:nindexIsZero",
        "The \"subs\" field for the subscript argument to SUBSREF and SUBSASGN must be "
        "a non-empty cell or character array.");
}

} // namespace ox

using namespace ox;

oxArray *oxSubscriptedAssignmentWithFiller(oxArray *a, kwSize nsubs, const oxArray *subs[],
                                           const oxArray *rhs, const oxArray *filler,
                                           bool resizeOnly) {
    if (!is_struct_like(a)) return assign(a, nsubs, subs, rhs, filler, resizeOnly);
    oxStructureAssignment(a, nsubs, subs, rhs);
    return nullptr;
}

void oxSubscriptedAssignment(oxArray *a, kwSize nsubs, const oxArray *subs[], const oxArray *rhs) {
    oxDestroyArray(oxSubscriptedAssignmentWithFiller(a, nsubs, subs, rhs, nullptr, false));
}

void oxStructureAssignment(oxArray *a, kwSize nsubs, const oxArray *subs[], const oxArray *rhs) {
    const auto of_layer = object_layer().structure_assignment;
    if (a->class_code == oxOBJECT_CLASS && of_layer)
        of_layer(a, nsubs, subs, rhs);
    else
        assign(a, nsubs, subs, rhs, nullptr, false);
}
