// The array record and its member accessors, for the library and for C++ callers.
#ifndef OX_ARRAY_HPP
#define OX_ARRAY_HPP

#include <ox/flags.h>
#include <ox/memory.h>
#include <ox/types.h>

#include <cstddef>
#include <string>

class xxInfo;
struct name_index_info;

// Vector of 32-bit dimensions that the 32-bit level hands out; owned by its array.
struct ox_dim32_cache {
    int *dims;      // null until the first request
    int32_t length; // entries of dims
};

// Completes the dimensions of an indexing-opaque array through its class information.
OX_API void _complete_opaque_dimensions(oxArray *a);

// The record of every array: 104 bytes, trivially copyable. Members check nothing: a wrong class
// or a null array is the caller's fault. Arrays that share one data block form a ring through
// cross_link (a ring of one is a null pointer), each with its own header fields.
struct oxArray_tag {
    void *reserved;           // the interpreter's; zero in a new header
    oxArrayType class_code;   // 0 to 18
    int32_t scope;            // oxSCOPE_TEMPORARY: on the array list
    oxArray *cross_link;      // next header of the ring, or null
    kwSize ndims;             // at least 2
    uint32_t reference_count; // owners beyond the first
    uint32_t flag_word;       // the bits of <ox/flags.h>
    union {
        kwSize mn[2];       // rows and columns while ndims <= 2
        kwSize *dim_vector; // own block of ndims sizes otherwise
    };
    union {
        void *words[5]; // the five words, whatever the class
        struct {        // numeric, char, logical; ir, jc and nzmax only when sparse
            void *pdata;
            void *pimag;  // an imaginary part only with oxFLAG_NUMERIC
            kwIndex *ir;  // row indices, one per stored element
            kwIndex *jc;  // column starts, columns + 1 entries
            kwSize nzmax; // capacity in elements
        } num;
        struct {
            oxArray **slots; // one array per element
        } cell;
        struct {             // struct, object
            oxArray **slots; // elements times fields, the fields of one element together
            name_index_info *names;
            const char *classname; // null for plain structs
            int32_t tag;
            uint32_t checksum;
        } record;
        struct {
            void *giblet; // payload
            xxInfo *info;
            int32_t tag;
            uint32_t bits; // bit 0: heterogeneous
        } opaque;
        struct {
            void *unused[3];
            void *data;
            oxArray *array;
        } global;
    };
    ox_dim32_cache *dim32; // null until the 32-bit level asks

    // Headers come zero-filled from the process-wide pool; null when no memory is left.
    OX_API static void *operator new(std::size_t size) noexcept;
    OX_API static void operator delete(void *header) noexcept;

    // The stored code.
    oxArrayType get_array_type() const { return class_code; }
    oxArrayType get_type() const { return class_code; }
    // The class id: the stored code, or the answer of the class layer for opaque and object.
    oxClassID get_class_id() const {
        return class_code <= 16 ? static_cast<oxClassID>(class_code) : _get_class_id_non_trivial();
    }
    OX_API oxClassID _get_class_id_non_trivial() const;

    kwSize get_number_of_dims() const { return ndims; } // at least 2
    // One size per dimension; the pointer holds until the dimensions change.
    const kwSize *get_dimensions() const {
        if (is_indexing_opaque()) _complete_opaque_dimensions(const_cast<oxArray_tag *>(this));
        return ndims <= 2 ? mn : dim_vector;
    }
    kwSize get_number_of_elements() const {
        const kwSize *d = get_dimensions();
        kwSize count = 1;
        for (kwSize k = 0; k < ndims; ++k) count *= d[k];
        return count;
    }

