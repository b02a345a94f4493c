// The record of the last error: which one is current, and how texts and stack are stored in it.
#include <containers/copies.h>
#include <core/alloc.h>
#include <ox/array_list.h>
#include <ox/create.h>
#include <ox/errors.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <utility>

namespace ox {
namespace {

constinit oxErrorState default_state = {1, nullptr, 0, nullptr, 0, nullptr};
constinit oxErrorState *current = &default_state;

const char *text_or_empty(const char *text) { return text ? text : ""; }

bool lies_in(const char *text, const char *buffer, kwSize capacity) {
    const std::less<> before; // the pointers may belong to different blocks
    return buffer && !before(text, buffer) && before(text, buffer + capacity);
}

// Buffers never shrink. Without memory the old buffer takes what fits, so recording cannot fail.
// text may lie in the buffer itself: it then fits, and nothing moves under it.
void store_text(char *&buffer, kwSize &capacity, const char *text) {
    const kwSize length = std::strlen(text) + 1;
    if (length > capacity) {
        if (void *p = oxReallocEx(buffer, length)) {
            buffer = static_cast<char *>(p);
            capacity = length;
        }
    }
    if (!capacity) return;
    std::memmove(buffer, text, std::min(length, capacity));
    buffer[capacity - 1] = '\0';
}

// Either text may be what the record itself holds, even with the two exchanged.
void store_texts(oxErrorState &s, const char *id, const char *msg) {
    RawArray<char> kept;
    if (lies_in(msg, s.identifier, s.identifier_capacity)) {
        const kwSize length = std::strlen(msg) + 1;
        kept = RawArray<char>::make(length);
        if (kept) std::memcpy(kept.get(), msg, length);
        msg = kept ? kept.get() : "";
    }
    store_text(s.identifier, s.identifier_capacity, id);
    store_text(s.message, s.message_capacity, msg);
}

// The copy is made first: stack may be the one that is replaced. Without memory none is kept.
void store_stack(oxErrorState &s, const oxArray *stack) {
    oxArray *copy = stack ? shared_copy(stack) : nullptr;
    if (copy) oxSetArrayScope(copy, oxSCOPE_ERROR_STACK);
    oxDestroyArray(std::exchange(s.stack, copy));
}

} // namespace
} // namespace ox

using ox::current;

oxErrorMode oxGetErrorMode(void) { return current->mode; }

oxErrorMode oxSetErrorMode(oxErrorMode mode) { return std::exchange(current->mode, mode); }

void oxSetErrorOn(void) { current->mode = 1; }

void oxGetLastErrIdAndMsg(const char **id, const char **msg) {
    oxGetLastErrIdAndMsgAndStack(id, msg, nullptr);
}

void oxGetLastErrIdAndMsgAndStack(const char **id, const char **msg, oxArray **stack) {
    if (id) *id = ox::text_or_empty(current->identifier);
    if (msg) *msg = ox::text_or_empty(current->message);
    if (stack) *stack = current->stack;
}

const char *oxGetLastErrMsg(void) { return ox::text_or_empty(current->message); }

void oxSetLastErrIdAndMsg(const char *id, const char *msg) {
    oxSetLastErrIdAndMsgAndStack(id, msg, nullptr);
}

void oxSetLastErrIdAndMsgAndStack(const char *id, const char *msg, const oxArray *stack) {
    ox::store_texts(*current, ox::text_or_empty(id), ox::text_or_empty(msg));
    ox::store_stack(*current, stack);
}

void oxInitErrorState(oxErrorState *state) { *state = {1, nullptr, 0, nullptr, 0, nullptr}; }

void oxClearErrorState(oxErrorState *state) {
    oxFreeEx(std::exchange(state->message, nullptr));
    oxFreeEx(std::exchange(state->identifier, nullptr));
    state->message_capacity = state->identifier_capacity = 0;
    oxDestroyArray(std::exchange(state->stack, nullptr));
}

void oxErrorCleanup(void) { oxClearErrorState(current); }

oxErrorState *oxGetErrorState(void) { return current; }

void oxSetErrorState(oxErrorState *state) { current = state; }

void oxSwapErrorState(oxErrorState **state) { std::swap(current, *state); }
