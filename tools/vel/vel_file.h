// VEL files through the library's streams.
#pragma once
#include "failure.h"
#include "output_file.h"
#include "vel_header.h"
#include "walk.h"

#include <memory>
#include <ox.h>
#include <string>
#include <vector>

namespace vel {

struct StreamDeleter {
    void operator()(oiStreamRec_tag *s) const { oiDisposeFileStream(s); }
};
using Stream = std::unique_ptr<oiStreamRec_tag, StreamDeleter>;

// Writes variables one after the other. The file appears with commit.
class VelWriter {
public:
    VelWriter(const std::string &path, Form form, bool compress);
    void put(const std::string &name, const oxArray *a); // throws Failure
    void commit() { out_.commit(); }

private:
    std::string path_;
    OutputFile out_;
    Stream stream_;
};

// Reads variables; arrays are temporaries of the current context.
class VelReader {
public:
    explicit VelReader(const std::string &path);
    const std::vector<Variable> &variables() const { return variables_; }
    oxArray *read(const Variable &v); // throws Failure
    // The variable of that name; throws Failure naming those that there are.
    const Variable &find(const std::string &name) const;

private:
    std::string path_;
    InputFile in_;
    Form form_;
    std::vector<Variable> variables_;
};

// What a place such as "x", "s.a{3}", or "" (the only variable) in a VEL file holds; null for an
// empty slot. It belongs to the current context, or to what it is a part of.
const oxArray *read_place(const std::string &file, const std::string &place);

// Names of variables are at most 63 letters, digits and underscores, a letter first.
void check_name(const std::string &name, Exit status = Exit::usage); // throws Failure

} // namespace vel
