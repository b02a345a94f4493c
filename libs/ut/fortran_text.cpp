// Fortran strings: blank-padded texts with a length instead of a terminator.
#include "ut/internal.h"

#include <cstring>

namespace ut {

char *copy_text(const char *text) {
    if (!text) text = "";
    const std::size_t bytes = std::strlen(text) + 1;
    auto *copy = static_cast<char *>(raw_allocate(bytes));
    if (copy) std::memcpy(copy, text, bytes);
    return copy;
}

} // namespace ut

char *utF2cstr(const char *fortran, size_t length) {
    while (length > 0 && fortran[length - 1] == ' ') --length;
    auto *text = static_cast<char *>(utMalloc(length + 1));
    if (!text) {
        ut::call_out_of_memory_listener();
        return nullptr;
    }
    if (length > 0) std::memcpy(text, fortran, length);
    text[length] = 0;
    return text;
}

void utC2fstr(const char *text, char *fortran, size_t length) {
    if (length == 0) return;
    size_t n = text ? std::strlen(text) : 0;
    if (n > length) n = length;
    if (n > 0) std::memcpy(fortran, text, n);
    std::memset(fortran + n, ' ', length - n);
}
