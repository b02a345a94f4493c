// What the words of a command line mean as arrays.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

struct ReadOptions {
    bool force = false; // read sparse files however many columns they declare
};

// A temporary of the current context for one of the forms that argument_help lists. Throws Failure
// with a sentence for anything else.
const oxArray *parse_argument(const std::string &word, const ReadOptions &options = {});

// The parts of FILE.vel:PLACE; false for words of another form.
bool split_place(const std::string &word, std::string &file, std::string &place);

extern const char *const argument_help;

} // namespace vel
