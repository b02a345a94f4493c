// Catenation: the dimension argument, the class, the conversions and the checks, in that order.
#include <containers/copies.h>
#include <containers/field_table.h>
#include <core/alloc.h>
#include <core/array_list.h>
#include <core/create.h>
#include <core/imaginary.h>
#include <core/position.h>
#include <errors/raise.h>
#include <errors/warn.h>
#include <index/catenate_parts.h>
#include <ox/catenate.h>
#include <ox/convert.h>
#include <ox/sharing.h>
#include <sparse/catenate.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <cmath>

namespace ox {
namespace {

constexpr kwSize no_dimension = ~kwSize{0}; // cat(0, ...): every extent must agree
constexpr kwSize few = 32;                  // operands without a block of their own
constexpr kwSize most_dimensions = kwSize{1} << 24;

// The operands in the class of the result. Those that a conversion made are destroyed at the end,
// also when a raise unwinds.
class Operands {
public:
    explicit Operands(kwSize capacity) {
        if (capacity <= few) return;
        heap_ = RawArray<const oxArray *>::make(2 * capacity);
        if (!heap_) oxErrMsg(FNOMEM);
        converted_ = heap_.get();
        made_ = heap_.get() + capacity;
    }
    Operands(const Operands &) = delete;
    Operands &operator=(const Operands &) = delete;
    ~Operands() {
        while (made_count_ > 0) oxDestroyArray(const_cast<oxArray *>(made_[--made_count_]));
    }

    void add(const oxArray *given, const oxArray *converted) {
        if (!converted) oxErrMsg(FNOMEM);
        if (converted != given) made_[made_count_++] = converted;
        converted_[count_++] = converted;
        classes_ |= 1U << converted->class_code;
        alike_ = alike_ && is_like_first(converted);
    }
    // Whether all are real matrices of one shape with elements: whatever is joined, their extents
    // agree.
    bool alike() const { return alike_; }
    bool any_of_class(int id) const { return classes_ >> id & 1; }
    void make_sparse() {
        for (kwSize k = 0; k < count_; ++k) {
            auto *a = const_cast<oxArray *>(converted_[k]);
            oxArray *s = oxMustBeSparse(a);
            if (s == a) continue;
            auto *end = made_ + made_count_, *old = std::find(made_, end, a);
            if (old == end)
                ++made_count_;
            else
                oxDestroyArray(a);
            *old = converted_[k] = s;
        }
    }
    // Keeps the operands for which keep(a) holds, in order.
    template<class F> void filter(F &&keep) {
        const oxArray **end = std::remove_if(converted_, converted_ + count_,
                                             [&](const oxArray *a) { return !keep(a); });
        count_ = static_cast<kwSize>(end - converted_);
    }
    kwSize count() const { return count_; }
    const oxArray *const *all() const { return converted_; }
    const oxArray *const *begin() const { return converted_; }
    const oxArray *const *end() const { return converted_ + count_; }

private:
    bool is_like_first(const oxArray *a) const {
        const kwSize *d = a->get_dimensions(), *e = converted_[0]->get_dimensions();
        return a->ndims == 2 && d[0] == e[0] && d[1] == e[1] && d[0] != 0 && d[1] != 0 &&
               !has_imag_block(a);
    }

