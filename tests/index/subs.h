// Subscripts as text, and calls with lists of them.
#pragma once
#include <support/suite.h>

#include <cstdio>

namespace ox::test {

using Subs = std::vector<const oxArray *>;

// ":" is the colon, "1:2:9" a colon object, anything else what arr() reads, where a text that
// begins with dimensions means class double.
inline oxArray *sub(const std::string &text) {
    double first, step, last;
    char cross[2];
    if (text == ":") return arr("char 1x1: ':'");
    if (std::sscanf(text.c_str(), "%lf:%lf:%lf", &first, &step, &last) == 3)
        return oxCreateColonObj(first, step, last);
    const bool bare = std::sscanf(text.c_str(), "%*d%1[x]", cross) == 1;
    return arr(bare ? "double " + text : text);
}

inline Subs subs(const std::vector<std::string> &texts) {
    Subs s;
    for (const std::string &t : texts) s.push_back(sub(t));
    return s;
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

} // namespace ox::test
