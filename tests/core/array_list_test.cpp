// The array list: contexts, marks, scopes, and what leaving destroys.
#include <core/array_list.h>
#include <support/suite.h>

namespace {

std::string visited;
void visit(oxArray *a) { visited += std::to_string(static_cast<int>(oxGetScalar(a))); }

// The first elements of the current context's arrays, top first.
std::string context() {
    visited.clear();
    oxApplyToAllArraysOnArrayList(visit);
    return visited;
}

class ArrayList : public HostTest {
protected:
    oxArray *made_[6] = {};
    void make(int n) {
        for (int k = 1; k <= n; ++k) made_[k] = oxCreateDoubleScalar(k);
    }
};

TEST_F(ArrayList, CreatedArraysAreTemporariesOnce) {
    make(3);
    oxSetArrayScope(made_[1], oxSCOPE_TEMPORARY);
    array_hooks.created(made_[1]);
    EXPECT_EQ(context(), "321") << "not listed twice";
    oxSetArrayScope(made_[2], 9);
    oxSetArrayScope(made_[2], 8);
    EXPECT_EQ(context(), "31");
    array_hooks.created(made_[2]); // any other scope joins the list
    EXPECT_TRUE(context() == "231" && oxIsTemp(made_[2]));
}

// Deliberate: destroying the oldest array of several turns the context over, for good.
TEST_F(ArrayList, DestroyingTheOldestReversesTheContext) {
    make(5);
    oxDestroyArray(made_[1]);
    EXPECT_EQ(context(), "2345");
    oxDestroyArray(made_[5]);
    EXPECT_EQ(context(), "432") << "the oldest is now the one created last";
}

TEST_F(ArrayList, AnExitThatDestroysNothingKeepsAll) {
    for (const bool suppressed : {false, true}) {
        make(1);
        const int index = oxEnterNewArrayListContext();
        oxArray *inner = oxCreateDoubleScalar(2);
        exit_array_list_context(index, suppressed ? nullptr : &inner, !suppressed, suppressed,
                                suppressed);
        EXPECT_EQ(context(), "21");
        for (oxArray *a : {inner, made_[1]}) {
            EXPECT_FALSE(a->has_flag(oxFLAG_LIST_MARK));
            oxDestroyArray(a);
        }
    }
}

// A listed array inside a container goes with it and turns the context over under the walk: those
// that then lie above the walk's place must go as well.
TEST_F(ArrayList, ExitSurvivesReversalByWhatItDestroys) {
    make(1);
    const int index = oxEnterNewArrayListContext();
    oxArray *element = oxCreateDoubleScalar(2);
    oxCreateDoubleScalar(3);
    oxArray *cell = arr("cell 1x1: {}");
    oxArray *keep[] = {oxCreateDoubleScalar(4), nullptr, oxCreateDoubleScalar(5),
                       oxCreateDoubleScalar(6)};
    oxSetArrayScope(keep[3], 9);    // no temporary: neither listed nor marked
    cell->get_cells()[0] = element; // still a temporary of this context, its oldest
    oxExitArrayListContext(index, keep, 4, true);
    EXPECT_EQ(context(), "451");
    EXPECT_FALSE((keep[0]->flag_word | keep[3]->flag_word) & oxFLAG_LIST_MARK);
    oxDestroyArray(keep[3]);
}

TEST_F(ArrayList, MovingFromTheEnclosingContextSwapsWithItsTop) {
    make(4);
    const int index = oxEnterNewArrayListContext();
    made_[5] = oxCreateDoubleScalar(5);
    oxMoveArrayFromPreviousContext(index, made_[2]);
    EXPECT_TRUE(context() == "52" && !made_[2]->has_flag(oxFLAG_LIST_MARK));
    made_[5]->set_flag(oxFLAG_LIST_MARK, true);
    oxMoveArrayFromPreviousContext(index, made_[5]); // not found there: the mark goes all the same
    EXPECT_TRUE(context() == "52" && !made_[5]->has_flag(oxFLAG_LIST_MARK));
    oxExitArrayListContext(index, nullptr, 0, true);
    EXPECT_EQ(context(), "341") << "the former top took the place of the moved one";
}

} // namespace
