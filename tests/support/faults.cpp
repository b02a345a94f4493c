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
enum class Host { bare, managed, full_lists };
constexpr const char *host_names[] = {"bare", "managed", "full lists"};

struct Outcome {
    bool succeeded = false;
    std::string raised; // identifier and message
    oxArray *result = nullptr;
};

Outcome attempt(const Sweep &s, const Arrays &in) {
    Outcome out;
    try {
        out.result = s.make ? s.make(in) : nullptr;
        out.succeeded = s.make ? out.result != nullptr : s.act(in);
    } catch (const ut::simple_exception &e) {
        out.raised = std::string(e.identifier()) + ": " + e.message();
    }
    return out;
}

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

void expect_failure(const Sweep &s, Host host, const Outcome &out) {
    if (s.may_survive && out.succeeded) return;
    EXPECT_FALSE(out.succeeded) << "the call must notice the failed allocation";
    if (s.other_raise || host == Host::bare || (s.silent && out.raised.empty())) return;
    EXPECT_EQ(out.raised, "VELTRO:nomem: Out of memory. Type HELP MEMORY for your options.");
}

// The call with its n-th allocation failing, then without; whether there was an n-th.
bool strike(const Sweep &s, Host host, const Arrays &in, std::size_t n, Then then) {
    const std::string before = describe_all(in);
    for (const bool fails : {true, false}) {
        const Contexts contexts;
        Outcome out;
        std::size_t count;
        {
            const FailingAllocation fault(fails ? n : 0, then);
            out = attempt(s, in);
            count = FailingAllocation::count();
        }
        const bool struck = fails && count >= n;
        if (struck)
            expect_failure(s, host, out);
        else
            EXPECT_TRUE(out.succeeded) << (fails ? "" : "the next call: ") << out.raised;
        EXPECT_TRUE(!struck || s.changes_inputs || describe_all(in) == before)
            << describe_all(in) << "\nbefore: " << before;
        const int rule = out.result ? check_header(out.result, CheckDepth::storage) : 0;
        EXPECT_EQ(rule, 0) << rule_text(rule);
        if (host == Host::bare) oxDestroyArray(out.result);
        if (fails && !struck) return false;
    }
    return true;
}

bool run(const Sweep &s, Host host, std::size_t n, Then then) {
    reset_library();
    const Live before = live();
    if (host != Host::bare) install_managers();
    bool struck;
    {
        Contexts contexts;
        const Arrays in = make_inputs(s);
        if (host == Host::full_lists) fill_lists();
        struck = strike(s, host, in, n, then);
        if (host == Host::bare)
            for (oxArray *a : in) oxDestroyArray(a);
    }
    EXPECT_EQ(array_list_length(), 0u);
    EXPECT_EQ(GetAllocListLength(), 0u);
    reset_library();
    EXPECT_EQ(live(), before) << "more or less alive than before";
    return struck;
}

} // namespace

void sweep(const Sweep &s) {
    for (const Host host : {Host::bare, Host::managed, Host::full_lists}) {
        if (host == Host::bare && !s.bare) continue;
        for (const auto then : {Then::recovers, Then::stays}) {
            for (std::size_t n = 1;; ++n) {
                SCOPED_TRACE(std::string(s.name) + ", " + host_names[static_cast<int>(host)] +
                             ", allocation " + std::to_string(n) +
                             (then == Then::stays ? " and all after it" : ""));
                const bool struck = run(s, host, n, then);
                if (testing::Test::HasFailure()) return;
                if (struck) continue;
                EXPECT_GT(n, 1u) << "the call makes no allocation";
                break;
            }
        }
    }
}

void sweep_makes(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make) {
    for (const auto &inputs : calls)
        sweep({.name = inputs[0].c_str(), .inputs = inputs, .make = make, .bare = false});
}

void sweep_everywhere(const Inputs &calls, const std::function<oxArray *(const Arrays &)> &make) {
    for (const auto &inputs : calls) {
        const char *name = inputs.empty() ? "creation" : inputs[0].c_str();
        sweep({.name = name, .inputs = inputs, .make = make});
    }
}

void sweep_changes(const Inputs &calls, const std::function<void(const Arrays &)> &change) {
    for (const auto &inputs : calls)
        sweep({.name = inputs[0].c_str(),
               .inputs = inputs,
               .act = [&](auto &in) { return change(in), true; },
               .bare = false,
               .may_survive = true,
               .changes_inputs = true});
}

} // namespace ox::test
