// Any bytes as a stream of elements on any carrier, read in order and at any offset.
#include "harness.h"

using namespace ox::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t choice = in.byte(), moves = in.byte();
    const Run run(size, 16 * ((choice & 3) ? 1032 : 1));
    const Stream s(choice, in.data(), in.size());
    if (!s.get()) return 0;
    for (int k = 0; k < 16; ++k) {
        oiItem_tag item{};
        const kwSize offset =
            in.size() > 0 ? (moves * 37u * static_cast<unsigned>(k)) % in.size() : 0;
        const int32_t status = (moves >> (k & 7)) & 1 ? oiGetItem(s.get(), &item, offset)
                                                      : oiGetCurrentItem(s.get(), &item);
        require(status == oiSUCCESS || !item.data, "no data without success");
        finish_item(s.get(), item);
        if (status == oiSHORT_READ && !moves) break;
    }
    return 0;
}
