// What each class does with its storage: one row per class code, filled by the containers floor.
#pragma once
#include <core/class_table.h>
#include <ox/types.h>

namespace ox {

struct ClassOps {
    // Releases what the elements own (element arrays, payloads, the field table); the data block
    // itself is freed by the caller. May be null.
    void (*release)(oxArray *a);
    // Replaces the data words with private storage; false without memory, a then as before.
    bool (*unshare_data)(oxArray *a);
};

extern const ClassOps class_ops[class_count];

// Gives every other member of a's ring storage of its own, so that a alone keeps the block it
// has; 1 without memory. Destruction of private shared data needs it.
int unshare_others(oxArray *a);

} // namespace ox
