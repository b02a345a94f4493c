// What array elements look like, byte by byte, on a little-endian machine.
#include <support/array_text.h>
#include <support/host.h>
#include <support/stream_bytes.h>

#include <zlib.h>

#include <cstring>

namespace ox::test {
namespace {

class Golden : public HostTest {};

// In buffers, and inflated from files that compress.
TEST_F(Golden, ArrayElements) {
    for (const Record &r : records("golden.txt")) {
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
        uLongf n = r.bytes.size() - 8;
        Bytes inflated(n);
        EXPECT_EQ(uncompress(inflated.data(), &n, &packed[tag], packed.size() - tag), Z_OK);
        EXPECT_EQ(to_hex(inflated), to_hex(cut(r.bytes, 8)));
    }
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
        SCOPED_TRACE(c.array);
        TestStream s({});
        s->compact = 1;
        oxArray *a = arr(c.array);
        ASSERT_EQ(s.put(a), oiSUCCESS);
        EXPECT_EQ(oxGetUserBits(a), c.record);
        const Bytes all = s.contents(), data = hex(c.data);
        EXPECT_EQ(to_hex(cut(all, all.size() - data.size())), to_hex(data));
        oiItem_tag item{};
        EXPECT_EQ(oiGetItem(s.get(), &item, 8), oiSUCCESS);
        EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1);
    }
}

} // namespace
} // namespace ox::test
