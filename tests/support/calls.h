// Subscripts as text, and the interpreter's calls with lists of arrays.
#pragma once
#include <containers/check_array.h>
#include <containers/slots.h>
#include <support/suite.h>

#include <algorithm>
#include <cstdio>
#include <set>

namespace ox::test {

using Subs = std::vector<const oxArray *>;

// ":" is the colon, "1:2:9" a colon object, anything else what arr() reads.
inline oxArray *sub(const std::string &text) {
    double first, step, last;
    if (std::sscanf(text.c_str(), "%lf:%lf:%lf", &first, &step, &last) == 3)
        return oxCreateColonObj(first, step, last);
    return arr(text == ":" ? "char 1x1: ':'" : text);
}

inline Arrays arrays(const std::vector<std::string> &texts) {
    Arrays all(texts.size());
    std::transform(texts.begin(), texts.end(), all.begin(), sub);
    return all;
}
inline Subs subs(const std::vector<std::string> &texts) {
    const Arrays all = arrays(texts);
    return {all.begin(), all.end()};
}

inline oxArray *ref(const oxArray *a, Subs s) {
    return oxSubscriptedReference(a, s.size(), s.data());
}
inline oxArray *assign(oxArray *a, Subs s, const oxArray *rhs) {
    oxSubscriptedAssignment(a, s.size(), s.data(), rhs);
    return a;
}
inline oxArray *erase(oxArray *a, Subs s) {
    oxSubscriptedDelete(a, s.size(), s.data());
    return a;
}

// The first operand that is not of class double decides the class of all.
inline oxArray *cat(int form, Subs operands) {
    oxCatContext context{[](oxCatContext *, int n, const oxArray **all) {
                             const auto other = std::find_if_not(all, all + n, oxIsDouble);
                             return other == all + n ? oxDOUBLE_CLASS : oxGetClassID(*other);
                         },
                         nullptr};
    const auto convert = [](oxCatContext *, oxClassID id, const oxArray *a) {
        return oxGetClassID(a) == id ? a : oxCreateConvertedCopy(a, id);
    };
    const int n = static_cast<int>(operands.size());
    return oxCatenateDispatch(form, n, operands.data(), convert, &context);
}

// The arguments of a call, and what it gives: the text of an array, or "!identifier message" of
// what it raises, the identifier without its first word, and without a message any; the warnings
// that it shows; and whether another array that it gives shares the data of the first one.
struct Row {
    std::vector<std::string> in;
    std::string out;
    std::vector<Warning> shown = {};
    bool shares = false;
};

inline std::vector<const oxArray *> slots_of(const oxArray *a) {
    if (!a || !is_container(a)) return {};
    return {a->cell.slots, a->cell.slots + slot_count(a)};
}

// Runs a call, which makes an array or changes its first one and returns that, for each row: what
// it gives and shows; that elements of containers are shared and other arrays stay; and the same
// with failing allocations, for which the options are. The test has no arrays of its own.
inline void expect_rows(const std::function<oxArray *(const Arrays &)> &call,
                        const std::vector<Row> &rows, Sweep s = {.bare = false}) {
    s.make = call;
    for (const auto &[texts, out, shown, shares] : rows) {
        SCOPED_TRACE(testing::PrintToString(texts));
        oxArray *result = nullptr;
        bool allocates = false;
        Contexts contexts;
        const Arrays in = arrays(texts);
        std::set<const oxArray *> elements = {nullptr};
        for (const oxArray *a : in)
            for (const oxArray *e : slots_of(a)) elements.insert(e);
        if (out[0] == '!') {
            const std::size_t end = std::min(out.find(' '), out.size());
            const std::string id = "VELTRO:" + out.substr(1, end - 1);
            EXPECT_TRUE(
                raises(id.c_str(), end < out.size() ? &out[end + 1] : nullptr, [&] { call(in); }));
        } else {
            const FailingAllocation none(0);
            EXPECT_TRUE(warns(shown, [&] { result = call(in); }));
            allocates = result && shown.empty() && FailingAllocation::count() > 0;
            EXPECT_EQ(text(result), text(sub(out)));
            EXPECT_FALSE(result && check_array(result));
            for (const oxArray *e : slots_of(result)) EXPECT_TRUE(elements.count(e));
            const bool other = result && oxGetData(result) && !in.empty() && result != in[0];
            EXPECT_EQ(other && oxGetData(result) == oxGetData(in[0]), shares);
        }
        s.may_survive = s.changes_inputs = result && !in.empty() && result == in[0];
        for (std::size_t k = s.changes_inputs; k < in.size(); ++k)
            EXPECT_EQ(text(in[k]), text(sub(texts[k])));
        contexts.leave();
        s.name = out.c_str();
        s.setup = [&texts = texts] { return arrays(texts); };
        if (allocates) sweep(s);
        install_managers();
    }
}

} // namespace ox::test
