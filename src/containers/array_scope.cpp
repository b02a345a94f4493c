// The hook slots of the array list and what the list's manager puts into them: temporaries,
// contained arrays, and shared copies that take an array's place.
#include <containers/array_scope.h>
#include <containers/copies.h>
#include <core/array_list.h>
#include <core/destroy.h>
#include <errors/raise.h>
#include <ox/sharing.h>

namespace ox {
namespace {

// --- Until the manager is installed ---------------------------------------------------------

oxArray *reference_as_copy(oxArray *a) { return oxCreateReference(a); }

oxArray *replace_unlisted(oxArray *a) {
    oxArray *copy = oxCreateSharedDataCopy(a);
    if (copy) oxDestroyArray(a);
    return copy;
}

constexpr ArrayHooks hooks_at_load{nullptr, nullptr, nullptr, reference_as_copy, replace_unlisted};

// --- Installed ------------------------------------------------------------------------------

// A list that cannot grow raises; the array that it cannot take would then be nobody's.
void enter_list(oxArray *a) {
    if (!a) raise_out_of_memory();
    if (oxIsTemp(a)) return;
    try {
        array_list_append(a);
    } catch (...) {
        oxDestroyArray(a);
        throw;
    }
    a->scope = oxSCOPE_TEMPORARY;
}

void leave_list(oxArray *a) {
    if (a->scope == oxSCOPE_DESTROYED) return;
    if (oxIsTemp(a)) array_list_remove(a);
    a->scope = oxSCOPE_DESTROYED;
}

oxArray *listed_copy(oxArray *a) {
    if (!a) return nullptr;
    oxArray *copy = shared_copy(a);
    enter_list(copy);
    return copy;
}

// The copy takes over the scope, so the array may be unlisted before its successor is listed.
oxArray *replace_listed(oxArray *a) {
    ArrayGuard copy(shared_copy(a));
    if (!copy) raise_out_of_memory();
    const int scope = a->scope;
    oxDestroyArray(a);
    oxSetArrayScope(copy.get(), scope);
    return copy.release();
}

oxArray *contain(oxArray *a) { return with_scope(a, oxSCOPE_CONTAINED); }

constexpr ArrayHooks hooks_of_manager{enter_list, leave_list, contain, listed_copy, replace_listed};

// --- Scopes ---------------------------------------------------------------------------------

// A sharer of a's data that already has the scope and can stand for a in every respect.
oxArray *equivalent_sharer(const oxArray *a, int scope) {
    constexpr uint32_t excluded = oxFLAG_EMPTY_BRACKET | oxFLAG_LIST_MARK | oxFLAG_PRIVATE_DATA;
    for (oxArray *p = a->cross_link; p && p != a; p = p->cross_link) {
        if (p->scope == scope && !p->has_flag(excluded) && p->class_code == a->class_code &&
            same_dimensions(p, a) && (!is_struct_like(a) || p->record.names == a->record.names))
            return p;
    }
    return nullptr;
}

} // namespace

constinit ArrayHooks array_hooks = hooks_at_load;

void reset_array_hooks() {
    array_hooks = hooks_at_load;
    set_array_list_initialized(false);
}

oxArray *with_scope(oxArray *a, int scope) {
    if (!a) return nullptr;
    if (a->scope == scope && !a->has_flag(oxFLAG_EMPTY_BRACKET)) return a;
    if (oxArray *sharer = equivalent_sharer(a, scope)) {
        oxSetScalarDoubleFlagIfAppropiate(sharer);
        oxDestroyArray(a);
        return oxCreateReference(sharer);
    }
    if (a->reference_count > 0) {
        oxArray *copy = shared_copy(a);
        oxDestroyArray(a);
        if (!copy) raise_out_of_memory();
        copy->scope = scope;
        return copy;
    }
    if (oxIsTemp(a) && array_list_installed()) array_list_remove(a);
    a->scope = scope;
    a->set_flag(oxFLAG_EMPTY_BRACKET, false);
    return a;
}

} // namespace ox

using namespace ox;

extern "C" {

void oxInitArrayListManager(void) {
    array_hooks = hooks_of_manager;
    set_array_list_initialized(true);
}

oxArray *oxPreparePropertyValueForContainment(oxArray *a) {
    return with_scope(a, oxSCOPE_PROPERTY);
}

oxArray *oxCreateSharedCopyNotOnArrayList(const oxArray *a) {
    if (!a) return nullptr;
    oxArray *copy = shared_copy(a);
    if (!copy) raise_out_of_memory();
    return copy;
}

} // extern "C"
