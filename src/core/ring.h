// The ring of headers that share one data block: the only code that writes cross-links.
//
// Each header points at the next through cross_link; a header alone has a null link, never a link
// to itself. A header that joins or leaves loses its reusable flag, and so does each neighbour
// whose link is rewritten: storage that someone else can see is not up for taking.
#pragma once
#include <core/array.h>

namespace ox {

// Puts a, which is in no ring, right after member.
void ring_link_after(oxArray *member, oxArray *a);
// Takes a out of its ring; nothing when it is alone.
void ring_unlink(oxArray *a);
// Puts b, which is in no ring, in a's place of a's ring; a is alone afterwards.
void ring_replace(oxArray *a, oxArray *b);
// The member that points at a, or null when a is alone.
oxArray *ring_previous(const oxArray *a);

// Calls f(member) for every other member of a's ring, starting after a. f must not change the ring.
template<class F> void ring_for_others(const oxArray *a, F &&f) {
    for (oxArray *p = a->cross_link; p && p != a; p = p->cross_link) f(p);
}

} // namespace ox
