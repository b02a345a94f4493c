// Reading names: of arrays, classes and fields; and opaque arrays, which are made by class name.
#include <containers/field_table.h>
#include <containers/object_layer.h>
#include <stream/array_reader.h>

namespace ox {
namespace {

bool is_bytes(uint32_t type) { return type == oiINT8 || type == oiUINT8 || type == oiUTF8; }

// The number of bytes of each name; 0 only when there are no names.
int32_t read_slot_length(Input &in, kwSize *length) {
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    int32_t value;
    if (e.type != oiINT32 || e.count != sizeof value) return oiBAD_ELEMENT;
    if (!in.take_units(e, &value, sizeof value) || !in.close(e)) return oiSHORT_READ;
    *length = static_cast<kwSize>(value);
    return value < 0 ? oiBAD_ELEMENT : oiSUCCESS;
}

// The names in slots, each terminated: where they are if every slot ends in NUL, or copied.
int32_t intern_slots(const char *slots, kwSize fields, kwSize length, oxArray *a) {
    auto names = RawArray<const char *>::make(fields);
    if (!names) return oiREFUSED;
    bool terminated = true;
    for (kwSize k = 0; k < fields; ++k) {
        names[k] = slots + k * length;
        terminated = terminated && names[k][length - 1] == '\0';
    }
    RawArray<char> copies;
    if (!terminated) {
        copies = RawArray<char>::make(fields * (length + 1));
        if (!copies) return oiREFUSED;
        for (kwSize k = 0; k < fields; ++k) {
            char *copy = copies.get() + k * (length + 1);
            std::memcpy(copy, names[k], length);
            copy[length] = '\0';
            names[k] = copy;
        }
    }
    a->record.names = make_field_table(static_cast<int32_t>(fields), names.get());
    return a->record.names ? oiSUCCESS : oiREFUSED;
}

} // namespace

int32_t read_name(Input &in, char *name) {
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    if (!is_bytes(e.type)) return oiBAD_ELEMENT;
    const kwSize n = std::min(e.count, name_limit);
    if (!in.take(e, name, n)) return oiSHORT_READ;
    name[n] = '\0';
    return in.close(e) ? oiSUCCESS : oiSHORT_READ;
}

int32_t read_field_names(Input &in, oxArray *a) {
    kwSize length;
    if (const int32_t status = read_slot_length(in, &length)) return status;
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    if (!is_bytes(e.type)) return oiBAD_ELEMENT;
    const kwSize fields = length > 0 ? e.count / length : 0;
    if (fields * length != e.count || fields > INT32_MAX) return oiBAD_ELEMENT;
    int32_t status = oiSUCCESS;
    if (fields > 0) {
        const unsigned char *here = in.view(e);
        void *copy = nullptr;
        if (!here)
            status = read_block(in, e.count, e.count, 1, &copy, [&](unsigned char *dst, kwSize k) {
                return in.take(e, dst, k) ? oiSUCCESS : oiSHORT_READ;
            });
        const RawBlock guard(static_cast<unsigned char *>(copy));
        const void *slots = here ? here : copy;
        if (status == oiSUCCESS)
            status = intern_slots(static_cast<const char *>(slots), fields, length, a);
    }
    if (status != oiSUCCESS) return status;
    return in.close(e) ? oiSUCCESS : oiSHORT_READ;
}

oxArray *load_opaque(oiStreamRec_tag *s, const char *class_name, oxArray *contents) {
    const ArrayGuard held(contents);
    const ox_object_layer &layer = object_layer();
    static constexpr kwSize scalar[2] = {1, 1};
    if (layer.create_class_array) {
        const bool handle = std::strcmp(class_name, "handle") == 0;
        const char *wanted = handle ? "handle.handle" : class_name;
        ArrayGuard a(layer.create_class_array(wanted, 2, scalar));
        xxInfo *info = a && a->class_code == oxOPAQUE_CLASS ? a->opaque.info : nullptr;
        const char *made = info ? info->subclass_name(a.get()) : nullptr;
        const bool same =
            made && (std::strcmp(made, class_name) == 0 || std::strcmp(made, wanted) == 0);
        if (same && contents && info->load(a.get(), contents, s)) return a.release();
        if (same && contents) return nullptr;
    }
    return layer.create_unknown ? layer.create_unknown(class_name, contents) : nullptr;
}

} // namespace ox
