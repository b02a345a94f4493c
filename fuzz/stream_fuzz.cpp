// Any bytes as a stream of elements on any carrier, read in order and at any offset: whole items,
// or headers of arrays in both modes.
#include "harness.h"

using namespace ox::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t choice = in.byte(), moves = in.byte();
    const Run run(size, 16 * ((choice & 3) ? 1032 : 1));
    const Stream s(choice, in.data(), in.size());
    if (!s.get()) return 0;
    const bool headers = choice & 32;
    for (unsigned k = 0; k < 16; ++k) {
        const unsigned place = moves * k * (headers ? 1 : 37);
        const bool moved = headers ? moves != 0 : moves >> (k & 7) & 1;
        const kwSize offset = moved && in.size() > 0 ? place % in.size() : oiCURRENT_OFFSET;
        const int32_t status =
            headers ? read_header(s.get(), offset, choice >> 4 & 1) : read_item(s.get(), offset);
        if (status == oiSHORT_READ && !moves) break;
    }
    return 0;
}
