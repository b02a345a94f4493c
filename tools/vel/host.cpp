// What the interpreter does around an extension call.
#include "host.h"

#include <algorithm>
#include <iostream>
#include <ut.hpp>

namespace vel {
namespace {

size_t counted_arrays = 0;
size_t blocks_at_raise = 0;

size_t arrays_in_context() {
    counted_arrays = 0;
    oxApplyToAllArraysOnArrayList([](oxArray *) { ++counted_arrays; });
    return counted_arrays;
}

// A raise asks for a prefix before it cleans up: the moment to count what it is about to free.
void count_blocks(const char *, char *prefix, kwSize size) {
    blocks_at_raise = GetAllocListLength();
    if (size > 0) prefix[0] = '\0';
}

void show_warning(const char *text) { std::cerr << text << '\n'; }

} // namespace

Host::Host() {
    oxInitAllocListManager();
    oxInitArrayListManager();
    oxSetErrmsgPrefixFcn(count_blocks);
    oxSetWarningMessageHandler(show_warning);
}

Host::~Host() {
    oxSetWarningMessageHandler(nullptr);
    oxSetErrmsgPrefixFcn(nullptr);
    oxErrorCleanup();
    oxShutdownArrayList();
    oxShutdownAllocLst();
}

CallResult call_module(const Module &module, int nlhs, const std::vector<const oxArray *> &inputs) {
    CallResult result;
    result.outputs.resize(static_cast<size_t>(std::max(nlhs, 1)), nullptr);
    std::vector<const oxArray *> prhs(inputs);
    const size_t blocks_before = GetAllocListLength();
    const int arrays = oxEnterNewArrayListContext(), blocks = oxEnterNewAllocListContext();
    try {
        module.entry()(nlhs, result.outputs.data(), static_cast<int>(prhs.size()), prhs.data());
    } catch (const ut::simple_exception &e) {
        result.raised = true;
        result.identifier = e.identifier();
        result.message = e.message();
        result.reclaimed.blocks_by_raise = blocks_at_raise - blocks_before;
        std::fill(result.outputs.begin(), result.outputs.end(), nullptr);
    }
    result.reclaimed.blocks = GetAllocListLength() - blocks_before;
    result.reclaimed.arrays = arrays_in_context();
    oxFreeAllocListContext();
    oxRestorePreviousAllocListContext(blocks);
    oxExitArrayListContext(arrays, result.outputs.data(), static_cast<int>(result.outputs.size()),
                           true);
    // Outputs that the call made were counted with the rest; they have been kept.
    for (const oxArray *a : result.outputs)
        if (a && oxIsTemp(a) && std::find(inputs.begin(), inputs.end(), a) == inputs.end())
            --result.reclaimed.arrays;
    return result;
}

} // namespace vel
