// The one raising routine and the public raisers over it.
//
// A raise allocates nothing that could fail loudly: all text is built in buffers on the stack, and
// the exception falls back to a static reserve. The exception is complete before the allocation
// context is freed, because the arguments may lie in its blocks.
#include <errors/raise.h>
#include <ox/memory.h>

#include <ut.h>
#include <ut.hpp>

#include <cstring>
#include <utility>

namespace ox {
namespace {

constexpr kwSize text_size = 8192; // bytes of each text, NUL included

constinit Translation translation = nullptr;
constinit oxErrmsgPrefixFcn prefix_fcn = nullptr;

struct Options {
    bool prefixed = true;
    bool period = false;
    const oxArray *stack = nullptr;
};

void fill_prefix(const char *fmt, char (&prefix)[text_size]) {
    if (!prefix_fcn) return;
    prefix_fcn(fmt, prefix, text_size);
    prefix[text_size - 1] = '\0';
}

// Joining may cut what is recorded; the exception's message stays whole.
void record(const char *id, const char *prefix, const char *message, const oxArray *stack) {
    if (!oxGetErrorMode()) return;
    char joined[text_size];
    if (prefix[0]) {
        utSNprintf(joined, text_size, "%s%s", prefix, message);
        message = joined;
    }
    oxSetLastErrIdAndMsgAndStack(id, message, stack);
}

[[noreturn]] void raise_formatted(const char *id, const char *fmt, va_list args, Options o = {}) {
    char prefix[text_size] = "", message[text_size] = "";
    if (o.prefixed) fill_prefix(fmt, prefix);
    utVSNprintf(message, text_size, translate(fmt), args);
    if (o.period) {
        message[text_size - 2] = '\0';
        std::strcat(message, ".");
    }
    const ut::simple_exception raised(id, message);
    record(raised.identifier(), prefix, message, o.stack);
    oxCleanupForThrow();
    throw raised;
}

// The utility library formats its own errors; they are recorded and cleaned up like every other.
extern "C" [[noreturn]] void raise_for_utility(const char *id, const char *message) {
    oxErrMsgIdAndTxt(id, "%s", message);
}
[[maybe_unused]] const utErrorRaiser previous_raiser = utSetErrorRaiser(raise_for_utility);

} // namespace

Translation set_message_translation(Translation fn) { return std::exchange(translation, fn); }

const char *translate(const char *format) { return translation ? translation(format) : format; }

void raise_out_of_memory() { oxErrMsg(FNOMEM); }

} // namespace ox

oxErrmsgPrefixFcn oxSetErrmsgPrefixFcn(oxErrmsgPrefixFcn fn) {
    return std::exchange(ox::prefix_fcn, fn);
}

void oxErrMsg(oxErrorMessage number) {
    constexpr kwSize lead = 7;
    char id[ox::text_size] = "VELTRO:";
    utLowerCaseCopy(id + lead, oxGetErrorMessageEnumName(number) + 1, sizeof id - lead);
    oxErrMsgIdAndTxt(id, oxGetErrorTableEntry(number));
}

void oxErrMsgIdAndTxt(const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    ox::raise_formatted(id, fmt, args);
}

void oxVErrMsgIdAndTxt(const char *id, const char *fmt, va_list args) {
    ox::raise_formatted(id, fmt, args);
}

void oxSimpleErrMsgIdAndTxt(const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    ox::raise_formatted(id, fmt, args, {.prefixed = false});
}

void oxSimpleErrStackAndMsgIdAndTxt(const oxArray *stack, const char *id, const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    ox::raise_formatted(id, fmt, args, {.prefixed = false, .stack = stack});
}

void oxErrMsgTxt(const char *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    ox::raise_formatted("", fmt, args, {.period = true});
}

void oxFcnUndefinedForClass(const char *function, const char *class_name) {
    oxErrMsgIdAndTxt("VELTRO:UndefinedFunction",
                     "Function '%s' is not defined for values of class '%s'.", function,
                     class_name);
}

void oxCleanupForThrow(void) {
    utResetFPU();
    oxFreeAllocListContext();
    ut_cleanup_protected_items(utGetErrorContext());
}
