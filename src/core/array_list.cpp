// The array list: appending, removing, contexts and scopes. The hooks' behaviour is in containers.
#include <core/array_list.h>
#include <core/context_list.h>
#include <errors/raise.h>

#include <algorithm>

namespace ox {
namespace {

constexpr kwSize first_entries = 100;
constinit ContextList<oxArray, first_entries> arrays;
constinit bool initialized = false;
constinit unsigned reversals = 0; // tells the exit walk that its position means nothing any more

void clear_marks(kwSize from) {
    for (kwSize i = arrays.length(); i-- > from;) arrays[i]->set_flag(oxFLAG_LIST_MARK, false);
}

void destroy_whatever_the_count(oxArray *a) {
    for (kwSize n = kwSize{a->reference_count} + 1; n > 0; --n) oxDestroyArray(a);
}

// Destroying an array may take others off the list with it, or reverse the context, so the walk
// clamps its position and starts over after a reversal: what is left unmarked is still to go.
void destroy_unmarked() {
    for (kwSize i = arrays.length(); i > arrays.start();) {
        oxArray *a = arrays[--i];
        if (a->has_flag(oxFLAG_LIST_MARK)) continue;
        const unsigned before = reversals;
        destroy_whatever_the_count(a);
        i = reversals == before ? std::min(i, arrays.length()) : arrays.length();
    }
}

} // namespace

bool array_list_installed() { return array_hooks.leave != nullptr; }
void set_array_list_initialized(bool on) { initialized = on; }
bool array_list_contains(const oxArray *a) { return arrays.contains(a); }
kwSize array_list_length() { return arrays.length(); }

void array_list_append(oxArray *a) {
    if (!arrays.append(a)) raise_out_of_memory();
    a->set_flag(oxFLAG_LIST_MARK, false);
}

bool array_list_has_room() { return arrays.has_room(); }

// Deliberate: when the oldest array of the context goes first, the whole context is reversed for
// good, so that the arrays that follow it are found at once; also when the mark then keeps it.
void array_list_remove(oxArray *a) {
    const kwSize start = arrays.start(), count = arrays.length() - start;
    if (count >= 2 && arrays[start] == a) {
        std::reverse(&arrays[start], &arrays[start] + count);
        ++reversals;
    }
    if (!a->has_flag(oxFLAG_LIST_MARK)) arrays.remove(a);
}

void exit_array_list_context(int index, oxArray **keep, int nkeep, bool destroy, bool suppress) {
    if (destroy && !suppress) {
        for (int k = 0; k < nkeep; ++k)
            if (keep[k] && oxIsTemp(keep[k])) keep[k]->set_flag(oxFLAG_LIST_MARK, true);
        destroy_unmarked();
    }
    arrays.restore(index);
    clear_marks(arrays.start());
}

} // namespace ox

using namespace ox;

extern "C" {

void oxShutdownArrayList(void) {
    arrays.shutdown();
    initialized = false;
}

bool oxIsArrayListInitialized(void) { return initialized; }

int oxEnterNewArrayListContext(void) {
    for (kwSize i = arrays.start(); i < arrays.length(); ++i)
        arrays[i]->set_flag(oxFLAG_LIST_MARK, true);
    return arrays.enter();
}

void oxExitArrayListContext(int index, oxArray **keep, int nkeep, bool destroy) {
    exit_array_list_context(index, keep, nkeep, destroy, false);
}

void oxExitAndFoldArrayListContext(int index) {
    arrays.restore(index);
    clear_marks(arrays.start());
}

void oxMoveArrayFromPreviousContext(int index, oxArray *a) {
    for (kwSize i = arrays.start(); i-- > static_cast<kwSize>(index);) {
        if (arrays[i] != a) continue;
        std::swap(arrays[i], arrays[arrays.start() - 1]);
        arrays.lower_start();
        break;
    }
    a->set_flag(oxFLAG_LIST_MARK, false);
}

void oxApplyToAllArraysOnArrayList(void (*fn)(oxArray *)) {
    for (kwSize i = arrays.length(); i > arrays.start();) {
        fn(arrays[--i]);
        i = std::min(i, arrays.length());
    }
}

bool oxIsTemp(const oxArray *a) { return a->scope == oxSCOPE_TEMPORARY; }
int oxGetArrayScopeField(const oxArray *a) { return a->scope; }

void oxSetArrayScope(oxArray *a, int scope) {
    if (a->scope == scope) return;
    if (array_list_installed()) {
        if (scope == oxSCOPE_TEMPORARY) array_list_append(a);
        if (oxIsTemp(a)) array_list_remove(a);
    }
    a->scope = scope;
}

} // extern "C"
