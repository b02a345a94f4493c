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

// Writes an array, a plain element and an array, compressed if asked, then reads them back; the
// statuses as they come. Every status but success ends the run.
int32_t run(FILE *f, bool sequential, uint16_t options, const oxArray *a) {
    oiStreamRec_tag *s = BrokenCarrier::stream(f, sequential, options);
    if (!s) return oiREFUSED;
    const auto steps = [&]() -> int32_t {
        unsigned char bytes[600] = {1, 2, 3};
        const oiItem_tag array{oiMATRIX, 0, const_cast<oxArray *>(a), 0};
        const oiItem_tag plain{oiUINT8, sizeof bytes, bytes, 0};
        if (const int32_t status = oiPutItemAtCurrentOffsetWrapper(s, &array)) return status;
        if (const int32_t status = oiPutItem(s, &plain, nullptr)) return status;
        if (const int32_t status = oiPutItemAtCurrentOffsetWrapper(s, &array)) return status;
        EXPECT_EQ(bytes[2], 3);
        if (sequential) { // a new stream over what is there
            rewind(f);
            s->last_operation = 0;
        }
        oiItem_tag item{};
        int32_t status = oiGetItem(s, &item, sequential ? oiCURRENT_OFFSET : 0);
        if (status != oiSUCCESS) return status;
        EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1);
        item.data = bytes;
        if ((status = oiGetCurrentItem(s, &item)) != oiSUCCESS) return status;
        item = {};
        return oiGetMatrixHeaderAtCurrentOffset(s, &item, 0);
    };
    const int32_t status = steps();
    EXPECT_FALSE(oiIsVELVariableCompressionEnabled(oiGetGzipString(s)));
    oiDisposeFileStream(s);
    return status;
}

TEST_F(Faults, EveryBrokenCarrierCallIsReported) {
    const oxArray *small =
                      arr("struct 1x2 a,bb: {uint8 1x1: 7} {char 1x2: 'ab'} {cell 2x1: {1} {}} {}"),
                  *large = oxCreateDoubleMatrix(150, 200, oxREAL);
    for (const oxArray *a : {small, large}) {
        for (const bool sequential : {false, true}) {
            for (const int options : {0, int{oiWIDE}, int{oiCOMPRESS}}) {
                for (std::size_t n = 1;; n += 1 + n / 64) {
                    const Contexts contexts;
                    FILE *f = std::tmpfile();
                    const BrokenCarrier broken(n);
                    const int32_t status = run(f, sequential, static_cast<uint16_t>(options), a);
                    fclose(f);
                    if (BrokenCarrier::calls() < n) {
                        EXPECT_EQ(status, oiSUCCESS);
                        break;
                    }
                    // Only a file's answer about its position or length can be done without.
                    EXPECT_TRUE(status != oiSUCCESS || n == 1 || !sequential) << n;
                    ASSERT_LT(n, 100000u);
                }
            }
        }
    }
}

} // namespace
