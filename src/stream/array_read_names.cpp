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

int32_t read_bytes(Input &in, SubElement &e, RawBlock *copy, const char **bytes) {
    const void *data = in.view(e);
    if (!data) {
        void *block;
        const int32_t status =
            read_block(in, e.count, e.count, 1, &block, [&](unsigned char *dst, kwSize k) {
                return in.take(e, dst, k) ? oiSUCCESS : oiSHORT_READ;
            });
        copy->reset(static_cast<unsigned char *>(block));
        if (status != oiSUCCESS) return status;
        data = block;
    }
    *bytes = static_cast<const char *>(data);
    return oiSUCCESS;
}

int32_t read_field_names(Input &in, oxArray *a) {
    kwSize length;
    if (const int32_t status = read_slot_length(in, &length)) return status;
    SubElement e;
    if (const int32_t status = in.open(&e)) return status;
    if (!is_bytes(e.type)) return oiBAD_ELEMENT;
    const kwSize fields = length > 0 ? e.count / length : 0;
    if (fields * length != e.count || fields > INT32_MAX) return oiBAD_ELEMENT;
    if (fields > 0) {
        RawBlock copy;
        const char *slots;
        if (const int32_t status = read_bytes(in, e, &copy, &slots)) return status;
        a->record.names = make_field_table(static_cast<int32_t>(fields), slots, length);
        if (!a->record.names) return oiREFUSED;
    }
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
