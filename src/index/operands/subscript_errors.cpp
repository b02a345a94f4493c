// The errors of a bad subscript, short and in detail.
#include <core/alloc.h>
#include <core/position.h>
#include <errors/raise.h>
#include <ox/subscripts.h>

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>

using namespace ox;

namespace {

constexpr const char *bad_subscript = "VELTRO:badsubscript";
constexpr kwSize entry_width = 32; // characters of one value or dimension, its comma included

// Subscripts or dimensions joined by commas.
class CommaList {
public:
    explicit CommaList(kwSize entries) : text_(RawArray<char>::make(entries * entry_width + 1)) {
        if (!text_) raise_out_of_memory();
        text_[0] = '\0';
    }
    void add(const char *entry) {
        const int n =
            std::snprintf(text_.get() + length_, entry_width, "%s%s", length_ ? "," : "", entry);
        length_ += static_cast<kwSize>(n);
    }
    void add(double v) {
        if (std::isnan(v)) return add("NaN");
        if (std::isinf(v)) return add(v > 0 ? "Inf" : "-Inf");
        char digits[entry_width];
        std::snprintf(digits, sizeof digits, "%g", v);
        add(digits);
    }
    void add(kwSize n) {
        char digits[entry_width];
        std::snprintf(digits, sizeof digits, "%" PRIu64, static_cast<uint64_t>(n));
        add(digits);
    }
    const char *text() const { return text_.get(); }

private:
    RawArray<char> text_;
    kwSize length_ = 0;
};

struct Access {
    const char *name;
    int ndims;
    const kwSize *dims;
    const char *colons;
    const double *values;
    kwSize nsubs;

    bool is_colon(kwSize k) const { return colons[k] == ':'; }
    kwSize elements() const {
        kwSize n = 1;
        for (int k = 0; k < ndims; ++k) n *= dims[k];
        return n;
    }
    CommaList subscripts() const {
        CommaList list(nsubs);
        for (kwSize k = 0; k < nsubs; ++k) is_colon(k) ? list.add(":") : list.add(values[k]);
        return list;
    }
};

bool is_valid(double v, int offset) {
    return v == std::trunc(v) && v > offset && v >= -2147483648.0 && v <= 2147483647.0;
}

[[noreturn]] void raise_invalid(const Access &a) {
    if (!a.name) oxHandleSubscriptError(1);
    oxErrMsgIdAndTxt(bad_subscript,
                     "Attempted to access %s(%s); index must be a positive integer or logical.",
                     a.name, a.subscripts().text());
}

[[noreturn]] void raise_outside(const Access &a) {
    if (!a.name) oxHandleSubscriptError(2);
    if (a.nsubs == 1 || (a.ndims == 2 && a.elements() == 1))
        oxErrMsgIdAndTxt(bad_subscript,
                         "Attempted to access %s(%s); index out of bounds because numel(%s)=%Iu.",
                         a.name, a.subscripts().text(), a.name, a.elements());
    CommaList sizes(static_cast<kwSize>(a.ndims));
    for (int k = 0; k < a.ndims; ++k) sizes.add(a.dims[k]);
    oxErrMsgIdAndTxt(bad_subscript,
                     "Attempted to access %s(%s); index out of bounds because size(%s)=[%s].",
                     a.name, a.subscripts().text(), a.name, sizes.text());
}

} // namespace

void oxHandleSubscriptError(int code) {
    if (code == 1)
        oxErrMsgIdAndTxt(bad_subscript,
                         "Subscript indices must either be real positive integers or logicals.");
    oxErrMsgIdAndTxt(bad_subscript, "Index exceeds matrix dimensions.");
}

void oxHandleSubscriptError(const char *arrayName, int ndims, const kwSize *dims,
                            const char *colonMask, const double *values, int offset) {
    const Access a{arrayName, ndims, dims, colonMask, values, std::strlen(colonMask)};
    for (kwSize k = 0; k < a.nsubs; ++k)
        if (!a.is_colon(k) && !is_valid(values[k], offset)) raise_invalid(a);
    for (int d = 0; d < ndims; ++d) {
        const auto k = static_cast<kwSize>(d);
        if (k < a.nsubs && a.is_colon(k)) continue;
        const kwSize position = k < a.nsubs ? double_to_size(values[k]) : 1;
        // Deliberate: the position is compared as if it were zero-based whatever offset means, so
        // that with offset 0 the last element counts as outside.
        if (static_cast<int64_t>(position + 1) > offset + static_cast<int64_t>(dims[k]))
            raise_outside(a);
    }
}

void oxHandleAmbiguousArrayGrowth(const char *arrayName) {
    constexpr const char *id = "VELTRO:indexed_matrix_cannot_be_resized";
    if (arrayName)
        oxErrMsgIdAndTxt(id, "Attempt to grow array %s along ambiguous dimension.", arrayName);
    oxErrMsgIdAndTxt(id, "Attempt to grow array along ambiguous dimension.");
}
