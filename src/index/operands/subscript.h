// One subscript as a description of the positions that it selects, for full and sparse code alike.
//
// A subscript array is read once, against the extent of its dimension, and never becomes a list
// where a description will do: `:` and ranges stay what they are, a numeric subscript whose values
// form an arithmetic progression becomes a range, a full mask stays its bytes. Positions are
// zero-based; `max` is one-based, so that it compares with an extent.
//
//   kind    count     the k-th position
//   none    0         -
//   all     extent    k                       (':'; also over an extent of 0)
//   scalar  1         first
//   range   >= 2      first + k * step        step may be negative or 0
//   list    >= 1      list[k]
//   mask    >= 1      of the k-th true byte of mask[0 .. mask_size-1]
//
// Reading checks that positions are positive integers, not that they lie inside the extent: a
// reference compares `max` with it, an assignment grows.
#pragma once
#include <core/alloc.h>
#include <core/array.h>
#include <core/position.h>

#include <cassert>

namespace ox {

enum class SubscriptFault {
    none,
    zero,        // a position 0
    not_integer, // NaN, negative, fractional or above 2^48 - 1
    not_real,    // an imaginary part, or a sparse numeric subscript that holds a zero
    no_memory,
};

class Subscript {
public:
    enum class Kind : uint8_t { none, all, scalar, range, list, mask };

    Kind kind = Kind::none;
    bool colon_character = false; // ':' itself, which shapes results differently from 1:n
    kwSize count = 0;             // positions selected
    kwSize max = 0;               // largest one-based position; the extent for all, 0 for none
    kwIndex first = 0;            // scalar and range
    int64_t step = 0;             // range
    const kwIndex *list = nullptr;
    const uint8_t *mask = nullptr; // the subscript array's own bytes, any non-zero one is true
    kwSize mask_size = 0;

    Subscript() = default;
    Subscript(const Subscript &) = delete;
    Subscript &operator=(const Subscript &) = delete;

    // Reads sub against an extent; sub must outlive the description. A colon object whose endpoints
    // are not finite raises, one of fractional values warns; everything else is told by the answer.
    // After a fault the description is none.
    [[nodiscard]] SubscriptFault read(const oxArray *sub, kwSize extent);
    // The same, but raises the fault ("Subscript indices must either be ...", or error 18).
    void read_or_raise(const oxArray *sub, kwSize extent);

    bool is_all() const { return kind == Kind::all; }
    bool is_none() const { return kind == Kind::none; } // not true for ':' over an extent of 0
    // Whether every position lies inside the extent; one that selects nothing always does.
    bool inside(kwSize extent) const { return max <= extent; }

    // The k-th position; a mask has no cheap one, see mask_to_list.
    kwIndex operator[](kwSize k) const {
        assert(kind != Kind::mask && k < count);
        switch (kind) {
        case Kind::all:
            return k;
        case Kind::list:
            return list[k];
        default: // wraps around as intended for a negative step
            return first + k * static_cast<kwIndex>(step);
        }
    }

    // Calls f(position) for every position in order, whatever the kind.
    template<class F> void for_each(F &&f) const {
        if (kind == Kind::mask) {
            for (kwSize i = 0; i < mask_size; ++i)
                if (mask[i]) f(i);
        } else if (kind == Kind::list) {
            for (kwSize k = 0; k < count; ++k) f(list[k]);
        } else {
            kwIndex p = kind == Kind::all ? 0 : first;
            const kwIndex s = kind == Kind::all ? 1 : static_cast<kwIndex>(step);
            for (kwSize k = 0; k < count; ++k, p += s) f(p);
        }
    }

    // Turns a mask into a list of the same positions, other kinds stay; false without memory.
    [[nodiscard]] bool mask_to_list();
    // Writes the positions, each plus base, into out[0 .. count-1].
    void copy_positions(kwIndex *out, kwIndex base = 0) const;

    // Becomes what its arguments say, for callers that build positions themselves.
    void set_none();
    void set_all(kwSize extent);
    void set_range(kwIndex first, int64_t step, kwSize count); // 1 position makes it a scalar

    // positions must outlive the description; largest is one-based.
    void set_list(const kwIndex *positions, kwSize count, kwSize largest);

private:
    SubscriptFault read_colon_object(const oxArray *sub);
    SubscriptFault read_numeric(const oxArray *sub);
    SubscriptFault read_full_mask(const oxArray *sub);
    SubscriptFault read_sparse_mask(const oxArray *sub);
    kwIndex *list_storage(kwSize n); // null without memory

    kwIndex few_[8]; // short lists live here, so that they allocate nothing
    RawArray<kwIndex> many_;
};

// Whether sub is the char array ':' of one element.
inline bool is_colon_character(const oxArray *sub) {
    if (sub->class_code != oxCHAR_CLASS || sub->has_flag(oxFLAG_COLON)) return false;
    return sub->get_number_of_elements() == 1 &&
           *static_cast<const oxChar *>(sub->num.pdata) == u':';
}

// Raises the error that stands for a fault.
[[noreturn]] void raise_subscript_fault(SubscriptFault fault);

} // namespace ox
