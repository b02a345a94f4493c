// Failing allocations and the sweep.
#include <core/array_list.h>
#include <core/check_header.h>
#include <core/ring.h>
#include <support/array_text.h>
#include <support/faults.h>
#include <support/host.h>

#include <fl.hpp>
#include <ut.h>
#include <ut.hpp>

#include <gtest/gtest.h>

#include <cstring>

namespace ox::test {
namespace {

constinit std::size_t asked = 0, failing = 0;
constinit bool stays = false;

bool strikes() {
    ++asked;
    return failing && (stays ? asked >= failing : asked == failing);
}

} // namespace

FailingAllocation::FailingAllocation(std::size_t n, Then then) {
    asked = 0;
    failing = n;
    stays = then == Then::stays;
    fl::set_allocation_fault(strikes);
    utSetAllocationFault(strikes);
}

FailingAllocation::~FailingAllocation() {
    fl::set_allocation_fault(nullptr);
    utSetAllocationFault(nullptr);
}

std::size_t FailingAllocation::count() { return asked; }

std::string describe(const oxArray *a) {
    if (!a) return "null";
    kwSize ring = 0;
    ring_for_others(a, [&](const oxArray *) { ++ring; });
    char fields[128];
    std::snprintf(fields, sizeof fields, " class %d flags %x scope %d count %u ring %zu; ",
                  a->class_code, a->flag_word & ~oxFLAG_LIST_MARK, a->scope, a->reference_count,
                  ring);
    return text(a) + fields;
}

namespace {

using Then = FailingAllocation::Then;

std::string describe_all(const Arrays &arrays) {
    std::string all;
    for (const oxArray *a : arrays) all += describe(a);
    return all;
}

Arrays make_inputs(const Sweep &s) {
    if (s.setup) return s.setup();
    Arrays in;
    for (const std::string &t : s.inputs) in.push_back(arr(t));
    return in;
}

// So many entries that the next one makes the vector grow: its capacity doubles from the first.
void fill_lists() {
    const auto capacity = [](kwSize first, kwSize length) {
        while (first < length) first *= 2;
        return first;
    };
    for (kwSize n = capacity(100, array_list_length()); array_list_length() < n;)
        oxCreateDoubleScalar(0);
    for (kwSize n = capacity(50, GetAllocListLength()); GetAllocListLength() < n;) oxMalloc(1);
}

// A host is "bare" (without managers), "managed", or has "full lists".
struct Strike {
    const Sweep &s;
    std::string host;
    Then then;
    std::size_t n;

    // The call with its n-th allocation failing, or none; whether there was an n-th.
    bool call(const Arrays &in, bool fails) const {
        const std::string before = describe_all(in);
        const Contexts contexts;
        bool succeeded = false, struck;
        std::string raised;
        oxArray *result = nullptr;
        {
            const FailingAllocation fault(fails ? n : 0, then);
            try {
                result = s.make ? s.make(in) : nullptr;
                succeeded = s.make ? result != nullptr : s.act(in);
            } catch (const ut::simple_exception &e) {
                raised = std::string(e.identifier()) + ": " + e.message();
            }
            struck = fails && FailingAllocation::count() >= n;
        }
        const bool must_fail = struck && !(s.may_survive && succeeded);
        EXPECT_NE(succeeded, must_fail) << (fails ? "" : "the next call: ") << raised;
        const bool any_raise = s.other_raise || host == "bare" || (s.silent && raised.empty());
        const char *no_memory = "VELTRO:nomem: Out of memory. Type HELP MEMORY for your options.";
        EXPECT_TRUE(!must_fail || any_raise || raised == no_memory) << raised;
        EXPECT_TRUE(!struck || s.changes_inputs || describe_all(in) == before)
            << describe_all(in) << "\nbefore: " << before;
        const int rule = result ? check_header(result, CheckDepth::storage) : 0;
        EXPECT_EQ(rule, 0) << rule_text(rule);
        if (host == "bare") oxDestroyArray(result);
        return struck;
    }

    // In a library just loaded; whether there was an n-th allocation.
    bool run() const {
        reset_library();
        const Live before = live();
        if (host != "bare") install_managers();
        bool struck;
        {
            const Contexts contexts;
            const Arrays in = make_inputs(s);
            if (host == "full lists") fill_lists();
            struck = call(in, true);
            if (struck) call(in, false);
            if (host == "bare")
                for (oxArray *a : in) oxDestroyArray(a);
        }
        EXPECT_EQ(array_list_length() + GetAllocListLength(), 0u);
        reset_library();
        EXPECT_EQ(live(), before) << "more or less alive than before";
        return struck;
    }
};

void sweep_each(const Inputs &calls, Sweep s) {
    for (const auto &inputs : calls) {
        s.name = inputs.empty() ? "creation" : inputs[0].c_str();
        s.inputs = inputs;
        sweep(s);
    }
}

} // namespace

void sweep(const Sweep &s) {
    for (const char *host : {"bare", "managed", "full lists"}) {
        for (const auto then : {Then::recovers, Then::stays}) {
            Strike strike{s, host, then, 1};
            if (strike.host == "bare" && !s.bare) continue;
            for (bool struck = true; struck; ++strike.n) {
                SCOPED_TRACE(std::string(s.name) + ", " + host + ", allocation " +
                             std::to_string(strike.n) +
                             (then == Then::stays ? " and all after it" : ""));
                struck = strike.run();
                EXPECT_TRUE(struck || strike.n > 1) << "the call makes no allocation";
                if (testing::Test::HasFailure()) return;
            }
        }
    }
}

void sweep_makes(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make) {
    sweep_each(calls, {.make = make, .bare = false});
}

void sweep_everywhere(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make) {
    sweep_each(calls, {.make = make});
}

void sweep_changes(const Inputs &calls, const std::function<void(const Arrays &)> &change) {
    sweep_each(calls, {.act = [&](auto &in) { return change(in), true; },
                       .bare = false,
                       .may_survive = true,
                       .changes_inputs = true});
}

} // namespace ox::test
