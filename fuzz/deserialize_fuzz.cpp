// Any bytes as a serialised array; what can be read is written and read again, and stays the same.
#include "harness.h"

#include <cstring>

using namespace ox::fuzz;

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
    require(oxAreMatricesEqual(bytes, oxSerializeEx(b, options)) == 1, "and is written the same");
    return 0;
}
