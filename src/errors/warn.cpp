// Issuing warnings: composing, showing, recording, or raising them as their status says.
#include <errors/raise.h>
#include <errors/warn.h>

#include <ut.h>

#include <cstring>
#include <utility>

namespace ox {
namespace {

constexpr kwSize message_size = 8192;   // bytes of a message, NUL included
constexpr kwSize composed_size = 16896; // bytes of what is shown: both texts and the identifier

extern "C" void print_warning(const char *text) { utPrintf("%s\n", text); }
void nothing() {}

constinit oxWarningHandler handler = print_warning;
constinit AfterWarning after_warning = nothing;

int status_of(utWarnCtx *context, const char *id) {
    if (!context) return UT_WARNING_SHOWN;
    if (utIsWarningModeOn(context, UT_WARNING_MODE_QUIET)) return UT_WARNING_RECORDED;
    return utGetWarningStatus(context, id);
}

void compose(utWarnCtx *context, const char *id, const char *message, char *out) {
    utSNprintf(out, composed_size, "%s%s", translate("Warning: "), message);
    if (!id[0] || !context || !utIsWarningModeOn(context, UT_WARNING_MODE_HINT)) return;
    const kwSize used = std::strlen(out);
    utSNprintf(out + used, composed_size - used,
               "\n(Type \"warning off %s\" to suppress this warning.)", id);
}

void show(utWarnCtx *context, const char *id, const char *message) {
    char composed[composed_size];
    compose(context, id, message, composed);
    handler(composed);
    if (context) utSetLastPrintedWarningId(context, id);
    after_warning();
    if (!context) return;
    utSetLastWarningMsg(context, id, message);
    utCallRegisteredWarningCallback(context);
}

[[noreturn]] void raise_instead(utWarnCtx *context, const char *id, const char *message) {
    utSetLastPrintedWarningId(context, id);
    oxErrMsgIdAndTxt(id, "%s", message);
}

void issue(const char *id, const char *message) {
    utWarnCtx *context = utGetWarningManagerContext();
    switch (status_of(context, id)) {
    case UT_WARNING_SHOWN:
        return show(context, id, message);
    case UT_WARNING_ERROR:
        raise_instead(context, id, message);
    default:
        if (context) utSetLastWarningMsg(context, id, message);
    }
}

} // namespace

AfterWarning set_after_warning_hook(AfterWarning fn) {
    return std::exchange(after_warning, fn ? fn : nothing);
}

} // namespace ox

void oxVWarningMsgIdAndTxt(const char *id, const char *fmt, va_list args) {
    char message[ox::message_size] = "";
    utVSNprintf(message, sizeof message, ox::translate(fmt), args);
    ox::issue(id ? id : "", message);
}

void oxWarningMsgIdAndTxt(const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    oxVWarningMsgIdAndTxt(id, fmt, args);
    va_end(args);
}

void oxWarningMsgTxt(const char *fmt, ...) {
    if (!fmt[0]) {
        if (utWarnCtx *context = utGetWarningManagerContext()) utSetLastWarningMsg(context, "", "");
        return;
    }
    char message[ox::message_size] = "";
    va_list args;
    va_start(args, fmt);
    utVSNprintf(message, sizeof message - 1, ox::translate(fmt), args); // room for the period
    va_end(args);
    std::strcat(message, ".");
    ox::issue("", message);
}

void oxWarningIdAndMsg(const char *id, oxErrorMessage number) {
    oxWarningMsgIdAndTxt(id, oxGetErrorTableEntry(number));
}

oxWarningHandler oxSetWarningMessageHandler(oxWarningHandler handler) {
    return std::exchange(ox::handler, handler ? handler : ox::print_warning);
}
