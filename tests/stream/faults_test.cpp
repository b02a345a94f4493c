// Memory that runs out and carriers that break, at every single call.
#include <stream/items.h>
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <ut.hpp>

#include <cstring>

namespace {

class Faults : public HostTest {};

TEST_F(Faults, EveryAllocationFailsOnce) {
    for (const Record &r : records("stream/golden.txt")) {
        const char *a = r.fields[1].c_str();
        sweep({.name = a,
               .inputs = {a},
               .make = [](auto &in) { return oxSerialize(in[0]); },
               .bare = false,
               .silent = true,
               .other_raise = true});
        sweep({.name = a,
               .make =
                   [](auto &in) {
                       oxArray *made = nullptr; // the stream never raises
                       EXPECT_NO_THROW(
                           made = oxDeserialize(oxGetData(in[0]), oxGetNumberOfElements(in[0])));
                       return made;
                   },
               .silent = true,
               .may_survive = true,
               .setup =
                   [&] {
                       const kwSize n = r.bytes.size();
                       oxArray *v = oxCreateNumericMatrix(1, n, oxUINT8_CLASS, oxREAL);
                       std::memcpy(oxGetData(v), r.bytes.data(), n);
                       return Arrays{v};
                   }});
    }
}

// Writes an array, a plain element and an array, compressed if asked, then reads them back. Every
// status but success ends the run.
int32_t write_and_read(TestStream &s, const StreamForm &form, const oxArray *a) {
    Bytes bytes(600, 3);
    int32_t status = oiREFUSED;
    if (!s.get() || (status = s.put(a)) || (status = s.put(oiUINT8, bytes)) || (status = s.put(a)))
        return status;
    EXPECT_FALSE(BrokenCarrier::lost_bytes());
    TestStream again(form, s.contents()); // a carrier that does not seek is read by another stream
    oiStreamRec_tag *reader = form.carrier == Carrier::sequential ? again.get() : s.get();
    if (!reader) return oiREFUSED;
    oiItem_tag item{};
    if ((status = oiGetItem(reader, &item, again.get() == reader ? oiCURRENT_OFFSET : 0)))
        return status;
    EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1);
    item.data = bytes.data();
    if ((status = oiGetCurrentItem(reader, &item))) return status;
    item = {};
    return oiGetMatrixHeaderAtCurrentOffset(reader, &item, 0);
}

TEST_F(Faults, EveryBrokenCarrierCallIsReported) {
    const oxArray *small =
                      arr("struct 1x2 a,bb: {uint8 1x1: 7} {char 1x2: 'ab'} {cell 2x1: {1} {}} {}"),
                  *large = oxCreateDoubleMatrix(150, 200, oxREAL);
    for (const oxArray *a : {small, large}) {
        for (const Carrier carrier : {Carrier::file, Carrier::sequential}) {
            for (const char *words : {"native", "wide", "compressed"}) {
                StreamForm form = form_of(words, carrier);
                form.breaks = true;
                int32_t status;
                for (std::size_t n = 1;; n += 1 + n / 64) {
                    const Contexts contexts;
                    const BrokenCarrier broken(n);
                    TestStream s(form);
                    status = write_and_read(s, form, a);
                    EXPECT_FALSE(s.get() &&
                                 oiIsVELVariableCompressionEnabled(oiGetGzipString(s.get())));
                    if (BrokenCarrier::calls() < n) break;
                    // Only a file's answer about its position or length can be done without, and
                    // what is read a second time.
                    EXPECT_TRUE(status != oiSUCCESS || n == 1 || carrier == Carrier::file) << n;
                    ASSERT_LT(n, 100000u);
                }
                EXPECT_EQ(status, oiSUCCESS) << form.name;
            }
        }
    }
}

} // namespace
