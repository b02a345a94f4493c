// The compressor by itself, and compressed elements in streams.
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <zlib.h>

#include <cstring>

namespace {

class Compressed : public HostTest {
protected:
    ~Compressed() override {
        oiDeallocateGzipString(g_);
        fclose(file_);
    }
    FILE *file_ = std::tmpfile();
    gzipString_tag *g_ = oiNewGzipString();
};

// Bytes that deflate to about three quarters.
Bytes noise(std::size_t n) {
    Random r(1);
    Bytes b(n);
    for (unsigned char &byte : b) byte = static_cast<unsigned char>(r.below(64));
    return b;
}

// What a stranger deflates with a flush behind every block of 8192.
Bytes deflated(const Bytes &data) {
    Bytes out(data.size() + 1000);
    z_stream z{};
    deflateInit(&z, Z_DEFAULT_COMPRESSION);
    z.next_out = out.data();
    z.avail_out = static_cast<uInt>(out.size());
    z.next_in = const_cast<unsigned char *>(data.data());
    for (std::size_t left = data.size(); left > 0; left -= std::min<std::size_t>(left, 8192)) {
        z.avail_in = static_cast<uInt>(std::min<std::size_t>(left, 8192));
        deflate(&z, Z_FULL_FLUSH);
    }
    deflate(&z, Z_FINISH);
    out.resize(z.total_out);
    deflateEnd(&z);
    return out;
}

TEST_F(Compressed, WritesRoomForTheTagAndOneZlibStreamAndReadsItBack) {
    for (const int32_t n : {10, 8191, 8192, 8193, 20000, 300000}) {
        rewind(file_);
        const Bytes data = noise(static_cast<std::size_t>(n));
        ASSERT_EQ(gzipStringWriteInit(g_, file_), -1);
        EXPECT_EQ(gzipStringWriteAddBytes(g_, data.data(), n), n);
        EXPECT_EQ(ftell(file_) > 0, n > 8192) << "nothing before the first block is full";
        const int32_t length = gzipStringWriteClose(g_);
        ASSERT_EQ(ftell(file_), length + 8);
        Bytes packed(static_cast<std::size_t>(length) + 8), inflated(data.size() - 5);
        rewind(file_);
        ASSERT_EQ(fread(packed.data(), 1, packed.size(), file_), packed.size());
        EXPECT_EQ(cut(packed, 0, 8), Bytes(8));
        EXPECT_EQ(cut(packed, 8) == deflated(data), n > 8192) << "what was staged is not flushed";

        fseek(file_, 8, SEEK_SET);
        ASSERT_EQ(gzipStringReadInit(g_, file_, length), -1);
        EXPECT_EQ(gzipStringReadSkipBytes(g_, 5), 5);
        EXPECT_EQ(gzipStringReadSoFar(g_), 5u);
        EXPECT_EQ(gzipStringReadBytes(g_, inflated.data(), data.size()), n - 5) << "what is left";
        EXPECT_EQ(inflated, cut(data, 5));
        EXPECT_EQ(ftell(file_), length + 8) << "and nothing behind it";
        EXPECT_EQ(gzipStringReadClose(g_), -1);
    }
}

TEST_F(Compressed, WrongStatesAnswerZero) {
    unsigned char b[4];
    enum State { null, fresh, writing, reading };
    for (const State state : {null, fresh, writing, reading}) {
        gzipString_tag *g = state == null ? nullptr : g_;
        if (state == writing) gzipStringWriteInit(g, file_);
        if (state == reading) gzipStringReadInit(g, file_, 10);
        EXPECT_EQ(oiIsVELVariableCompressionEnabled(g), state >= writing);
        EXPECT_EQ(oiGetCompressedVELVariableOffset(g), state == writing ? 8u : 0u);
        EXPECT_EQ(oiGetCompressedVELVariableBytes(g), state == reading ? 10u : 0u);
        EXPECT_TRUE(state == writing || gzipStringWriteClose(g) == 0);
        if (state == reading) break;
        EXPECT_EQ(gzipStringReadBytes(g, b, 4) + gzipStringReadSkipBytes(g, 4), 0);
        EXPECT_EQ(gzipStringReadSoFar(g), 0u);
        EXPECT_EQ(gzipStringReadClose(g), 0);
    }
    EXPECT_EQ(gzipStringWriteInit(nullptr, file_) + gzipStringWriteInit(g_, nullptr), 0);
    EXPECT_EQ(gzipStringReadInit(nullptr, file_, 1) + gzipStringReadInit(g_, nullptr, 1), 0);
    EXPECT_EQ(gzipStringReadInit(g_, file_, -1), 0);
    // A close that was not asked for by name, and what comes after it.
    ASSERT_EQ(gzipStringWriteInit(g_, file_), -1);
    EXPECT_GT(gzipStringWriteAddBytes(g_, b, 0), 0);
    EXPECT_EQ(gzipStringWriteAddBytes(g_, b, 4), 0);
    gzipStringWriteInit(g_, file_); // left open: deallocation ends it
}

// A compressed element of any bytes, the way a stranger may write one.
Bytes packed_element(const Bytes &inner) {
    Bytes out(compressBound(static_cast<uLong>(inner.size())) + 8);
    auto n = static_cast<uLongf>(out.size() - 8);
    compress2(out.data() + 8, &n, inner.data(), static_cast<uLong>(inner.size()), 9);
    out.resize(n + 8);
    const uint32_t tag[2] = {oiCOMPRESSED, static_cast<uint32_t>(n)};
    std::memcpy(out.data(), tag, 8);
    return out;
}

TEST_F(Compressed, ElementsWithinElements) {
    const Bytes plain = hex("02000000 09000000 010203040506070809 z07"),
                packed = packed_element(plain);
    const struct {
        const char *what;
        Bytes bytes;
        int32_t status;
    } cases[] = {
        {"plain inside", packed, oiSUCCESS},
        {"other bits in the type", patched(packed, 1, {1}), oiSUCCESS},
        {"nothing inside", packed_element(hex("02000000 00000000")), oiSUCCESS},
        {"small inside", packed_element(hex("02000100 07000000")), oiSUCCESS},
        {"more behind", packed_element(hex("02000100 07000000 02000100 07000000")), oiSUCCESS},
        {"more behind than is read",
         packed_element(joined(hex("02000100 07000000"), noise(300000))), oiSUCCESS},
        {"compressed inside", packed_element(packed), oiREFUSED},
        {"no padding inside", packed_element(cut(plain, 0, 17)), oiSHORT_READ},
        {"data end early", packed_element(cut(plain, 0, 16)), oiSHORT_READ},
        {"half a tag inside", packed_element(Bytes(4)), oiSHORT_READ},
        {"more than can be inflated", packed_element(hex("02000000 00000040")), oiSHORT_READ},
        {"broken zlib stream", patched(packed, 8, {0}), oiSHORT_READ},
        {"length 0", hex("0f000000 00000000"), oiSHORT_READ},
        {"length above 2 GiB", patched(packed, 4, hex("00000080")), oiBAD_ELEMENT},
    };
    for (const Carrier carrier : {Carrier::file, Carrier::sequential, Carrier::buffer}) {
        for (const auto &c : cases) {
            SCOPED_TRACE(c.what);
            TestStream s({carrier}, carried({carrier}, joined(c.bytes, hex("03000200 63000000"))));
            unsigned char room[9];
            oiItem_tag item{0, 0, room, 0};
            const int32_t expected = carrier == Carrier::buffer ? oiREFUSED : c.status;
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), expected);
            EXPECT_FALSE(oiIsVELVariableCompressionEnabled(oiGetGzipString(s.get())));
            if (carrier == Carrier::buffer || c.status == oiBAD_ELEMENT) continue;
            // Whatever came of it, the stream stands behind the element.
            EXPECT_EQ(s->offset, c.bytes.size());
            item = {};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), oiSUCCESS);
            EXPECT_EQ(item.type, oiINT16);
        }
    }
}

