// Bytes that nobody wrote: cut short, changed, and made up. Whatever they are, reading them ends
// with a status or with an array that holds every rule, and leaves nothing behind.
#include <core/startup.h>
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <cstring>

namespace {

class Hostile : public HostTest {};

// Deserialises, and reads as a sequential carrier where claims cannot be compared with a length.
void expect_harmless(StreamForm form, const Bytes &bytes, bool must_fail = false) {
    const Contexts contexts;
    oxArray *a = oxDeserialize(bytes.data(), bytes.size());
    EXPECT_TRUE(!must_fail || !a);
    expect_well_formed(a);
    if (bytes.size() < 8) return;
    form.carrier = Carrier::sequential;
    TestStream s(form, cut(bytes, 8));
    oiItem_tag item{};
    const int32_t status = oiGetCurrentItem(s.get(), &item);
    EXPECT_TRUE(!must_fail || status != oiSUCCESS);
    if (status != oiSUCCESS || !item.data || item.data == &item.name) return;
    if (item.type != oiMATRIX) return s->free(item.data);
    expect_well_formed(static_cast<oxArray *>(item.data));
}

TEST_F(Hostile, EveryPrefixFailsAndEveryChangedByteAndWordIsHarmless) {
    for (const Record &r : records("stream/golden.txt")) {
        const StreamForm form = form_of(r.fields[0]);
        for (std::size_t at = 0; at < r.bytes.size(); ++at) {
            expect_harmless(form, cut(r.bytes, 0, at), true);
            for (const int change : {1, 2, 0x10, 0x80, 0xFF})
                expect_harmless(
                    form, patched(r.bytes, at, {static_cast<unsigned char>(r.bytes[at] ^ change)}));
        }
        for (std::size_t at = 8; at + 4 <= r.bytes.size(); at += 4)
            for (const char *word : {"00000000", "ffffffff", "ffffff7f", "00000080", "0e000000",
                                     "05000000", "03000000", "11000000", "f8ffffff"})
                expect_harmless(form, patched(r.bytes, at, hex(word)));
    }
    EXPECT_STREQ(oxGetLastErrMsg(), "");
}

TEST_F(Hostile, MalformedArraysByTheirFault) {
    for (const Carrier carrier : {Carrier::buffer, Carrier::sequential}) {
        for (const Record &r : records("stream/malformed.txt")) {
            const std::size_t start = carrier == Carrier::buffer ? 8 : 0;
            const int32_t status = std::stoi(r.fields[0]);
            TestStream s({carrier});
            s.put(arr(r.fields[2]));
            TestStream t({carrier},
                         patched(s.contents(), start + std::stoul(r.fields[3]), r.bytes));
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(t.get(), &item), status) << r.fields[1];
            EXPECT_EQ(item.data != nullptr, status == oiSUCCESS) << r.fields[1];
            EXPECT_EQ(t->offset, s.contents().size()) << r.fields[1];
        }
    }
}

// What is stored as another type is converted without a word; odd but legal forms are read.
TEST_F(Hostile, ForeignWritersAreUnderstood) {
    for (const Record &r : records("stream/foreign.txt")) {
        TestStream s({});
        s.put(arr(r.fields[0]));
        Bytes bytes = s.contents();
        bytes.resize(8 + std::stoul(r.fields[1]));
        bytes = joined(bytes, r.bytes);
        const auto n = static_cast<uint32_t>(bytes.size() - 16);
        std::memcpy(&bytes[12], &n, 4);
        const oxArray *a = nullptr;
        EXPECT_NO_WARNING(a = oxDeserialize(bytes.data(), bytes.size()));
        EXPECT_EQ(a ? text(a) : "null", text(arr(r.fields[2]))) << to_hex(r.bytes);
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
            const std::size_t before = live_headers();
            TestStream s({carrier}, bytes);
            FailingAllocation none(0);
            oiItem_tag item{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &item), oiSHORT_READ);
            EXPECT_LE(FailingAllocation::count(), 6u);
            EXPECT_EQ(live_headers(), before);
        }
    }
}

} // namespace
