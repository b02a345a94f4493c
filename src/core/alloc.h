// Raw memory for the library's own work: guarded blocks that are on no list.
#pragma once
#include <ox/memory.h>

#include <cstddef>
#include <utility>

namespace ox {

// Owns one raw block. Scratch memory must be raw: a raise frees every listed block before it
// unwinds, and a guard would free it again.
template<class T> class RawArray {
public:
    RawArray() = default;
    explicit RawArray(T *block) : p_(block) {}
    RawArray(RawArray &&o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
    RawArray &operator=(RawArray &&o) noexcept {
        if (this != &o) reset(std::exchange(o.p_, nullptr));
        return *this;
    }
    ~RawArray() { oxFreeEx(p_); }

    // Uninitialised, or zeroed; test the result with operator bool. n = 0 gives an empty guard.
    static RawArray make(kwSize n) {
        return RawArray(n > max_count() ? nullptr : static_cast<T *>(oxMallocEx(n * sizeof(T))));
    }
    static RawArray zeroed(kwSize n) {
        return RawArray(n ? static_cast<T *>(oxCallocEx(n, sizeof(T))) : nullptr);
    }
    // Grows or shrinks; false without memory, the block then as before. n must not be 0.
    bool resize(kwSize n) {
        void *p = n > max_count() ? nullptr : oxReallocEx(p_, n * sizeof(T));
        if (!p) return false;
        p_ = static_cast<T *>(p);
        return true;
    }

    explicit operator bool() const { return p_ != nullptr; }
    T *get() const { return p_; }
    T &operator[](kwSize i) const { return p_[i]; }
    T *release() { return std::exchange(p_, nullptr); }
    void reset(T *block = nullptr) { oxFreeEx(std::exchange(p_, block)); }

private:
    static constexpr kwSize max_count() { return ~kwSize{0} / sizeof(T); }
    T *p_ = nullptr;
};
using RawBlock = RawArray<unsigned char>;

// Whether the utility library's allocator (manager mode 2) serves the raw layer instead of the
// aligned heap; asked once per process.
bool uses_utility_allocator();

// Forgets the choice, for tests that change the manager's mode.
void reset_allocator_choice();

// The heap's own check of a block that enters or leaves the allocation list.
void check_block(void *block);

// Removes all listeners and the out-of-memory reaction, for tests of the state at load.
void reset_alloc_hooks();
void reset_out_of_memory_listener();

} // namespace ox
