// Lists of sizes, and how the dimensions of an array fold when there are fewer or more subscripts.
#pragma once
#include <core/alloc.h>
#include <core/array.h>
#include <errors/raise.h>

#include <cstring>

namespace ox {

// A list of sizes that allocates only above ten entries.
class Extents {
public:
    // Entries are undefined; raises error 18 without memory.
    explicit Extents(kwSize n = 0) { resize(n); }
    Extents(const kwSize *sizes, kwSize n) : Extents(n) { std::memcpy(p_, sizes, n * sizeof *p_); }
    Extents(const Extents &) = delete;
    Extents &operator=(const Extents &) = delete;

    // Keeps the entries that remain; new ones are undefined.
    void resize(kwSize n) {
        if (n > inside_count && n > size_) {
            auto block = RawArray<kwSize>::make(n);
            if (!block) raise_out_of_memory();
            std::memcpy(block.get(), p_, size_ * sizeof *p_);
            block_ = std::move(block);
            p_ = block_.get();
        }
        size_ = n;
    }
    void assign(kwSize m, kwSize n) {
        resize(2);
        p_[0] = m;
        p_[1] = n;
    }
    void assign(const kwSize *sizes, kwSize n) {
        resize(n);
        std::memmove(p_, sizes, n * sizeof *p_);
    }
    // n along dimension k, one along each other of the given number of dimensions.
    void orient(kwSize ndims, kwSize k, kwSize n) {
        resize(ndims);
        for (kwSize d = 0; d < ndims; ++d) p_[d] = d == k ? n : 1;
    }
    // Drops trailing ones, down to two dimensions.
    void trim() {
        while (size_ > 2 && p_[size_ - 1] == 1) --size_;
    }

    kwSize size() const { return size_; }
    kwSize &operator[](kwSize k) { return p_[k]; }
    kwSize operator[](kwSize k) const { return p_[k]; }
    kwSize *get() { return p_; }
    const kwSize *get() const { return p_; }
    bool operator==(const Extents &o) const {
        return size_ == o.size_ && std::memcmp(p_, o.p_, size_ * sizeof *p_) == 0;
    }

private:
    static constexpr kwSize inside_count = 10;
    kwSize inside_[inside_count];
    RawArray<kwSize> block_;
    kwSize *p_ = inside_;
    kwSize size_ = 0;
};

// The extent that subscript k of nsubs (zero-based) ranges over: the dimension itself, 1 beyond
// the last dimension, and for the last subscript the product of the dimensions that are left.
inline kwSize effective_extent(const kwSize *dims, kwSize ndims, kwSize k, kwSize nsubs) {
    if (k >= ndims) return 1;
    kwSize extent = dims[k];
    if (k + 1 == nsubs)
        for (kwSize d = nsubs; d < ndims; ++d) extent *= dims[d];
    return extent;
}

} // namespace ox
