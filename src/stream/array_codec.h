// The contents of an array element: measured and written by one walk over the array, and read.
//
//   flags       oiUINT32, 2 words     class number and bits; capacity of a sparse array
//   dimensions  oiINT32, ndims words  absent for class 17; words are 4 bytes, wide 8
//   name        oiINT8                empty for nested arrays
//   numbers     real, imaginary       each of its natural type; char as oiUTF8, or 16-bit units
//   sparse      ir, jc, pr, pi        indices oiINT32, wide oiINT64
//   object      class name, then as struct
//   struct      slot length, names    then per element and field an array element
//   cell        an array element per cell; a null one is an array element of count 0
//   handle      the same; its elements are discarded on reading
//   class 17    class name, one array element
#pragma once
#include <core/alloc.h>
#include <core/destroy.h>
#include <stream/output.h>

namespace ox {

struct EncodeOptions {
    TagForm form;
    bool utf16;   // characters as oiUINT16
    bool compact; // doubles in the smallest integer type
};
inline EncodeOptions encode_options(const oiStreamRec_tag *s) {
    return {tag_form(s), (s->flags & oiOPTION16) != 0, s->compact != 0};
}

// A vector that grows without throwing.
template<class T> class Growing {
public:
    // Null without memory; the pointer holds until the next push.
    T *push(T item) {
        if (n_ == capacity_) {
            const kwSize wanted = capacity_ ? 2 * capacity_ : 16;
            if (!items_.resize(wanted)) return nullptr;
            capacity_ = wanted;
        }
        items_[n_] = item;
        return &items_[n_++];
    }
    void pop() { --n_; }
    T &top() const { return items_[n_ - 1]; }
    T &operator[](kwSize i) const { return items_[i]; }
    kwSize size() const { return n_; }

private:
    RawArray<T> items_;
    kwSize n_ = 0, capacity_ = 0;
};

// What measuring an array finds: the byte count of the element, those of all containers in it in
// the order of writing, and the saved contents of opaque arrays.
struct Measured {
    Measured() = default;
    Measured(const Measured &) = delete;
    Measured &operator=(const Measured &) = delete;
    ~Measured() {
        for (kwSize k = saved.size(); k-- > 0;) oxDestroyArray(saved[k]);
    }
    kwSize bytes = 0;
    Growing<uint64_t> containers;
    Growing<oxArray *> saved;
};

// A status. Compacting measures also record the chosen types in the user bits of double arrays.
int32_t measure_array(oiStreamRec_tag *s, const oxArray *a, const char *name, Measured *m);
// Writes the element's data, without its tag. The array is as it was measured; oiREFUSED when the
// walk finds no memory.
int32_t write_array(Output &out, const oxArray *a, const char *name, EncodeOptions options,
                    const Measured &m);

// Reads the n data bytes of an array element at the stream's offset into a new array that no hook
// has seen. name receives at most 63 bytes and a terminator, or is null. With header_only the array
// has no data, and the stream still ends up behind the element.
enum class ReadDepth { header_only, everything };
int32_t read_array(oiStreamRec_tag *s, uint64_t n, ReadDepth depth, char *name, oxArray **out);

} // namespace ox
