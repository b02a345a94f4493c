// Headers of array elements in both modes, on any carrier and at any offset.
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    return ox::fuzz::read_stream(data, size, ox::fuzz::read_header);
}
