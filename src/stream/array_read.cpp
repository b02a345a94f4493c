// Reading an array element into a new array: the head, then the contents, with a stack of open
// containers instead of recursion.
#include <containers/field_table.h>
#include <containers/object_layer.h>
#include <core/array_list.h>
#include <core/create.h>
#include <core/size_check.h>
#include <ox/structs.h>
#include <stream/array_reader.h>
#include <stream/plain_matrix.h>

namespace ox {
namespace {

// A container whose elements are being read. Slots are attached when they are complete.
struct ReadFrame {
    oxArray *a = nullptr; // null for opaque arrays, which are made from their contents
    oxArray **slots = nullptr;
    kwSize next = 0, count = 0, room = 0;
    kwSize limit = 0; // of the enclosing array
    kwSize end = 0;   // where the element ends
    bool discards = false;
    char class_name[name_limit + 1];
};

class ArrayReader {
public:
    ArrayReader(oiStreamRec_tag *s, uint64_t n) : s_(s), in_(s, n) {}
    ArrayReader(const ArrayReader &) = delete;
    ArrayReader &operator=(const ArrayReader &) = delete;
    ~ArrayReader() {
        free_dims();
        while (frames_.size() > 0) drop_frame();
    }

    int32_t read(ReadDepth depth, char *name, oxArray **out);

private:
    int32_t read_flags(ArrayHead *head);
    int32_t read_dim_words(SubElement &e, kwSize n);
    int32_t read_dims(ArrayHead *head);
    int32_t read_head(ArrayHead *head, char *name);
    int32_t read_tree(char *name, oxArray **out);
    int32_t read_header(char *name, oxArray **out);
    int32_t read_element(kwSize end, char *name, oxArray **out);
    int32_t read_plain(const PlainMatrix &p, char *name, oxArray **out);
    bool next_is_plain(PlainMatrix *p);
    int32_t read_contents(const ArrayHead &head, kwSize end, ArrayGuard &a);
    int32_t open_frame(const ArrayHead &head, kwSize end, ArrayGuard &a);
    int32_t open_opaque(kwSize end);
    int32_t next_nested();
    int32_t store(oxArray *a);
    int32_t close_frame(oxArray **out);
    void drop_frame();
    void free_dims() {
        if (s_->dim_words != s_->dim_inline) oxFreeEx(s_->dim_words);
        s_->dim_words = s_->dim_inline;
    }

