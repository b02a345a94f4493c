// The 64 bytes before the elements of a VEL file: a line for people, then the 8 bytes that a buffer
// stream begins with.
#include "vel_header.h"

#include "failure.h"

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

std::string make_header(Form form) {
    std::string line = "VEL data 1, written by vel";
    line.resize(line_size, ' ');
    line.back() = '\n';
    const uint16_t one = form.swapped ? 0x0100 : 1;
    uint16_t words[4] = {oiNATIVE_VERSION, oiNATIVE_INDICATOR, form.wide ? one : uint16_t{0}, 0};
    if (form.swapped) words[0] = oiSWAPPED_VERSION, words[1] = oiSWAPPED_INDICATOR;
    return (form.bare ? "" : line) + std::string(reinterpret_cast<char *>(words), sizeof words);
}

bool is_bare(const std::string &path) { return path.ends_with(".ser"); }

Form read_header(FILE *f, const std::string &name) {
    Form form;
    form.bare = is_bare(name);
    char bytes[64];
    const size_t n = fread(bytes, 1, form.header_size(), f);
    const std::string_view text(bytes, n);
    if (!form.bare && !text.starts_with(line_start))
        throw Failure(Exit::data, name + ": offset 0: expected '" + std::string(line_start) +
                                      "', found " + quoted(text) + ": this is no VEL file");
    if (n < form.header_size())
        throw Failure(Exit::data,
                      name + ": offset " + std::to_string(n) + ": expected a header of " +
                          std::to_string(form.header_size()) + " bytes, found the end of the file");
    uint16_t words[4];
    std::memcpy(words, bytes + n - sizeof words, sizeof words);
    const bool native = words[0] == oiNATIVE_VERSION && words[1] == oiNATIVE_INDICATOR;
    if (!native && !(words[0] == oiSWAPPED_VERSION && words[1] == oiSWAPPED_INDICATOR))
        throw Failure(Exit::data, name + ": offset " + std::to_string(n - sizeof words) +
                                      ": expected version 0x0100 and indicator 0x4F49 in one " +
                                      "byte order, found " + hex(words[0]) + " and " +
                                      hex(words[1]));
    form.swapped = !native;
    form.wide = words[2] != 0;
    return form;
}

} // namespace vel
