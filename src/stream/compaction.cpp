// Choosing the smallest integer type that holds double data exactly.
#include <ox/stream.h>
#include <stream/compaction.h>

#include <algorithm>
#include <cmath>

namespace ox {
namespace {

constexpr kwSize scan_block = 1024; // values between two looks at what was found

// Extremes together with 0, and whether every value is integral: NaN and infinity are not, because
// their difference from themselves is NaN.
struct Extremes {
    double lo = 0, hi = 0;
    bool integral = true;

    void scan(const double *x, kwSize n) {
        bool whole = true;
        for (kwSize k = 0; k < n; ++k) {
            whole &= x[k] - std::trunc(x[k]) == 0;
            lo = std::min(lo, x[k]);
            hi = std::max(hi, x[k]);
        }
        integral = whole;
    }
};

} // namespace

// Deliberate: oiINT8 and oiUINT32 are never chosen, and a negative value beside one above 32767
// means oiINT32 at least.
uint32_t compact_type(const double *x, kwSize n) {
    if (n == 0) return oiUINT8;
    Extremes e;
    for (kwSize k = 0; k < n && e.integral; k += scan_block)
        e.scan(x + k, std::min(scan_block, n - k));
    if (!e.integral || e.lo < -2147483648.0 || e.hi > 2147483647.0) return oiDOUBLE;
    if (e.lo < 0) return e.lo >= -32768 && e.hi <= 32767 ? oiINT16 : oiINT32;
    return e.hi > 65535 ? oiINT32 : e.hi > 255 ? oiUINT16 : oiUINT8;
}

} // namespace ox
