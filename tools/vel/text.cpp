// UTF-8 text and char arrays. The library's creators read the local code page, and its readers end
// at a NUL, so text crosses as UTF-16.
#include "text.h"

#include "failure.h"

#include <limits>
#include <ut.h>

namespace vel {
namespace {

void append(std::string &out, char32_t c) {
    const auto byte = [&](char32_t b) { out += static_cast<char>(b); };
    if (c < 0x80) return byte(c);
    if (c < 0x800) return byte(0xC0 | c >> 6), byte(0x80 | (c & 0x3F));
    if (c < 0x10000)
        byte(0xE0 | c >> 12);
    else
        byte(0xF0 | c >> 18), byte(0x80 | (c >> 12 & 0x3F));
    byte(0x80 | (c >> 6 & 0x3F)), byte(0x80 | (c & 0x3F));
}

} // namespace

oxArray *make_text(std::string_view utf8) {
    if (utf8.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max()))
        throw Failure(Exit::data, "a text of 2^31 bytes and more cannot be converted");
    std::u16string units(utf8.size(), u'\0'); // never more units than bytes
    auto n = static_cast<int32_t>(units.size());
    utf8_to_utf16_n(units.data(), &n, utf8.data(), static_cast<int32_t>(utf8.size()));
    return oxCreateStringFromNChars_UTF16(units.data(), static_cast<size_t>(n));
}

std::string text_of(const oxArray *a, size_t first, size_t count, size_t step) {
    const oxChar *units = oxGetChars(a);
    std::string out;
    for (size_t k = 0; k < count; ++k) {
        char32_t c = units[first + k * step];
        const char32_t next = k + 1 < count ? units[first + (k + 1) * step] : 0;
        if (c >= 0xD800 && c < 0xDC00 && next >= 0xDC00 && next < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (next - 0xDC00);
            ++k;
        } else if (c >= 0xD800 && c < 0xE000) {
            c = 0xFFFD; // half a pair
        }
        append(out, c);
    }
    return out;
}

std::string printable(std::string text) {
    for (char &c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '.';
    return text;
}

std::string text_of(const oxArray *a) { return text_of(a, 0, oxGetNumberOfElements(a), 1); }

std::string listed(const std::vector<std::string> &names) {
    std::string text;
    for (const std::string &name : names) text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
}

} // namespace vel
