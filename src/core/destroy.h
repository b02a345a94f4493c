// Releasing what a header holds.
#pragma once
#include <core/array.h>

#include <utility>

namespace ox {

// Leaves the ring, frees the 32-bit dimension cache, and for every class but unknown what the
// elements own and the data blocks (unless private). The header stays, with stale words.
void release_contents(oxArray *a);

// Frees the 32-bit dimension cache, if any.
void free_dim32(oxArray *a);

// Owns an array that is on no list yet, until release(). Never use it for listed arrays: leaving
// their context destroys them.
class ArrayGuard {
public:
    explicit ArrayGuard(oxArray *a = nullptr) : a_(a) {}
    ArrayGuard(const ArrayGuard &) = delete;
    ArrayGuard &operator=(const ArrayGuard &) = delete;
    ~ArrayGuard() { oxDestroyArray(a_); }
    oxArray *get() const { return a_; }
    oxArray *operator->() const { return a_; }
    explicit operator bool() const { return a_ != nullptr; }
    oxArray *release() { return std::exchange(a_, nullptr); }
    void reset(oxArray *a = nullptr) { oxDestroyArray(std::exchange(a_, a)); }

private:
    oxArray *a_;
};

} // namespace ox
