// Pointers that hold arrays and strings across calls and let go of them when they end.
#ifndef OX_PROTECTED_HPP
#define OX_PROTECTED_HPP

#include <ox/types.h>

// A pointer with an ownership flag. Policy supplies static T *copy(T *) for copies of an owner and
// static void free(T *) for an owner's end.
template<class T, class Policy> class Protected_cptr {
public:
    // Null; p, owned or not; as o.
    Protected_cptr() = default;
    Protected_cptr(T *p, bool owns) : owns_(owns), p_(p) {}
    Protected_cptr(const Protected_cptr &o) : owns_(o.owns_), p_(o.duplicate()) {}
    ~Protected_cptr() { call_delete_fn(); }

    // An owner's pointer is copied through the policy. What this one owned is freed first; two
    // owners of one pointer stay as they are.
    Protected_cptr &operator=(const Protected_cptr &o) {
        if (this == &o || (p_ == o.p_ && owns_ && o.owns_)) return *this;
        if (p_ != o.p_) call_delete_fn();
        owns_ = o.owns_;
        p_ = o.duplicate();
        return *this;
    }
    // Takes a pointer over; the one that is already held changes nothing.
    Protected_cptr &operator=(T *p) {
        if (p == p_) return *this;
        call_delete_fn();
        owns_ = true;
        p_ = p;
        return *this;
    }

    // The pointer, which stays here.
    T *get() const { return p_; }
    operator T *() const { return p_; }
    T *operator->() const { return p_; }

    // Hands the pointer to the caller.
    T *Unprotect() {
        T *p = p_;
        p_ = nullptr;
        owns_ = false;
        return p;
    }
    // Frees what is owned; the pointer is null afterwards.
    void call_delete_fn() {
        T *p = p_;
        p_ = nullptr;
        if (owns_) Policy::free(p);
    }

protected:
    // For classes that are made from this one.
    bool owns() const { return owns_; }
    void replace(T *p) { p_ = p; } // the owner's pointer became another one

private:
    T *duplicate() const { return owns_ ? Policy::copy(p_) : p_; }

    bool owns_ = false;
    T *p_ = nullptr;
};

// Copies are references; the end of an owner drops one.
class OX_API Protected_oxArray_helper {
public:
    // One reference more; one less.
    static oxArray *copy(oxArray *a);
    static void free(oxArray *a);
};

// Holds an array; one that it owns is no temporary any more (its scope becomes 0).
class OX_API Protected_oxArray : public Protected_cptr<oxArray_tag, Protected_oxArray_helper> {
public:
    // As Protected_cptr's; an owner ends the array's life as a temporary.
    Protected_oxArray() = default;
    Protected_oxArray(oxArray *a, bool owns);
    Protected_oxArray(const Protected_oxArray &o);
    Protected_oxArray &operator=(const Protected_oxArray &o);
    Protected_oxArray &operator=(oxArray *a);

    // Makes the held array writable (it may become another header) and returns it; null without
    // memory, the held array then as before.
    oxArray *Unshare();
    // Hands the array to the caller, as a temporary again if the protection had ended that.
    oxArray *Unprotect();
    // A temporary that shares the held array's data.
    oxArray *Unprotect_copy() const;

private:
    void myLocalize();
};

#endif
