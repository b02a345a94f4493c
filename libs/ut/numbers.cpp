// Numbers: constants, finiteness, rounding. Never compiled with relaxed floating-point rules.
#include "ut.h"

#include <cmath>
#include <limits>

double utGetNaN() { return std::numeric_limits<double>::quiet_NaN(); }

double utGetInf() { return std::numeric_limits<double>::infinity(); }

double utGetEps() { return std::numeric_limits<double>::epsilon(); }

float utGetSingleEps() { return std::numeric_limits<float>::epsilon(); }

bool utFinite(double x) { return std::isfinite(x); }

// Not std::round: that of some C libraries adds a half and rounds 0.49999999999999994 up.
double utDoubleScalarRound(double x) {
    const double whole = std::trunc(x);
    return std::fabs(x - whole) >= 0.5 ? whole + std::copysign(1.0, x) : whole;
}

double utFdlibm_floor(double x) { return std::floor(x); }

double utFdlibm_ceil(double x) { return std::ceil(x); }
