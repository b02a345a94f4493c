// What array elements look like, byte by byte, on a little-endian machine.
#include <support/array_text.h>
#include <support/host.h>
#include <support/stream_bytes.h>

namespace ox::test {
namespace {

class Golden : public HostTest {};

struct Dump {
    const char *array;
    uint16_t options; // 0x8000: swapped
    const char *bytes;
};
constexpr uint16_t swapped = 0x8000;

// Without the buffer's prefix.
Bytes element(const Dump &d) {
    TestStream s(
        {Carrier::buffer, (d.options & swapped) != 0, static_cast<uint16_t>(d.options & ~swapped)});
    EXPECT_EQ(s.put(arr(d.array)), oiSUCCESS) << d.array;
    const Bytes all = s.contents();
    return all.size() < 8 ? all : Bytes(all.begin() + 8, all.end());
}

TEST_F(Golden, ArrayElements) {
    const Dump dumps[] = {
        {"double 1x1: 1.5", 0,
         "0e000000 38000000 (array, 56 bytes)"
         "06000000 08000000 06000000 00000000 (flags: class 6)"
         "05000000 08000000 01000000 01000000 (1 by 1)"
         "01000000 00000000 (no name)"
         "09000000 08000000 000000000000f83f"},
        {"int8 2x3: 1+0i 3-1i 5+127i; 2+0i 4+0i -6-128i", 0,
         "0e000000 48000000 06000000 08000000 08080000 00000000 (class 8, complex)"
         "05000000 08000000 02000000 03000000 01000000 00000000"
         "01000000 06000000 0102030405fa 0000 (real, padded)"
         "01000000 06000000 0000ff007f80 0000"},
        {"char 1x2: 'ab'", 0,
         "0e000000 30000000 06000000 08000000 04000000 00000000 05000000 08000000 01000000 02000000"
         "01000000 00000000 10000200 61620000 (small, one byte a character)"},
        {"char 1x2: 'ab'", oiOPTION16,
         "0e000000 30000000 06000000 08000000 04000000 00000000 05000000 08000000 01000000 02000000"
         "01000000 00000000 04000400 61006200"},
        {"char 1x3: 'a\\u00e9b'", 0,
         "0e000000 38000000 06000000 08000000 04000000 00000000 05000000 08000000 01000000 03000000"
         "01000000 00000000 11000000 06000000 6100e9006200 0000"},
        {"char 1x2: 'a\\u00e9'", swapped,
         "0000000e 00000030 00000006 00000008 00000004 00000000 00000005 00000008 00000001 00000002"
         "00000001 00000000 00040011 006100e9 (type word whole, data in units of 2)"},
        {"char 0x0", 0,
         "0e000000 30000000 06000000 08000000 04000000 00000000 05000000 08000000 00000000 00000000"
         "01000000 00000000 10000000 00000000"},
        {"struct 1x2 a,bb: {uint8 1x1: 7} {char 1x2: 'ab'} {logical 1x1: 1} {}", 0,
         "0e000000 f0000000 06000000 08000000 02000000 00000000 05000000 08000000 01000000 02000000"
         "01000000 00000000 05000400 03000000 (slots of 3)"
         "01000000 06000000 610000 626200 0000"
         "0e000000 30000000 06000000 08000000 09000000 00000000 05000000 08000000 01000000 01000000"
         "01000000 00000000 02000100 07000000"
         "0e000000 30000000 06000000 08000000 04000000 00000000 05000000 08000000 01000000 02000000"
         "01000000 00000000 10000200 61620000"
         "0e000000 30000000 06000000 08000000 09020000 00000000 (class 9, logical)"
         "05000000 08000000 01000000 01000000 01000000 00000000 02000100 01000000"
         "0e000000 00000000 (a null field)"},
        {"cell 2x1: {double 1x1: 1.5} {}", 0,
         "0e000000 70000000 06000000 08000000 01000000 00000000 05000000 08000000 02000000 01000000"
         "01000000 00000000"
         "0e000000 38000000 06000000 08000000 06000000 00000000 05000000 08000000 01000000 01000000"
         "01000000 00000000 09000000 08000000 000000000000f83f"
         "0e000000 00000000"},
        {"sparse double 3x3 nzmax 2: (1,0)=1.5 (2,2)=-2", 0,
         "0e000000 68000000 06000000 08000000 05100000 02000000 (class 5, sparse, capacity 2)"
         "05000000 08000000 03000000 03000000 01000000 00000000"
         "05000000 08000000 01000000 02000000 (rows)"
         "05000000 10000000 00000000 01000000 01000000 02000000 (column starts)"
         "09000000 10000000 000000000000f83f 00000000000000c0"},
        {"sparse double 3x3 nzmax 2: (1,0)=1.5 (2,2)=-2", oiWIDE,
         "0e000000 z04 c0000000 z04 06000000 z04 10000000 z04 05100000 z04 02000000 z04"
         "05000000 z04 10000000 z04 03000000 z04 03000000 z04 01000000 z12"
         "0c000000 z04 10000000 z04 01000000 z04 02000000 z04"
         "0c000000 z04 20000000 z04 z08 01000000 z04 01000000 z04 02000000 z04"
         "09000000 z04 10000000 z04 000000000000f83f 00000000000000c0"},
        {"double 0x0", 0,
         "0e000000 30000000 06000000 08000000 06000000 00000000 05000000 08000000 z08"
         "01000000 00000000 09000000 00000000"},
        {"double 0x0", swapped,
         "0000000e 00000030 00000006 00000008 00000006 00000000 00000005 00000008 z08"
         "00000001 00000000 00000009 00000000"},
        {"double 0x0", oiWIDE,
         "0e000000 z04 60000000 z04 06000000 z04 10000000 z04 06000000 z12 05000000 z04 10000000 "
         "z04 z16"
         "01000000 z12 09000000 z12"},
        {"double 1x1: 1.5", swapped,
         "0000000e 00000038 00000006 00000008 00000006 00000000 00000005 00000008 00000001 00000001"
         "00000001 00000000 00000009 00000008 3ff8000000000000"},
        {"double 1x1: 1.5", swapped | oiWIDE,
         "0000000e z04 00000060 z04 (halves of the count not exchanged)"
         "00000006 z04 00000010 z04 00000006 z12 00000005 z04 00000010 z04 00000001 z04 00000001 "
         "z04"
         "00000001 z12 00080009 z04 000000000000f83f (an inline double is not reversed)"},
        {"struct 1x1 f: {}", 0,
         "0e000000 48000000 06000000 08000000 02000000 00000000 05000000 08000000 01000000 01000000"
         "01000000 00000000 05000400 05000000 (5 for 2, so that the names are no small element)"
         "01000000 05000000 6600000000 000000 0e000000 00000000"},
    };
    for (const Dump &d : dumps) EXPECT_EQ(to_hex(element(d)), to_hex(hex(d.bytes))) << d.array;
}

TEST_F(Golden, PrefixInTheStreamsOrder) {
    const struct {
        bool swapped;
        uint16_t options;
        const char *prefix;
    } cases[] = {{false, 0, "0001494f00000000"},
                 {false, oiWIDE, "0001494f01000000"},
                 {true, 0, "01004f4900000000"},
                 {true, oiWIDE, "01004f4900010000"}};
    for (const auto &c : cases) {
        TestStream s({Carrier::buffer, c.swapped, c.options});
        s.put(oiUINT8, {1, 2, 3});
        Bytes all = s.contents();
        all.resize(8);
        EXPECT_EQ(all, hex(c.prefix)) << c.prefix;
    }
}

TEST_F(Golden, TagNamesTheFirstElement) {
    Bytes bytes = bytes_of(oxSerializeWithTag(arr("double 0x0"), "t"));
    EXPECT_EQ(bytes.size(), 64u);
    EXPECT_EQ(Bytes(bytes.begin() + 48, bytes.begin() + 56), hex("0100010074000000"));
}

// Each of the types that compaction may choose, and the records that it leaves.
TEST_F(Golden, CompactionChoosesExactTypes) {
    const struct {
        const char *array;
        int record;
        const char *data; // the parts
    } cases[] = {
        {"double 1x2: 0 255", oiUINT8, "02000200 00ff0000"},
        {"double 1x2: -0 256", oiUINT16, "04000400 00000001"},
        {"double 1x2: 40000 65535", oiUINT16, "04000400 409cffff"},
        {"double 1x2: -32768 32767", oiINT16, "03000400 0080ff7f"},
        {"double 1x2: -1 32768", oiINT32, "05000000 08000000 ffffffff 00800000"},
        {"double 1x1: 65536", oiINT32, "05000400 00000100"},
        {"double 1x1: 2147483648", oiDOUBLE, "09000000 08000000 000000000000e041"},
        {"double 1x1: 0.5", oiDOUBLE, "09000000 08000000 000000000000e03f"},
        {"double 1x1: Inf", oiDOUBLE, "09000000 08000000 000000000000f07f"},
        {"double 1x1: 1-3i", oiUINT8 | oiINT16 << 4, "02000100 01000000 03000200 fdff0000"},
        {"double 0x3", oiUINT8, "02000000 00000000"},
    };
    for (const auto &c : cases) {
        TestStream s({});
        s->compact = 1;
        oxArray *a = arr(c.array);
        ASSERT_EQ(s.put(a), oiSUCCESS);
        EXPECT_EQ(oxGetUserBits(a), c.record) << c.array;
        const Bytes all = s.contents(), data = hex(c.data);
        EXPECT_EQ(to_hex(Bytes(all.end() - static_cast<std::ptrdiff_t>(data.size()), all.end())),
                  to_hex(data))
            << c.array;
        oiItem_tag item{};
        EXPECT_EQ(oiGetItem(s.get(), &item, 8), oiSUCCESS);
        EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1) << c.array;
    }
}

} // namespace
} // namespace ox::test
