// The field-name table of struct and object arrays: its layout only; containers own its rules.
#pragma once
#include <cstdint>

// Hash from name to field number; only tables of many names have one.
struct ut_ghash;

// One block: header, then one interned name per field. Arrays share it by reference_count, so it
// is copied before it is changed; a table with one owner has count 1. Behind the names lie search
// bytes that containers keep; only they make and change tables.
struct name_index_info {
    int32_t count;
    int32_t reference_count;
    ut_ghash *hash;       // null for small tables
    const char *names[1]; // count entries, interned, process lifetime
};