    // The words of the record, read and stored as they are.
    void *get_pdata() const { return num.pdata; }
    void set_pdata(void *p) { num.pdata = p; }
    void *get_pimag_data() const { return num.pimag; }
    void set_pimag_data(void *p) { num.pimag = p; }
    kwIndex *get_ir() const { return num.ir; }
    void set_ir(kwIndex *p) { num.ir = p; }
    kwIndex *get_jc() const { return num.jc; }
    void set_jc(kwIndex *p) { num.jc = p; }
    kwSize get_nelements_allocated() const { return num.nzmax; }
    void set_nelements_allocated(kwSize n) { num.nzmax = n; }
    oxArray **get_cells() const { return cell.slots; }
    void set_cells(oxArray **p) { cell.slots = p; }
    oxArray **get_struct_fields() const { return record.slots; }
    void set_struct_fields(oxArray **p) { record.slots = p; }
    name_index_info *get_struct_field_info() const { return record.names; }
    void set_struct_field_info(name_index_info *p) { record.names = p; }
    const char *get_struct_object_classname() const { return record.classname; }
    void set_struct_object_classname(const char *p) { record.classname = p; }
    int32_t get_struct_object_tag() const { return record.tag; }
    void set_struct_object_tag(int32_t t) { record.tag = t; }
    uint32_t get_struct_object_chksum() const { return record.checksum; }
    void set_struct_object_chksum(uint32_t c) { record.checksum = c; }
    void *get_opaque_giblet() const { return opaque.giblet; }
    void set_opaque_giblet(void *p) { opaque.giblet = p; }
    xxInfo *get_opaque_info() const { return opaque.info; }
    void set_opaque_info(xxInfo *p) { opaque.info = p; }
    int32_t get_opaque_object_tag() const { return opaque.tag; }
    void set_opaque_object_tag(int32_t t) { opaque.tag = t; }
    bool is_opaque_heterogeneous() const { return (opaque.bits & 1u) != 0; }
    void set_opaque_heterogeneous(bool on) { opaque.bits = (opaque.bits & ~1u) | (on ? 1u : 0u); }
    void *get_global_array_data() const { return global.data; }
    void set_global_array_data(void *p) { global.data = p; }
    oxArray *get_global_array() const { return global.array; }
    void set_global_array(oxArray *a) { global.array = a; }
    oxChar *get_chars() const { return static_cast<oxChar *>(num.pdata); }
    // The string of a char array, which ends before its first NUL unit: its length in units, and
    // NUL-terminated copies in blocks from alloc (bytes; null when that answers null). Arrays that
    // are not char give 0, null and "".
    OX_API int32_t get_string_length() const;
    OX_API char *create_c_str(void *(*alloc)(kwSize)) const;
    OX_API char *create_utf8_c_str(void *(*alloc)(kwSize)) const;
    OX_API oxChar *create_utf16_c_str(void *(*alloc)(kwSize)) const;
    OX_API std::string to_string() const;
    OX_API std::string to_utf8_string() const;

    // Flags, and what they and the links say.
    bool has_flag(uint32_t flag) const { return (flag_word & flag) != 0; }
    void set_flag(uint32_t flag, bool on) { flag_word = on ? flag_word | flag : flag_word & ~flag; }
    void set_private_data(bool on) { set_flag(oxFLAG_PRIVATE_DATA, on); }
    bool is_private_data() const { return has_flag(oxFLAG_PRIVATE_DATA); }
    void set_reusable(bool on) { set_flag(oxFLAG_REUSABLE, on); }
    bool is_shared() const { return cross_link != nullptr || reference_count > 0; }
    bool is_char() const { return class_code == oxCHAR_CLASS; }
    bool is_indexing_opaque() const { return has_flag(oxFLAG_INDEXING_OPAQUE); }
    // The imaginary part was announced by oxMarkImagData but has no block yet.
    OX_API bool is_imag_marked() const;

    // One bit for each of shape, complexity and density; the last one gives all three.
    oxArray_attributes get_shape_attr() const;
    oxArray_attributes get_complexity_attr() const {
        return has_flag(oxFLAG_NUMERIC) && num.pimag ? oxATTR_COMPLEX : oxATTR_REAL;
    }
    oxArray_attributes get_density_attr() const {
        return has_flag(oxFLAG_SPARSE) ? oxATTR_SPARSE : oxATTR_FULL;
    }
    oxArray_attributes get_attributes() const {
        return get_shape_attr() | get_complexity_attr() | get_density_attr();
    }

    // For blocks that come from an extension module: unless the data are private, the block
    // leaves the current allocation-list context, so that the array alone owns it. The previous
    // occupant is not freed.
    void set_pdata_untrusted(void *p) { unlist(p), num.pdata = p; }
    void set_pimag_data_untrusted(void *p) { unlist(p), num.pimag = p; }
    void set_ir_untrusted(kwIndex *p) { unlist(p), num.ir = p; }
    void set_jc_untrusted(kwIndex *p) { unlist(p), num.jc = p; }
    void set_cells_untrusted(oxArray **p) { unlist(p), cell.slots = p; }
    void set_struct_fields_untrusted(oxArray **p) { unlist(p), record.slots = p; }

private:
    void unlist(void *p) const {
        if (!is_private_data()) oxRemoveFromAllocList(p);
    }
};

// Deliberate: an empty 2-D array is a matrix whatever its sides, and the dimensions of
// indexing-opaque arrays are taken as stored, not completed.
inline oxArray_attributes oxArray_tag::get_shape_attr() const {
    if (ndims == 3) return oxATTR_3D;
    if (ndims == 4) return oxATTR_4D;
    if (ndims > 4) return oxATTR_ND;
    if (mn[0] == 0 || mn[1] == 0) return oxATTR_MATRIX;
    if (mn[0] == 1) return mn[1] == 1 ? oxATTR_SCALAR : oxATTR_ROW;
    return mn[1] == 1 ? oxATTR_COLUMN : oxATTR_MATRIX;
}

#endif
