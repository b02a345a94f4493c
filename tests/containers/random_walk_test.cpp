// A random walk over everything that shares: creates, copies, contains, unshares, writes, moves
// between contexts and destroys, and compares each array with what its handle must show.
//
// The model of a value is its text. What a write must give is found by writing to a fresh array of
// that text, which shares nothing with anyone.
#include <containers/check_array.h>
#include <containers/slots.h>
#include <core/array_list.h>
#include <support/suite.h>

#include <algorithm>

namespace {

constexpr int unlisted = -1;

// One owner of an array: home is the context whose list has it, or `unlisted`.
struct Handle {
    oxArray *a;
    std::string value;
    int home;
};
struct Level {
    int index; // what entering the context returned
    std::vector<Handle> handles;
};

// A change of one value, the same whichever array of that value it is made to.
struct Change {
    uint64_t where;
    int number;
    std::string element; // to store; empty: write below, or take the element away
    bool shallow;
};
void change_slots(oxArray *a, const Change &c);

// a is nobody else's.
void change(oxArray *a, const Change &c) {
    const kwSize n = is_sparse(a) ? a->num.jc[cols(a)] : a->get_number_of_elements();
    if (is_container(a)) return change_slots(a, c);
    if (n == 0 || a->is_indexing_opaque()) return;
    const kwSize k = c.where % n;
    if (a->class_code == oxOPAQUE_CLASS)
        *static_cast<double *>(data<void *>(a)[k]) = c.number;
    else if (a->class_code == oxFUNCTION_CLASS)
        *data<double *>(a)[0] = c.number;
    else if (a->is_char())
        data<oxChar>(a)[k] = static_cast<oxChar>('a' + c.number);
    else if (c.where % 5 == 0 && !is_sparse(a))
        oxSetDimensions_730(a, std::vector<kwSize>{n, 1}.data(), 2);
    else
        store_number(a, k, oxIsLogical(a) ? "1" : std::to_string(c.number));
}

void change_slots(oxArray *a, const Change &c) {
    if (is_struct_like(a) && c.where % 7 == 0) {
        if (oxAddField(a, "added") > 2) oxRemoveField(a, 0);
        return;
    }
    const kwSize n = slot_count(a);
    if (n == 0) return;
    oxArray *&slot = a->cell.slots[c.where % n];
    if (slot && c.element.empty() && c.where % 3) { // the element becomes ours, and is changed
        slot = c.shallow ? oxUnshareShallow(slot) : oxUnshare(slot);
        return change(slot, {c.where / n, c.number, {}, c.shallow});
    }
    oxDestroyArray(slot);
    slot = c.element.empty() ? nullptr : contained(arr(c.element));
}

class Walk {
public:
    explicit Walk(uint64_t seed) : random_(seed) { levels_.push_back({0, {}}); }

    void step() {
        if (current().size() < 3 || (current().size() < 6 && random_.chance(0.2)))
            add(arr(leaf()));
        else
            make_a_move();
        verify();
    }

    void leave_all() {
        while (levels_.size() > 1) leave();
        for (const Handle &h : current())
            if (h.home == unlisted) oxDestroyArray(h.a);
    }

private:
    Random random_;
    std::vector<Level> levels_;

    std::vector<Handle> &current() { return levels_.back().handles; }
    int here() const { return static_cast<int>(levels_.size()) - 1; }
    Handle &any() {
        Level &level = random_.pick(levels_);
        return random_.pick(level.handles.empty() ? current() : level.handles);
    }
    const char *leaf() {
        if (random_.chance(0.1)) return random_.chance(0.5) ? "double 0x2" : "lazy 2x3: 7";
        return random_.pick(one_of_each);
    }
    kwSize mine() { return random_.below(current().size()); }

    void add(oxArray *a, const std::string &v, int home) { current().push_back({a, v, home}); }
    void add(oxArray *a) { add(a, text(a), here()); }
    void forget(kwSize i) { current().erase(current().begin() + static_cast<std::ptrdiff_t>(i)); }

