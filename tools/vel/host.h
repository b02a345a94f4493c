// What the interpreter does around an extension call.
#pragma once
#include "module_file.h"

#include <ox.h>

#include <string>
#include <vector>

namespace vel {

// Installs the managers for its lifetime. Make one, before any array.
class Host {
public:
    Host();
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    ~Host();
};

// An array-list context for the lifetime of the object; leaving it destroys what it holds.
class Context {
public:
    Context() : index_(oxEnterNewArrayListContext()) {}
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;
    ~Context() { oxExitArrayListContext(index_, nullptr, 0, true); }

private:
    int index_;
};

// What a call left behind, and what became of it.
struct Reclaimed {
    size_t arrays = 0;          // destroyed when the array context was left
    size_t blocks = 0;          // freed when the allocation context was left
    size_t blocks_by_raise = 0; // freed by the raise, before that
};

struct CallResult {
    std::vector<oxArray *> outputs; // temporaries of the caller's context
    Reclaimed reclaimed;
    bool raised = false;
    std::string identifier, message; // of the raise
};

// Calls the module in contexts of its own with max(nlhs, 1) places for outputs. Keeps the outputs
// and reclaims everything else; catches what the module raises.
CallResult call_module(const Module &module, int nlhs, const std::vector<const oxArray *> &inputs);

} // namespace vel
