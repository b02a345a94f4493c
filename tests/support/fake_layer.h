// A small class layer: numbers behind opaque arrays and function handles, and counts of what the
// library asks of it. The text forms opaque, lazy and function_handle make its arrays.
#pragma once
#include <core/array.h>

#include <vector>

namespace ox::test {

struct LayerCalls {
    int shares, releases, element_copies, empty_copies, completions;
    int objects_created, objects_released, handle_copies, handle_releases;
};
extern LayerCalls layer_calls;

xxInfo *opaque_class(); // a payload of its own for each element
xxInfo *lazy_class();   // indexing-opaque: copies share one payload, which knows the dimensions

// Texts of one array of each kind, with data; the layer must be installed.
extern const std::vector<const char *> one_of_each;

// Installed during its life; the counts start at 0.
class WithLayer {
public:
    WithLayer();
    ~WithLayer();
    WithLayer &operator=(WithLayer &&) = delete;

private:
    const ox_object_layer *outer_;
};

} // namespace ox::test