    static bool plain(const Handle &h) { return h.value[0] != 'u' && h.value.back() != 'a'; }
    static bool counted(const Handle &h) { return oxGetReferenceCount(h.a) > 0; }

    void own(Handle &h, bool shallow) {
        oxArray *mine = shallow ? oxUnshareShallow(h.a) : oxUnshareEx(h.a);
        if (mine != h.a) h.home = oxIsTemp(mine) ? here() : unlisted;
        h.a = mine;
        EXPECT_FALSE(oxIsSharedArray(h.a));
    }

    void copy() {
        const Handle h = any();
        const uint64_t way = random_.below(7);
        if (way == 0) return add(oxCreateReference(h.a), h.value, h.home);
        if (way == 1) return add(oxCreateSharedCopyNotOnArrayList(h.a), h.value, unlisted);
        if (way == 2) return add(oxCreateEmptyCopy(h.a));
        if (way == 3) return add(oxCreateDeepCopy(h.a), h.value, here());
        add(way == 4 ? oxCreateSharedCopy(h.a) : oxCreateSharedDataCopy(h.a), h.value, here());
    }
    void claim() {
        Handle &h = current()[mine()];
        const std::string value = h.value;
        const bool reusable = !oxIsSharedArray(h.a);
        if (reusable) h.a->set_reusable(true);
        oxArray *copy = oxCreateClaimedDataCopy(h.a);
        if (reusable) h.value = "unknown 0x0";
        add(copy, value, here());
    }
    void write() {
        Handle &h = current()[mine()];
        if (!plain(h)) return;
        const Change c{random_.bits(), static_cast<int>(random_.below(9)),
                       random_.chance(0.3) ? leaf() : "", random_.chance(0.5)};
        own(h, false);
        oxArray *fresh = arr(h.value);
        change(fresh, c);
        h.value = text(fresh);
        oxDestroyArray(fresh);
        change(h.a, c);
    }
    // Leaves the storage to one array: the others get a copy, or, if all are known, nothing.
    void others() {
        const Handle h = any();
        const void *block = h.a->num.pdata;
        bool known = random_.chance(0.5);
        std::vector<Handle *> sharers;
        for (oxArray *p = h.a->cross_link; p && p != h.a; p = p->cross_link) {
            const kwSize before = sharers.size();
            for (Level &l : levels_)
                for (Handle &s : l.handles)
                    if (s.a == p) sharers.push_back(&s);
            // What is, or may be, an element of something must keep its value.
            known = known && sharers.size() > before && p->scope != oxSCOPE_CONTAINED;
        }
        if (!known) {
            EXPECT_EQ(oxUnshareOtherArrays(h.a), 0);
            EXPECT_TRUE(!h.a->cross_link && h.a->num.pdata == block);
            return;
        }
        oxUnshareAndEmptyOtherArrays(h.a);
        for (Handle *s : sharers) {
            EXPECT_TRUE(oxIsEmpty(s->a));
            s->value = text(s->a);
        }
    }
    void move_onto() {
        const kwSize i = mine(), j = mine();
        Handle &dst = current()[i];
        if (counted(dst) || dst.a == current()[j].a) return;
        dst.value = current()[j].value;
        if (random_.chance(0.5)) return oxMoveCopyOntoHeader(dst.a, current()[j].a);
        oxMoveArrayOntoHeader(dst.a, current()[j].a);
        forget(j);
    }

