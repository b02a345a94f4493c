// Elements that are not arrays: their bytes, reading them back, and every status.
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <cstring>

namespace {

class Items : public HostTest {};

TEST_F(Items, BytesOfEveryFormAndBack) {
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential}) {
        for (const Record &r : records("stream/items.txt")) {
            const StreamForm form = form_of(r.fields[0], c);
            SCOPED_TRACE(form.name + to_hex(r.bytes));
            TestStream s(form);
            const Bytes data = hex(r.fields[2]), source = data;
            const int type = std::stoi(r.fields[1]);
            ASSERT_EQ(s.put(type, source), oiSUCCESS);
            EXPECT_EQ(source, data) << "the caller's data stay";
            const Bytes all = s.contents();
            EXPECT_EQ(all, carried(form, r.bytes));
            TestStream again(form, all);
            oiItem_tag item{77, 0, nullptr, 0};
            ASSERT_EQ(oiGetCurrentItem(again.get(), &item), oiSUCCESS);
            EXPECT_EQ(again->offset, all.size());
            EXPECT_EQ(item.type, data.empty() ? 77 : type) << "without data the item stays";
            ASSERT_EQ(item.count, data.size());
            if (data.empty()) continue;
            EXPECT_EQ(0, std::memcmp(item.data, data.data(), data.size()));
            const bool small = data.size() <= (form.options & oiWIDE ? 8 : 4);
            EXPECT_EQ(item.data == &item.name, small);
            if (!small) again->free(item.data);
        }
    }
}

TEST_F(Items, StatusesOfReading) {
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential}) {
        for (const Record &r : records("stream/unreadable.txt")) {
            const StreamForm form = form_of(r.fields[0], c);
            TestStream s(form, carried(form, r.bytes));
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), std::stoi(r.fields[1])) << r.fields[2];
            EXPECT_EQ(item.data, nullptr) << r.fields[2];
        }
    }
}

TEST_F(Items, PaddingMustBeThereInFilesOnly) {
    const Bytes bytes = hex("02000000 05000000 0102030405");
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential}) {
        TestStream s({c}, carried({c}, bytes));
        unsigned char room[5];
        oiItem_tag item{0, 0, room, 0};
        const bool buffer = c == Carrier::buffer;
        EXPECT_EQ(oiGetCurrentItem(s.get(), &item), buffer ? oiSUCCESS : oiSHORT_READ);
        EXPECT_TRUE(!buffer || s->offset == 24);
        EXPECT_EQ(oiGetCurrentItem(s.get(), &item), oiSHORT_READ);
    }
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
        unsigned char bytes[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}, got[16];
        oiItem_tag item{oiUINT8, 16, bytes, 0}, read{0, 0, got, 0};
        const kwSize start = c == Carrier::buffer ? 8 : 0;
        // At the end twice, over the first, and behind a gap: places and ends.
        const kwSize places[][2] = {{oiCURRENT_OFFSET, start + 24},
                                    {start + 24, start + 48},
                                    {start, start + 24},
                                    {start + 64, start + 88}};
        for (const auto &[place, end] : places) {
            item.count = place == start ? 12 : 16;
            kwSize at = place;
            ASSERT_EQ(oiPutItem(s.get(), &item, &at), oiSUCCESS);
            EXPECT_EQ(at, end);
            EXPECT_TRUE(place != start || !start || s->capacity == 56u) << "never shrinks";
        }
        for (const kwSize place : {start, start + 24, start + 64}) {
            EXPECT_EQ(oiGetItem(s.get(), &read, place), oiSUCCESS);
            EXPECT_EQ(read.count, place == start ? 12u : 16u);
            EXPECT_EQ(0, std::memcmp(got, bytes, read.count));
        }
        EXPECT_EQ(s.contents()[start + 50], 0);
        EXPECT_EQ(oiGetItem(s.get(), &read, uint64_t{1} << 62), oiSHORT_READ);
        EXPECT_EQ(oiGetItem(s.get(), &read, ~kwSize{0} - 1), oiSHORT_READ);
    }
}

