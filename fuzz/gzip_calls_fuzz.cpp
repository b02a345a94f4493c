// The compressor's functions in any order and any state.
#include "harness.h"

#include <cstring>

using namespace ox::fuzz;

constexpr char calls[] = "WWAAACSRRBBKDLFN"; // the usual ones more often

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const Run run(size, 4096);
    static char carrier[1 << 16];
    FILE *f = fmemopen(carrier, sizeof carrier, "w+b");
    gzipString_tag *g = oiNewGzipString();
    static uint8_t block[255 * 79];
    while (in.size() > 0) {
        const uint8_t op = in.byte();
        const auto n = static_cast<int32_t>(in.byte() * (op & 0x80 ? 79 : 1));
        const uint64_t before = gzipStringReadSoFar(g);
        switch (calls[op & 15]) {
        case 'W':
            gzipStringWriteInit(g, f);
            break;
        case 'A': {
            std::memset(block, in.byte(), sizeof block / 2);
            const int32_t got = gzipStringWriteAddBytes(g, block, n);
            require(got == n || got <= 0 || n < 1, "count of added bytes");
            break;
        }
        case 'C':
            gzipStringWriteClose(g);
            break;
        case 'S':
            fseek(f, in.byte(), SEEK_SET);
            break;
        case 'R':
            gzipStringReadInit(g, f, n);
            break;
        case 'B': {
            const int32_t got = gzipStringReadBytes(g, block, static_cast<uint64_t>(n));
            require(got >= 0 && got <= n, "count of inflated bytes");
            require(gzipStringReadSoFar(g) == before + static_cast<uint64_t>(got), "total");
            break;
        }
        case 'K':
            gzipStringReadSkipBytes(g, static_cast<uint64_t>(n) << (in.byte() & 15));
            break;
        case 'D':
            gzipStringReadClose(g);
            break;
        case 'L':
            require(oiGetCompressedVELVariableBytes(g) <= INT32_MAX, "length");
            oiGetCompressedVELVariableOffset(g);
            break;
        case 'F': // bytes of a stranger
            rewind(f);
            fwrite(in.data(), 1, in.size(), f);
            rewind(f);
            break;
        default:
            oiDeallocateGzipString(g);
            g = oiNewGzipString();
        }
    }
    oiDeallocateGzipString(g);
    fclose(f);
    return 0;
}
