// Linking and unlinking headers that share one data block.
#include <core/ring.h>

namespace ox {
namespace {

void not_reusable(oxArray *a) { a->set_flag(oxFLAG_REUSABLE, false); }

} // namespace

void ring_link_after(oxArray *member, oxArray *a) {
    a->cross_link = member->cross_link ? member->cross_link : member;
    member->cross_link = a;
    not_reusable(member);
    not_reusable(a);
    not_reusable(a->cross_link);
}

oxArray *ring_previous(const oxArray *a) {
    oxArray *p = a->cross_link;
    while (p && p->cross_link != a) p = p->cross_link;
    return p;
}

void ring_unlink(oxArray *a) {
    oxArray *previous = ring_previous(a);
    if (!previous) return;
    oxArray *next = a->cross_link;
    previous->cross_link = next == previous ? nullptr : next;
    a->cross_link = nullptr;
    not_reusable(a);
    not_reusable(previous);
    not_reusable(next);
}

void ring_replace(oxArray *a, oxArray *b) {
    oxArray *previous = ring_previous(a);
    if (!previous) return;
    b->cross_link = a->cross_link;
    previous->cross_link = b;
    a->cross_link = nullptr;
    not_reusable(a);
    not_reusable(b);
    not_reusable(previous);
    not_reusable(b->cross_link);
}

} // namespace ox
