// Reading one element.
#include <core/array_list.h>
#include <core/tuning.h>
#include <stream/items.h>

#include <algorithm>
#include <utility>

namespace ox {
namespace {

bool is_compressed(const Tag &tag) { return (tag.type & 0xFF) == oiCOMPRESSED; }

// File carriers read the padding; for buffers it need not be there.
bool pass_padding(oiStreamRec_tag *s, kwSize n) {
    unsigned char bytes[8];
    if (!is_file(s)) return carrier_skip(s, padding(n));
    return carrier_read(s, bytes, padding(n)) == padding(n);
}

// n bytes into memory of the stream's allocator. As long as they are not known to exist, the memory
// follows what has arrived.
int32_t read_allocated(oiStreamRec_tag *s, kwSize n, void **data) {
    const Backing backing = carrier_backing(s, n);
    if (backing == Backing::too_few) return oiSHORT_READ;
    kwSize room = backing == Backing::enough ? n : std::min(n, tuning::believed_bytes);
    auto *block = static_cast<unsigned char *>(s->allocate(room, 1));
    for (kwSize done = 0; block;) {
        const kwSize got = carrier_read(s, block + done, room - done);
        if (got != room - done) {
            s->free(block);
            return oiSHORT_READ;
        }
        done = room;
        if (done == n) {
            *data = block;
            return oiSUCCESS;
        }
        room = std::min(n, 2 * room);
        auto *larger = static_cast<unsigned char *>(s->allocate(room, 1));
        if (larger) std::memcpy(larger, block, done);
        s->free(block);
        block = larger;
    }
    return oiREFUSED;
}

int32_t get_small(const Tag &tag, oiItem_tag *item) {
    if (!item->data) {
        std::memcpy(&item->name, tag.inlined, sizeof item->name);
        item->data = &item->name;
    } else {
        std::memcpy(item->data, tag.inlined, tag.count);
    }
    return oiSUCCESS;
}

int32_t get_plain(oiStreamRec_tag *s, const Tag &tag, oiItem_tag *item) {
    item->count = tag.count;
    if (tag.small) return get_small(tag, item);
    void *data = item->data;
    int32_t status = oiSUCCESS;
    if (!data)
        status = read_allocated(s, tag.count, &data);
    else if (carrier_read(s, data, tag.count) != tag.count)
        status = oiSHORT_READ;
    if (status != oiSUCCESS) return status;
    if (tag_form(s).swapped) reverse_in_place(data, tag.count, type_unit(tag.type));
    if (!pass_padding(s, tag.count)) {
        if (!item->data) s->free(data);
        return oiSHORT_READ;
    }
    item->data = data;
    return oiSUCCESS;
}

// The array is handed over last, when the list is sure to take it: nothing here may raise.
int32_t get_array(oiStreamRec_tag *s, const Tag &tag, oiItem_tag *item, ReadDepth depth) {
    auto *name = reinterpret_cast<char *>(static_cast<uintptr_t>(item->name));
    oxArray *a;
    int32_t status = read_array(s, tag.count, depth, name, &a);
    const bool passed = pass_padding(s, tag.count);
    if (status != oiSUCCESS) return status;
    if (!passed) status = oiSHORT_READ;
    if (passed && array_hooks.created && !array_list_has_room()) status = oiREFUSED;
    if (status != oiSUCCESS) {
        oxDestroyArray(a);
        return status;
    }
    item->data = hand_over(a);
    item->count = tag.count;
    return oiSUCCESS;
}

int32_t get_contents(oiStreamRec_tag *s, const Tag &tag, oiItem_tag *item, Want want) {
    if (want != Want::anything && tag.type != oiMATRIX) return oiBAD_ELEMENT;
    // Deliberate: an element without data is consumed and the item stays as it is, type included.
    if (tag.count == 0) return oiSUCCESS;
    if (tag.type == oiMATRIX && tag.small) return oiBAD_ELEMENT;
    item->type = static_cast<int32_t>(tag.type);
    if (!is_item_type(tag.type)) return oiREFUSED;
    if (tag.type != oiMATRIX) return get_plain(s, tag, item);
    const bool header = want == Want::array_header;
    return get_array(s, tag, item, header ? ReadDepth::header_only : ReadDepth::everything);
}

// Takes back what an item was given.
void take_back(oiStreamRec_tag *s, oiItem_tag *item) {
    void *data = std::exchange(item->data, nullptr);
    if (data == &item->name) return;
    if (item->type == oiMATRIX)
        oxDestroyArray(static_cast<oxArray *>(data));
    else
        s->free(data);
}

// A compressed element holds one element that is not compressed. What it claims to hold must be
// possible to deflate into its length.
int32_t get_packed(oiStreamRec_tag *s, uint64_t length, oiItem_tag *item, Want want) {
    if (const int32_t status = begin_unpacking(s, length)) return status;
    Tag tag;
    int32_t status = get_tag(s, &tag);
    if (status == oiSUCCESS && is_compressed(tag)) status = oiREFUSED;
    if (status == oiSUCCESS && !tag.small && tag.count > inflate_ratio * length)
        status = oiSHORT_READ;
    const void *given = item->data;
    if (status == oiSUCCESS) status = get_contents(s, tag, item, want);
    const int32_t ended = end_unpacking(s);
    if (status == oiSUCCESS && ended != oiSUCCESS && item->data != given) take_back(s, item);
    return status != oiSUCCESS ? status : ended;
}

} // namespace

int32_t get_tag(oiStreamRec_tag *s, Tag *tag) {
    const TagForm form = tag_form(s);
    unsigned char bytes[16];
    if (carrier_read(s, bytes, form.tag_size()) != form.tag_size()) return oiSHORT_READ;
    return parse_tag(form, bytes, tag) ? oiSUCCESS : oiBAD_ELEMENT;
}

int32_t get_item(oiStreamRec_tag *s, oiItem_tag *item, Want want) {
    if (!carrier_settle(s)) return oiSHORT_READ;
    Tag tag;
    if (const int32_t status = get_tag(s, &tag)) return status;
    if (!is_compressed(tag)) return get_contents(s, tag, item, want);
    return tag.small ? oiBAD_ELEMENT : get_packed(s, tag.count, item, want);
}

} // namespace ox

using namespace ox;

extern "C" {

int32_t oiGetCurrentItem(oiStreamRec_tag *s, oiItem_tag *item) {
    return get_item(s, item, Want::anything);
}

int32_t oiGetItem(oiStreamRec_tag *s, oiItem_tag *item, kwSize offset) {
    return get_item_at(s, item, offset, Want::anything);
}

} // extern "C"