    oiStreamRec_tag *s_;
    Input in_;
    Growing<ReadFrame> frames_;
};

// --- The head ----------------------------------------------------------------------------------

// Two words; further ones have no meaning.
int32_t ArrayReader::read_flags(ArrayHead *head) {
    SubElement e;
    if (const int32_t status = in_.open(&e)) return status;
    const TagForm form = in_.form();
    if (e.type != oiUINT32 && !(form.wide && e.type == oiUINT64)) return oiBAD_ELEMENT;
    if (e.count < 2 * form.word()) return oiBAD_ELEMENT;
    unsigned char bytes[16];
    if (!in_.take_units(e, bytes, 2 * form.word()) || !in_.close(e)) return oiSHORT_READ;
    uint64_t *words = s_->flag_words;
    for (int k = 0; k < 2; ++k)
        words[k] = form.wide ? load<uint64_t>(bytes + 8 * k) : load<uint32_t>(bytes + 4 * k);
    head->word = static_cast<uint32_t>(words[0]);
    head->capacity = words[1];
    head->file_class = read_file_class(head->word);
    head->complex = (head->word & file_complex) != 0;
    const bool numeric = class_info(head->file_class.id).numeric;
    return head->complex && !numeric ? oiBAD_ELEMENT : oiSUCCESS;
}

// n words of dimensions, sign-extended, into the stream's scratch vector.
int32_t ArrayReader::read_dim_words(SubElement &e, kwSize n) {
    const auto fetch = [&](unsigned char *dst, kwSize k) -> int32_t {
        if (in_.form().wide) return in_.take_units(e, dst, k * 8) ? oiSUCCESS : oiSHORT_READ;
        for (int32_t word; k > 0; --k, dst += sizeof(kwSize)) {
            if (!in_.take_units(e, &word, 4)) return oiSHORT_READ;
            ox::store(dst, static_cast<int64_t>(word));
        }
        return oiSUCCESS;
    };
    if (n <= std::size(s_->dim_inline))
        return fetch(reinterpret_cast<unsigned char *>(s_->dim_inline), n);
    void *block;
    const int32_t status = read_block(in_, n, n, sizeof(kwSize), &block, fetch);
    if (block) s_->dim_words = static_cast<uint64_t *>(block);
    return status;
}

int32_t ArrayReader::read_dims(ArrayHead *head) {
    // What is left bounds the number of words; more than six need a block of their own.
    free_dims();
    SubElement e;
    if (const int32_t status = in_.open(&e)) return status;
    const TagForm form = in_.form();
    if (e.type != oiINT32 && !(form.wide && e.type == oiINT64)) return oiBAD_ELEMENT;
    if (e.count % form.word() != 0) return oiBAD_ELEMENT;
    const kwSize n = e.count / form.word();
    if (const int32_t status = read_dim_words(e, n)) return status;
    if (!in_.close(e)) return oiSHORT_READ;
    kwSize *dims = s_->dim_words;
    for (kwSize k = 0; k < n; ++k)
        if (static_cast<int64_t>(dims[k]) < 0) return oiBAD_ELEMENT;
    if (n == 0) dims[0] = dims[1] = 0;
    if (n == 1) dims[1] = 1;
    head->ndims = std::max<kwSize>(n, 2);
    head->dims = dims;
    return oiSUCCESS;
}

// name (may be null) receives the array's name.
int32_t ArrayReader::read_head(ArrayHead *head, char *name) {
    if (const int32_t status = read_flags(head)) return status;
    const FileClass &c = head->file_class;
    if (c.id != oxOPAQUE_CLASS) {
        if (const int32_t status = read_dims(head)) return status;
        const kwSize size = class_info(c.id).element_size;
        const bool legal = c.sparse ? head->ndims == 2
                                    : check_size(head->dims, head->ndims, size, &head->elements);
        if (!legal) return oiBAD_ELEMENT;
    }
    if (const int32_t status = read_name(in_, s_->name)) return status;
    if (name) std::strcpy(name, s_->name);
    return oiSUCCESS;
}

// A header of the class with its dimensions and flags. An object is a struct until it gets its
// class name.
oxArray *make_array(const ArrayHead &head) {
    const int id = head.file_class.id == oxOBJECT_CLASS ? oxSTRUCT_CLASS : head.file_class.id;
    ArrayGuard a(make_header(id, head.dims[0], head.dims[1]));
    if (!a || (head.ndims > 2 && store_dimensions(a.get(), head.ndims, head.dims) != 0))
        return nullptr;
    if (head.word & file_global) a->set_flag(oxFLAG_GLOBAL_WS, true);
    if (head.file_class.sparse)
        a->set_flag(oxFLAG_SPARSE, true);
    else if (head.elements == 1)
        oxSetScalarDoubleFlagIfAppropiate(a.get());
    return a.release();
}

// --- Contents ------------------------------------------------------------------------------------

// An array whose data begin here and end at `end`: *out when it is complete, or a frame.
int32_t ArrayReader::read_element(kwSize end, char *name, oxArray **out) {
    *out = nullptr;
    ArrayHead head;
    if (const int32_t status = read_head(&head, name)) return status;
    if (!head.file_class.known) {
        *out = load_opaque(s_, "", nullptr);
        return *out ? oiSUCCESS : oiREFUSED;
    }
    if (head.file_class.id == oxOPAQUE_CLASS) return open_opaque(end);
    ArrayGuard a(make_array(head));
    if (!a) return oiREFUSED;
    const int32_t status = read_contents(head, end, a);
    *out = status == oiSUCCESS ? a.release() : nullptr;
    return status;
}

int32_t ArrayReader::read_plain(const PlainMatrix &p, char *name, oxArray **out) {
    in_.pass(PlainMatrix::head_bytes);
    if (name) {
        std::memcpy(name, &p.words[9], 4);
        name[p.name_length()] = '\0';
    }
    ArrayGuard a(make_header(p.id(), p.rows(), p.columns()));
    if (!a) return oiREFUSED;
    const kwSize n = p.data_bytes();
    if (in_.backed()) {
        a->num.pdata = oxMallocEx(n);
        if (!a->num.pdata) return oiREFUSED;
        if (!in_.take_raw(a->num.pdata, n)) return oiSHORT_READ;
    } else {
        const int32_t status = read_block(in_, n, n, 1, &a->num.pdata, [&](void *dst, kwSize k) {
            return in_.take_raw(dst, k) ? oiSUCCESS : oiSHORT_READ;
        });
        if (status != oiSUCCESS) return status;
    }
    if (p.id() == oxDOUBLE_CLASS && p.rows() == 1 && p.columns() == 1)
        a->set_flag(oxFLAG_SCALAR_DOUBLE, true);
    *out = a.release();
    return oiSUCCESS;
}

int32_t ArrayReader::read_contents(const ArrayHead &head, kwSize end, ArrayGuard &a) {
    switch (head.file_class.id) {
    case oxUNKNOWN_CLASS:
        return oiSUCCESS;
    case oxOBJECT_CLASS: {
        char name[name_limit + 1];
        if (const int32_t status = read_name(in_, name)) return status;
        if (oxSetClassName(a.get(), name) != 0) return oiREFUSED;
    }
        [[fallthrough]];
    case oxSTRUCT_CLASS:
        if (const int32_t status = read_field_names(in_, a.get())) return status;
        [[fallthrough]];
    case oxCELL_CLASS:
    case oxFUNCTION_CLASS:
        return open_frame(head, end, a);
    default:
        return head.file_class.sparse ? read_sparse(in_, head, a.get())
                                      : read_full(in_, head, a.get());
    }
}

// Each nested element is a tag at least, which bounds their number by what is left.
int32_t ArrayReader::open_frame(const ArrayHead &head, kwSize end, ArrayGuard &a) {
    kwSize count = head.elements;
    if (is_struct_like(a.get())) {
        const auto fields = static_cast<kwSize>(field_count(a.get()));
        if (__builtin_mul_overflow(count, fields, &count)) return oiBAD_ELEMENT;
    }
    if (count == 0) return oiSUCCESS;
    if (count > in_.left() / in_.form().tag_size()) return oiSHORT_READ;
    ReadFrame frame;
    frame.count = count;
    frame.end = end;
    frame.discards = a->class_code == oxFUNCTION_CLASS;
    if (!frames_.push(frame)) return oiREFUSED;
    frames_.top().a = a.release();
    return oiSUCCESS;
}

int32_t ArrayReader::open_opaque(kwSize end) {
    ReadFrame frame;
    if (const int32_t status = read_name(in_, frame.class_name)) return status;
    frame.count = 1;
    frame.end = end;
    return frames_.push(frame) ? oiSUCCESS : oiREFUSED;
}

// Whether the next element is a plain matrix that fits; then its tag is passed.
bool ArrayReader::next_is_plain(PlainMatrix *p) {
    constexpr kwSize tag_size = 8;
    if (!is_plain_form(in_.form())) return false;
    const unsigned char *tag = in_.peek(tag_size + PlainMatrix::head_bytes);
    if (!tag || load<uint32_t>(tag) != oiMATRIX) return false;
    const kwSize n = load<uint32_t>(tag + 4);
    if (n > in_.left() - tag_size || !recognise_plain(tag + tag_size, n, p)) return false;
    return in_.pass(tag_size);
}

// The next element of the innermost container: stored, or itself a container that is now open.
int32_t ArrayReader::next_nested() {
    PlainMatrix plain;
    if (frames_.size() < oiNESTING_LIMIT && next_is_plain(&plain)) {
        oxArray *a;
        if (const int32_t status = read_plain(plain, nullptr, &a)) return status;
        const bool passed = in_.pass(padding(plain.data_bytes()));
        const int32_t status = store(a);
        return passed ? status : oiSHORT_READ;
    }
    SubElement e;
    if (const int32_t status = in_.open(&e)) return status;
    if (e.type != oiMATRIX || e.small) return oiBAD_ELEMENT;
    if (e.count == 0) return store(nullptr);
    if (frames_.size() == oiNESTING_LIMIT) return oiBAD_ELEMENT;
    const kwSize outer = in_.limit(), end = in_.position() + e.count;
    const kwSize depth = frames_.size();
    in_.set_limit(end);
    oxArray *a;
    if (const int32_t status = read_element(end, nullptr, &a)) return status;
    if (frames_.size() > depth) {
        frames_.top().limit = outer;
        return oiSUCCESS;
    }
    const bool passed = in_.skip_to(end);
    in_.set_limit(outer);
    const int32_t status = store(a);
    return passed ? status : oiSHORT_READ;
}

// Puts an array, or null, into the next slot of the innermost container; owns it also on failure.
int32_t ArrayReader::store(oxArray *a) {
    ReadFrame &f = frames_.top();
    if (f.discards) {
        oxDestroyArray(a);
        ++f.next;
        return oiSUCCESS;
    }
    if (f.next == f.room) {
        const kwSize first = std::max<kwSize>(in_.believed(f.count * sizeof(oxArray *)) / 8, 1);
        const kwSize room = std::min(f.count, f.room ? 2 * f.room : first);
        void *moved = oxReallocEx(f.slots, room * sizeof(oxArray *));
        if (!moved) {
            oxDestroyArray(a);
            return oiREFUSED;
        }
        f.slots = static_cast<oxArray **>(moved);
        f.room = room;
    }
    f.slots[f.next++] = f.a ? contained(a) : a;
    return oiSUCCESS;
}

// The innermost container has all its elements.
int32_t ArrayReader::close_frame(oxArray **out) {
    ReadFrame &f = frames_.top();
    if (!in_.skip_to(f.end)) return oiSHORT_READ;
    if (!f.a) {
        *out = load_opaque(s_, f.class_name, std::exchange(f.slots[0], nullptr));
        if (!*out) return oiREFUSED;
    } else if (f.discards) {
        f.a->num.pdata = oxCallocEx(f.count, class_info(oxFUNCTION_CLASS).element_size);
        if (!f.a->num.pdata) return oiREFUSED;
        *out = std::exchange(f.a, nullptr);
    } else {
        f.a->cell.slots = std::exchange(f.slots, nullptr);
        *out = std::exchange(f.a, nullptr);
    }
    in_.set_limit(f.limit);
    drop_frame();
    return oiSUCCESS;
}

void ArrayReader::drop_frame() {
    ReadFrame &f = frames_.top();
    for (kwSize k = f.slots ? f.next : 0; k-- > 0;) oxDestroyArray(f.slots[k]);
    oxFreeEx(f.slots);
    oxDestroyArray(f.a);
    frames_.pop();
}

// --- The whole ---------------------------------------------------------------------------------

int32_t ArrayReader::read_tree(char *name, oxArray **out) {
    PlainMatrix plain;
    const unsigned char *start =
        is_plain_form(in_.form()) ? in_.peek(PlainMatrix::head_bytes) : nullptr;
    if (start && recognise_plain(start, in_.left(), &plain)) return read_plain(plain, name, out);
    int32_t status = read_element(in_.limit(), name, out);
    if (frames_.size() > 0) frames_.top().limit = in_.limit();
    while (status == oiSUCCESS && frames_.size() > 0) {
        if (frames_.top().next < frames_.top().count) {
            status = next_nested();
        } else {
            oxArray *a = nullptr;
            status = close_frame(&a);
            if (status == oiSUCCESS && frames_.size() > 0)
                status = store(a);
            else
                *out = a;
        }
    }
    return status;
}

// Class, dimensions and flags; what is announced has no storage yet.
int32_t ArrayReader::read_header(char *name, oxArray **out) {
    ArrayHead head;
    if (const int32_t status = read_head(&head, name)) return status;
    if (head.file_class.id == oxOPAQUE_CLASS || !head.file_class.known) return oiREFUSED;
    oxArray *a = make_array(head);
    if (!a) return oiREFUSED;
    if (head.file_class.id == oxOBJECT_CLASS) set_class(a, oxOBJECT_CLASS);
    if (head.file_class.sparse) a->num.nzmax = std::max<kwSize>(head.capacity, 1);
    if (head.complex) oxMarkImagData(a);
    *out = a;
    return oiSUCCESS;
}

// Whatever the outcome, the stream ends up behind the element if it can get there.
int32_t ArrayReader::read(ReadDepth depth, char *name, oxArray **out) {
    constexpr kwSize head_ahead = 256;
    const bool all = depth == ReadDepth::everything;
    *out = nullptr;
    if (const int32_t status = in_.begin(all ? ~kwSize{0} : head_ahead)) return status;
    int32_t status = all ? read_tree(name, out) : read_header(name, out);
    if (!in_.finish() && status == oiSUCCESS) status = oiSHORT_READ;
    if (status != oiSUCCESS) {
        oxDestroyArray(*out);
        *out = nullptr;
    }
    return status;
}

} // namespace

int32_t read_array(oiStreamRec_tag *s, uint64_t n, ReadDepth depth, char *name, oxArray **out) {
    return ArrayReader(s, n).read(depth, name, out);
}

} // namespace ox
