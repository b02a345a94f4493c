// The dimensions that an array with every dimension 0 takes from an assignment.
#include <index/assign.h>
#include <index/operands/shapes.h>

namespace ox {

namespace {

// The sizes of rhs in order, those that are 1 left out.
class Sizes {
public:
    explicit Sizes(const oxArray *rhs) : d_(rhs->get_dimensions()), nd_(rhs->ndims) { skip(); }
    bool more() const { return k_ < nd_; }
    kwSize take() {
        const kwSize size = d_[k_++];
        skip();
        return size;
    }

private:
    void skip() {
        while (k_ < nd_ && d_[k_] == 1) ++k_;
    }
    const kwSize *d_;
    kwSize nd_, k_ = 0;
};

void from_linear(const Subscript &s, const oxArray *rhs, Extents &dims) {
    if (s.colon_character) return dims.assign(rhs->get_dimensions(), rhs->ndims);
    if (s.count != rhs->get_number_of_elements()) raise_shape_fault(ShapeFault::elements);
    if (s.max == 0) return; // as it was
    const bool column = rhs->ndims == 2 && rhs->mn[1] == 1 && rhs->mn[0] != 1;
    column ? dims.assign(s.max, 1) : dims.assign(kwSize{1}, s.max);
}

// Every subscript but ':' has the size of rhs in its own place.
bool fits_in_place(const SubscriptSet &s, const oxArray *rhs) {
    const kwSize *d = rhs->get_dimensions();
    if (rhs->ndims > s.size()) return false;
    for (kwSize k = 0; k < s.size(); ++k)
        if (!s[k].colon_character && s[k].count != (k < rhs->ndims ? d[k] : 1)) return false;
    return true;
}

kwSize next_size(const Subscript &s, Sizes &sizes) {
    if (s.colon_character) return sizes.more() ? sizes.take() : 1;
    if (s.count == 1) return s.max;
    if (!sizes.more()) raise_shape_fault(ShapeFault::fewer);
    if (sizes.take() != s.count) raise_shape_fault(ShapeFault::sizes);
    return s.max;
}

} // namespace

void dimensions_from_rhs(const SubscriptSet &s, const oxArray *rhs, Extents &dims) {
    const bool scalar = rhs->get_number_of_elements() == 1;
    if (s.size() == 1 && !scalar) return from_linear(s[0], rhs, dims);
    if (s.size() == 1) return dims.assign(kwSize{1}, s[0].colon_character ? 1 : s[0].max);
    const bool in_place = scalar || fits_in_place(s, rhs);
    Sizes sizes(rhs);
    dims.resize(s.size());
    for (kwSize k = 0; k < s.size(); ++k)
        if (!in_place)
            dims[k] = next_size(s[k], sizes);
        else if (!s[k].colon_character)
            dims[k] = s[k].max;
        else
            dims[k] = scalar || k >= rhs->ndims ? 1 : rhs->get_dimensions()[k];
    if (!in_place && sizes.more()) raise_shape_fault(ShapeFault::more);
    dims.trim();
}

} // namespace ox