    // Stores a value of its own, or a copy of one that stays.
    void store() {
        const kwSize i = mine(), j = mine();
        Handle &dst = current()[i];
        const Handle src = current()[j];
        if (!plain(dst) || !plain(src) || dst.value.size() + src.value.size() > 250) return;
        if (i == j || !is_container(dst.a) || slot_count(dst.a) == 0) return;
        own(dst, random_.chance(0.5));
        oxArray *&slot = dst.a->cell.slots[0];
        oxArray *fresh = arr(dst.value);
        oxDestroyArray(std::exchange(fresh->cell.slots[0], contained(arr(src.value))));
        dst.value = text(fresh);
        oxDestroyArray(fresh);
        oxDestroyArray(std::exchange(slot, nullptr));
        if (random_.chance(0.5)) return oxSetCopyInCell(dst.a, 0, src.a);
        oxSetCell_730(dst.a, 0, src.a);
        forget(j);
    }
    void element() {
        const Handle h = any();
        oxArray *e = is_container(h.a) && h.a->cell.slots ? h.a->cell.slots[0] : nullptr;
        if (e) add(oxCreateReference(e), text(e), unlisted);
    }
    void make_property() {
        Handle &h = current()[mine()];
        h.a = oxPreparePropertyValueForContainment(h.a);
        h.home = unlisted;
    }
    void protect() {
        Handle &h = current()[mine()];
        if (counted(h)) return;
        Protected_oxArray p(h.a, true);
        EXPECT_FALSE(array_list_contains(h.a));
        if (random_.chance(0.5)) p.Unshare();
        h.a = p.Unprotect();
        h.home = here();
    }
    void let_go() {
        const kwSize i = mine();
        oxDestroyArray(current()[i].a);
        forget(i);
    }

    void enter() {
        if (levels_.size() < 4) levels_.push_back({oxEnterNewArrayListContext(), {}});
    }
    void leave() {
        if (levels_.size() < 2) return;
        Level level = std::move(levels_.back());
        levels_.pop_back();
        const int left = here() + 1;
        const bool fold = random_.chance(0.3);
        std::vector<oxArray *> kept;
        for (const Handle &h : level.handles)
            if (h.home == left && random_.chance(0.3)) kept.push_back(h.a);
        for (const Handle &h : level.handles) {
            if (h.home != left)
                oxDestroyArray(h.a);
            else if (fold || std::count(kept.begin(), kept.end(), h.a))
                add(h.a, h.value, here());
        }
        if (fold)
            oxExitAndFoldArrayListContext(level.index);
        else
            oxExitArrayListContext(level.index, kept.data(), static_cast<int>(kept.size()), true);
    }

    void make_a_move() {
        using W = Walk;
        static constexpr void (W::*moves[])() = {
            // the likely ones more than once
            &W::copy,   &W::copy,   &W::copy,    &W::copy,          &W::copy,    &W::claim,
            &W::write,  &W::write,  &W::write,   &W::others,        &W::others,  &W::move_onto,
            &W::store,  &W::store,  &W::element, &W::make_property, &W::protect, &W::let_go,
            &W::let_go, &W::let_go, &W::enter,   &W::leave};
        (this->*random_.pick(moves))();
    }

    void verify() {
        for (const Level &l : levels_)
            for (const Handle &h : l.handles) {
                const Finding f = check_array(h.a);
                ASSERT_FALSE(f) << text(f.array) << ": not so: " << check_rule_text(f.rule);
                ASSERT_EQ(text(h.a), h.value);
                ASSERT_EQ(array_list_contains(h.a), h.home != unlisted);
            }
    }
};

using RandomWalk = LayerTest;

// OX_WALK_STEPS makes it longer.
TEST_F(RandomWalk, EveryHandleShowsItsValueAfterEveryStep) {
    const char *given = std::getenv("OX_WALK_STEPS");
    const uint64_t steps = given ? std::strtoull(given, nullptr, 10) : 100000;
    constexpr uint64_t episode = 2000;
    for (uint64_t n = 0; n < steps; n += episode) {
        const Contexts contexts;
        Walk walk(1 + n / episode);
        for (uint64_t k = 0; k < episode; ++k) {
            walk.step();
            ASSERT_FALSE(HasFailure()) << "seed " << 1 + n / episode << ", step " << k;
        }
        walk.leave_all();
    }
}

} // namespace
