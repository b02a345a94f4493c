// Any bytes as a stream of elements on any carrier, read in order and at any offset.
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return ox::fuzz::read_stream(data, size, [](oiStreamRec_tag *s, kwSize offset, int) {
        return ox::fuzz::read_item(s, offset);
    });
}
