// Elements that are not arrays: their bytes, reading them back, and every status.
#include <support/array_text.h>
#include <support/host.h>
#include <support/stream_bytes.h>

#include <cstring>

namespace ox::test {
namespace {

class Items : public HostTest {};

constexpr uint16_t swapped = 0x8000;
StreamForm form_of(Carrier c, int options) {
    return {c, (options & swapped) != 0, static_cast<uint16_t>(options & 0xFF)};
}

struct Element {
    int type;
    const char *data;
    int options;
    const char *bytes;
};
const Element elements[] = {
    {oiUINT8, "b0b1b2", 0, "02000300 b0b1b200"},
    {oiDOUBLE, "0102030405060708", 0, "09000000 08000000 0102030405060708"},
    {oiDOUBLE, "0102030405060708", oiWIDE, "09000800 z04 0102030405060708"},
    {oiDOUBLE, "0102030405060708", oiWIDE | swapped, "00080009 z04 0102030405060708"},
    {oiINT8, "010203040506070809", 0, "01000000 09000000 010203040506070809 z07"},
    {oiINT16, "0102", swapped, "00020003 02010000"},
    {oiINT16, "010203", swapped, "00030003 02010003"}, // the area is reversed in units of 2
    {oiINT32, "01020304", swapped, "00040005 04030201"},
    {oiUTF16, "010203040506", swapped, "00000011 00000006 020104030605 0000"},
    {oiUINT64, "0102030405060708", swapped, "0000000d 00000008 0807060504030201"},
    {8, "0102030405060708", swapped, "00000008 00000008 0403020108070605"},
    {10, "010203040506070809", swapped, "0000000a 00000009 0807060504030201 09 z07"},
    {oiUTF8, "", 0, "10000000 00000000"},
    {oiINT32, "0102030405060708", oiWIDE | swapped, "00080005 z04 0403020108070605"},
    {oiINT8, "010203040506070809", oiWIDE, "01000000 z04 09000000 z04 010203040506070809 z07"},
};

TEST_F(Items, BytesOfEveryFormAndBack) {
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential}) {
        for (const Element &e : elements) {
            SCOPED_TRACE(std::string(e.bytes) + name_of(form_of(c, e.options)));
            TestStream s(form_of(c, e.options));
            const Bytes data = hex(e.data);
            Bytes source = data;
            ASSERT_EQ(s.put(e.type, source), oiSUCCESS);
            EXPECT_EQ(source, data) << "the caller's data stay";
            Bytes all = s.contents();
            const std::size_t prefix = c == Carrier::buffer ? 8 : 0;
            EXPECT_EQ(Bytes(all.begin() + static_cast<std::ptrdiff_t>(prefix), all.end()),
                      hex(e.bytes));
            TestStream again(form_of(c, e.options), all);
            oiItem_tag item{77, 0, nullptr, 0};
            ASSERT_EQ(oiGetCurrentItem(again.get(), &item), oiSUCCESS);
            EXPECT_EQ(again->offset, all.size());
            if (data.empty()) { // consumed, the item as it was
                EXPECT_EQ(item.type, 77);
                EXPECT_EQ(item.data, nullptr);
                continue;
            }
            EXPECT_EQ(item.type, e.type);
            ASSERT_EQ(item.count, data.size());
            EXPECT_EQ(0, std::memcmp(item.data, data.data(), data.size()));
            const bool small = data.size() <= (e.options & oiWIDE ? 8 : 4);
            EXPECT_EQ(item.data == &item.name, small);
            if (!small) again->free(item.data);
        }
    }
}

