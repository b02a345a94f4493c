// Which names are valid, and cutting long ones.
#include <containers/vel_names.h>
#include <errors/warn.h>

#include <cstring>

namespace ox {
namespace {

// ASCII only, whatever the process locale holds for a letter.
bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool is_name_character(char c) { return is_letter(c) || (c >= '0' && c <= '9') || c == '_'; }

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

bool oxIsValidVelName(const char *name) { return oxIsValidVelNamePart(name, std::strlen(name)); }

bool oxIsValidVelNamePart(const char *name, kwSize len) {
    if (!is_letter(name[0])) return false;
    for (kwSize k = 1; k < len; ++k)
        if (!is_name_character(name[k])) return false;
    return true;
}

// The warning may be raised; the name is then whole.
bool oxTruncateVelName(char *name) {
    if (std::strlen(name) <= max_name_length) return false;
    char cut[max_name_length + 1] = "";
    std::memcpy(cut, name, max_name_length);
    oxWarningMsgIdAndTxt("VELTRO:namelengthmaxexceeded",
                         "'%s'\n exceeds VELTRO's maximum name length of %d characters and has "
                         "been truncated to\n '%s'.",
                         name, static_cast<int>(max_name_length), cut);
    name[max_name_length] = 0;
    return true;
}

} // extern "C"
