// Bytes that nobody wrote: cut short, changed, and made up. Whatever they are, reading them ends
// with a status or with an array that holds every rule, and leaves nothing behind.
#include <containers/check_array.h>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/faults.h>
#include <support/host.h>
#include <support/stream_bytes.h>

#include <cstring>

namespace ox::test {
namespace {

class Hostile : public HostTest {};

// Every kind of array that streams hold.
std::vector<Bytes> canonical() {
    std::vector<Bytes> all;
    for (const char *a :
         {"double 2x2: 1 2; 3 4+1i", "char 1x3: 'a\\u00e9b'", "char 1x6: 'abcdef'",
          "logical 1x3: 1 0 1", "sparse double 3x3 nzmax 4: (1,0)=1.5 (2,2)=-2+1i",
          "sparse logical 2x2: (0,1)=1",
          "struct 1x2 a,bb: {uint8 1x1: 7} {char 1x2: 'ab'} {cell 2x1: {double 1x1: 1} {}} {}",
          "cell 2x2: {double 1x1: 1.5} {} {cell 1x1: {int16 2x1: 1; 2}} {}",
          "int8 2x1x2x1: 1; 2 | 3; 4"})
        for (const int options : {0, int{oiWIDE}})
            all.push_back(bytes_of(oxSerializeEx(arr(a), static_cast<uint16_t>(options))));
    oxArray *object = arr("struct 1x1 a: {double 1x1: 2}");
    oxSetClassName(object, "thing");
    all.push_back(bytes_of(oxSerialize(object)));
    return all;
}

// Deserialises, and reads as a sequential carrier where claims cannot be compared with a length.
void expect_harmless(const Bytes &bytes, bool must_fail = false) {
    const Contexts contexts;
    oxArray *a = oxDeserialize(bytes.data(), bytes.size());
    EXPECT_TRUE(!must_fail || !a);
    if (a) {
        const Finding found = check_array(a);
        EXPECT_FALSE(found) << check_rule_text(found.rule);
    }
    if (bytes.size() < 8) return;
    TestStream s({Carrier::sequential, false, static_cast<uint16_t>(bytes[4] ? oiWIDE : 0)},
                 Bytes(bytes.begin() + 8, bytes.end()));
    oiItem_tag item{};
    const int32_t status = oiGetCurrentItem(s.get(), &item);
    EXPECT_TRUE(!must_fail || status != oiSUCCESS);
    if (status != oiSUCCESS || !item.data || item.data == &item.name) return;
    if (item.type != oiMATRIX) return s->free(item.data);
    const Finding found = check_array(static_cast<oxArray *>(item.data));
    EXPECT_FALSE(found) << check_rule_text(found.rule);
}

TEST_F(Hostile, EveryPrefixFails) {
    for (const Bytes &bytes : canonical())
        for (std::size_t n = 0; n < bytes.size(); ++n)
            expect_harmless(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(n)),
                            true);
}

TEST_F(Hostile, EveryChangedByteAndWordIsHarmless) {
    for (const Bytes &bytes : canonical()) {
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (const int change : {1, 2, 0x10, 0x80, 0xFF}) {
                Bytes changed = bytes;
                changed[at] = static_cast<unsigned char>(changed[at] ^ change);
                expect_harmless(changed);
            }
        }
        for (std::size_t at = 8; at + 4 <= bytes.size(); at += 4)
            for (const char *word : {"00000000", "ffffffff", "ffffff7f", "00000080", "0e000000",
                                     "05000000", "03000000", "11000000", "f8ffffff"})
                expect_harmless(patched(bytes, at, word));
    }
    EXPECT_STREQ(oxGetLastErrMsg(), "");
}

