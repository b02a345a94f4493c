// The seam for objects, opaque arrays and function handles: what the library asks of a class
// layer, and how one is registered. Without a layer each operation takes the stated default.
#ifndef OX_OBJECT_LAYER_HPP
#define OX_OBJECT_LAYER_HPP

#include <ox/types.h>

struct oiStreamRec_tag;

// Behaviour of one class of opaque arrays; every opaque array points at one. Operations that are
// not overridden raise "VELTRO:objectLayerMissing" unless they say otherwise.
class OX_API xxInfo {
public:
    virtual ~xxInfo();

    // What the class queries answer.
    virtual oxClassID class_id(const oxArray *a) const;     // default 17
    virtual const char *class_name(const oxArray *a) const; // default "opaque"
    virtual bool is_class(const oxArray *a,
                          const char *name) const; // default: name equals class_name

    // Stores the dimensions of an indexing-opaque array into its record; default: keeps them.
    virtual void complete_dimensions(oxArray *a);

    // Lifetime and copies. release frees the payload, whose entries may be null (default:
    // nothing; the pointer block is freed by the library unless private or indexing-opaque). share
    // is called for an indexing-opaque source instead of linking. copy_element makes *dst an
    // independent copy of src and returns false when no memory is left. empty_copy makes a 0-by-0
    // array of the class.
    virtual void release(oxArray *a);
    virtual void share(const oxArray *source, oxArray *copy);
    virtual bool copy_element(void **dst, void *src);
    virtual oxArray *empty_copy();

    // A new array of the class id, or null when the class has no such conversion (default).
    virtual oxArray *convert(const oxArray *a, oxClassID id);

    // Properties; a class without them answers false (default).
    virtual bool has_get_property() const;
    virtual bool has_set_property() const;
    virtual oxArray *get_property(const oxArray *a, kwSize index, const char *name);
    virtual void set_property(oxArray *a, kwSize index, const char *name, const oxArray *value);

    // Indexing: nsubs subscripts as zero-based positions with their counts; result is a header of
    // the class to fill. assign and erase take the subscripts as given.
    virtual void reference(const oxArray *a, kwSize nsubs, const kwIndex *const *positions,
                           const kwSize *counts, oxArray *result);
    virtual void assign(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs);
    virtual void erase(oxArray *a, kwSize nsubs, const oxArray *const *subs);

    // Whether growth makes new elements of this class, and the element to grow with (null: null
    // slots). Defaults: false, null.
    virtual bool is_class_object() const;
    virtual oxArray *default_object(bool heterogeneous);

    // A permuted copy, or null when the class cannot be permuted (default).
    virtual oxArray *permute(const oxArray *a, const kwSize *order, kwSize ndim);

    // Equality. identity: equal pointers mean the same class (default: this). bytewise: payloads
    // may be compared byte by byte (default false). equal decides otherwise (default: the same
    // payload pointer); nan_unequal says that NaN differs from itself.
    virtual const void *identity() const;
    virtual bool bytewise(const oxArray *a) const;
    virtual bool equal(const oxArray *a, const oxArray *b, bool nan_unequal) const;

    // Streams: the name under which elements are written (default: class_name), the contents as a
    // nested array (null: cannot be saved, the default), and an array filled from such contents
    // (false: cannot). What belongs to all elements together can be kept with the stream
    // (oiSetSubsystemData): serialisation writes it behind the array and has it back before
    // loading.
    virtual const char *subclass_name(const oxArray *a) const;
    virtual oxArray *save(const oxArray *a, oiStreamRec_tag *stream);
    virtual bool load(oxArray *a, const oxArray *contents, oiStreamRec_tag *stream);
};

// What a class layer supplies process-wide. Any entry may be null; the default stands behind it.
struct ox_object_layer {
    // Objects. Called for every copy of an object; none: nothing.
    void (*object_created)(oxArray *copy, const oxArray *source);
    // Releases what an object holds before its fields are released; none: nothing.
    void (*object_release)(oxArray *a);
    // An array of the named class; none: raises where one is needed, unknown opaque in streams.
    oxArray *(*create_class_array)(const char *name, kwSize ndim, const kwSize *dims);
    // Calls a static method by its qualified name without arguments; none: null.
    oxArray *(*call_static)(const char *qualified_name);

    // Opaque arrays: behind oxCreateOpaqueArray; none: a bare opaque array without information.
    oxArray *(*create_opaque)(kwSize ndim, const kwSize *dims, xxInfo *info);
    // The opaque array that stands for a class which is not known here; none: a bare one.
    oxArray *(*create_unknown)(const char *class_name, const oxArray *contents);

    // Function handles; an element is 32 bytes. fh_copy_element returns false without memory;
    // none: the bytes are copied. fh_release_element accepts an element of zeros; none: nothing.
    oxArray *(*fh_create)(const char *text);
    bool (*fh_copy_element)(void *dst, const void *src);
    void (*fh_release_element)(void *element);
    bool (*fh_equal)(const oxArray *a, const oxArray *b, bool nan_unequal); // none: byte compare
    // To and from the struct form; none: raise, and null.
    oxArray *(*fh_to_struct)(const oxArray *handle);
    oxArray *(*fh_build_saved)(const oxArray *saved, const char *separator, const char *marker);
    oxArray *(*fh_from_saved)(const oxArray *saved);

    // Whole structure reference and assignment of objects; none: the struct forms.
    oxArray *(*structure_reference)(const oxArray *a, kwSize nsubs, const oxArray *const *subs);
    oxArray *(*structure_assignment)(oxArray *a, kwSize nsubs, const oxArray *const *subs,
                                     const oxArray *rhs);
};

// Installs a layer (null: none) and returns the previous one. The caller keeps it alive.
OX_API const ox_object_layer *ox_register_object_layer(const ox_object_layer *layer);

// Creators that go through the layer. Their results are temporaries of the current array-list
// context; without memory they raise error 18 (before oxInitArrayListManager: return null).

extern "C" {
// The 0-by-0 array of a class; raises "VELTRO:objectLayerMissing" without class information.
OX_API oxArray *oxCreateOpaqueGiblet(xxInfo *info);
// An opaque array of ndim sizes (none: 0-by-0) whose payloads are null until its class fills them;
// info may be null.
OX_API oxArray *oxCreateOpaqueArray(kwSize ndim, const kwSize *dims, xxInfo *info);
// A function handle from its text; raises "VELTRO:objectLayerMissing" without a layer.
OX_API oxArray *oxCreateFunctionHandle(const char *text);
}

#endif
