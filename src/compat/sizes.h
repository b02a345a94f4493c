// Checked conversions between int and 64-bit sizes.
#pragma once
#include <core/alloc.h>
#include <errors/raise.h>

#include <climits>

namespace ox::compat {

// Deliberate: a negative size raises the same error as one that does not fit into an int.
inline kwSize wide(int n) {
    if (n < 0) oxErrMsg(FP64BITSIZE);
    return static_cast<kwSize>(n);
}
inline kwSize wide(kwSize n) { return n; }

inline int narrow(kwSize n) {
    if (n > INT_MAX) oxErrMsg(FP64BITSIZE);
    return static_cast<int>(n);
}

// A list of sizes widened for one call: count() sizes at get(), which is null for an empty or null
// list. A list of the usual length allocates nothing; a longer one is freed by a raise, too.
class WideList {
public:
    WideList(int count, const int *list) : count_(wide(count)) {
        if (!list || count_ == 0) return;
        if (count_ > few) {
            many_ = RawArray<kwSize>::make(count_);
            if (!many_) raise_out_of_memory();
        }
        list_ = many_ ? many_.get() : own_;
        for (kwSize k = 0; k < count_; ++k) list_[k] = wide(list[k]);
    }
    WideList(const WideList &) = delete;
    WideList &operator=(const WideList &) = delete;

    kwSize count() const { return count_; }
    const kwSize *get() const { return list_; }

private:
    static constexpr kwSize few = 8;
    kwSize count_;
    kwSize own_[few];
    RawArray<kwSize> many_;
    kwSize *list_ = nullptr;
};

} // namespace ox::compat
