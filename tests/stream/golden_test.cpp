// What array elements look like, byte by byte, on a little-endian machine.
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <zlib.h>

#include <cstring>

namespace {

class Golden : public HostTest {};

// In buffers, and inflated from files that compress.
TEST_F(Golden, ArrayElements) {
    for (const Record &r : records("stream/golden.txt")) {
        SCOPED_TRACE(r.fields[0] + ' ' + r.fields[1]);
        const oxArray *a = arr(r.fields[1]);
        const StreamForm form = form_of(r.fields[0]);
        TestStream s(form);
        EXPECT_EQ(s.put(a), oiSUCCESS);
        EXPECT_EQ(to_hex(s.contents()), to_hex(r.bytes));
        if (form.options & oiOPTION16) continue; // which switches compression off
        TestStream file(form_of(r.fields[0] + " compressed", Carrier::file));
        ASSERT_EQ(file.put(a), oiSUCCESS);
        const Bytes packed = file.contents();
        const auto word = [&](std::size_t at) {
            uint32_t w;
            std::memcpy(&w, &packed[at], 4);
            return form.swapped ? __builtin_bswap32(w) : w;
        };
        const std::size_t tag = form.options & oiWIDE ? 16 : 8;
        EXPECT_EQ(word(0), uint32_t{oiCOMPRESSED});
        EXPECT_EQ(word(tag / 2), packed.size() - tag);
        auto n = static_cast<uLongf>(r.bytes.size() - 8);
        Bytes inflated(n);
        EXPECT_EQ(
            uncompress(inflated.data(), &n, &packed[tag], static_cast<uLong>(packed.size() - tag)),
            Z_OK);
        EXPECT_EQ(to_hex(inflated), to_hex(cut(r.bytes, 8)));
    }
}

// Each of the types that compaction may choose, and the records that it leaves.
TEST_F(Golden, CompactionChoosesExactTypes) {
    for (const Record &r : records("stream/compact.txt")) {
        SCOPED_TRACE(r.fields[0]);
        TestStream s({});
        s->compact = 1;
        oxArray *a = arr(r.fields[0]);
        ASSERT_EQ(s.put(a), oiSUCCESS);
        EXPECT_EQ(oxGetUserBits(a), std::stoi(r.fields[1]));
        const Bytes all = s.contents();
        EXPECT_EQ(to_hex(cut(all, all.size() - r.bytes.size())), to_hex(r.bytes));
        oiItem_tag item{};
        EXPECT_EQ(oiGetItem(s.get(), &item, 8), oiSUCCESS);
        EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1);
    }
}

} // namespace
