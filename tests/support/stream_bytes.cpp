// Streams in tests.
#include <containers/check_array.h>
#include <support/stream_bytes.h>

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <stdexcept>

namespace ox::test {
namespace {

constinit std::size_t asked = 0, failing = 0;
constinit bool lost = false;

bool strikes() { return ++asked == failing; }

size_t read_less(void *dst, size_t size, size_t n, FILE *f) {
    return fread(dst, size, strikes() && n > 0 ? n - 1 : n, f);
}
size_t write_less(const void *src, size_t size, size_t n, FILE *f) {
    const bool loses = strikes() && n > 0;
    lost = lost || loses;
    return fwrite(src, size, n - loses, f);
}
int seek_or_not(FILE *f, int64_t offset, int whence) {
    return strikes() ? -1 : oiFseek64(f, offset, whence);
}
int64_t tell_or_not(FILE *f) { return strikes() ? -1 : oiFtell64(f); }

int32_t room_or_not(oiStreamRec_tag *, kwSize n, kwSize *offset, kwSize *capacity) {
    *capacity = *offset + n;
    return strikes() ? oiREFUSED : oiSUCCESS;
}

} // namespace

Bytes hex(const std::string &text) {
    Bytes out;
    for (std::size_t k = 0; (k = text.find_first_not_of(" \n", k)) < text.size();) {
        const bool zeros = text[k] == 'z', note = text[k] == '(';
        if (note) {
            k = text.find(')', k) + 1;
            continue;
        }
        const std::string two = text.substr(k + zeros, 2);
        out.resize(out.size() + (zeros ? std::stoul(two) : 1));
        if (!zeros) out.back() = static_cast<unsigned char>(std::stoul(two, nullptr, 16));
        k += zeros ? 3 : 2;
    }
    return out;
}

std::string to_hex(const Bytes &bytes) {
    std::string out;
    char two[4];
    for (std::size_t k = 0; k < bytes.size(); ++k) {
        std::snprintf(two, sizeof two, "%02x", bytes[k]);
        out += two;
        out += k % 16 == 15 ? '\n' : ' ';
    }
    return out;
}

Bytes joined(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes cut(const Bytes &bytes, std::size_t from, std::size_t to) {
    return Bytes(bytes.data() + from, bytes.data() + std::min(to, bytes.size()));
}

Bytes patched(Bytes bytes, std::size_t at, const Bytes &patch) {
    std::copy(patch.begin(), patch.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    return bytes;
}

std::vector<Record> records(const char *file) {
    std::ifstream in(std::string(OX_SOURCE_DIR) + "/tests/" + file);
    std::vector<Record> all;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == ' ') {
            all.back().bytes = joined(all.back().bytes, hex(line));
            continue;
        }
        Record &r = all.emplace_back();
        for (std::size_t at = 0, end; at <= line.size(); at = end + 3) {
            end = std::min(line.find(" | ", at), line.size());
            r.fields.push_back(line.substr(at, end - at));
        }
    }
    if (all.empty()) throw std::invalid_argument(file);
    return all;
}

void expect_well_formed(const oxArray *a) {
    const Finding found = a ? check_array(a) : Finding{};
    EXPECT_FALSE(found) << check_rule_text(found.rule);
}

Bytes bytes_of(const oxArray *a) {
    const auto *p = static_cast<const unsigned char *>(oxGetData(a));
    return Bytes(p, p + oxGetNumberOfElements(a));
}

StreamForm form_of(const std::string &words, Carrier carrier) {
    static constexpr const char *carriers[] = {"buffer: ", "file: ", "sequential: "};
    const auto option = [&](const char *word, int bits) {
        return words.find(word) < words.size() ? bits : 0;
    };
    const int options =
        option("wide", oiWIDE) | option("compressed", oiCOMPRESS) | option("option16", oiOPTION16);
    return {carrier, option("swapped", 1) == 1, static_cast<uint16_t>(options),
            carriers[static_cast<int>(carrier)] + words};
}

Bytes carried(const StreamForm &form, const Bytes &elements) {
    if (form.carrier != Carrier::buffer) return elements;
    Bytes prefix = hex(form.swapped ? "01004f4900000000" : "0001494f00000000");
    prefix[form.swapped ? 5 : 4] = (form.options & oiWIDE) != 0;
    return joined(prefix, elements);
}

TestStream::TestStream(StreamForm form, const Bytes &contents) : form_(form) {
    const uint16_t version = form.swapped ? oiSWAPPED_VERSION : 0;
    const uint16_t indicator = form.swapped ? oiSWAPPED_INDICATOR : 0;
    if (form.carrier == Carrier::buffer) {
        void *buffer = oxMallocEx(contents.size());
        if (buffer) std::memcpy(buffer, contents.data(), contents.size());
        s_ = oiCreateBufferStream(buffer, version, indicator, nullptr, nullptr, nullptr,
                                  contents.size(), form.options);
        if (!s_) oxFreeEx(buffer);
        return;
    }
    file_ = std::tmpfile();
    if (!contents.empty()) fwrite(contents.data(), 1, contents.size(), file_);
    rewind(file_);
    const auto read = form.breaks ? read_less : nullptr;
    const auto write = form.breaks ? write_less : nullptr;
    s_ = form.carrier == Carrier::file
             ? oiCreateFileStream(file_, version, indicator, room_or_not, 0, read, write,
                                  form.breaks ? seek_or_not : nullptr,
                                  form.breaks ? tell_or_not : nullptr, form.options)
             : oiCreateSequentialStream(file_, version, indicator, room_or_not, 0, read, write,
                                        form.options);
}

TestStream::~TestStream() {
    if (form_.carrier == Carrier::buffer)
        oiDisposeBufferStream(s_);
    else
        oiDisposeFileStream(s_);
    if (file_) fclose(file_);
}

Bytes TestStream::contents() const {
    if (form_.carrier == Carrier::buffer) {
        const auto *p = static_cast<const unsigned char *>(s_->handle);
        return p ? Bytes(p, p + std::max(s_->capacity, s_->offset)) : Bytes();
    }
    const long at = ftell(file_);
    fseek(file_, 0, SEEK_END);
    Bytes out(static_cast<std::size_t>(ftell(file_)));
    rewind(file_);
    if (fread(out.data(), 1, out.size(), file_) != out.size()) out.clear();
    fseek(file_, at, SEEK_SET);
    return out;
}

int32_t TestStream::put(const oxArray *a, const char *name) {
    const oiItem_tag item = {oiMATRIX, 0, const_cast<oxArray *>(a),
                             reinterpret_cast<uintptr_t>(name)};
    return oiPutItemAtCurrentOffsetWrapper(s_, &item);
}

int32_t TestStream::put(int32_t type, const Bytes &data) {
    const oiItem_tag item = {type, data.size(), const_cast<unsigned char *>(data.data()), 0};
    return oiPutItem(s_, &item, nullptr);
}

BrokenCarrier::BrokenCarrier(std::size_t n) {
    asked = 0;
    failing = n;
    lost = false;
}
BrokenCarrier::~BrokenCarrier() { failing = 0; }
std::size_t BrokenCarrier::calls() { return asked; }
bool BrokenCarrier::lost_bytes() { return lost; }

} // namespace ox::test
