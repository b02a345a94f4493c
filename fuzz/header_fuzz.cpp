// Headers of array elements in both modes at any offset.
#include "harness.h"

#include <core/check_header.h>

#include <cstring>

using namespace ox::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t choice = in.byte(), moves = in.byte();
    const Run run(size, 16 * ((choice & 3) ? 1032 : 1));
    const Stream s(choice, in.data(), in.size());
    if (!s.get()) return 0;
    for (int k = 0; k < 8; ++k) {
        char name[64];
        std::memset(name, 'x', sizeof name);
        oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
        const int mode = (choice >> 4) & 1;
        const kwSize offset =
            moves ? static_cast<kwSize>(moves) * static_cast<kwSize>(k) : oiCURRENT_OFFSET;
        const int32_t status = oiGetMatrixHeader(s.get(), &item, offset, mode);
        require(status == oiSUCCESS || !item.data, "no array without success");
        auto *a = static_cast<oxArray *>(item.data);
        if (!a) continue;
        require(std::memchr(name, 0, sizeof name) != nullptr, "the name is terminated");
        require(ox::check_header(a, ox::CheckDepth::header) == 0, "rules of a header");
        if (mode) require_well_formed(a);
        oxDestroyArray(a);
    }
    return 0;
}
