// One walk over an array and everything nested in it, in the order of the element's bytes, and the
// sub-elements of each array in order. Measuring and writing differ only in the sink.
#pragma once
#include <stream/array_plan.h>

namespace ox {

// The sub-elements of one array up to its nested elements. A sink takes
//   words(type, w, n)   n words of array flags or dimensions
//   bytes_of(type, p, n) n bytes
//   number(v)           one oiINT32 of 4 bytes
//   names(table, n, l)  the field names in slots of l bytes
//   numbers(part)
template<class Sink>
void put_head(Sink &sink, const oxArray *a, const char *name, const ArrayPlan &plan) {
    sink.words(oiUINT32, plan.words, 2);
    if (plan.has_dims) sink.words(oiINT32, a->get_dimensions(), a->ndims);
    sink.bytes_of(oiINT8, name, name ? std::strlen(name) : 0);
    for (int k = 0; k < plan.nparts; ++k) sink.numbers(plan.parts[k]);
    if (plan.class_name) sink.bytes_of(oiINT8, plan.class_name, std::strlen(plan.class_name));
    if (plan.has_fields) {
        sink.number(static_cast<int32_t>(plan.slot_length));
        sink.names(a->record.names, plan.slot_length);
    }
}

// A container whose nested elements are being walked.
struct WalkFrame {
    oxArray *const *slots; // null: null elements
    oxArray *contents;     // stands for a block of one
    kwSize next, count;
    kwSize bytes; // measuring: so far
    kwSize index; // measuring: of the container's size
};

// The visitor takes
//   enter(a, name, plan, frame, parent)  an array, to be planned; frame is its own if it nests
//   null(parent)                         a null slot
//   leave(frame, parent)                 the end of a container
// Parents are null for the outermost array. enter and leave answer a status; the first that is not
// success ends the walk.
template<class Visitor> int32_t walk_array(const oxArray *root, const char *name, Visitor &visit) {
    Growing<WalkFrame> open;
    const auto parent = [&] { return open.size() > 0 ? &open.top() : nullptr; };
    for (const oxArray *a = root;;) {
        if (a) {
            ArrayPlan plan;
            WalkFrame frame{};
            if (open.size() == oiNESTING_LIMIT) return oiSHORT_WRITE;
            if (const int32_t status = visit.enter(a, name, plan, frame, parent())) return status;
            name = nullptr; // nested arrays have none
            if (plan.nests) {
                frame.slots = plan.slots;
                frame.contents = plan.contents;
                frame.count = plan.nslots;
                if (!open.push(frame)) return oiREFUSED;
            }
        } else {
            visit.null(parent());
        }
        while (open.size() > 0 && open.top().next == open.top().count) {
            const WalkFrame done = open.top();
            open.pop();
            if (const int32_t status = visit.leave(done, parent())) return status;
        }
        if (open.size() == 0) return oiSUCCESS;
        WalkFrame &f = open.top();
        a = f.slots ? f.slots[f.next] : f.contents;
        ++f.next;
        // Headers lie anywhere, and little is done with each.
        if (f.slots && f.next + 3 < f.count) __builtin_prefetch(f.slots[f.next + 3]);
    }
}

} // namespace ox