TEST_F(Items, StatusesOfReading) {
    const struct {
        const char *what, *bytes;
        int options;
        int32_t status;
    } cases[] = {
        {"nothing", "", 0, oiSHORT_READ},
        {"half a tag", "02000000", 0, oiSHORT_READ},
        {"small element of 5", "02000500 0102030405060708", 0, oiBAD_ELEMENT},
        {"small element of 9, wide", "02000900 z12", oiWIDE, oiBAD_ELEMENT},
        {"type 18", "12000000 08000000 z08", 0, oiREFUSED},
        {"type 0", "00000000 08000000 z08", 0, oiREFUSED},
        {"small type 18", "12000400 z04", 0, oiREFUSED},
        {"small array", "0e000400 z04", 0, oiBAD_ELEMENT},
        {"small compressed", "0f000400 z04", 0, oiBAD_ELEMENT},
        {"data cut off", "02000000 10000000 z08", 0, oiSHORT_READ},
        {"count of all memory", "02000000 ffffffff z08", 0, oiSHORT_READ},
        {"count of all addresses", "02000000 z04 ffffffffffffffff z08", oiWIDE, oiSHORT_READ},
        {"array of more than there is", "0e000000 f0ffffff 06000000 08000000", 0, oiSHORT_READ},
        {"array of no contents", "0e000000 08000000 z08", 0, oiBAD_ELEMENT},
    };
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential}) {
        for (const auto &e : cases) {
            Bytes bytes = hex(e.bytes);
            if (c == Carrier::buffer) {
                const Bytes prefix =
                    hex(e.options & oiWIDE ? "0001494f01000000" : "0001494f00000000");
                bytes.insert(bytes.begin(), prefix.begin(), prefix.end());
            }
            TestStream s(form_of(c, e.options), bytes);
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), e.status) << e.what;
            EXPECT_EQ(item.data, nullptr) << e.what;
        }
    }
}

TEST_F(Items, PaddingMustBeThereInFilesOnly) {
    const Bytes bytes = hex("02000000 05000000 0102030405");
    TestStream file({Carrier::file}, bytes), sequential({Carrier::sequential}, bytes);
    oiItem_tag item{};
    EXPECT_EQ(oiGetCurrentItem(file.get(), &item), oiSHORT_READ);
    EXPECT_EQ(oiGetCurrentItem(sequential.get(), &item), oiSHORT_READ);
    EXPECT_EQ(item.data, nullptr);
    Bytes all = hex("0001494f00000000");
    all.insert(all.end(), bytes.begin(), bytes.end());
    TestStream buffer({}, all);
    unsigned char room[5];
    item.data = room;
    EXPECT_EQ(oiGetCurrentItem(buffer.get(), &item), oiSUCCESS);
    EXPECT_EQ(buffer->offset, 24u);
    EXPECT_EQ(oiGetCurrentItem(buffer.get(), &item), oiSHORT_READ);
}

TEST_F(Items, StatusesOfWriting) {
    unsigned char data[8] = {};
    const struct {
        int32_t type;
        uint64_t count;
        void *data;
        uint16_t options;
        int32_t status;
    } cases[] = {
        {0, 1, data, 0, oiBAD_ELEMENT},
        {oiCOMPRESSED, 1, data, 0, oiBAD_ELEMENT},
        {oiUTF32, 4, data, 0, oiBAD_ELEMENT},
        {19, 1, data, 0, oiBAD_ELEMENT},
        {-1, 1, data, 0, oiBAD_ELEMENT},
        {oiUINT8, 1, nullptr, 0, oiBAD_ELEMENT},
        {oiUINT8, 0, nullptr, 0, oiSUCCESS},
        {oiMATRIX, 0, nullptr, 0, oiSUCCESS}, // a null array has no data
        {oiUINT8, uint64_t{1} << 32, data, 0, oiSHORT_WRITE},
        {oiUINT8, ~uint64_t{0}, data, oiWIDE, oiSHORT_WRITE},
    };
    for (const auto &c : cases) {
        TestStream s({Carrier::buffer, false, c.options});
        const oiItem_tag item{c.type, c.count, c.data, 0};
        EXPECT_EQ(oiPutItem(s.get(), &item, nullptr), c.status) << c.type << ' ' << c.count;
        EXPECT_EQ(s->offset, c.status == oiSUCCESS ? 16u : 0u);
    }
}

