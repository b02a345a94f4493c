// The first element of an array as a double, and the environment's special numbers.
#include <core/array.h>
#include <core/dispatch.h>

#include <cmath>
#include <limits>

namespace ox {
namespace {

// Whether element (0, 0) is stored; it then is the first stored one.
bool has_first_element(const oxArray *a) {
    if (!is_sparse(a)) return true;
    return a->num.jc && a->num.jc[1] > a->num.jc[0] && a->num.ir[a->num.jc[0]] == 0;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

double oxGetScalar(const oxArray *a) {
    const double nan = oxGetNaN();
    if (a->get_number_of_elements() == 0 || !a->num.pdata) return nan;
    return visit_class(a->class_code, nan, [&]<class T>(std::type_identity<T>) -> double {
        return has_first_element(a) ? static_cast<double>(*data<T>(a)) : 0.0;
    });
}

double oxGetEps(void) { return std::numeric_limits<double>::epsilon(); }
double oxGetInf(void) { return std::numeric_limits<double>::infinity(); }
double oxGetNaN(void) { return std::numeric_limits<double>::quiet_NaN(); }
bool oxIsInf(double x) { return std::isinf(x); }
bool oxIsNaN(double x) { return std::isnan(x); }
bool oxIsFinite(double x) { return std::isfinite(x); }

} // extern "C"
