// The rows of a char matrix as lists of strings.
#include <containers/encoding.h>
#include <core/alloc.h>

#include <ut.hpp>

namespace ox {
namespace {

using Allocator = void *(*)(kwSize bytes);
using Release = void (*)(void *block);

// Copies one row, NUL-terminated, into n + 1 units.
void gather(oxChar *row, const oxArray *a, kwSize m, kwSize i, kwSize n) {
    const oxChar *src = data<oxChar>(a);
    for (kwSize j = 0; j < n; ++j) row[j] = src[i + j * m];
    row[n] = 0;
}

// The row with its NULs, the last one included.
char *row_bytes(const Encoding &e, const oxChar *row, kwSize n, Allocator alloc) {
    const ut::utf16_out out(row, converter_length(n + 1), e.name);
    auto *block = static_cast<char *>(alloc(out.length() + 1));
    if (!block) return nullptr;
    out.convert(block);
    block[out.length()] = 0;
    return block;
}

oxChar *row_units(const oxChar *row, kwSize n, Allocator alloc) {
    auto *block = static_cast<oxChar *>(alloc((n + 1) * sizeof(oxChar)));
    return block ? utf16_strncpy(block, row, n + 1) : nullptr;
}

// Calls make(row, n) for each row; a row that fails stays null, or if `all` takes the list with it.
template<class C, class Make>
C **make_list(const oxArray *a, Allocator alloc, Release release, bool all, Make &&make) {
    if (!a || !a->is_char()) return nullptr;
    const kwSize m = rows(a), n = a->num.pdata ? cols(a) : 0;
    auto row = RawArray<oxChar>::make(n + 1); // a guard: alloc may raise
    auto **list = row ? static_cast<C **>(alloc((m + 1) * sizeof(C *))) : nullptr;
    if (!list) return nullptr;
    list[m] = nullptr;
    for (kwSize i = 0; i < m; ++i) {
        gather(row.get(), a, m, i, n);
        list[i] = make(row.get(), n);
        if (list[i] || !all) continue;
        while (i > 0) release(list[--i]);
        release(list);
        return nullptr;
    }
    return list;
}

char **byte_list(const Encoding &e, const oxArray *a, Allocator alloc, Release release) {
    if (a && a->is_char()) converter_length(cols(a) + 1); // raises while nothing is allocated
    return make_list<char>(a, alloc, release, false, [&](const oxChar *row, kwSize n) {
        return row_bytes(e, row, n, alloc);
    });
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

char **oxCreateCStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                   void (*release)(void *)) {
    return byte_list(local_encoding, a, alloc, release);
}

char **oxCreateUTF8CStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                       void (*release)(void *)) {
    return byte_list(utf8_encoding, a, alloc, release);
}

oxChar **oxCreateUTF16CStrArrayFromMatrix(const oxArray *a, void *(*alloc)(kwSize),
                                          void (*release)(void *)) {
    return make_list<oxChar>(a, alloc, release, true,
                             [&](const oxChar *row, kwSize n) { return row_units(row, n, alloc); });
}

char **oxCharMatrixToStrings(const oxArray *a) {
    return oxCreateCStrArrayFromMatrix(a, oxMallocEx, oxFreeEx);
}
char **oxCharMatrixToStrings_UTF8(const oxArray *a) {
    return oxCreateUTF8CStrArrayFromMatrix(a, oxMallocEx, oxFreeEx);
}
oxChar **oxCharMatrixToStrings_UTF16(const oxArray *a) {
    return oxCreateUTF16CStrArrayFromMatrix(a, oxMallocEx, oxFreeEx);
}

} // extern "C"
