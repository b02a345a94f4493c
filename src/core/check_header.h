// Is this array well formed? Numbered rules over one header and the storage behind it.
#pragma once
#include <core/array.h>

namespace ox {

// Every rule with its number and its text, in the order of checking: a rule may rely on the ones
// before it, and nothing is read that they have not vouched for.
enum HeaderRule : int {
    rule_none = 0,
    rule_class,           // the class code is 0 to 18, but not the hole at 5
    rule_numeric_flag,    // the numeric flag is that of the class
    rule_free_flags,      // bits without a meaning are clear
    rule_ndims,           // at least two dimensions, and a vector where there are more
    rule_element_count,   // within the limit of 2^48 - 1
    rule_scalar_double,   // the flag only on a double whose sizes are all 1
    rule_destroyed,       // the scope of a destroyed array only on a header that was kept
    rule_ring,            // the ring leads back to the array, and is not the array alone
    rule_ring_data,       // members of a ring hold the same blocks
    rule_reusable,        // reusable data belong to this header alone, which is not counted
    rule_sparse,          // sparse: two dimensions
    rule_colon,           // colon object: a class that holds numbers or characters
    rule_indexing_opaque, // dimensions computed on demand only in class opaque
    rule_dim32,           // the 32-bit dimension cache has the vector that its length promises
    last_header_rule = rule_dim32,
    // Storage.
    rule_no_imaginary, // logical and char arrays have no second word
    rule_data,         // elements have a block
    rule_csc_class,    // sparse: a class that holds numbers or truth values; creators take any
    rule_csc_vectors,  // sparse data come with row indices and column starts
    rule_csc_starts,   // column starts rise from 0
    rule_csc_count,    // stored elements fit the capacity
    rule_csc_rows,     // rows of a column rise and are below m
    rule_csc_capacity, // at least one
    rule_field_table,  // a table of fields has owners, and every name
    last_storage_rule = rule_field_table
};

enum class CheckDepth { header, storage };

// The first rule that does not hold, or rule_none. Reads only; never allocates, raises, or
// completes dimensions. Storage depth fits arrays at rest: a header just re-typed has no data yet.
int check_header(const oxArray *a, CheckDepth depth);

// What debug builds demand of every array that is handed out or destroyed.
inline bool well_formed(const oxArray *a) {
    return check_header(a, CheckDepth::header) == rule_none;
}

// Whether the scope is that of temporaries exactly when a list has the array. Does not hold for
// arrays that left the scope while an enclosing context listed them: their entries stay.
bool listed_as_its_scope_says(const oxArray *a);

// What a rule demands, for messages; "well formed" for none.
const char *rule_text(int rule);

} // namespace ox
