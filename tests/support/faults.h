// Failing allocations: the n-th one on demand, and the sweep that fails each one of a call.
#pragma once
#include <ox.h>

#include <functional>
#include <string>
#include <vector>

namespace ox::test {

// While it lives, the n-th allocation from now on fails (1 is the next; 0: none), or that one and
// all after it. Heap, header pool and utility library count together.
class FailingAllocation {
public:
    enum class Then { recovers, stays };
    explicit FailingAllocation(std::size_t n, Then then = Then::recovers);
    ~FailingAllocation();
    FailingAllocation &operator=(FailingAllocation &&) = delete;
    // Allocations asked for so far.
    static std::size_t count();
};

using Arrays = std::vector<oxArray *>;

// One entry point under failing allocations; a table of these is a test.
struct Sweep {
    const char *name;
    // The arguments, as arr() reads them; made anew for every run.
    std::vector<std::string> inputs;
    // The call: either it makes an array (null: failed), or it answers whether it succeeded.
    std::function<oxArray *(const Arrays &)> make;
    std::function<bool(const Arrays &)> act;

    bool bare = true;         // run in the state at load, too (the result is destroyed, then the
                              // inputs): not for calls that consume an input or use the lists
    bool silent = false;      // with managers, null or false is as good as a raise
    bool may_survive = false; // a failed allocation need not fail the call
    bool changes_inputs = false;
    bool other_raise = false; // a raise need not be that of lacking memory
    // Arguments that text cannot describe; replaces inputs.
    std::function<Arrays()> setup;
};

// Fails the first, second, ... allocation of the call, alone and with all after it; before the
// managers are installed, with them, and with lists that must grow. Each time: the call raises
// error 18 (answers null or false without managers), the inputs are as before, nothing is left
// alive, and the same call then succeeds. Ends when the call makes no more allocations; one that
// makes none fails the test.
void sweep(const Sweep &s);

// The same for one call and several lists of inputs: one that makes an array, with managers only or
// in the state at load, too, and one that changes its first input (and may do with less memory).
using Inputs = std::vector<std::vector<std::string>>;
void sweep_makes(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make);
void sweep_everywhere(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make);
void sweep_changes(const Inputs &calls, const std::function<void(const Arrays &)> &change);

// What a sweep compares: text, class, flags (but for the list mark), scope, references, ring.
std::string describe(const oxArray *a);

} // namespace ox::test
