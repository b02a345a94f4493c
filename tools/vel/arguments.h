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
oxArray *parse_argument(const std::string &word, const ReadOptions &options = {});

extern const char *const argument_help;

} // namespace vel
