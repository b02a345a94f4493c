// The warning manager: a status per identifier, two modes, callbacks, and what was last warned.
#include "ut/internal.h"

#include <cstring>

namespace {

struct Status {
    char *identifier; // owned
    int status;       // 0 recorded, 1 shown, 2 error
};

} // namespace

struct utWarnCtx {
    bool enabled = true;
    bool hint = false;                                        // mode 2
    bool quiet = false;                                       // mode 3
    int default_status = UT_WARNING_SHOWN;                    // of "all"
    ut::GrowingArray<Status> statuses{};                      // sorted by identifier
    ut::GrowingArray<utSetWarningStatusCallback> on_change{}; // in order of registration
    utWarningCallback on_warning = nullptr;
    char *last_identifier = nullptr; // owned; null stands for ""
    char *last_message = nullptr;
    char *last_printed = nullptr;
};

namespace {

constinit utWarnCtx context_object{};

// First position whose identifier is not below the one sought.
std::size_t position(const utWarnCtx &context, const char *identifier) {
    std::size_t low = 0;
    std::size_t high = context.statuses.count;
    while (low < high) {
        const std::size_t mid = (low + high) / 2;
        if (std::strcmp(context.statuses.items[mid].identifier, identifier) < 0)
            low = mid + 1;
        else
            high = mid;
    }
    return low;
}

bool holds(const utWarnCtx &context, std::size_t k, const char *identifier) {
    return k < context.statuses.count &&
           std::strcmp(context.statuses.items[k].identifier, identifier) == 0;
}

void forget_statuses(utWarnCtx &context) {
    for (const Status &entry : context.statuses) ut::raw_free(entry.identifier);
    context.statuses.count = 0;
}

bool add_status(utWarnCtx &context, std::size_t k, const char *identifier, int status) {
    char *name = ut::copy_text(identifier);
    if (!name) return false;
    if (!context.statuses.append({name, status})) {
        ut::raw_free(name);
        return false;
    }
    Status *items = context.statuses.items;
    for (std::size_t j = context.statuses.count - 1; j > k; --j) items[j] = items[j - 1];
    items[k] = {name, status};
    return true;
}

// A callback may register further ones; those are called too.
void fire_change(const utWarnCtx &context) {
    for (std::size_t k = 0; k < context.on_change.count; ++k) context.on_change.items[k]();
}

void store(char *&slot, char *text) {
    ut::raw_free(slot);
    slot = text;
}

const char *text_or_empty(const char *text) { return text ? text : ""; }

} // namespace

utWarnCtx *utGetWarningManagerContext() {
    return context_object.enabled ? &context_object : nullptr;
}

bool utSetWarningManagerEnabled(bool on) {
    const bool previous = context_object.enabled;
    context_object.enabled = on;
    return previous;
}

void utResetWarningManager(utWarnCtx *context) {
    forget_statuses(*context);
    context->default_status = UT_WARNING_SHOWN;
    context->hint = context->quiet = false;
    context->on_warning = nullptr;
    store(context->last_identifier, nullptr);
    store(context->last_message, nullptr);
    store(context->last_printed, nullptr);
    fire_change(*context);
}

bool utIsWarningModeOn(utWarnCtx *context, int mode) {
    if (mode == UT_WARNING_MODE_HINT) return context->hint;
    return mode == UT_WARNING_MODE_QUIET && context->quiet;
}

void utSetWarningMode(utWarnCtx *context, int mode, bool on) {
    if (mode != UT_WARNING_MODE_HINT && mode != UT_WARNING_MODE_QUIET) return;
    bool &slot = mode == UT_WARNING_MODE_HINT ? context->hint : context->quiet;
    if (slot == on) return;
    slot = on;
    fire_change(*context);
}

int utGetWarningStatus(utWarnCtx *context, const char *identifier) {
    identifier = text_or_empty(identifier);
    const std::size_t k = position(*context, identifier);
    return holds(*context, k, identifier) ? context->statuses.items[k].status
                                          : context->default_status;
}

bool utSetWarningStatus(utWarnCtx *context, const char *identifier, int status) {
    if (status < UT_WARNING_RECORDED || status > UT_WARNING_ERROR) return false;
    identifier = text_or_empty(identifier);
    if (std::strcmp(identifier, "all") == 0) {
        forget_statuses(*context);
        context->default_status = status;
    } else if (const std::size_t k = position(*context, identifier);
               holds(*context, k, identifier)) {
        context->statuses.items[k].status = status;
    } else if (!add_status(*context, k, identifier, status)) {
        return false;
    }
    fire_change(*context);
    return true;
}

bool utRegisterSetWarningStatusCallback(utWarnCtx *context, utSetWarningStatusCallback callback) {
    for (utSetWarningStatusCallback known : context->on_change)
        if (known == callback) return true;
    return context->on_change.append(callback);
}

// Both copies are made before either is stored: the texts may be the recorded ones themselves.
void utSetLastWarningMsg(utWarnCtx *context, const char *identifier, const char *message) {
    char *new_identifier = ut::copy_text(identifier);
    char *new_message = ut::copy_text(message);
    if (!new_identifier || !new_message) {
        ut::raw_free(new_identifier);
        ut::raw_free(new_message);
        return;
    }
    store(context->last_identifier, new_identifier);
    store(context->last_message, new_message);
}

void utGetLastWarningMsg(utWarnCtx *context, const char **identifier, const char **message) {
    if (identifier) *identifier = text_or_empty(context->last_identifier);
    if (message) *message = text_or_empty(context->last_message);
}

void utSetLastPrintedWarningId(utWarnCtx *context, const char *identifier) {
    if (char *copy = ut::copy_text(identifier)) store(context->last_printed, copy);
}

const char *utGetLastPrintedWarningId(utWarnCtx *context) {
    return text_or_empty(context->last_printed);
}

utWarningCallback utRegisterWarningCallback(utWarnCtx *context, utWarningCallback callback) {
    utWarningCallback previous = context->on_warning;
    context->on_warning = callback;
    return previous;
}

void utCallRegisteredWarningCallback(utWarnCtx *context) {
    if (context->on_warning) context->on_warning();
}
