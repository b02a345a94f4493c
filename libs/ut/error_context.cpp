// The error context: clean-ups that run when something raises, last registered first.
#include "ut/internal.h"

#include <exception>

namespace {

struct Protected {
    void (*cleanup)(void *); // what to run
    void *data;              // its argument
};

} // namespace

struct utErrorContext {
    ut::GrowingArray<Protected> items;
};

static constinit utErrorContext error_context{};

utErrorContext *utGetErrorContext() { return &error_context; }

bool ut_protect(utErrorContext *context, void (*cleanup)(void *), void *data) {
    return context->items.append({cleanup, data});
}

bool ut_unprotect(utErrorContext *context, void *data) {
    for (std::size_t k = context->items.count; k-- > 0;) {
        if (context->items.items[k].data != data) continue;
        context->items.remove(k);
        return true;
    }
    return false;
}

// Taking each item off before it runs keeps a clean-up that raises from being run again by that
// raise.
void ut_cleanup_protected_items(utErrorContext *context) {
    std::exception_ptr first;
    while (context->items.count > 0) {
        const Protected item = context->items.items[--context->items.count];
        try {
            item.cleanup(item.data);
        } catch (...) {
            if (!first) first = std::current_exception();
        }
    }
    if (first) std::rethrow_exception(first);
}
