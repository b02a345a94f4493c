// What array elements look like, byte by byte, on a little-endian machine.
#include <support/stream_bytes.h>
#include <support/suite.h>

namespace {

class Golden : public HostTest {};

TEST_F(Golden, ArrayElements) {
    for (const Record &r : records("stream/golden.txt")) {
        TestStream s(form_of(r.fields[0]));
        EXPECT_EQ(s.put(arr(r.fields[1])), oiSUCCESS);
        EXPECT_EQ(to_hex(s.contents()), to_hex(r.bytes)) << r.fields[0] << ' ' << r.fields[1];
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
