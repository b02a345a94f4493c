// The field-name table of struct and object arrays: who owns one, and how names are found in it.
#pragma once
#include <core/array.h>
#include <core/name_index.h>

namespace ox {

inline int32_t field_count(const oxArray *a) {
    return a->record.names ? a->record.names->count : 0;
}

// A table of these names, interned, with one owner; duplicates are kept. Null without memory.
// count must be positive.
name_index_info *make_field_table(int32_t count, const char *const *names);
// The same of names that lie in slots of `length` bytes, which they may fill up or end before.
name_index_info *make_field_table(int32_t count, const char *slots, kwSize length);

// Drops the array's reference to its table (the last one frees it) and leaves it without one.
void release_field_table(oxArray *a);

// The highest number under which the table (null: none) has the name, or -1.
int32_t find_field(const name_index_info *table, const char *name);

// Appends a name; a table that other arrays use is copied first. False without memory, the names
// then as before.
bool add_field_name(oxArray *a, const char *name);

// Makes the array the only owner of its table, or leaves it alone when it has none; a copy made for
// that has no hash until its names change. False without memory.
bool own_field_table(oxArray *a);
// Takes name n from a table that the array owns alone, or drops a table of one name, which may be
// shared: the array then has none. Cannot fail.
void remove_field_name(oxArray *a, int32_t n);

} // namespace ox
