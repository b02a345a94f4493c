// The subscripts of one call.
#pragma once
#include <index/operands/extents.h>
#include <index/operands/subscript.h>

#include <new>

namespace ox {

// As many subscripts as a call has; up to ten need no memory of their own.
class SubscriptSet {
public:
    // All of them select nothing yet; raises error 18 without memory.
    explicit SubscriptSet(kwSize n) : n_(n) {
        void *p = inside_;
        if (n > inside_count) {
            block_ = RawBlock::make(n * sizeof(Subscript));
            if (!block_) raise_out_of_memory();
            p = block_.get();
        }
        p_ = static_cast<Subscript *>(p);
        for (kwSize k = 0; k < n; ++k) new (p_ + k) Subscript;
    }
    SubscriptSet(const SubscriptSet &) = delete;
    SubscriptSet &operator=(const SubscriptSet &) = delete;
    ~SubscriptSet() {
        for (kwSize k = 0; k < n_; ++k) p_[k].~Subscript();
    }

    kwSize size() const { return n_; }
    Subscript &operator[](kwSize k) { return p_[k]; }
    const Subscript &operator[](kwSize k) const { return p_[k]; }
    const Subscript *begin() const { return p_; }
    const Subscript *end() const { return p_ + n_; }

private:
    static constexpr kwSize inside_count = 10;
    alignas(Subscript) unsigned char inside_[inside_count * sizeof(Subscript)];
    RawBlock block_;
    Subscript *p_;
    kwSize n_;
};

} // namespace ox