TEST_F(Items, PrefixesAndPairsAtCreation) {
    constexpr uint32_t fresh = oiBUFFER | oiPREFIX_PENDING, none = 0;
    const struct {
        const char *bytes;
        bool swapped;
        uint16_t options;
        uint32_t flags; // none: refused
    } cases[] = {
        {"0001494f00000000", false, 0, oiBUFFER},
        {"0001494f01000000", false, 0, oiBUFFER | oiWIDE},
        {"0001494f00000000", false, oiWIDE, oiBUFFER | oiWIDE},
        {"01004f4900010000", false, 0, oiBUFFER | oiWIDE},
        {"0000494f01000000", false, oiWIDE, fresh}, // no prefix: the option does not hold either
        {"00", false, 0, fresh},
        {"", true, oiCOMPRESS, fresh | oiCOMPRESS},
        {"", false, oiCOMPRESS | oiOPTION16, fresh | oiOPTION16},
        {"0001", false, 0, none},
        {"01000001494f0000", false, 0, none},
        {"00014f4900000000", false, 0, none},
    };
    for (const auto &c : cases) {
        TestStream s({Carrier::buffer, c.swapped, c.options}, hex(c.bytes)); // the bytes stay ours
        ASSERT_EQ(s.get() ? s->flags : none, c.flags) << c.bytes;
        if (!s.get()) continue;
        EXPECT_EQ(s->offset, c.flags & oiPREFIX_PENDING ? 0u : 8u);
        EXPECT_EQ(s.put(oiUINT8, {1}), oiSUCCESS);
        EXPECT_EQ(s->offset, s->flags & oiWIDE ? 24u : 16u) << "with the prefix";
        oiResetBufferStream(s.get());
        EXPECT_EQ(s->offset, 0u);
        EXPECT_TRUE(s->flags & oiPREFIX_PENDING);
    }
    const auto pair = [](uint16_t version, uint16_t indicator) {
        return oiCreateBufferStream(nullptr, version, indicator, nullptr, nullptr, nullptr, 0, 0);
    };
    EXPECT_TRUE(!pair(0, oiSWAPPED_INDICATOR) && !pair(2, 0));
    const auto room = [](oiStreamRec_tag *, kwSize, kwSize *, kwSize *) { return int32_t{0}; };
    EXPECT_EQ(oiCreateSequentialStream(nullptr, 0, 0, room, 0, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(oiCreateSequentialStream(stdin, 0, 0, nullptr, 0, nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(oiCreateSequentialStream(stdin, 0, 1, room, 0, nullptr, nullptr, 0), nullptr);
}

TEST_F(Items, SeekToTheEndIgnoresTheOffset) {
    FILE *f = std::tmpfile();
    fputs("0123456789", f);
    EXPECT_TRUE(oiFseek64(f, 100, 2) == 0 && oiFtell64(f) == 10);
    EXPECT_TRUE(oiFseek64(f, 4, 0) == 0 && oiFseek64(f, -1, 1) == 0 && oiFtell64(f) == 3);
    EXPECT_TRUE(oiFseek64(f, 0, 3) != 0 && oiFseek64(f, 0, -1) != 0);
    fclose(f);
}

// What the callbacks of a caller see: the request without padding, with 8 for the prefix.
TEST_F(Items, ReserveIsAskedForTheBareRoom) {
    static kwSize asked, block_offset;
    unsigned char block[128] = {};
    const auto room = [](oiStreamRec_tag *, kwSize n, kwSize *offset, kwSize *capacity) -> int32_t {
        asked = n;
        *offset += block_offset; // may move it
        *capacity = *offset + n;
        return n < 64 ? oiSUCCESS : 42;
    };
    oiStreamRec_tag *s = oiCreateBufferStream(block, 0, 0, room, nullptr, nullptr, 128, 0);
    const struct {
        uint64_t count;
        kwSize block_offset, asked, offset;
        int32_t status;
    } cases[] = {{9, 0, 8 + 8 + 9, 32, oiSUCCESS}, {3, 8, 8, 48, oiSUCCESS}, {64, 0, 72, 48, 42}};
    for (const auto &c : cases) {
        block_offset = c.block_offset;
        const oiItem_tag item{oiUINT8, c.count, block + 64, 0};
        EXPECT_EQ(oiPutItem(s, &item, nullptr), c.status) << "returned as it is";
        EXPECT_EQ(asked, c.asked);
        EXPECT_EQ(s->offset, c.offset);
        EXPECT_TRUE(c.count != 9 || s->capacity == 25u);
    }
    oiSetStreamPtr(s, nullptr);
    oiDisposeBufferStream(s);
}

} // namespace