TEST_F(Hostile, MalformedArraysByTheirFault) {
    // The element of (a) starts at 0; offsets count from there.
    const char *scalar = "double 1x1: 1.5", *cell = "cell 2x1: {double 1x1: 1.5} {}";
    const char *fields = "struct 1x1 f: {}", *complex = "double 1x1: 1+2i";
    const char *sparse = "sparse double 3x3 nzmax 2: (1,0)=1.5 (2,2)=-2";
    const struct {
        const char *what, *array;
        std::size_t at;
        const char *patch;
        int32_t status;
    } cases[] = {
        {"as it is", scalar, 0, "", oiSUCCESS},
        {"flags of another type", scalar, 8, "05", oiBAD_ELEMENT},
        {"flags of one word", scalar, 8, "06000400", oiBAD_ELEMENT},
        {"class 5 without sparse vectors", scalar, 16, "05", oiBAD_ELEMENT},
        {"unknown class", scalar, 16, "13", oiREFUSED},
        {"class 18", scalar, 16, "12", oiREFUSED},
        {"complex without an imaginary part", scalar, 17, "08", oiSHORT_READ},
        {"complex cell", cell, 17, "08", oiBAD_ELEMENT},
        {"complex logical", scalar, 16, "090a", oiBAD_ELEMENT},
        {"sparse cell is a cell", cell, 17, "10", oiSUCCESS},
        {"dimensions of another type", scalar, 24, "06", oiBAD_ELEMENT},
        {"dimensions of 7 bytes", scalar, 28, "07", oiBAD_ELEMENT},
        {"negative dimension", scalar, 32, "ffffffff", oiBAD_ELEMENT},
        {"more elements than limits allow", scalar, 32, "ffffff7fffffff7f", oiBAD_ELEMENT},
        {"more elements than data", scalar, 32, "02", oiBAD_ELEMENT},
        {"fewer elements than data", scalar, 32, "00", oiBAD_ELEMENT},
        {"a name of another type", scalar, 40, "09", oiBAD_ELEMENT},
        {"a name longer than the element", scalar, 44, "ff", oiSHORT_READ},
        {"data of type 8", scalar, 48, "08", oiBAD_ELEMENT},
        {"data of type 16", scalar, 48, "10", oiBAD_ELEMENT},
        {"data of another size", scalar, 48, "07", oiBAD_ELEMENT},
        {"64-bit integers as doubles", scalar, 48, "0c", oiSUCCESS},
        {"data longer than the element", scalar, 52, "10", oiSHORT_READ},
        {"more cells than fit", cell, 32, "00000010", oiSHORT_READ},
        {"an element that is no array", cell, 48, "09", oiBAD_ELEMENT},
        {"an element longer than its cell", cell, 52, "ff", oiSHORT_READ},
        {"slot length 0", fields, 52, "00", oiBAD_ELEMENT},
        {"slot length negative", fields, 52, "ffffffff", oiBAD_ELEMENT},
        {"slot length that does not divide", fields, 52, "03", oiBAD_ELEMENT},
        {"five fields for one value", fields, 52, "01", oiSHORT_READ},
        {"slot length of two bytes", fields, 48, "05000200", oiBAD_ELEMENT},
        {"imaginary part of another length", complex, 68, "00", oiBAD_ELEMENT},
        {"capacity 0", sparse, 20, "00", oiBAD_ELEMENT},
        {"capacity 1", sparse, 20, "01", oiBAD_ELEMENT},
        {"capacity of 4 billion is cut", sparse, 20, "ffffffff", oiSUCCESS},
        {"sparse in three dimensions", sparse, 28, "0c", oiBAD_ELEMENT},
        {"rows beyond the last", sparse, 60, "03", oiBAD_ELEMENT},
        {"negative row", sparse, 56, "ffffffff", oiBAD_ELEMENT},
        {"columns that do not start at 0", sparse, 72, "01", oiBAD_ELEMENT},
        {"columns that fall", sparse, 76, "03", oiBAD_ELEMENT},
        {"fewer stored than rows", sparse, 84, "01", oiBAD_ELEMENT},
        {"equal rows in a column", sparse, 56,
         "0200000002000000 05000000 10000000 00000000 02000000", oiBAD_ELEMENT},
        {"rows as doubles", sparse, 48, "09", oiBAD_ELEMENT},
        {"more columns than starts", sparse, 36, "00000040", oiBAD_ELEMENT},
        {"values fewer than rows", sparse, 92, "08", oiBAD_ELEMENT},
    };
    for (const Carrier carrier : {Carrier::buffer, Carrier::sequential}) {
        for (const auto &c : cases) {
            TestStream s({carrier});
            s.put(arr(c.array));
            const std::size_t start = carrier == Carrier::buffer ? 8 : 0;
            TestStream t({carrier}, patched(s.contents(), start + c.at, c.patch));
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(t.get(), &item), c.status) << c.what;
            EXPECT_EQ(item.data != nullptr, c.status == oiSUCCESS) << c.what;
            EXPECT_EQ(t->offset, start + s.contents().size() - start) << c.what;
        }
    }
}

