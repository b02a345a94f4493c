// The bytes of one array element on their way in.
#include <core/tuning.h>
#include <stream/input.h>

#include <algorithm>

namespace ox {

int32_t Input::begin(kwSize ahead) {
    const Backing backing = carrier_backing(s_, total_);
    if (backing == Backing::too_few) return oiSHORT_READ;
    backed_ = backing == Backing::enough;
    if (const unsigned char *buffer = plain_buffer_for_reading(s_)) {
        direct_ = true;
        cursor_ = buffer + s_->offset;
        end_ = cursor_ + total_;
        return oiSUCCESS;
    }
    unsigned char *staging = staging_of(s_);
    if (!staging) return oiREFUSED;
    const kwSize wanted = std::min({total_, ahead, tuning::staging_bytes});
    if (carrier_read(s_, staging, wanted) != wanted) return oiSHORT_READ;
    cursor_ = staging;
    end_ = staging + wanted;
    unfetched_ = total_ - wanted;
    backed_ = backed_ || unfetched_ == 0;
    return oiSUCCESS;
}

bool Input::finish() {
    if (!direct_) return carrier_skip(s_, unfetched_);
    s_->offset += total_;
    return true;
}

kwSize Input::believed(kwSize n) const { return backed_ ? n : std::min(n, tuning::believed_bytes); }

bool Input::fetch(kwSize n) {
    if (available() >= n) return true;
    if (direct_) return false;
    unsigned char *staging = s_->staging;
    const kwSize rest = available();
    std::memmove(staging, cursor_, rest);
    const kwSize wanted = std::min(unfetched_, tuning::staging_bytes - rest);
    const kwSize got = carrier_read(s_, staging + rest, wanted);
    cursor_ = staging;
    end_ = staging + rest + got;
    unfetched_ -= got;
    return got == wanted && available() >= n;
}

bool Input::read(unsigned char *dst, kwSize n) {
    const kwSize here = std::min(n, available());
    if (here > 0) std::memcpy(dst, cursor_, here);
    cursor_ += here;
    dst += here;
    n -= here;
    if (n == 0) return true;
    if (n > unfetched_) return false;
    if (n >= tuning::direct_bytes) {
        const kwSize got = carrier_read(s_, dst, n);
        unfetched_ -= got;
        return got == n;
    }
    if (!fetch(n)) return false;
    std::memcpy(dst, cursor_, n);
    cursor_ += n;
    return true;
}

bool Input::skip(kwSize n) {
    const kwSize here = std::min(n, available());
    cursor_ += here;
    n -= here;
    if (n > unfetched_) return false;
    unfetched_ -= n;
    return carrier_skip(s_, n);
}

int32_t Input::open(SubElement *e) {
    const kwSize size = form_.tag_size();
    if (!peek(size)) return oiSHORT_READ;
    Tag tag;
    if (!parse_tag(form_, cursor_, &tag)) return oiBAD_ELEMENT;
    cursor_ += size;
    e->type = tag.type;
    e->small = tag.small;
    e->count = tag.count;
    e->taken = 0;
    if (tag.small) std::memcpy(e->inlined, tag.inlined, sizeof e->inlined);
    return tag.small || tag.count <= left() ? oiSUCCESS : oiSHORT_READ;
}

bool Input::take(SubElement &e, void *dst, kwSize n) {
    e.taken += n;
    if (!e.small) return read(static_cast<unsigned char *>(dst), n);
    std::memcpy(dst, e.inlined + e.taken - n, n);
    return true;
}

bool Input::take_units(SubElement &e, void *dst, kwSize n) {
    if (!take(e, dst, n)) return false;
    if (form_.swapped && !e.small) reverse_in_place(dst, n, type_unit(e.type));
    return true;
}

const unsigned char *Input::view(SubElement &e) {
    if (e.small) return e.inlined + e.taken;
    const kwSize n = e.left();
    if (n > available() && (direct_ || n > tuning::staging_bytes / 2 || !fetch(n))) return nullptr;
    const unsigned char *data = cursor_;
    cursor_ += n;
    e.taken = e.count;
    return data;
}

// The padding of the last sub-element may be cut off by the end of the array.
bool Input::close(SubElement &e) {
    if (e.small) return true;
    if (!skip(e.left())) return false;
    return skip(std::min(padding(e.count), left()));
}

} // namespace ox
