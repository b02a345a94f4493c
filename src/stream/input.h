// The bytes of one array element on their way in, and the sub-elements in them. Nothing is believed
// before it is compared with what is left of the element, and with what is known to be there.
#pragma once
#include <stream/carrier.h>

namespace ox {

// A sub-element that is being read.
struct SubElement {
    uint32_t type;
    bool small;
    kwSize count; // bytes
    kwSize taken;
    unsigned char inlined[8];

    kwSize left() const { return count - taken; }
};

class Input {
public:
    Input(oiStreamRec_tag *s, kwSize n) : s_(s), form_(tag_form(s)), total_(n), limit_(n) {}
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    // The n bytes begin at the stream's offset. `ahead` is how many to fetch at once where the
    // carrier is asked. A status.
    int32_t begin(kwSize ahead);
    // Leaves the stream behind the element; false when the carrier ends before that.
    bool finish();

    TagForm form() const { return form_; }
    // Whether all bytes of the element are known to exist, so that memory for them may be had.
    bool backed() const { return backed_; }
    // What may be allocated on a claim of n bytes before any of them has arrived.
    kwSize believed(kwSize n) const;

    kwSize position() const { return total_ - unfetched_ - available(); }
    // The end of the innermost array; nothing is read beyond it.
    kwSize limit() const { return limit_; }
    void set_limit(kwSize position) { limit_ = position; }
    kwSize left() const { return limit_ - position(); }
    bool skip_to(kwSize position) { return pass(position - this->position()); }

    // The next tag; statuses.
    int32_t open(SubElement *e);
    // n further bytes of the data as they lie in the stream, or reversed where the stream is
    // swapped; then n must be whole units. False when the carrier ends.
    bool take(SubElement &e, void *dst, kwSize n);
    bool take_units(SubElement &e, void *dst, kwSize n);
    // The next n bytes without taking them, or null when they are not together; and taking n bytes
    // that are no sub-element.
    const unsigned char *peek(kwSize n) {
        return left() >= n && (available() >= n || fetch(n)) ? cursor_ : nullptr;
    }
    bool take_raw(void *dst, kwSize n) {
        if (n > available()) return read(static_cast<unsigned char *>(dst), n);
        std::memcpy(dst, cursor_, n);
        return pass(n);
    }
    bool pass(kwSize n) {
        if (n > available()) return skip(n);
        cursor_ += n;
        return true;
    }
    // The rest of the data where they lie, if they lie together; otherwise null.
    const unsigned char *view(SubElement &e);
    // Passes the rest of the data and the padding.
    bool close(SubElement &e);

private:
    kwSize available() const { return static_cast<kwSize>(end_ - cursor_); }
    bool fetch(kwSize n); // makes n bytes available; n is at most half of the staging block
    bool read(unsigned char *dst, kwSize n);
    bool skip(kwSize n);

    oiStreamRec_tag *s_;
    TagForm form_;
    kwSize total_, limit_, unfetched_ = 0;
    bool direct_ = false, backed_ = false;
    const unsigned char *cursor_ = nullptr, *end_ = nullptr;
};

} // namespace ox
