// The statuses of the three conversion warnings, cached so that kernels test only local flags.
#include <errors/warn.h>
#include <index/operands/conversion_warnings.h>
#include <index/operands/convert_rules.h>

#include <ut.h>

namespace ox {
namespace {

struct KindText {
    uint32_t kind;
    const char *id, *text;
};
constexpr KindText texts[] = {
    {kind_nan, "VELTRO:intConvertNaN", "NaN converted to %s(0)."},
    {kind_overflow, "VELTRO:intConvertOverflow",
     "Out of range value converted to intmin('%s') or intmax('%s')."},
    {kind_rounded, "VELTRO:intConvertNonIntVal",
     "Conversion rounded non-integer floating point value to nearest %s value."},
};

bool warnings_cached = false;
uint32_t shown = kinds_warned;

// Without a manager every warning is shown.
void read_statuses() {
    utWarnCtx *context = utGetWarningManagerContext();
    shown = 0;
    for (const KindText &t : texts)
        if (!context || utGetWarningStatus(context, t.id) == UT_WARNING_SHOWN) shown |= t.kind;
}

} // namespace

uint32_t shown_conversion_warnings() {
    if (warnings_cached) return shown;
    utWarnCtx *context = utGetWarningManagerContext();
    read_statuses();
    warnings_cached = context && utRegisterSetWarningStatusCallback(context, read_statuses);
    return shown;
}

void warn_of_conversion(uint32_t kind, const char *class_name) {
    for (const KindText &t : texts)
        if (t.kind == kind) oxWarningMsgIdAndTxt(t.id, t.text, class_name, class_name);
}

} // namespace ox