TEST_F(Items, OffsetsAndRewriting) {
    for (const Carrier c : {Carrier::buffer, Carrier::file}) {
        TestStream s({c});
        unsigned char bytes[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
        oiItem_tag item{oiUINT8, 16, bytes, 0};
        kwSize at = oiCURRENT_OFFSET, start = c == Carrier::buffer ? 8 : 0;
        ASSERT_EQ(oiPutItem(s.get(), &item, &at), oiSUCCESS);
        EXPECT_EQ(at, start + 24);
        ASSERT_EQ(oiPutItem(s.get(), &item, &at), oiSUCCESS);
        const kwSize capacity = s->capacity;
        item.count = 12; // over the first, then read all three places
        at = start;
        ASSERT_EQ(oiPutItem(s.get(), &item, &at), oiSUCCESS);
        EXPECT_EQ(at, start + 24);
        EXPECT_TRUE(c != Carrier::buffer || s->capacity == capacity) << "never shrinks";
        unsigned char got[16] = {};
        oiItem_tag read{0, 0, got, 0};
        EXPECT_EQ(oiGetCurrentItem(s.get(), &read), oiSUCCESS);
        EXPECT_EQ(read.count, 16u);
        EXPECT_EQ(oiGetItem(s.get(), &read, start), oiSUCCESS);
        EXPECT_EQ(read.count, 12u);
        EXPECT_EQ(oiGetItem(s.get(), &read, start + 24), oiSUCCESS);
        EXPECT_EQ(oiGetItem(s.get(), &read, uint64_t{1} << 62), oiSHORT_READ);
        EXPECT_EQ(oiGetItem(s.get(), &read, ~kwSize{0} - 1), oiSHORT_READ);
        EXPECT_EQ(0, std::memcmp(got, bytes, 16));
        // A gap behind the end is zeros.
        at = start + 64;
        ASSERT_EQ(oiPutItem(s.get(), &item, &at), oiSUCCESS);
        EXPECT_EQ(s.contents()[start + 50], 0);
    }
}

TEST_F(Items, BufferPrefixes) {
    const struct {
        const char *bytes;
        bool opens;
        uint64_t offset;
        uint32_t flags;
    } cases[] = {
        {"0001494f00000000", true, 8, oiBUFFER},
        {"0001494f01000000", true, 8, oiBUFFER | oiWIDE},
        {"01004f4900010000", true, 8, oiBUFFER | oiWIDE},
        {"0000494f01000000", true, 0, oiBUFFER | oiPREFIX_PENDING},
        {"00", true, 0, oiBUFFER | oiPREFIX_PENDING},
        {"0001", false, 0, 0},
        {"01000001494f0000", false, 0, 0},
        {"00014f4900000000", false, 0, 0},
    };
    for (const auto &c : cases) {
        const Bytes bytes = hex(c.bytes);
        void *block = oxMallocEx(bytes.size());
        std::memcpy(block, bytes.data(), bytes.size());
        oiStreamRec_tag *s =
            oiCreateBufferStream(block, 0, 0, nullptr, nullptr, nullptr, bytes.size(), 0);
        EXPECT_EQ(s != nullptr, c.opens) << c.bytes;
        if (!s) {
            oxFreeEx(block); // still the caller's
            continue;
        }
        EXPECT_EQ(s->offset, c.offset) << c.bytes;
        EXPECT_EQ(s->flags, c.flags) << c.bytes;
        const oiItem_tag item{oiUINT8, 1, const_cast<char *>("x"), 0};
        kwSize at = s->offset;
        EXPECT_EQ(oiPutItem(s, &item, &at), oiSUCCESS);
        EXPECT_EQ(at, s->flags & oiWIDE ? 24u : 16u)
            << "prefix and one small element, or a second one";
        oiResetBufferStream(s);
        EXPECT_EQ(s->offset, 0u);
        EXPECT_TRUE(s->flags & oiPREFIX_PENDING);
        oiDisposeBufferStream(s);
    }
    // The wide option does not hold for a buffer that has no prefix.
    oiStreamRec_tag *s =
        oiCreateBufferStream(oxCallocEx(8, 1), 0, 0, nullptr, nullptr, nullptr, 8, oiWIDE);
    EXPECT_EQ(s->flags, oiBUFFER | oiPREFIX_PENDING);
    oiDisposeBufferStream(s);
}

TEST_F(Items, CreationRefusesBadPairsAndNulls) {
    const auto room = [](oiStreamRec_tag *, kwSize, kwSize *, kwSize *) { return int32_t{0}; };
    FILE *f = std::tmpfile();
    const auto file = [&](FILE *g, uint16_t version, uint16_t indicator, oiReserveFcn r) {
        oiStreamRec_tag *s = oiCreateFileStream(g, version, indicator, r, 5, nullptr, nullptr,
                                                nullptr, nullptr, oiCOMPRESS | oiOPTION16);
        EXPECT_TRUE(!s || s->flags == (oiFILE | oiOPTION16)) << "option 16 forbids compression";
        oiDisposeFileStream(s);
        return s != nullptr;
    };
    EXPECT_TRUE(file(f, 0, 0, room));
    EXPECT_TRUE(file(f, oiSWAPPED_VERSION, oiSWAPPED_INDICATOR, room));
    EXPECT_FALSE(file(f, 0, oiSWAPPED_INDICATOR, room));
    EXPECT_FALSE(file(f, 2, 0, room));
    EXPECT_FALSE(file(nullptr, 0, 0, room));
    EXPECT_FALSE(file(f, 0, 0, nullptr));
    EXPECT_EQ(oiCreateBufferStream(nullptr, 0, 1, nullptr, nullptr, nullptr, 0, 0), nullptr);
    oiDisposeFileStream(nullptr);
    oiDisposeBufferStream(nullptr);
    fclose(f);
}

TEST_F(Items, SeekToTheEndIgnoresTheOffset) {
    FILE *f = std::tmpfile();
    fputs("0123456789", f);
    EXPECT_EQ(oiFseek64(f, 100, 2), 0);
    EXPECT_EQ(oiFtell64(f), 10);
    EXPECT_EQ(oiFseek64(f, 4, 0), 0);
    EXPECT_EQ(oiFseek64(f, -1, 1), 0);
    EXPECT_EQ(oiFtell64(f), 3);
    EXPECT_NE(oiFseek64(f, 0, 3), 0);
    EXPECT_NE(oiFseek64(f, 0, -1), 0);
    fclose(f);
}

// What the callbacks of a caller see: the request without padding, with 8 for the prefix.
TEST_F(Items, ReserveIsAskedForTheBareRoom) {
    static kwSize asked, block_offset;
    static unsigned char block[128];
    const auto room = [](oiStreamRec_tag *, kwSize n, kwSize *offset, kwSize *capacity) -> int32_t {
        asked = n;
        *offset += block_offset; // may move it
        *capacity = *offset + n;
        return n < 64 ? oiSUCCESS : 42;
    };
    block_offset = 0;
    block[0] = block[1] = 0;
    oiStreamRec_tag *s = oiCreateBufferStream(block, 0, 0, room, nullptr, nullptr, 128, 0);
    oiItem_tag item{oiUINT8, 9, block + 64, 0};
    EXPECT_EQ(oiPutItem(s, &item, nullptr), oiSUCCESS);
    EXPECT_EQ(asked, 8u + 8 + 9);
    EXPECT_EQ(s->capacity, 25u);
    EXPECT_EQ(s->offset, 32u);
    item.count = 3;
    block_offset = 8;
    EXPECT_EQ(oiPutItem(s, &item, nullptr), oiSUCCESS);
    EXPECT_EQ(asked, 8u);
    EXPECT_EQ(s->offset, 48u);
    item.count = 64;
    EXPECT_EQ(oiPutItem(s, &item, nullptr), 42) << "returned as it is";
    oiSetStreamPtr(s, nullptr);
    oiDisposeBufferStream(s);
}

} // namespace
} // namespace ox::test
