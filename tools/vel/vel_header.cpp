// The 64 bytes before the elements of a VEL file: a line for people, then the 8 bytes that a buffer
// stream begins with.
#include "vel_header.h"

#include "failure.h"

#include <algorithm>
#include <cstring>
#include <ox.h>
#include <string_view>

namespace vel {
namespace {

constexpr std::string_view line_start = "VEL data 1";
constexpr size_t line_size = 56; // blanks up to the line end

std::string quoted(std::string_view text) {
    std::string s(text.substr(0, line_start.size()));
    for (char &c : s)
        if (c < ' ' || c > '~') c = '.';
    return "'" + s + "'";
}

std::string hex(uint16_t x) {
    char digits[8];
    std::snprintf(digits, sizeof digits, "0x%04X", x);
    return digits;
}

} // namespace

std::array<char, header_size> make_header(Form form) {
    std::array<char, header_size> bytes{};
    std::fill_n(bytes.begin(), line_size, ' ');
    const std::string_view line = "VEL data 1, written by vel";
    std::copy(line.begin(), line.end(), bytes.begin());
    bytes[line_size - 1] = '\n';
    const uint16_t one = form.swapped ? 0x0100 : 1;
    uint16_t words[4] = {oiNATIVE_VERSION, oiNATIVE_INDICATOR, form.wide ? one : uint16_t{0}, 0};
    if (form.swapped) words[0] = oiSWAPPED_VERSION, words[1] = oiSWAPPED_INDICATOR;
    std::memcpy(bytes.data() + line_size, words, sizeof words);
    return bytes;
}

Form read_header(FILE *f, const std::string &name) {
    std::array<char, header_size> bytes{};
    const size_t n = fread(bytes.data(), 1, bytes.size(), f);
    const std::string_view text(bytes.data(), n);
    if (!text.starts_with(line_start))
        throw Failure(Exit::data, name + ": offset 0: expected '" + std::string(line_start) +
                                      "', found " + quoted(text) + ": this is no VEL file");
    if (n < header_size)
        throw Failure(Exit::data, name + ": offset " + std::to_string(n) +
                                      ": expected a header of 64 bytes, found the end of the file");
    uint16_t words[4];
    std::memcpy(words, bytes.data() + line_size, sizeof words);
    const bool native = words[0] == oiNATIVE_VERSION && words[1] == oiNATIVE_INDICATOR;
    if (!native && !(words[0] == oiSWAPPED_VERSION && words[1] == oiSWAPPED_INDICATOR))
        throw Failure(Exit::data,
                      name + ": offset 56: expected version 0x0100 and indicator 0x4F49 " +
                          "in one byte order, found " + hex(words[0]) + " and " + hex(words[1]));
    return {!native, words[2] != 0};
}

} // namespace vel
