// Copies of every kind of array, references, unsharing, scopes, protected pointers, and what is
// asked of the class layer; what follows when these meet is the subject of the random walk.
#include <containers/check_array.h>
#include <core/array_list.h>
#include <support/suite.h>

namespace {

using Copies = LayerTest;

bool shares(const oxArray *a, const oxArray *b) {
    bool found = false;
    for (const oxArray *p = a->cross_link; p && p != a; p = p->cross_link) found |= p == b;
    return found && a->num.pdata == b->num.pdata;
}

TEST_F(Copies, FlagsOfTheValueStayAndThoseOfTheHeaderGo) {
    constexpr uint32_t kept = oxFLAG_GLOBAL_WS | oxFLAG_COLON | oxFLAG_COMMA_LIST;
    oxArray *a = arr("1");
    a->set_flag(kept | oxFLAG_EMPTY_BRACKET | oxFLAG_REUSABLE, true);
    constexpr uint32_t scalar = kept | oxFLAG_NUMERIC | oxFLAG_SCALAR_DOUBLE;
    EXPECT_EQ(oxCreateSharedDataCopy(a)->flag_word, scalar);
    EXPECT_EQ(oxCreateEmptyCopy(a)->flag_word, kept | oxFLAG_NUMERIC);
}

TEST_F(Copies, EmptyCopiesKeepTheClassAndSkeletonsTheShape) {
    for (const char *kind : one_of_each) {
        SCOPED_TRACE(kind);
        const oxArray *a = arr(kind), *e = oxCreateEmptyCopy(a);
        EXPECT_STREQ(oxGetClassName(e), oxGetClassName(a));
        EXPECT_TRUE(oxIsEmpty(e) && e->ndims == 2 && !oxIsComplex(e) && !check_array(e));
        EXPECT_TRUE(oxIsSparse(e) ? e->num.nzmax == 1 : !e->num.pdata && !oxIsSparse(a));
        oxArray *s = oxCreateSkeletonCopy(a, oxCOMPLEX);
        EXPECT_TRUE(s->num.pdata && s->num.pdata != a->num.pdata && !s->cross_link);
        EXPECT_EQ(oxIsComplex(s), oxIsNumeric(a));
        if (!is_sparse(a)) continue;
        // Deliberate: the index vectors are those of the source until someone replaces them.
        EXPECT_TRUE(s->num.ir == a->num.ir && s->num.jc == a->num.jc);
        s->num.ir = static_cast<kwIndex *>(oxCallocEx(1, sizeof(kwIndex)));
        s->num.jc = static_cast<kwIndex *>(oxCallocEx(cols(s) + 1, sizeof(kwIndex)));
    }
}

// Two headers of more than two dimensions have a vector each.
TEST_F(Copies, SharersAreExactCopiesIfTheyAreMatrices) {
    for (const auto &[of, exact] : {std::pair{"1 2", true},
                                    {"sparse double 2x2: (0,0)=1", true},
                                    {"double 1x1x2: 1 | 2", false}}) {
        const oxArray *a = arr(of), *b = oxCreateSharedCopyNotOnArrayList(a);
        EXPECT_EQ(oxIsExactSharedCopy(a, b), exact) << of;
        EXPECT_TRUE(oxIsExactSharedCopy(a, a) && !oxIsExactSharedCopy(a, nullptr));
        EXPECT_FALSE(oxIsExactSharedCopy(a, oxCreateDeepCopy(a))) << of;
        oxDestroyArray(const_cast<oxArray *>(b));
    }
}

TEST_F(Copies, APrivateBlockIsNeverFreedWhoeverUnsharesFirst) {
    static double block[2] = {1, 2}; // freeing it would not survive
    for (int way = 0; way < 4; ++way) {
        oxArray *a = arr("double 0x2");
        oxSetDataPrivateFlag(a, true);
        a->set_pdata(block);
        oxSetM_730(a, 1);
        oxArray *b = oxCreateSharedDataCopy(a), *c = oxCreateSharedDataCopy(a);
        if (way < 2) oxUnshare(way ? a : b);
        if (way == 2) oxUnshareOtherArrays(b);
        if (way == 3) oxDestroyArray(a);
        EXPECT_EQ(text(b) + text(c), "double 1x2: 1 2double 1x2: 1 2");
    }
}

TEST_F(Copies, AnArrayOfItsOwnChangesItsScopeAndAnothersIsCopied) {
    oxArray *a = arr("double 0x0");
    oxSetEmptySqrBrktFlag(a, true);
    EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
    EXPECT_TRUE(a->scope == oxSCOPE_PROPERTY && !a->has_flag(oxFLAG_EMPTY_BRACKET));
    oxIncRefCount(a); // with the scope already, it is returned whoever else holds it
    EXPECT_EQ(oxPreparePropertyValueForContainment(a), a);
    oxArray *copy = contained(a); // another scope: a copy, and one reference less
    EXPECT_TRUE(copy != a && copy->scope == oxSCOPE_CONTAINED && a->reference_count == 0);
    for (oxArray *p : {a, copy}) oxDestroyArray(p);
}

// A sharer of the array's data that already has the scope stands for it, unless it differs.
TEST_F(Copies, ASharerThatHasTheScopeAndDoesNotDifferStandsForTheArray) {
    const std::tuple<const char *, bool, void (*)(oxArray *)> table[] = {
        {"7", true, oxClearScalarDoubleFlag}, // mended
        {"double 1x1x2: 1 | 2", true, [](oxArray *) {}},
        {"struct 1x1 a: {1}", true, [](oxArray *) {}},
        {"7", false, [](oxArray *s) { oxSetArrayScope(s, 9); }},
        {"7", false, [](oxArray *s) { oxSetEmptySqrBrktFlag(s, true); }},
        {"7", false, [](oxArray *s) { s->set_flag(oxFLAG_LIST_MARK, true); }},
        {"1 2", false, [](oxArray *s) { oxSetM_730(s, 2), oxSetN_730(s, 1); }},
        {"struct 1x1 a: {1}", false, [](oxArray *s) { s->class_code = oxOBJECT_CLASS; }},
        {"struct 1x1 a: {1}", false,
         [](oxArray *s) { oxUnshareOtherArrays(s), oxAddField(s, "more"); }},
    };
    for (const auto &[of, stands, change] : table) {
        SCOPED_TRACE(of);
        oxArray *a = arr(of);
        oxArray *sharer = oxPreparePropertyValueForContainment(oxCreateSharedDataCopy(a));
        change(sharer);
        oxArray *value = oxPreparePropertyValueForContainment(a);
        EXPECT_TRUE(value == (stands ? sharer : a) && value->scope == oxSCOPE_PROPERTY);
        EXPECT_EQ(sharer->reference_count, stands);
        EXPECT_EQ(oxIsScalarDoubleFlagSet(value), of[0] == '7');
        for (oxArray *p : {value, sharer}) oxDestroyArray(p);
    }
}

// Deliberate: what an enclosing context listed stays on its list, unless it is moved first.
TEST_F(Copies, AnArrayOfAnEnclosingContextIsMovedBeforeItIsContained) {
    oxArray *a = arr("1"), *b = arr("2");
    const int outer = oxEnterNewArrayListContext();
    oxMoveArrayFromPreviousContext(outer, a);
    EXPECT_TRUE(contained(a) == a && !array_list_contains(a));
    EXPECT_TRUE(contained(b) == b && array_list_contains(b));
    oxExitArrayListContext(outer, nullptr, 0, true);
    oxSetArrayScope(b, 4); // enters it a second time
    array_list_remove(b);  // and off again; the first entry goes with the context
    oxDestroyArray(a);
}

TEST_F(Copies, ProtectedArraysLeaveAndRejoinTheTemporaries) {
    oxArray *a = arr("1 2");
    Protected_oxArray p(a, true), q = p, borrowed(a, false);
    q = p; // two owners of one array: nothing changes
    EXPECT_TRUE(a->scope == oxSCOPE_NONE && oxGetReferenceCount(a) == 1);
    EXPECT_TRUE(q.Unshare() != a && oxGetReferenceCount(a) == 0);
    oxArray *copy = p.Unprotect_copy();
    EXPECT_TRUE(oxIsTemp(copy) && copy != a && shares(copy, a));
    oxIncRefCount(a);
    EXPECT_EQ(p.Unprotect(), a);
    EXPECT_TRUE(oxIsTemp(a) && oxGetReferenceCount(a) == 1 && !p.get());
    p = arr("3");
    p = q; // frees the 3
}

TEST(CopiesAtLoad, ReferencesStandForCopiesAndFailedAllocationsLeaveTheSourceAlone) {
    reset_library();
    oxArray *first = arr("1 2"), *same = oxCreateSharedCopy(first), *h = oxUnreference(first);
    EXPECT_TRUE(same == first && h != first && shares(first, h) && first->reference_count == 0);
    for (oxArray *p : {first, h}) oxDestroyArray(p);
    using Unshare = bool (*)(const Arrays &);
    const Unshare ways[] = {[](auto &in) { return oxUnshare(in[0]) == in[0]; },
                            [](auto &in) { return !oxUnshareArray(in[0], 1); }, // shallow
                            [](auto &in) { return !oxUnshareOtherArrays(in[0]); }};
    const WithLayer layer;
    for (const char *kind : one_of_each) {
        const auto pair = [kind] {
            oxArray *a = arr(kind);
            return Arrays{a, oxCreateSharedDataCopy(a)};
        };
        sweep_everywhere({{kind}}, [](auto &in) { return oxCreateSharedDataCopy(in[0]); });
        sweep_everywhere({{kind}}, [](auto &in) { return oxCreateEmptyCopy(in[0]); });
        Sweep deep{"deep", {kind}, [](auto &in) { return oxCreateDeepCopy(in[0]); }};
        deep.changes_inputs = true; // the failed copy stays in the source's ring
        sweep(deep);
        for (const Unshare unshare : ways)
            sweep({.name = "unshare", .act = unshare, .setup = pair});
    }
    sweep_everywhere({{"1+2i 3"}}, [](auto &in) { return oxCreateSkeletonCopy(in[0], 1); });
    sweep({"not listed", {"1 2"}, nullptr, [](auto &in) { // raises even without managers
               oxDestroyArray(oxCreateSharedCopyNotOnArrayList(in[0]));
               return true;
           }});
}

// --- The class layer: what is asked of it, and what happens when there is none ---

using Layer = HostTest;

constexpr const char *missing = "VELTRO:objectLayerMissing";

TEST_F(Layer, EveryCopyOfAnObjectIsAnnouncedOnce) {
    const WithLayer layer;
    oxArray *a = arr("object Point 1x2 a: {1} {2}");
    const auto skeleton = [](const oxArray *p) { return oxCreateSkeletonCopy(p, 0); };
    const auto onto_header = [](const oxArray *p) {
        oxArray *dst = arr("1");
        oxMoveCopyOntoHeader(dst, const_cast<oxArray *>(p));
        return dst;
    };
    const auto alone_in_brackets = [](const oxArray *p) {
        oxCatContext objects{[](auto...) { return oxOBJECT_CLASS; }, nullptr};
        const auto as_is = [](oxCatContext *, oxClassID, const oxArray *x) { return x; };
        return oxCatenateDispatch(oxCAT_VERTICAL, 1, &p, as_is, &objects);
    };
    for (oxArray *(*copy)(const oxArray *) :
         {oxCreateSharedDataCopy, oxCreateDeepCopy, oxCreateEmptyCopy, +skeleton, +onto_header,
          +alone_in_brackets, oxCreateSharedCopyNotOnArrayList}) {
        layer_calls = {};
        oxArray *c = copy(a);
        EXPECT_EQ(layer_calls.objects_created, 1);
        EXPECT_STREQ(oxGetClassName(c), "Point");
        oxDestroyArray(c);
        EXPECT_EQ(layer_calls.objects_released, 1);
    }
}

TEST_F(Layer, WithoutOneObjectsAndHandlesAreBytesAndTheRestSaysWhatIsMissing) {
    oxArray *handle;
    {
        const WithLayer layer;
        handle = oxCreateFunctionHandle("12");
    }
    const kwSize dims[] = {1, 2};
    oxArray *bare = oxCreateOpaqueArray(2, dims, nullptr);
    EXPECT_EQ(text(oxCreateSharedDataCopy(bare)), "opaque 1x2: -1 -1");
    EXPECT_RAISES(missing,
                  "Arrays of class 'opaque' need the object layer, which is not installed.",
                  oxCreateDeepCopy(bare));
    EXPECT_RAISES(missing, nullptr, oxCreateOpaqueGiblet(nullptr));
    EXPECT_RAISES(missing, nullptr, oxCreateFunctionHandle("12"));
    EXPECT_EQ(text(oxCreateDeepCopy(arr("object Point 1x1 a: {1}"))),
              "object Point 1x1 a: {double 1x1: 1}");
    oxArray *bytes = oxCreateDeepCopy(handle);
    EXPECT_EQ(*data<void *>(bytes), *data<void *>(handle));
    const WithLayer layer; // which then releases one of the two
    *data<void *>(bytes) = nullptr;
    oxDestroyArray(handle);
}

TEST(LayerSweep, EveryFailedAllocation) {
    const WithLayer layer;
    static const kwSize dims[] = {1, 2, 2};
    sweep_everywhere({{}}, [](auto &) { return oxCreateOpaqueArray(3, dims, opaque_class()); });
    sweep_everywhere({{}}, [](auto &) { return oxCreateOpaqueGiblet(lazy_class()); });
    sweep_everywhere({{"lazy 1x2: 3"}}, [](auto &in) { return oxCreateDeepCopy(in[0]); });
}

} // namespace
