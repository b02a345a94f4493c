// The pieces of subscripted assignment.
#pragma once
#include <core/alloc.h>
#include <core/destroy.h>
#include <index/elements.h>
#include <index/selection.h>

namespace ox {

// Raises that subscripts must not be missing.
[[noreturn]] void raise_no_subscripts();

// A(i) = x, A(i, j) = x and x(end+1) = value with real double subscripts and a real scalar of a's
// class, where a shares nothing; false, and nothing done, for anything else.
bool assign_element(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs);

// The dimensions that an array with every dimension 0 takes from an assignment: ':' takes the sizes
// of rhs, or 1 where it is a scalar, other subscripts reach as far as they say. dims comes with
// the dimensions so far, which stay when no position is assigned. Raises when rhs does not fit.
void dimensions_from_rhs(const SubscriptSet &s, const oxArray *rhs, Extents &dims);

// For each field of a, the number of the field of rhs with that name. Raises error 68 unless both
// have the same names.
RawArray<int32_t> match_fields(const oxArray *a, const oxArray *rhs);

// Elements of rhs with owners of their own, on their way into a container or an array whose class
// layer copies elements. What it holds last is released.
class Incoming {
public:
    // n elements for target, field order by map (null: as it is); a scalar rhs repeats.
    Incoming(const oxArray *target, const oxArray *rhs, kwSize n, const int32_t *map);
    Incoming(const Incoming &) = delete;
    Incoming &operator=(const Incoming &) = delete;
    ~Incoming();
    // Puts the elements at the selected positions and takes what was there, position by position,
    // so that a position that is named twice gives its first new element back.
    void swap_into(oxArray *target, const Selection &to);

private:
    const oxArray *target_; // for its class
    ElementLayout layout_;
    RawBlock block_;
    kwSize parts_;
};

// The object that new elements of an array of class objects start as, or null (then they are null
// payloads). Raises when the class has none.
oxArray *default_object_of(const oxArray *a);

} // namespace ox
