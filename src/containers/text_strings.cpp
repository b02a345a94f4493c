// The string of a char array in new blocks and as std::string, and copies of C strings.
#include <containers/encoding.h>
#include <ox/text.hpp>

#include <cstring>
#include <ut.hpp>

namespace ox {
namespace {

using Allocator = void *(*)(kwSize bytes);

char *new_c_str(const oxArray *a, const Encoding &e, Allocator alloc) {
    if (!a->is_char()) return nullptr;
    const ut::utf16_out out(a->get_chars(), a->get_string_length(), e.name);
    auto *block = static_cast<char *>(alloc(out.length() + 1));
    if (!block) return nullptr;
    out.convert(block);
    block[out.length()] = 0;
    return block;
}

std::string new_std_string(const oxArray *a, const Encoding &e) {
    std::string s;
    if (a->is_char()) ut::utf16_out(a->get_chars(), a->get_string_length(), e.name).append_to(s);
    return s;
}

template<class C> C *copy_block(const C *str, kwSize bytes, Allocator alloc) {
    auto *block = static_cast<C *>(alloc(bytes));
    return block ? static_cast<C *>(std::memcpy(block, str, bytes)) : nullptr;
}

} // namespace
} // namespace ox

using namespace ox;

char *oxArray_tag::create_c_str(void *(*alloc)(kwSize)) const {
    return new_c_str(this, local_encoding, alloc);
}

char *oxArray_tag::create_utf8_c_str(void *(*alloc)(kwSize)) const {
    return new_c_str(this, utf8_encoding, alloc);
}

oxChar *oxArray_tag::create_utf16_c_str(void *(*alloc)(kwSize)) const {
    if (!is_char()) return nullptr;
    const auto n = static_cast<kwSize>(get_string_length());
    auto *block = static_cast<oxChar *>(alloc(n * sizeof(oxChar) + sizeof(oxChar)));
    if (!block) return nullptr;
    if (n > 0) std::memcpy(block, get_chars(), n * sizeof(oxChar));
    block[n] = 0;
    return block;
}

std::string oxArray_tag::to_string() const { return new_std_string(this, local_encoding); }
std::string oxArray_tag::to_utf8_string() const { return new_std_string(this, utf8_encoding); }

std::string oxArrayToStdString(const oxArray *a) { return a ? a->to_string() : std::string(); }
std::string oxArrayToUTF8StdString(const oxArray *a) {
    return a ? a->to_utf8_string() : std::string();
}

#if defined(__ELF__) && _GLIBCXX_USE_CXX11_ABI
// The same under the names that compilers without ABI tags look for.
#define UNTAGGED(name, untagged, tagged)                                                           \
    extern "C" OX_API decltype(oxArrayToStdString) name __asm__(untagged)                          \
        __attribute__((alias(tagged)));
UNTAGGED(untagged_local, "_Z18oxArrayToStdStringPK11oxArray_tag",
         "_Z18oxArrayToStdStringB5cxx11PK11oxArray_tag")
UNTAGGED(untagged_utf8, "_Z22oxArrayToUTF8StdStringPK11oxArray_tag",
         "_Z22oxArrayToUTF8StdStringB5cxx11PK11oxArray_tag")
#endif

extern "C" {

char *oxCreateCStrFromArray(const oxArray *a, void *(*alloc)(kwSize)) {
    return a ? a->create_c_str(alloc) : nullptr;
}
char *oxCreateUTF8CStrFromArray(const oxArray *a, void *(*alloc)(kwSize)) {
    return a ? a->create_utf8_c_str(alloc) : nullptr;
}
oxChar *oxCreateUTF16CStrFromArray(const oxArray *a, void *(*alloc)(kwSize)) {
    return a ? a->create_utf16_c_str(alloc) : nullptr;
}

char *oxArrayToString(const oxArray *a) { return oxCreateCStrFromArray(a, oxMallocEx); }
char *oxArrayToString_UTF8(const oxArray *a) { return oxCreateUTF8CStrFromArray(a, oxMallocEx); }
oxChar *oxArrayToString_UTF16(const oxArray *a) {
    return oxCreateUTF16CStrFromArray(a, oxMallocEx);
}

char *oxCopyString(const char *str, void *(*alloc)(kwSize)) {
    return str ? copy_block(str, std::strlen(str) + 1, alloc) : nullptr;
}

char *oxCopyStringUTF8(const char *str, void *(*alloc)(kwSize)) { return oxCopyString(str, alloc); }

// Deliberate: the request counts units where it says bytes; callers size their blocks by it.
oxChar *oxCopyStringUTF16(const oxChar *str, void *(*alloc)(kwSize)) {
    if (!str) return nullptr;
    auto *block = static_cast<oxChar *>(alloc(utf16_strlen(str) + 1));
    return block ? utf16_strcpy(block, str) : nullptr;
}

} // extern "C"

namespace {

// Room for the units behind a request that counts them as bytes.
void *units_block(kwSize units) { return oxMallocEx(units * sizeof(oxChar)); }

} // namespace

char *Protected_oxString_helper::copy(const char *str) { return oxCopyString(str, oxMallocEx); }
void Protected_oxString_helper::free(char *str) { oxFreeEx(str); }
char *Protected_oxString_helper::toString(const oxArray *a) { return oxArrayToString(a); }

char *Protected_oxStringUTF8_helper::copy(const char *str) {
    return oxCopyStringUTF8(str, oxMallocEx);
}
void Protected_oxStringUTF8_helper::free(char *str) { oxFreeEx(str); }
char *Protected_oxStringUTF8_helper::toString(const oxArray *a) { return oxArrayToString_UTF8(a); }

oxChar *Protected_oxStringUTF16_helper::copy(const oxChar *str) {
    return oxCopyStringUTF16(str, units_block);
}
void Protected_oxStringUTF16_helper::free(oxChar *str) { oxFreeEx(str); }
oxChar *Protected_oxStringUTF16_helper::toString(const oxArray *a) {
    return oxArrayToString_UTF16(a);
}
