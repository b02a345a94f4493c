// Compressed elements: of any inner bytes, correctly deflated, and of any compressed bytes.
#include "harness.h"

#include <zlib.h>

#include <cstring>
#include <vector>

using namespace ox::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t choice = in.byte();
    const bool wide = choice & 8, swapped = choice & 4, raw = choice & 16;
    std::vector<uint8_t> bytes(16);
    uLongf length = in.size();
    if (raw) {
        bytes.insert(bytes.end(), in.data(), in.data() + in.size());
    } else {
        length = compressBound(in.size());
        bytes.resize(16 + length);
        compress2(bytes.data() + 16, &length, in.data(), in.size(), 1);
        bytes.resize(16 + length);
    }
    const uint64_t words[2] = {oiCOMPRESSED, length};
    std::memcpy(bytes.data(), words, 16);
    if (!wide) {
        const uint32_t tag[2] = {oiCOMPRESSED, static_cast<uint32_t>(length)};
        std::memcpy(bytes.data() + 8, tag, 8);
        bytes.erase(bytes.begin(), bytes.begin() + 8);
    }
    if (swapped)
        for (std::size_t k = 0; k + 4 <= (wide ? 16u : 8u); k += 4) {
            std::swap(bytes[k], bytes[k + 3]);
            std::swap(bytes[k + 1], bytes[k + 2]);
        }
    const uint8_t tail[16] = {}; // a second element, perhaps
    bytes.insert(bytes.end(), tail, tail + 16);
    const Run run(bytes.size(), 16 * 1032);
    const Stream s(static_cast<uint8_t>((choice & 12) | (choice & 1 ? 1 : 2)), bytes.data(),
                   bytes.size());
    if (!s.get()) return 0;
    for (int k = 0; k < 2; ++k) {
        oiItem_tag item{};
        const int32_t status = choice & 32
                                   ? oiGetMatrixHeaderAtCurrentOffset(s.get(), &item, choice & 64)
                                   : oiGetCurrentItem(s.get(), &item);
        require(status == oiSUCCESS || !item.data, "no data without success");
        require(!oiIsVELVariableCompressionEnabled(oiGetGzipString(s.get())), "it is closed");
        if (choice & 32 && !(choice & 64) && item.data)
            oxDestroyArray(static_cast<oxArray *>(item.data));
        else
            finish_item(s.get(), item);
    }
    return 0;
}
