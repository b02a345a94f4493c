// Whole arrays as byte vectors and back: one or two elements in a buffer stream.
#include <core/create.h>
#include <core/destroy.h>
#include <errors/raise.h>
#include <ox/serialize.h>
#include <stream/items.h>

#include <ut.h>

namespace ox {
namespace {

// Owns a buffer stream, also while an error passes, and its buffer until that is taken.
class BufferStream {
public:
    explicit BufferStream(oiStreamRec_tag *s) : s_(s) {}
    BufferStream(const BufferStream &) = delete;
    BufferStream &operator=(const BufferStream &) = delete;
    ~BufferStream() { oiDisposeBufferStream(s_); }
    explicit operator bool() const { return s_ != nullptr; }
    oiStreamRec_tag *get() const { return s_; }
    oiStreamRec_tag *operator->() const { return s_; }
    void *take_buffer() {
        void *buffer = s_->handle;
        s_->handle = nullptr;
        return buffer;
    }

private:
    oiStreamRec_tag *s_;
};

// A stream over bytes that stay the caller's.
class LentStream : public BufferStream {
public:
    LentStream(const void *bytes, kwSize length)
        : BufferStream(oiCreateBufferStream(const_cast<void *>(bytes), 0, 0, nullptr, nullptr,
                                            nullptr, length, 0)) {}
    ~LentStream() {
        if (*this) take_buffer();
    }
};

[[noreturn]] void raise_unwritten(const char *shown) {
    oxErrMsgIdAndTxt("VELTRO:Serialize", "Error during serialization of %s", shown);
}

void put_array(oiStreamRec_tag *s, const oxArray *a, const char *tag, const char *shown) {
    const oiItem_tag item = {oiMATRIX, 0, const_cast<oxArray *>(a),
                             static_cast<uint64_t>(reinterpret_cast<uintptr_t>(tag))};
    if (oiPutItem(s, &item, nullptr) != oiSUCCESS) raise_unwritten(shown);
}

// The stream's bytes as a row of uint8, no longer than they are. Null without memory.
oxArray *row_of_buffer(BufferStream &s) {
    ArrayGuard a(make_full(0, 0, oxUINT8_CLASS, false));
    if (!a) return nullptr;
    const kwSize n = s->capacity;
    void *buffer = s.take_buffer();
    if (n + 4096 < s->physical)
        if (void *shrunk = oxReallocEx(buffer, n)) buffer = shrunk;
    a->set_pdata_untrusted(buffer);
    store_mn(a.get(), 1, n);
    return a.release();
}

// Where the first element ends, or 0 when there is no array element.
kwSize end_of_first(oiStreamRec_tag *s) {
    Tag tag;
    if (get_tag(s, &tag) != oiSUCCESS || tag.type != oiMATRIX || tag.small) return 0;
    kwSize end;
    return __builtin_add_overflow(s->offset, tag.count, &end) ? 0 : end;
}

// The array of the element at an offset, or null.
oxArray *array_at(oiStreamRec_tag *s, kwSize offset, char *name) {
    oiItem_tag item = {0, 0, nullptr, static_cast<uint64_t>(reinterpret_cast<uintptr_t>(name))};
    const bool got = get_item_at(s, &item, offset, Want::array) == oiSUCCESS;
    return got ? static_cast<oxArray *>(item.data) : nullptr; // null when it was empty
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxSerializeWithTagEx(const oxArray *a, const char *tag, uint16_t options) {
    BufferStream s(oiCreateBufferStream(nullptr, 0, 0, nullptr, nullptr, nullptr, 0, options));
    if (!s) return nullptr;
    const char *shown = tag ? tag : "";
    put_array(s.get(), a, tag, shown);
    if (s->subsystem) {
        const oxArray *subsystem = oiGetSubsystemData(s.get());
        if (!subsystem) raise_unwritten(shown); // its own bytes found no memory
        put_array(s.get(), subsystem, nullptr, shown);
    }
    oxArray *row = row_of_buffer(s);
    return row ? hand_over(row) : nullptr;
}

oxArray *oxSerializeWithTag(const oxArray *a, const char *tag) {
    return oxSerializeWithTagEx(a, tag, 0);
}
oxArray *oxSerializeEx(const oxArray *a, uint16_t options) {
    return oxSerializeWithTagEx(a, nullptr, options);
}
oxArray *oxSerialize(const oxArray *a) { return oxSerializeWithTagEx(a, nullptr, 0); }

oxArray *oxDeserializeWithTag(const void *bytes, kwSize length, const char **tag) {
    if (!bytes) return nullptr;
    LentStream s(bytes, length);
    if (!s) return nullptr;
    const kwSize first = s->offset, end = end_of_first(s.get());
    if (end == 0) return nullptr;
    if (end != length) {
        oxArray *subsystem = array_at(s.get(), end, nullptr);
        if (!subsystem) return nullptr;
        oiSetSubsystemData(s.get(), subsystem);
    }
    char name[64] = "";
    oxArray *a = array_at(s.get(), first, name);
    if (a && tag) *tag = name[0] ? ut_symtab_add(name) : nullptr;
    return a;
}

oxArray *oxDeserialize(const void *bytes, kwSize length) {
    return oxDeserializeWithTag(bytes, length, nullptr);
}

} // extern "C"
