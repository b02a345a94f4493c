// Streams in tests: bytes as hex text, streams over every carrier in every form, and a carrier that
// breaks.
#pragma once
#include <ox.h>

#include <cstdio>
#include <string>
#include <vector>

namespace ox::test {

using Bytes = std::vector<unsigned char>;

// "0e 00 (comment) 38" without its comments and spaces; "z08" stands for 8 zero bytes.
Bytes hex(const std::string &text);
std::string to_hex(const Bytes &bytes);
Bytes joined(Bytes a, const Bytes &b);
// The bytes from one offset up to another.
Bytes cut(const Bytes &bytes, std::size_t from, std::size_t to = SIZE_MAX);
// Replaces bytes at an offset.
Bytes patched(Bytes bytes, std::size_t at, const Bytes &patch);
// The bytes of a uint8 array.
Bytes bytes_of(const oxArray *a);

// An array that was read, or none, holds every rule.
void expect_well_formed(const oxArray *a);

// A file of records in the tests' folders: a line of fields parted by " | ", then indented lines of
// hex. Lines that begin with '#' are notes.
struct Record {
    std::vector<std::string> fields;
    Bytes bytes;
};
std::vector<Record> records(const char *file);

enum class Carrier { buffer, file, sequential };
struct StreamForm {
    Carrier carrier = Carrier::buffer;
    bool swapped = false;
    uint16_t options = 0; // oiCOMPRESS, oiOPTION16, oiWIDE
    std::string name = {};
    bool breaks = false; // a file's primitives are those that BrokenCarrier makes fail
};
// "native", or any of "swapped", "wide", "compressed", "option16".
StreamForm form_of(const std::string &words, Carrier carrier = Carrier::buffer);

// What a stream of the form holds with these elements: in a buffer, the prefix first.
Bytes carried(const StreamForm &form, const Bytes &elements);

// A stream over a temporary file or a buffer of its own.
class TestStream {
public:
    explicit TestStream(StreamForm form, const Bytes &contents = {});
    ~TestStream();
    TestStream &operator=(TestStream &&) = delete;

    oiStreamRec_tag *operator->() const { return s_; }
    oiStreamRec_tag *get() const { return s_; }
    // What the carrier holds: of a buffer, what has been written.
    Bytes contents() const;

    int32_t put(const oxArray *a, const char *name = nullptr);
    int32_t put(int32_t type, const Bytes &data);

private:
    StreamForm form_;
    FILE *file_ = nullptr;
    oiStreamRec_tag *s_ = nullptr;
};

// While it lives, the n-th call of the primitives of streams that break fails (1 is the next):
// reads and writes move one byte less than asked, seeks and tells fail, the reserve callback
// refuses.
class BrokenCarrier {
public:
    explicit BrokenCarrier(std::size_t n);
    ~BrokenCarrier();
    static std::size_t calls();
    static bool lost_bytes(); // the call that failed was one that writes
};

} // namespace ox::test
