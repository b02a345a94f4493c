// Conversion of UTF-16 into a buffer of any size, and the narrowing of text lengths.
#include <containers/encoding.h>
#include <core/tuning.h>
#include <errors/raise.h>

#include <algorithm>
#include <cstdint>
#include <unicode/ucnv.h>

namespace ox {

int32_t converter_length(kwSize n) {
    if (n > INT32_MAX) oxErrMsg(FP64BITSIZE);
    return static_cast<int32_t>(n);
}

// ASCII is copied; the converter takes over at the first other unit, in its start state, which is
// the state that ASCII leaves behind.
Written from_utf16(const Encoding &e, char *dst, kwSize capacity, const oxChar *src, kwSize n) {
    capacity = std::min(capacity, kwSize{INT32_MAX}); // ICU rejects longer targets
    kwSize done = 0;
    if (utIsAsciiSuperset(e.name)) done = utNarrowAscii(dst, src, std::min(n, capacity));
    UConverter *converter = done < n ? utGetConverter(e.name) : nullptr;
    if (!converter) return {done, false};
    char *target = dst + done;
    const oxChar *end = src + n;
    UErrorCode status = U_ZERO_ERROR;
    for (src += done; src < end && U_SUCCESS(status);) {
        const oxChar *limit =
            src + std::min(static_cast<kwSize>(end - src), tuning::converter_units);
        ucnv_fromUnicode(converter, &target, dst + capacity, &src, limit, nullptr, limit == end,
                         &status);
    }
    ucnv_reset(converter);
    return {static_cast<kwSize>(target - dst), status == U_BUFFER_OVERFLOW_ERROR};
}

} // namespace ox