TEST_F(Compressed, OnlyArraysAndOnlyWhereTheStreamSeeks) {
    const oxArray *a = arr("1.5");
    const struct {
        const char *form;
        Carrier carrier;
        int first;
    } cases[] = {
        {"compressed", Carrier::file, oiCOMPRESSED},
        {"compressed option16", Carrier::file, oiMATRIX},
        {"compressed", Carrier::sequential, oiMATRIX},
        {"compressed", Carrier::buffer, 0}, // of the prefix
    };
    for (const auto &c : cases) {
        TestStream s(form_of(c.form, c.carrier));
        EXPECT_EQ(s.put(a), oiSUCCESS);
        EXPECT_EQ(s->offset, s.contents().size());
        EXPECT_EQ(s.contents()[0], c.first);
    }
    TestStream s({Carrier::file, false, oiCOMPRESS});
    EXPECT_EQ(s.put(oiUINT8, {'x'}), oiSUCCESS);
    EXPECT_EQ(s.contents(), hex("02000100 78000000"));
    oiItem_tag item = {oiMATRIX, 0, const_cast<oxArray *>(a), 0};
    EXPECT_EQ(oiPutItemAtOffsetWrapper(s.get(), &item, 32), oiSUCCESS);
    item = {};
    EXPECT_EQ(oiGetItem(s.get(), &item, 32), oiSUCCESS);
    EXPECT_EQ(item.type, oiMATRIX);
    EXPECT_EQ(item.count, 56u) << "of the element inside";
}

TEST_F(Compressed, AllBytesGoThroughThePrimitivesOfTheStream) {
    static std::size_t moved;
    moved = 0;
    oiStreamRec_tag *s = oiCreateFileStream(
        file_, 0, 0, [](auto *, auto...) { return int32_t{oiSUCCESS}; }, 0,
        [](void *p, size_t size, size_t n, FILE *f) { return moved += n, fread(p, size, n, f); },
        [](auto *p, size_t size, size_t n, FILE *f) { return moved += n, fwrite(p, size, n, f); },
        nullptr, nullptr, oiCOMPRESS);
    const oiItem_tag array{oiMATRIX, 0, arr("1.5"), 0};
    oiItem_tag item{};
    EXPECT_EQ(oiPutItemAtCurrentOffsetWrapper(s, &array), oiSUCCESS);
    EXPECT_EQ(std::exchange(moved, 0), s->offset + 8) << "the place of the tag twice";
    EXPECT_EQ(oiGetItem(s, &item, 0), oiSUCCESS);
    EXPECT_EQ(moved, s->offset);
    // They go through its compressor also when the caller starts that.
    gzipString_tag *g = oiGetGzipString(s);
    rewind(file_);
    gzipStringWriteInit(g, file_);
    EXPECT_EQ(oiPutItem(s, &array, nullptr), oiSUCCESS);
    const int32_t length = gzipStringWriteClose(g);
    EXPECT_EQ(ftell(file_), length + 8);
    fseek(file_, 8, SEEK_SET);
    gzipStringReadInit(g, file_, length);
    EXPECT_EQ(oiGetCurrentItem(s, &item), oiSUCCESS);
    EXPECT_EQ(gzipStringReadSoFar(g), 64u);
    oiDisposeFileStream(s);
}

} // namespace
