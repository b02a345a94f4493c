// A growable vector of pointers in nested contexts: the mechanism of both lists.
#pragma once
#include <ox/memory.h>

#include <cstring>

namespace ox {

// Entries below start belong to enclosing contexts, the rest to the current one; a context is
// known by the index of its start. Nothing here owns what the entries point at.
template<class T, kwSize first_capacity> class ContextList {
public:
    // False when the vector cannot grow and the checked layer did not raise. Growth may raise, and
    // a raise may free this list's current context, so no cursor is cached across it.
    bool append(T *item) {
        if (top_ == capacity_ && !grow(oxMallocExCheck, oxReallocExCheck)) return false;
        items_[top_++] = item;
        return true;
    }
    // Makes the next append certain; false when the vector cannot grow. Never raises.
    bool has_room() { return top_ < capacity_ || grow(oxMallocEx, oxReallocEx); }
    // Takes the most recent entry for item off the current context; false when it is not there.
    bool remove(const void *item) {
        for (kwSize i = top_; i-- > start_;) {
            if (items_[i] != item) continue;
            if (i != --top_) std::memmove(items_ + i, items_ + i + 1, (top_ - i) * sizeof(T *));
            return true;
        }
        return false;
    }
    bool contains(const void *item) const {
        for (kwSize i = top_; i-- > 0;)
            if (items_[i] == item) return true;
        return false;
    }
    // Lowers top before it answers, so that a re-entrant caller never sees the entry again.
    T *pop() { return items_[--top_]; }

    int enter() {
        const int index = static_cast<int>(start_);
        start_ = top_;
        return index;
    }
    void restore(int index) { start_ = static_cast<kwSize>(index); }

    kwSize length() const { return top_; }
    kwSize start() const { return start_; }
    bool context_empty() const { return top_ == start_; }
    T *&operator[](kwSize i) { return items_[i]; }
    void lower_start() { --start_; }
    void shutdown() {
        oxFreeEx(items_);
        *this = ContextList();
    }

private:
    bool grow(void *(*allocate)(kwSize), void *(*reallocate)(void *, kwSize)) {
        const kwSize wanted = items_ ? 2 * capacity_ : first_capacity;
        void *block =
            items_ ? reallocate(items_, wanted * sizeof(T *)) : allocate(wanted * sizeof(T *));
        if (!block) return false;
        items_ = static_cast<T **>(block);
        capacity_ = wanted;
        return true;
    }

    T **items_ = nullptr;
    kwSize start_ = 0, top_ = 0, capacity_ = 0;
};

} // namespace ox
