// VEL files through the library's streams.
#include "vel_file.h"

#include "paths.h"
#include "text.h"

#include <algorithm>

namespace vel {
namespace {

// Files grow by themselves.
int32_t reserve_nothing(oiStreamRec_tag *, kwSize, kwSize *, kwSize *) { return oiSUCCESS; }

Stream open_stream(FILE *f, Form form, uint16_t options) {
    if (form.wide) options |= oiWIDE;
    return Stream(oiCreateFileStream(f, form.swapped ? oiSWAPPED_VERSION : oiNATIVE_VERSION,
                                     form.swapped ? oiSWAPPED_INDICATOR : oiNATIVE_INDICATOR,
                                     reserve_nothing, 0, nullptr, nullptr, nullptr, nullptr,
                                     options));
}

const char *reason(int32_t status) {
    switch (status) {
    case oiREFUSED:
        return "no memory, or a kind of element that is not accepted";
    case oiSHORT_WRITE:
        return "the element could not be written in full";
    case oiSHORT_READ:
        return "the data end too early";
    default:
        return "the element is malformed";
    }
}

} // namespace

VelWriter::VelWriter(const std::string &path, Form form, bool compress) : path_(path), out_(path) {
    const auto header = make_header(form);
    out_.write(header.data(), header.size());
    stream_ = open_stream(out_.file(), form, compress ? oiCOMPRESS : 0);
    if (!stream_) throw Failure(Exit::io, path + ": no memory for a stream");
}

void VelWriter::put(const std::string &name, const oxArray *a) {
    oiItem_tag item{};
    item.type = oiMATRIX;
    item.data = const_cast<oxArray *>(a);
    item.name = reinterpret_cast<uintptr_t>(name.c_str());
    if (const int32_t status = oiPutItemAtCurrentOffsetWrapper(stream_.get(), &item))
        throw Failure(Exit::io, path_ + ": " + name + ": " + reason(status));
}

VelReader::VelReader(const std::string &path)
    : path_(path), in_(path), form_(read_header(in_.file(), path)) {
    try {
        Walker walker(in_, form_);
        for (Variable v; walker.next(v);) variables_.push_back(v);
    } catch (const Fault &fault) {
        throw Failure(Exit::data, path + ": " + fault.sentence());
    }
}

oxArray *VelReader::read(const Variable &v) {
    oiItem_tag item{};
    oiFseek64(in_.file(), static_cast<int64_t>(v.offset), SEEK_SET);
    const Stream stream = open_stream(in_.file(), form_, 0);
    const int32_t status = stream ? oiGetCurrentItem(stream.get(), &item) : oiREFUSED;
    if (status != oiSUCCESS || item.type != oiMATRIX || !item.data)
        throw Failure(Exit::data, path_ + ": offset " + std::to_string(v.offset) + ": " + v.path +
                                      ": " + reason(status == oiSUCCESS ? oiBAD_ELEMENT : status));
    return static_cast<oxArray *>(item.data);
}

const Variable &VelReader::find(const std::string &name) const {
    if (name.empty() && variables_.size() == 1) return variables_[0];
    std::vector<std::string> names;
    for (const Variable &v : variables_) {
        if (v.path == name) return v;
        names.push_back(v.path);
    }
    throw Failure(Exit::data, path_ +
                                  (name.empty() ? ": a variable must be named"
                                                : ": there is no variable '" + name + "'") +
                                  "; the file holds " + listed(names));
}

const oxArray *read_place(const std::string &file, const std::string &place) {
    VelReader reader(file);
    const size_t end = std::min(place.find_first_of(".({"), place.size());
    const Variable &v = reader.find(place.substr(0, end));
    return follow(reader.read(v), std::string_view(place).substr(end), file, v.path);
}

void check_name(const std::string &name, Exit status) {
    if (!oxIsValidVelName(name.c_str()))
        throw Failure(status, "'" + name + "' is no name for a variable: at most 63 letters, " +
                                  "digits and underscores, a letter first");
}

} // namespace vel
