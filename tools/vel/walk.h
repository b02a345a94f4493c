// Walking the elements of a VEL file by their tags, without the library's reader: where things lie,
// and the first thing that is wrong.
#pragma once
#include "input_file.h"
#include "vel_header.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vel {

// What a variable or a value inside of one says of itself, and where it lies.
struct Variable {
    std::string path; // name, then the steps to it
    std::string class_name;
    std::vector<uint64_t> size;
    bool complex = false, sparse = false, compressed = false, empty_slot = false;
    std::optional<uint64_t> stored_elements; // of a sparse array
    uint64_t offset = 0; // of the tag, in the file; inside a compressed element in what it holds
    uint64_t stored = 0; // bytes with tag and padding
    uint64_t bytes = 0;  // the same without compression
};

struct Fault {
    uint64_t offset;
    std::string path, what;
    bool inflated = false; // the offset counts in the decompressed element
    std::string sentence() const;
};

struct Limits {
    uint64_t bytes = ~uint64_t{0}; // of one variable, decompressed
    size_t depth = 2000;           // of nesting
};

using Visit = std::function<void(const Variable &)>;

// Goes from element to element. Both steps read headers only and are quick for files of any size;
// walking a variable in full also visits what is in cells and structs, and checks every rule.
class Walker {
public:
    Walker(const InputFile &in, Form form, const Limits &limits = {});
    // The next variable; false at the end of the file. Throws Fault.
    bool next(Variable &v);
    // A whole variable, outermost first. Throws Fault.
    void walk(const Variable &v, const Visit &visit);

private:
    const InputFile &in_;
    Form form_;
    Limits limits_;
    uint64_t next_;
};

} // namespace vel
