// The registered class layer as the library sees it: every entry readable, absent ones null.
#pragma once
#include <core/array.h>

namespace ox {

const ox_object_layer &object_layer();

// Raises "VELTRO:objectLayerMissing" for arrays of the class.
[[noreturn]] void raise_layer_missing(const char *class_name);

// Tells the layer that copy, an object, was made from source; nothing for other classes.
inline void notify_object_copy(oxArray *copy, const oxArray *source) {
    if (copy->class_code == oxOBJECT_CLASS && object_layer().object_created)
        object_layer().object_created(copy, source);
}

} // namespace ox
