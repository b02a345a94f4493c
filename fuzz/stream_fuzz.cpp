// Any bytes as a stream of elements on any carrier, read in order and at any offset: whole items,
// or headers of arrays in both modes.
#include "harness.h"

#include <core/check_header.h>

#include <cstring>

using namespace ox::fuzz;

namespace {

int32_t read_header(oiStreamRec_tag *s, kwSize offset, int mode) {
    char name[64];
    std::memset(name, 'x', sizeof name);
    oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
    const int32_t status = oiGetMatrixHeader(s, &item, offset, mode);
    require(status == oiSUCCESS || !item.data, "no array without success");
    auto *a = static_cast<oxArray *>(item.data);
    if (!a) return status;
    require(std::memchr(name, 0, sizeof name) != nullptr, "the name is terminated");
    require(ox::check_header(a, ox::CheckDepth::header) == 0, "rules of a header");
    if (mode) require_well_formed(a);
    oxDestroyArray(a);
    return status;
}

int32_t read_item(oiStreamRec_tag *s, kwSize offset) {
    oiItem_tag item{};
    const int32_t status = oiGetItem(s, &item, offset);
    require(status == oiSUCCESS || !item.data, "no data without success");
    finish_item(s, item);
    return status;
}

} // namespace

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