    const oxArray *local_[2 * few];
    RawArray<const oxArray *> heap_;
    const oxArray **converted_ = local_, **made_ = local_ + few;
    kwSize count_ = 0, made_count_ = 0;
    uint32_t classes_ = 0; // of the converted operands, a bit each
    bool alike_ = true;
};

bool has_imaginary_value(const oxArray *scalar) {
    return has_imag_block(scalar) && (!is_sparse(scalar) || nonzeros(scalar) > 0) &&
           *imag<double>(scalar) != 0;
}

kwSize parse_dimension(const oxArray *d) {
    const bool scalar = oxIsDouble(d) && d->get_number_of_elements() == 1;
    const double x = scalar && !has_imaginary_value(d) ? oxGetScalar(d) : -1;
    if (!(x >= 0) || std::isinf(x) || x != std::floor(x))
        oxErrMsgIdAndTxt("VELTRO:catenate:invalidDimension", "Dimension must be a finite integer.");
    return x == 0 ? no_dimension : double_to_size(x) - 1;
}

// Deliberate: a char operand makes a numeric result char, whatever the interpreter chose.
oxClassID result_class(oxCatContext *context, int n, const oxArray *args[], bool any_char) {
    const oxClassID chosen = context->choose_class(context, n, args);
    const bool numeric = chosen >= oxDOUBLE_CLASS && chosen <= oxUINT64_CLASS;
    return numeric && any_char ? oxCHAR_CLASS : chosen;
}

void check_tags(const Operands &operands) {
    if (!operands.any_of_class(oxOPAQUE_CLASS)) return;
    const oxArray *first = nullptr;
    for (const oxArray *a : operands) {
        if (!oxIsOpaque(a) || oxIsEmpty(a)) continue;
        if (!first) first = a;
        if (a->opaque.tag != first->opaque.tag)
            oxErrMsgIdAndTxt("VELTRO:catenate:incompatibleType",
                             "Arrays being catenated have incompatible classes.");
    }
}

// The first struct that is not 0-by-0 names the fields; the others must have the same names.
void check_fields(const Operands &operands) {
    if (!operands.any_of_class(oxSTRUCT_CLASS) && !operands.any_of_class(oxOBJECT_CLASS)) return;
    const oxArray *reference = nullptr;
    for (const oxArray *a : operands) {
        if (!is_struct_like(a) || is_0_by_0(a)) continue;
        if (!reference) reference = a;
        const name_index_info *names = a->record.names, *wanted = reference->record.names;
        if (field_count(a) != field_count(reference))
            oxErrMsgIdAndTxt("VELTRO:catenate:structFieldBad",
                             "CAT arguments are not consistent in structure field number.");
        for (int32_t f = 0; names != wanted && f < field_count(a); ++f)
            if (find_field(wanted, names->names[f]) < 0)
                oxErrMsgIdAndTxt("VELTRO:catenate:structFieldBad",
                                 "CAT arguments are not consistent in structure field names.");
    }
}

bool agrees(const oxArray *a, const oxArray *reference, kwSize dim) {
    const kwSize *d = a->get_dimensions(), *e = reference->get_dimensions();
    if ((dim != 0 && d[0] != e[0]) || (dim != 1 && d[1] != e[1])) return false;
    const kwSize most = std::max(a->ndims, reference->ndims);
    for (kwSize k = 2; k < most; ++k)
        if (k != dim && extent_along(a, k) != extent_along(reference, k)) return false;
    return true;
}

// Deliberate: sparse and full arrays have a text each under one identifier.
[[noreturn]] void raise_mismatch(bool sparse) {
    oxErrMsgIdAndTxt("VELTRO:catenate:dimensionMismatch",
                     sparse ? "CAT argument dimensions are not consistent."
                            : "CAT arguments dimensions are not consistent.");
}

void warn_of_empty(kwSize dim) {
    if (dim > 1) return; // higher dimensions skip in silence
    oxWarningMsgIdAndTxt("VELTRO:catenate:DimensionMismatch",
                         dim == 1 ? "Concatenation involves an empty array with an incorrect "
                                    "number of rows.\nThis may not be allowed in a future release."
                                  : "Concatenation involves an empty array with an incorrect "
                                    "number of columns.\nThis may not be allowed in a future "
                                    "release.");
}

// Drops what does not count and checks the rest: 0-by-0 operands, and empty ones that disagree
// (with one warning a call).
void check_extents(Operands &operands, kwSize dim, bool sparse) {
    if (operands.alike()) return;
    operands.filter([](const oxArray *a) { return !is_0_by_0(a); });
    if (operands.count() == 0) return;
    const oxArray *reference = *operands.begin();
    for (const oxArray *a : operands)
        if (!oxIsEmpty(a)) {
            reference = a;
            break;
        }
    bool warn = false;
    operands.filter([&](const oxArray *a) {
        if (agrees(a, reference, dim)) return true;
        if (!oxIsEmpty(a)) raise_mismatch(sparse);
        warn = true;
        return false;
    });
    if (warn) warn_of_empty(dim);
}

// The sum of the extents. It is exact: saturated at the limit it would pass the check.
kwSize joint_extent(const Operands &operands, kwSize dim) {
    kwSize total = 0;
    bool over = false;
    if (operands.alike())
        over =
            __builtin_mul_overflow(operands.count(), extent_along(*operands.begin(), dim), &total);
    else
        for (const oxArray *a : operands)
            over |= __builtin_add_overflow(total, extent_along(a, dim), &total);
    if (over) oxErrMsg(FPMAXSIZE);
    return total;
}

// Joins two or more operands whose extents agree. Raises 19 above the element limit.
oxArray *join(const Operands &operands, kwSize dim, bool sparse) {
    const oxArray *first = *operands.begin();
    if (dim == no_dimension) raise_mismatch(sparse);
    if (dim >= most_dimensions) oxErrMsg(FNOMEM);
    kwSize ndim = std::max(first->ndims, dim + 1);
    auto dims = RawArray<kwSize>::make(ndim);
    if (!dims) oxErrMsg(FNOMEM);
    const kwSize total = joint_extent(operands, dim);
    for (kwSize k = 0; k < ndim; ++k) dims[k] = k == dim ? total : extent_along(first, k);
    while (ndim > 2 && dims[ndim - 1] == 1) --ndim;
    oxCheckDim(dims.get(), ndim, kwSize{1});
    if (sparse)
        return sparse_catenate(dim == 0, operands.count(), operands.all(), dims[0], dims[1]);
    const bool scalars = operands.alike() && first->get_number_of_elements() == 1;
    return join_full({operands.count(), operands.all(), first, dim, ndim, dims.get(), scalars});
}

oxArray *catenate(kwSize dim, int n, const oxArray *args[], oxCatConvertFcn convert,
                  oxCatContext *context) {
    if (n == 0) return make_full(0, 0, oxDOUBLE_CLASS, false);
    bool sparse = false, any_char = false;
    for (int k = 0; k < n; ++k) {
        sparse |= is_sparse(args[k]);
        any_char |= args[k]->is_char();
    }
    const oxClassID id = result_class(context, n, args, any_char);
    Operands operands(static_cast<kwSize>(n));
    for (int k = 0; k < n; ++k) operands.add(args[k], convert(context, id, args[k]));
    if (sparse) operands.make_sparse();
    if (sparse && dim != no_dimension && dim > 1)
        oxErrMsgIdAndTxt("VELTRO:catenate:sparseDimensionBad",
                         "Dimension for sparse matrix concatenation must be <= 2.");
    const oxArray *fallback = *operands.begin(); // the answer when no operand counts
    check_tags(operands);
    check_fields(operands);
    check_extents(operands, dim, sparse);
    if (operands.count() > 1) return join(operands, dim, sparse);
    const oxArray *only = operands.count() ? *operands.begin() : fallback;
    return shared_copy(only);
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" oxArray *oxCatenateDispatch(int form, int nargs, const oxArray *args[],
                                       oxCatConvertFcn convert, oxCatContext *context) {
    if (form >= oxCAT_HORIZONTAL)
        return hand_over(catenate(form == oxCAT_HORIZONTAL ? 1 : 0, nargs, args, convert, context));
    if (nargs < 1) oxErrMsg(FMINRHS);
    return hand_over(catenate(parse_dimension(args[0]), nargs - 1, args + 1, convert, context));
}
