// The checks on the operands of first:last and first:step:last.
#include <core/imaginary.h>
#include <errors/raise.h>
#include <errors/warn.h>
#include <ox.h>

#include <cmath>
#include <limits>

using namespace ox;

namespace {

constexpr const char *mixed_char = "VELTRO:colon:mixedCharOperands";
constexpr const char *real_scalars = "Colon operands must be real scalars.";

struct Operands {
    int n;
    const oxArray **args;
    const oxArray *const *begin() const { return args; }
    const oxArray *const *end() const { return args + n; }
};

bool is_plain(const oxArray *a) {
    return a->class_code == oxDOUBLE_CLASS || a->class_code == oxLOGICAL_CLASS;
}

// The class of the first operand that is neither double nor logical; double when there is none.
int operand_class(const Operands &operands) {
    for (const oxArray *a : operands)
        if (!is_plain(a)) return a->class_code;
    return oxDOUBLE_CLASS;
}

void warn_logical(const Operands &operands) {
    for (const oxArray *a : operands)
        if (a->class_code == oxLOGICAL_CLASS)
            oxWarningMsgIdAndTxt("VELTRO:colon:logicalInput",
                                 "Colon operands should not be logical.");
}

void check_char(const Operands &operands) {
    if (!operands.args[0]->is_char() || !operands.args[operands.n - 1]->is_char())
        oxErrMsgIdAndTxt(
            mixed_char,
            "For colon operator with char operands, first and last operands must be char.");
    if (operands.n < 3) return;
    const oxArray *step = operands.args[1];
    if (!step->is_char() && step->class_code != oxDOUBLE_CLASS)
        oxErrMsgIdAndTxt(mixed_char, "For colon operator with char operands, second operand must "
                                     "be char or real scalar double.");
}

void check_other(const Operands &operands, int cls) {
    for (const oxArray *a : operands)
        if (a->class_code != cls && a->class_code != oxDOUBLE_CLASS)
            oxErrMsgIdAndTxt("VELTRO:colon:mixedNonDoubleOperands",
                             "Colon operands must be all the same type, or mixed with real scalar "
                             "doubles.");
    for (const oxArray *a : operands)
        if (is_complex(a) || a->get_number_of_elements() > 1)
            oxErrMsgIdAndTxt("VELTRO:colon:nonDoubleOperandsNotRealScalar", real_scalars);
}

void warn_not_real_scalar(const Operands &operands, int cls) {
    for (const oxArray *a : operands)
        if (is_complex(a) || (cls != oxDOUBLE_CLASS && a->get_number_of_elements() != 1)) {
            oxWarningMsgIdAndTxt("VELTRO:colon:operandsNotRealScalar", real_scalars);
            return; // once per call
        }
}

struct Range {
    double low, high;
};

template<class T> constexpr Range range_of() {
    return {static_cast<double>(std::numeric_limits<T>::min()),
            static_cast<double>(std::numeric_limits<T>::max())};
}

// 64-bit limits round up to 2^63 and 2^64, which are accepted.
Range class_range(int cls) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    constexpr Range ranges[] = {range_of<int8_t>(),   range_of<uint8_t>(), range_of<int16_t>(),
                                range_of<uint16_t>(), range_of<int32_t>(), range_of<uint32_t>(),
                                range_of<int64_t>(),  range_of<uint64_t>()};
    if (cls >= oxINT8_CLASS && cls <= oxUINT64_CLASS) return ranges[cls - oxINT8_CLASS];
    return {-inf, inf};
}

bool in_range(double v, int cls) {
    if (cls < oxSINGLE_CLASS || cls > oxUINT64_CLASS) return true;
    if (cls == oxSINGLE_CLASS) return !std::isfinite(v) || std::isfinite(static_cast<float>(v));
    const Range r = class_range(cls);
    return v >= r.low && v <= r.high;
}

} // namespace

oxClassID oxGetColonArgs(int nargs, const oxArray *args[], double out[4]) {
    const Operands operands{nargs, args};
    const int cls = operand_class(operands);
    if (cls == oxDOUBLE_CLASS)
        warn_logical(operands);
    else if (cls == oxCHAR_CLASS)
        check_char(operands);
    else
        check_other(operands, cls);
    warn_not_real_scalar(operands, cls);

    out[0] = out[1] = out[2] = out[3] = 0;
    const auto id = static_cast<oxClassID>(cls);
    for (const oxArray *a : operands)
        if (a->get_number_of_elements() == 0) {
            out[3] = 1;
            return id;
        }
    for (int k = 0; k < nargs; ++k) out[k] = oxGetScalar(args[k]);
    oxGetColonArgValues(nargs, out, id);
    return id;
}

void oxGetColonArgValues(int nargs, double values[], oxClassID cls) {
    const bool whole = cls == oxCHAR_CLASS || (cls >= oxINT8_CLASS && cls <= oxUINT32_CLASS);
    for (int k = 0; whole && k < nargs; ++k)
        if (values[k] != std::trunc(values[k]) || std::isnan(values[k]))
            oxErrMsgIdAndTxt(
                "VELTRO:colon:scalarDoubleMustBeIntegerValued",
                "Double operands interacting with %s operands must have integer values.",
                cls == oxCHAR_CLASS ? "char" : "integer");
    if (nargs == 2) {
        values[2] = values[1];
        values[1] = 1;
    }
    if (!in_range(values[0], cls) || !in_range(values[2], cls))
        oxErrMsgIdAndTxt("VELTRO:colon:OutOfRange",
                         "Colon operands must be in range of the data type.");
}
