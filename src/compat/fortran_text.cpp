// Texts between Fortran and the library: blank-padded with a length on one side, NUL-terminated on
// the other.
#include <compat/fortran.h>
#include <ox/classes.h>
#include <ox/text.h>

#include <algorithm>

namespace ox::fortran {
namespace {

kwSize without_blanks(const char *s, kwSize length) {
    while (length > 0 && s[length - 1] == ' ') --length;
    return length;
}

// What a "%.*s" of that many bytes takes; raising and warning cut texts far below it.
int precision(const char *s, kwSize length) {
    return static_cast<int>(std::min<kwSize>(without_blanks(s, length), 1 << 20));
}

} // namespace

Texts::Texts(const char *fortran, int count, kwSize length) {
    if (count <= 0) return;
    const auto n = static_cast<kwSize>(count);
    list_ = RawArray<const char *>::make(n);
    bytes_ = RawArray<char>::make(n * (length + 1));
    if (!list_ || !bytes_) raise_out_of_memory();
    for (kwSize k = 0; k < n; ++k) {
        const char *from = fortran + k * length;
        const kwSize used = without_blanks(from, length);
        char *to = bytes_.get() + k * (length + 1);
        copy(to, from, 1, used);
        to[used] = '\0';
        list_[k] = to;
    }
}

oxArray *create_string(const char *s, kwSize length) {
    return oxCreateStringFromNChars_730(s, without_blanks(s, length));
}

int get_string(const oxArray *a, char *s, int n) {
    if (!a || !oxIsChar(a)) return 1;
    const int count = compat::narrow(oxGetNumberOfElements(a));
    const kwSize room = compat::wide(n);
    std::memset(s, ' ', room); // the text may end early, at a NUL
    oxGetNChars_730(a, s, std::min<kwSize>(room, static_cast<kwSize>(count)));
    return count > n ? 1 : 0;
}

void raise_text(const char *s, kwSize length) { oxErrMsgTxt("%.*s", precision(s, length), s); }

void raise_text(const char *id, kwSize id_length, const char *s, kwSize length) {
    char name[256]; // on the stack: the raise would pass over the owner of a block
    utSNprintf(name, sizeof name, "%.*s", precision(id, id_length), id);
    oxErrMsgIdAndTxt(name, "%.*s", precision(s, length), s);
}

oxArray *withdrawn(const char *function, const char *replacement, int32_t hint) {
    ut_error(UT_MSG_FUNCTION_OBSOLETE, "fortran", __LINE__, function, replacement,
             ut_get_message(hint));
}

void copy_text(char *to, const char *from, kwSize n) { std::strcpy(to, Text(from, n)); }

} // namespace ox::fortran
