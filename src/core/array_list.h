// The array list and the hook slots through which the rest of the library reaches it.
#pragma once
#include <core/array.h>
#include <core/check_header.h>

#include <cassert>

namespace ox {

// Process-wide slots. created, leave and contain are null until oxInitArrayListManager; the two
// copying slots hold their defaults from load on.
struct ArrayHooks {
    void (*created)(oxArray *a);             // a new array, or null on failure (raises)
    void (*leave)(oxArray *a);               // a is about to be released
    oxArray *(*contain)(oxArray *a);         // consumes a, gives the array to store
    oxArray *(*temporary_copy)(oxArray *a);  // a temporary shared copy; null gives null
    oxArray *(*replace_by_copy)(oxArray *a); // a shared copy in place of a
};
extern ArrayHooks array_hooks; // defined, with its contents at load, in containers/array_scope.cpp

// Hands a new array (or null: the creation failed) to the created hook and returns it.
inline oxArray *hand_over(oxArray *a) {
    assert(!a || well_formed(a));
    if (array_hooks.created) array_hooks.created(a);
    return a;
}
// Passes an array that is about to be stored in a container through the contain hook; null is null.
inline oxArray *contained(oxArray *a) { return array_hooks.contain ? array_hooks.contain(a) : a; }

void array_list_append(oxArray *a); // clears the list mark; raises 18 when the list cannot grow
// Whether the next append cannot fail, which makes room for it; raises nothing.
bool array_list_has_room();
void array_list_remove(oxArray *a);       // current context only; silent when it is not there
void set_array_list_initialized(bool on); // what oxIsArrayListInitialized answers
bool array_list_installed();              // whether scope changes touch the list

// As oxExitArrayListContext, but with `suppress` nothing is destroyed.
void exit_array_list_context(int index, oxArray **keep, int nkeep, bool destroy, bool suppress);

// Whether any context lists the array; compares addresses only.
bool array_list_contains(const oxArray *a);
// Arrays listed in all contexts, for tests and statistics.
kwSize array_list_length();
// Back to the state at load, for tests.
void reset_array_hooks();

} // namespace ox
