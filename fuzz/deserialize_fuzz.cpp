// Any bytes as a serialised array; what can be read is written and read again, and stays the same.
#include "harness.h"

#include <cstring>

using namespace ox::fuzz;

namespace {

bool same_bytes(const oxArray *a, const oxArray *b) {
    const kwSize n = oxGetNumberOfElements(a);
    return n == oxGetNumberOfElements(b) && std::memcmp(oxGetData(a), oxGetData(b), n) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    oxArray *a;
    const Run outer(size, 64); // with both copies
    {
        const char *tag = nullptr;
        const Run run(size, 16);
        a = oxDeserializeWithTag(data, size, &tag);
        require(!tag || std::strlen(tag) < 64, "length of the tag");
        oxDestroyArray(a);
    }
    a = oxDeserialize(data, size);
    if (!a) return 0;
    require_well_formed(a);
    const uint16_t options = data[4] || data[5] ? oiWIDE : 0;
    oxArray *bytes = oxSerializeEx(a, options);
    oxArray *b = oxDeserialize(oxGetData(bytes), oxGetNumberOfElements(bytes));
    require(b != nullptr, "what was written can be read");
    require(oxAreMatricesEqualNanOptional(a, b, 0) == 1, "and is equal");
    require(same_bytes(bytes, oxSerializeEx(b, options)), "and is written the same");
    return 0;
}
