// The way for A(i) and A(i, j) with real double scalars inside the extents: no description, no
// list.
#pragma once
#include <core/array.h>

namespace ox {

// The zero-based position that a real 1-by-1 double means inside an extent; false for anything
// else.
inline bool plain_position(const oxArray *sub, kwSize extent, kwSize *position) {
    constexpr uint32_t kinds = oxFLAG_SCALAR_DOUBLE | oxFLAG_SPARSE | oxFLAG_COLON;
    if (sub->class_code != oxDOUBLE_CLASS || (sub->flag_word & kinds) != oxFLAG_SCALAR_DOUBLE ||
        sub->num.pimag)
        return false;
    const double x = *data<double>(sub);
    // Signed conversions take one instruction each; the range comes before the cast.
    if (!(x >= 1 && x <= static_cast<double>(static_cast<int64_t>(extent)))) return false;
    const auto p = static_cast<int64_t>(x);
    *position = static_cast<kwSize>(p - 1);
    return static_cast<double>(p) == x;
}

// A full real array of numbers, characters or truth values.
inline bool is_plain_array(const oxArray *a) {
    constexpr uint32_t special = oxFLAG_SPARSE | oxFLAG_COLON | oxFLAG_INDEXING_OPAQUE;
    return a->class_code >= oxLOGICAL_CLASS && a->class_code <= oxUINT64_CLASS &&
           !a->has_flag(special) && !a->num.pimag;
}

// The linear position of the element that one or two plain subscripts select in a plain array.
inline bool plain_element(const oxArray *a, kwSize nsubs, const oxArray *const *subs,
                          kwSize *position) {
    if (nsubs == 1) return plain_position(subs[0], rows(a) * cols(a), position);
    kwSize i, j;
    if (nsubs != 2 || !plain_position(subs[0], rows(a), &i) ||
        !plain_position(subs[1], cols(a), &j))
        return false;
    *position = i + j * rows(a);
    return true;
}

} // namespace ox
