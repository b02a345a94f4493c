// Copies of every kind of array, references, unsharing, and protected pointers.
#include <containers/check_array.h>
#include <core/imaginary.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/faults.h>
#include <support/host.h>

#include <algorithm>
#include <cstring>

using namespace ox;
using namespace ox::test;

namespace {

// One of each kind; what is in a ring when it is shared has data.
const char *const kinds[] = {
    "double 2x2: 1 2; 3 4",
    "double 1x2: 1+2i 3-4i",
    "5",
    "double 2x1x2: 1; 2 | 3; 4",
    "sparse double 3x2 nzmax 8: (0,0)=1 (2,1)=5",
    "sparse double 2x2: (0,0)=1+2i",
    "sparse logical 2x2: (1,0)=1",
    "int8 1x3: -1 0 1",
    "logical 1x2: 1 0",
    "char 2x2: 'ab'; 'cd'",
    "cell 1x3: {1 2} {} {cell 1x1: {char 1x1: 'x'}}",
    "cell 1x1x2: {1} {2}",
    "struct 1x2 a,b: {1} {} {3} {sparse double 1x1: (0,0)=1}",
    "object Point 1x1 px: {cell 1x1: {7}}",
    "opaque 1x3: 5 6 7",
    "function_handle 1x2: 8 9",
};
const char *const empties[] = {"double 0x0",   "single 0x3", "cell 0x2",
                               "struct 0x1 a", "struct 1x1", "char 0x0x2"};

class Copies : public HostTest {
    WithLayer layer_;
};

bool shares(const oxArray *a, const oxArray *b) {
    bool found = false;
    for (const oxArray *p = a->cross_link; p && p != a; p = p->cross_link) found |= p == b;
    return found && a->num.pdata == b->num.pdata;
}

bool sound(const oxArray *a) {
    const Finding f = check_array(a);
    if (f) ADD_FAILURE() << text(f.array) << ": not so: " << check_rule_text(f.rule);
    return !f;
}

// Whether no block is in both arrays, nor in anything that they contain.
bool apart(const oxArray *a, const oxArray *b) {
    if (!a || !b) return a == b;
    for (int w = 0; w < (is_sparse(a) ? 4 : is_numeric(a) ? 2 : 1); ++w)
        if (a->words[w] && a->words[w] == b->words[w]) return false;
    if (!oxIsCell(a) || !a->cell.slots) return true;
    for (kwSize i = 0; i < a->get_number_of_elements(); ++i)
        if (a->cell.slots[i] && !apart(a->cell.slots[i], b->cell.slots[i])) return false;
    return true;
}

TEST_F(Copies, EveryKindSharesAndCopiesDeeply) {
    for (const char *kind : kinds) {
        SCOPED_TRACE(kind);
        oxArray *a = arr(kind);
        oxSetUserBits(a, 0x5A);
        a->set_reusable(true);
        oxArray *s = oxCreateSharedDataCopy(a);
        EXPECT_TRUE(shares(a, s) && shares(s, a));
        EXPECT_EQ(text(s), text(a));
        EXPECT_EQ(oxIsExactSharedCopy(a, s), a->ndims == 2);
        EXPECT_FALSE(oxIsReusable(a) || oxIsReusable(s));
        EXPECT_EQ(oxGetUserBits(s), 0x5A);
        EXPECT_TRUE(oxIsTemp(s));
        oxArray *d = oxCreateDeepCopy(a);
        EXPECT_EQ(text(d), text(a));
        EXPECT_FALSE(oxIsSharedArray(d));
        EXPECT_TRUE(apart(a, d));
        if (is_sparse(a)) {
            EXPECT_EQ(d->num.nzmax, a->num.nzmax);
        }
        EXPECT_TRUE(sound(a) && sound(d));
        oxDestroyArray(a);
        EXPECT_FALSE(oxIsSharedArray(s));
        EXPECT_EQ(text(s), text(d));
    }
    for (const char *kind : empties) {
        SCOPED_TRACE(kind);
        oxArray *a = arr(kind), *s = oxCreateSharedDataCopy(a), *d = oxCreateDeepCopy(a);
        EXPECT_FALSE(a->cross_link || s->cross_link || d->cross_link);
        EXPECT_EQ(text(s) + text(d), text(a) + text(a));
        EXPECT_TRUE(sound(s) && sound(d));
    }
}

TEST_F(Copies, FlagsOfTheValueStayAndThoseOfTheHeaderGo) {
    constexpr uint32_t all = oxFLAG_EMPTY_BRACKET | oxFLAG_GLOBAL_WS | oxFLAG_COLON |
                             oxFLAG_COMMA_LIST | oxFLAG_REUSABLE;
    oxArray *a = arr("1");
    a->set_flag(all, true);
    const oxArray *copies[] = {oxCreateSharedDataCopy(a), oxCreateSkeletonCopy(a, 0),
                               oxCreateEmptyCopy(a)};
    constexpr uint32_t kept = oxFLAG_GLOBAL_WS | oxFLAG_COLON | oxFLAG_COMMA_LIST | oxFLAG_NUMERIC;
    EXPECT_EQ(copies[0]->flag_word, kept | oxFLAG_SCALAR_DOUBLE);
    EXPECT_EQ(copies[1]->flag_word, kept | oxFLAG_SCALAR_DOUBLE);
    EXPECT_EQ(copies[2]->flag_word, kept);
    EXPECT_EQ(copies[0]->scope, oxSCOPE_TEMPORARY);
}

TEST_F(Copies, EmptyCopiesKeepTheClassAndNothingElse) {
    for (const char *kind : kinds) {
        SCOPED_TRACE(kind);
        const oxArray *a = arr(kind), *e = oxCreateEmptyCopy(a);
        EXPECT_STREQ(oxGetClassName(e), oxGetClassName(a));
        EXPECT_EQ(oxIsSparse(e), oxIsSparse(a));
        EXPECT_EQ(oxGetNumberOfElements(e), 0u);
        EXPECT_EQ(e->ndims, 2u);
        EXPECT_FALSE(oxIsComplex(e));
        if (is_struct_like(a)) {
            EXPECT_EQ(e->record.names, a->record.names);
        }
        if (is_sparse(a)) {
            EXPECT_EQ(e->num.nzmax, 1u);
        }
        EXPECT_TRUE(sound(e));
    }
}

TEST_F(Copies, SkeletonsHaveStorageOfTheirOwnButTheIndexVectorsOfTheSource) {
    for (const char *kind : kinds) {
        SCOPED_TRACE(kind);
        oxArray *a = arr(kind), *s = oxCreateSkeletonCopy(a, oxCOMPLEX);
        EXPECT_TRUE(s->num.pdata && s->num.pdata != a->num.pdata);
        EXPECT_EQ(oxIsComplex(s), oxIsNumeric(a));
        EXPECT_FALSE(s->cross_link);
        if (!is_sparse(a)) continue;
        EXPECT_TRUE(s->num.ir == a->num.ir && s->num.jc == a->num.jc);
        s->num.ir = static_cast<kwIndex *>(oxCallocEx(1, sizeof(kwIndex)));
        s->num.jc = static_cast<kwIndex *>(oxCallocEx(cols(s) + 1, sizeof(kwIndex)));
    }
    EXPECT_FALSE(oxIsComplex(oxCreateSkeletonCopy(arr("1+2i"), 0)));
    EXPECT_EQ(oxGetData(oxCreateSkeletonCopy(arr("double 0x3"), 1)), nullptr);
}

TEST_F(Copies, TheImaginaryMarkerIsCarriedNotCopied) {
    oxArray *a = arr("1 2");
    oxMarkImagData(a);
    oxArray *d = oxCreateDeepCopy(a);
    EXPECT_TRUE(d->is_imag_marked());
    EXPECT_FALSE(oxIsSharedArray(a));
}

TEST_F(Copies, AReusableSourceLosesItsDataToTheClaim) {
    oxArray *a = arr("double 1x2x2: 1 2 | 3 4");
    EXPECT_TRUE(shares(oxCreateClaimedDataCopy(a), a)); // not reusable: a plain shared copy
    oxArray *b = oxCreateDeepCopy(a), *other = oxCreateSharedDataCopy(b);
    b->set_reusable(true); // as if nobody else could see it
    const void *block = oxGetData(b);
    oxArray *c = oxCreateClaimedDataCopy(b);
    EXPECT_EQ(oxGetData(c), block);
    EXPECT_TRUE(shares(c, other) && !b->cross_link);
    EXPECT_EQ(text(b), "unknown 0x0");
    EXPECT_TRUE(oxIsReusable(b) && oxIsTemp(b));
}

TEST_F(Copies, MovingReplacesTheValueButNotTheHeader) {
    for (const char *kind : kinds) {
        SCOPED_TRACE(kind);
        oxArray *dst = arr("cell 1x1x2: {1} {2}"), *src = arr(kind);
        oxArray *sharer = oxCreateSharedDataCopy(dst);
        oxMoveCopyOntoHeader(dst, src);
        EXPECT_EQ(text(dst), text(src));
        EXPECT_TRUE(shares(dst, src) && oxGetReferenceCount(src) == 0 && oxIsTemp(dst));
        EXPECT_EQ(text(sharer), "cell 1x1x2: {double 1x1: 1} {double 1x1: 2}");
        oxMoveArrayOntoHeader(sharer, src);
        EXPECT_TRUE(shares(dst, sharer) && sound(sharer));
        oxMoveCopyOntoHeader(dst, dst);
        oxMoveCopyOntoHeader(dst, nullptr);
        EXPECT_EQ(text(dst), "unknown 0x0");
    }
}

TEST_F(Copies, UnsharingTheMiddleOfThreeLeavesTheOthersTogether) {
    for (const char *kind : kinds) {
        SCOPED_TRACE(kind);
        oxArray *a = arr(kind), *b = oxCreateSharedDataCopy(a), *c = oxCreateSharedDataCopy(b);
        const std::string value = text(a);
        EXPECT_EQ(oxUnshare(b), b);
        EXPECT_TRUE(!oxIsSharedArray(b) && shares(a, c) && apart(a, b));
        EXPECT_FALSE(oxUnshareArray(b, 0)); // false: it did not fail
        EXPECT_EQ(text(a) + text(b), value + value);
        EXPECT_TRUE(sound(a) && sound(b));
    }
}

TEST_F(Copies, UnsharingACountedHeaderGivesANewOneInItsPlace) {
    for (const bool shallow : {false, true}) {
        oxArray *a = oxCreateReference(arr("cell 1x2: {1} {}"));
        oxSetArrayScope(a, 42);
        oxArray *h = shallow ? oxUnshareShallow(a) : oxUnshare(a);
        EXPECT_NE(h, a);
        EXPECT_EQ(oxGetArrayScopeField(h), 42);
        EXPECT_EQ(oxGetReferenceCount(a) + oxGetReferenceCount(h), 0u);
        EXPECT_FALSE(oxIsSharedArray(a) || oxIsSharedArray(h));
        EXPECT_EQ(a->cell.slots[0] == h->cell.slots[0], shallow);
        EXPECT_EQ(oxGetReferenceCount(a->cell.slots[0]), shallow ? 1u : 0u);
        EXPECT_TRUE(sound(a) && sound(h));
        for (oxArray *p : {a, h}) oxDestroyArray(p);
    }
}

TEST_F(Copies, LeavingTheStorageToOneMember) {
    for (const char *kind : kinds) {
        for (const bool pair : {true, false}) {
            SCOPED_TRACE(kind);
            oxArray *a = arr(kind), *b = oxCreateSharedDataCopy(a);
            oxArray *c = pair ? nullptr : oxCreateSharedDataCopy(a);
            const void *block = a->num.pdata;
            EXPECT_EQ(oxUnshareOtherArrays(a), 0);
            EXPECT_TRUE(!a->cross_link && a->num.pdata == block && apart(a, b));
            EXPECT_TRUE(pair ? !b->cross_link : shares(b, c));
            EXPECT_EQ(text(b), text(a));
            EXPECT_TRUE(sound(a) && sound(b));
        }
        oxArray *a = arr(kind), *b = oxCreateSharedDataCopy(a), *c = oxCreateSharedDataCopy(a);
        EXPECT_EQ(oxUnshareAndEmptyOtherArrays(a), c);
        EXPECT_TRUE(!a->cross_link && b->cross_link == c && c->cross_link == b);
        EXPECT_TRUE(!b->num.pdata && oxIsEmpty(b) && sound(a) && sound(b));
        oxDestroyArray(a);
        EXPECT_FALSE(oxIsComplex(c));
    }
}

TEST_F(Copies, APrivateBlockIsNeverFreedWhoeverUnsharesFirst) {
    for (const int who : {0, 1, 2, 3}) {
        double block[2] = {1, 2};
        oxArray *a = arr("double 0x2");
        oxSetDataPrivateFlag(a, true);
        a->set_pdata(block);
        oxSetM_730(a, 1);
        oxArray *b = oxCreateSharedDataCopy(a), *c = oxCreateSharedDataCopy(a);
        if (who == 0) oxUnshare(a);
        if (who == 1) oxUnshare(b);
        if (who == 2) oxUnshareOtherArrays(b);
        if (who == 3) oxDestroyArray(a);
        EXPECT_EQ(text(b) + text(c), "double 1x2: 1 2double 1x2: 1 2");
        int private_blocks = 0;
        for (const oxArray *p : {b, c}) private_blocks += p->num.pdata == block;
        EXPECT_EQ(private_blocks, who == 0 ? 2 : who == 3 ? 0 : 1);
    } // freeing what is on the stack would not survive leaving the context
}

TEST_F(Copies, ExactCopiesAgreeInEveryFieldThatIsNotTheHeadersOwn) {
    oxArray *a = arr("1 2"), *b = oxCreateSharedDataCopy(a);
    oxIncRefCount(b);
    oxSetArrayScope(b, 9);
    EXPECT_TRUE(oxIsExactSharedCopy(a, b));
    oxSetM_730(b, 2);
    EXPECT_FALSE(oxIsExactSharedCopy(a, b));
    EXPECT_FALSE(oxIsExactSharedCopy(a, nullptr));
    oxSetReferenceCount(b, 0);
    oxDestroyArray(b);
}

TEST_F(Copies, ProtectedArraysLeaveAndRejoinTheTemporaries) {
    static_assert(sizeof(Protected_oxArray) == 16);
    oxArray *a = arr("1 2");
    {
        Protected_oxArray p(a, true), q = p, borrowed(a, false);
        EXPECT_TRUE(a->scope == oxSCOPE_NONE && oxGetReferenceCount(a) == 1);
        q = p; // two owners of one array: nothing changes
        EXPECT_EQ(oxGetReferenceCount(a), 1u);
        EXPECT_NE(q.Unshare(), a);
        EXPECT_EQ(oxGetReferenceCount(a), 0u);
        oxArray *copy = p.Unprotect_copy();
        EXPECT_TRUE(oxIsTemp(copy) && copy != a && shares(copy, a));
        oxIncRefCount(a);
        EXPECT_EQ(p.Unprotect(), a);
        EXPECT_TRUE(oxIsTemp(a) && oxGetReferenceCount(a) == 1 && !p.get());
        p = arr("3");
        EXPECT_FALSE(oxIsTemp(p));
        p = q; // frees the 3
        EXPECT_EQ(p->reference_count, 1u);
    }
    EXPECT_EQ(text(a), "double 1x2: 1 2");
}

TEST(CopiesAtLoad, WithoutManagersNothingIsListedAndReferencesStandForCopies) {
    reset_library();
    oxArray *a = arr("1 2");
    EXPECT_EQ(oxCreateSharedCopy(a), a);
    oxArray *h = oxUnreference(a);
    EXPECT_TRUE(h != a && shares(a, h) && oxGetReferenceCount(a) == 0);
    EXPECT_EQ(oxCreateSharedCopyNotOnArrayList(nullptr), nullptr);
    for (oxArray *p : {a, h}) oxDestroyArray(p);
}

TEST(CopiesSweep, EveryFailedAllocationLeavesTheSourceAlone) {
    const WithLayer layer;
    const auto pair = [](const char *of) {
        return [of] {
            oxArray *a = arr(of);
            return Arrays{a, oxCreateSharedDataCopy(a)};
        };
    };
    for (const char *kind : kinds) {
        sweep({"shared", {kind}, [](auto &in) { return oxCreateSharedDataCopy(in[0]); }});
        sweep({.name = "deep",
               .inputs = {kind},
               .make = [](auto &in) { return oxCreateDeepCopy(in[0]); },
               .changes_inputs = true}); // the failed copy stays in the source's ring
        sweep({"empty", {kind}, [](auto &in) { return oxCreateEmptyCopy(in[0]); }});
        sweep({.name = "unshare",
               .act = [](auto &in) { return oxUnshare(in[0]) == in[0]; },
               .setup = pair(kind)});
        sweep({.name = "unshare others",
               .act = [](auto &in) { return oxUnshareOtherArrays(in[0]) == 0; },
               .setup = pair(kind)});
    }
    sweep({"skeleton", {"1+2i 3"}, [](auto &in) { return oxCreateSkeletonCopy(in[0], 1); }});
    sweep({.name = "shallow",
           .act = [](auto &in) { return oxUnshareShallow(in[0]) == in[0]; },
           .setup = pair("cell 1x2: {1} {2}")});
    sweep({"move", {"1", "2 3"}, {}, [](auto &in) {
               oxIncRefCount(in[1]);
               try {
                   oxMoveCopyOntoHeader(in[0], in[1]);
               } catch (...) {
                   oxDestroyArray(in[1]);
                   throw;
               }
               oxDestroyArray(in[1]);
               return in[0]->num.pdata == in[1]->num.pdata;
           }});
}

} // namespace
