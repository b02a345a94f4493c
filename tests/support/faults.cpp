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

enum class Host { bare, managed, full_lists };
constexpr const char *host_names[] = {"bare", "managed", "full lists"};

struct Outcome {
    bool raised = false, succeeded = false;
    std::string what;
    oxArray *result = nullptr;
};

Outcome attempt(const Sweep &s, const Arrays &in) {
    Outcome out;
    try {
        out.result = s.make ? s.make(in) : nullptr;
        out.succeeded = s.make ? out.result != nullptr : s.act(in);
        out.what = out.succeeded ? "success" : "failure without a raise";
    } catch (const ut::simple_exception &e) {
        out.raised = true;
        out.what = std::string(e.identifier()) + ": " + e.message();
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
    if (host == Host::bare)
        EXPECT_FALSE(out.succeeded) << "the call must notice the failed allocation";
    else if (!s.silent || out.raised)
        EXPECT_EQ(out.what, "VELTRO:nomem: Out of memory. Type HELP MEMORY for your options.");
    else
        EXPECT_FALSE(out.succeeded);
}

// The call with its n-th allocation failing, then without; whether there was an n-th.
bool strike(const Sweep &s, Host host, const Arrays &in, std::size_t n,
            FailingAllocation::Then then) {
    const bool bare = host == Host::bare;
    const std::string before = describe_all(in);
    std::size_t count;
    {
        Contexts contexts;
        Outcome out;
        {
            FailingAllocation fault(n, then);
            out = attempt(s, in);
            count = FailingAllocation::count();
        }
        if (count < n)
            EXPECT_TRUE(out.succeeded) << out.what;
        else
            expect_failure(s, host, out);
        if (!s.changes_inputs && count >= n) {
            EXPECT_EQ(describe_all(in), before);
        }
        if (bare) oxDestroyArray(out.result);
    }
    if (count < n) return false;
    Contexts contexts;
    const Outcome again = attempt(s, in);
    EXPECT_TRUE(again.succeeded) << "the next call: " << again.what;
    const int rule = again.result ? check_header(again.result, CheckDepth::storage) : 0;
    EXPECT_EQ(rule, 0) << rule_text(rule);
    if (bare) oxDestroyArray(again.result);
    return true;
}

bool run(const Sweep &s, Host host, std::size_t n, FailingAllocation::Then then) {
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
        for (const auto then :
             {FailingAllocation::Then::recovers, FailingAllocation::Then::stays}) {
            for (std::size_t n = 1;; ++n) {
                SCOPED_TRACE(std::string(s.name) + ", " + host_names[static_cast<int>(host)] +
                             ", allocation " + std::to_string(n) +
                             (then == FailingAllocation::Then::stays ? " and all after it" : ""));
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
