// Bytes on their way to a carrier: straight into a plain buffer, or gathered until there is enough
// for one call.
#pragma once
#include <core/tuning.h>
#include <stream/carrier.h>

#include <algorithm>

namespace ox {

class Output {
public:
    static constexpr kwSize max_room = 256; // the most that room() gives
    static_assert(max_room * 2 <= tuning::staging_bytes);

    explicit Output(oiStreamRec_tag *s) : s_(s), form_(tag_form(s)) {}
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    // Room for exactly n bytes, padding included, is reserved at the stream's offset. False without
    // memory.
    bool begin(kwSize n) {
        if (unsigned char *buffer = plain_buffer_for_writing(s_)) {
            direct_ = true;
            start_ = cursor_ = buffer + s_->offset;
            end_ = cursor_ + n;
            return true;
        }
        start_ = cursor_ = staging_of(s_);
        if (!start_) return false;
        end_ = start_ + tuning::staging_bytes;
        return true;
    }
    // Everything is with the carrier; false when some of it is not. What was reserved and not
    // written holds no old bytes.
    bool finish() {
        if (direct_ && cursor_ < end_) std::memset(cursor_, 0, available());
        flush();
        return !failed_;
    }
    TagForm form() const { return form_; }

    // n <= max_room bytes to write; advance() then says where the next ones go.
    unsigned char *room(kwSize n) { return available() >= n || refresh() >= n ? cursor_ : spill_; }
    void advance(const unsigned char *to) {
        if (to >= cursor_ && to <= end_)
            cursor_ += to - cursor_;
        else
            failed_ = true; // there was no room, so they went to the spill
    }
    // Between 1 and n bytes to write, in whole units of 8 unless all n fit.
    unsigned char *span(kwSize *n) {
        if (available() >= *n) return cursor_;
        if (available() < 8 && refresh() < 8) {
            *n = std::min(*n, max_room);
            return spill_;
        }
        *n = std::min(*n, available() & ~kwSize{7});
        return cursor_;
    }

    void put(const void *data, kwSize n) {
        if (available() >= n) {
            if (n > 0) std::memcpy(cursor_, data, n);
            cursor_ += n;
        } else {
            put_large(static_cast<const unsigned char *>(data), n);
        }
    }
    void put_tag(uint32_t type, kwSize n) {
        advance(build_tag(form_, room(form_.tag_size()), type, n));
    }
    void put_small(uint32_t type, const void *data, kwSize n) {
        advance(build_small(form_, room(form_.tag_size()), type, data, n));
    }
    // Data in this machine's order, reversed by unit if the stream is swapped; the source stays.
    void put_data(const void *data, kwSize n, kwSize unit) {
        if (!form_.swapped || unit == 1) return put(data, n);
        for (auto *from = static_cast<const unsigned char *>(data); n > 0;) {
            kwSize piece = n;
            unsigned char *to = span(&piece);
            copy_reversed(to, from, piece, unit);
            advance(to + piece);
            from += piece;
            n -= piece;
        }
    }
    // The padding after n bytes.
    void put_padding(kwSize n) {
        unsigned char *to = room(padding(n));
        std::memset(to, 0, padding(n));
        advance(to + padding(n));
    }
    // A whole element: tag, data, padding.
    void put_element(uint32_t type, const void *data, kwSize n) {
        if (form_.is_small(n)) return put_small(type, data, n);
        put_tag(type, n);
        put_data(data, n, type_unit(type));
        put_padding(n);
    }

private:
    kwSize available() const { return static_cast<kwSize>(end_ - cursor_); }
    kwSize refresh() {
        if (!direct_) flush();
        return available();
    }
    void flush() {
        const auto n = static_cast<kwSize>(cursor_ - start_);
        if (direct_)
            s_->offset += n;
        else if (!failed_ && !carrier_write(s_, start_, n))
            failed_ = true;
        direct_ ? start_ = cursor_ : cursor_ = start_;
    }
    void put_large(const unsigned char *data, kwSize n) {
        if (direct_) {
            failed_ = true; // more than was reserved
            return;
        }
        flush();
        if (n < tuning::direct_bytes) {
            std::memcpy(cursor_, data, n);
            cursor_ += n;
        } else if (!failed_ && !carrier_write(s_, data, n)) {
            failed_ = true;
        }
    }

    oiStreamRec_tag *s_;
    TagForm form_;
    bool direct_ = false, failed_ = false;
    unsigned char *start_ = nullptr, *cursor_ = nullptr, *end_ = nullptr;
    unsigned char spill_[max_room];
};

} // namespace ox
