// Compressed elements: of any inner bytes, correctly deflated, and of any compressed bytes.
#include "harness.h"

#include <zlib.h>

#include <vector>

using namespace ox::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t choice = in.byte();
    const bool wide = choice & 8, swapped = choice & 4, raw = choice & 16;
    std::vector<uint8_t> packed(in.data(), in.data() + in.size());
    if (!raw) {
        uLongf length = compressBound(in.size());
        packed.resize(length);
        compress2(packed.data(), &length, in.data(), in.size(), 1);
        packed.resize(length);
    }
    const auto length = static_cast<uint32_t>(packed.size());
    std::vector<uint32_t> tag = {oiCOMPRESSED, length};
    if (wide) tag = {oiCOMPRESSED, 0, length, 0};
    if (swapped)
        for (uint32_t &word : tag) word = __builtin_bswap32(word);
    const auto *first = reinterpret_cast<const uint8_t *>(tag.data());
    std::vector<uint8_t> bytes(first, first + 4 * tag.size());
    bytes.insert(bytes.end(), packed.begin(), packed.end());
    bytes.insert(bytes.end(), 16, 0); // a second element, perhaps
    const Run run(bytes.size(), 16 * 1032);
    const Stream s(static_cast<uint8_t>((choice & 12) | (choice & 1 ? 1 : 2)), bytes.data(),
                   bytes.size());
    if (!s.get()) return 0;
    for (int k = 0; k < 2; ++k) {
        if (choice & 32)
            read_header(s.get(), oiCURRENT_OFFSET, (choice & 64) != 0);
        else
            read_item(s.get(), oiCURRENT_OFFSET);
        require(!oiIsVELVariableCompressionEnabled(oiGetGzipString(s.get())), "it is closed");
    }
    return 0;
}
