// What the Fortran entry points are made of: argument conversion, texts and copies.
#pragma once
#include <compat/sizes.h>
#include <ox/types.h>

#include <ut.h>

#include <cstring>

namespace ox::fortran {

// An array as a Fortran argument: the caller's variable that holds its address.
using Handle = oxArray *const *;

inline oxComplexity complexity(const int *flag) { return *flag ? oxCOMPLEX : oxREAL; }
inline oxClassID class_id(const int *id) { return static_cast<oxClassID>(*id); }

// A Fortran text as a C string without its trailing blanks, for one call. Raises 18 without memory.
class Text {
public:
    Text(const char *fortran, kwSize length) : text_(utF2cstr(fortran, length)) {
        if (!text_) raise_out_of_memory();
    }
    ~Text() { utFree(text_); }
    Text(const Text &) = delete;
    Text &operator=(const Text &) = delete;
    const char *c_str() const { return text_; }
    operator const char *() const { return text_; }

private:
    char *text_;
};

// A Fortran array of texts of one length as C strings, for one call; a negative count is 0.
class Texts {
public:
    Texts(const char *fortran, int count, kwSize length);
    operator const char **() const { return list_.get(); }

private:
    RawArray<const char *> list_;
    RawArray<char> bytes_;
};

oxArray *create_string(const char *s, kwSize length);
// The elements of a char array as n bytes filled up with blanks: 0, or 1 when the text was cut or
// the array is null or not char.
int get_string(const oxArray *a, char *s, int n);

[[noreturn]] void raise_text(const char *s, kwSize length);
[[noreturn]] void raise_text(const char *id, kwSize id_length, const char *s, kwSize length);
// Raises the catalogue's text for a function that is no more; hint is the code of its last part.
[[noreturn]] oxArray *withdrawn(const char *function, const char *replacement, int32_t hint);

inline void copy(void *to, const void *from, kwSize size, kwSize n) {
    if (n > 0) std::memcpy(to, from, n * size);
}
// A blank-padded text of n bytes as a C string; `to` has room for n + 1.
void copy_text(char *to, const char *from, kwSize n);

// Fortran's complex numbers lie real, imaginary, real, ...; without pi only the real parts move.
template<class T> void split(T *pr, T *pi, const T *y, kwSize n) {
    for (kwSize k = 0; k < n; ++k) pr[k] = y[2 * k];
    if (!pi) return;
    for (kwSize k = 0; k < n; ++k) pi[k] = y[2 * k + 1];
}
template<class T> void interleave(T *y, const T *pr, const T *pi, kwSize n) {
    for (kwSize k = 0; k < n; ++k) y[2 * k] = pr[k];
    if (!pi) return;
    for (kwSize k = 0; k < n; ++k) y[2 * k + 1] = pi[k];
}

} // namespace ox::fortran