// What is stored as another type is converted without a word; odd but legal forms are read.
TEST_F(Hostile, ForeignWritersAreUnderstood) {
    const char *d3 = "double 1x3: 0 0 0", *c3 = "char 1x3: 'xyz'";
    const struct {
        const char *array;
        std::size_t at; // of the data element; the rest of the element goes
        const char *data, *read;
    } cases[] = {
        {d3, 48, "01000300 01ff7f00", "double 1x3: 1 -1 127"},
        {d3, 48, "04000000 06000000 0100ffff0200 0000", "double 1x3: 1 65535 2"},
        {"int8 1x3: 0 0 0", 48, "05000000 0c000000 00010000 80ffffff 00ffffff z04",
         "int8 1x3: 127 -128 -128"},
        {"int8 1x2: 0 0", 48, "09000000 10000000 000000000000f87f 333333333333fbbf",
         "int8 1x2: 0 -2"},
        {"logical 1x3: 0 0 0", 48, "02000300 00ff0100", "logical 1x3: 0 1 1"},
        {"logical 1x2: 0 0", 48, "07000000 08000000 0000c07f 00000080", "logical 1x2: 1 0"},
        {c3, 48, "10000300 61626300", "char 1x3: 'abc'"},
        {c3, 48, "10000400 61c3a962", "char 1x3: 'a\\u00e9b'"},
        {c3, 48, "02000300 61e97a00", "char 1x3: 'a\\u00e9z'"},
        {c3, 48, "10000300 61e97a00", "char 1x3: 'a\\ufffdz'"},
        {"double 1x1: 0", 24, "05000400 03000000 01000000 00000000 02000300 01020300",
         "double 3x1: 1; 2; 3"},
        {"double 1x1: 0", 24, "05000000 00000000 01000000 00000000 09000000 00000000",
         "double 0x0"},
        {"struct 1x1 f: {}", 48, "05000400 02000000 01000400 61616262 0e000000 z04 0e000000 z04",
         "struct 1x1 aa,bb: {} {}"}, // slots without a terminator
        {"cell 1x1: {}", 48, "0e000000 z04 de00be00 00000000", "cell 1x1: {}"}, // more behind
    };
    for (const auto &c : cases) {
        TestStream s({});
        s.put(arr(c.array));
        Bytes bytes = s.contents();
        bytes.resize(8 + c.at);
        const Bytes data = hex(c.data);
        bytes.insert(bytes.end(), data.begin(), data.end());
        const auto n = static_cast<uint32_t>(bytes.size() - 16);
        std::memcpy(&bytes[12], &n, 4);
        const oxArray *a = nullptr;
        EXPECT_NO_WARNING(a = oxDeserialize(bytes.data(), bytes.size()));
        EXPECT_EQ(a ? text(a) : "null", text(arr(c.read))) << c.data;
    }
}

// Claims of sizes are compared with the bytes first: nothing near them is ever asked for.
TEST_F(Hostile, ClaimsAreNotAllocated) {
    const Bytes cells =
        hex("0e000000 00010040 06000000 08000000 01000000 00000000 05000000 08000000"
            "00000008 01000000 01000000 00000000 0e000000 00000000");
    const Bytes numbers = hex("0e000000 30000040 06000000 08000000 09000000 00000000 05000000"
                              "08000000 00000040 01000000 01000000 00000000 02000000 00000040 ff");
    const Bytes plain = hex("02000000 ffffff7f 01020304");
    for (const Carrier carrier : {Carrier::file, Carrier::sequential}) {
        for (const Bytes &bytes : {cells, numbers, plain}) {
            const Live before = live();
            TestStream s({carrier}, bytes);
            FailingAllocation none(0);
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), oiSHORT_READ);
            EXPECT_LE(FailingAllocation::count(), 6u);
            EXPECT_EQ(live().headers, before.headers);
        }
    }
}

} // namespace
} // namespace ox::test
