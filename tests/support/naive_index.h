// Reference, assignment and deletion spelled out element by element, to compare the library with.
#pragma once
#include <ox.hpp>
#include <support/array_text.h>

#include <string>
#include <vector>

namespace ox::test {

// What an expected failure raises.
struct NaiveError {
    std::string id, text;
};

// An array as plain values. An element of a number is {real, imaginary}, of a cell {value of the
// scalar in the slot, or -1 for an empty slot}, of a struct one such value for each of three
// fields.
struct Naive {
    using Element = std::vector<double>;
    static constexpr int struct_fields = 3;

    int cls = 0;
    std::vector<kwSize> dims;
    std::vector<Element> elements;

    static Naive read(const oxArray *a); // expands colon objects, fills sparse arrays
    oxArray *make() const;               // with the library's creators
    bool operator==(const Naive &) const = default;
    std::string text() const { return test::text(make()); }

    kwSize numel() const { return element_count(dims); }
    bool complex() const; // some imaginary part is not 0
    Element zero() const;
};

// The extent that each of nsubs subscripts meets: the last one that of all dimensions left.
Dims naive_extents(const Dims &dims, kwSize nsubs);

// Each may throw NaiveError.
Dims naive_counts(const Dims &dims, const std::vector<const oxArray *> &subs); // that they select
Naive naive_reference(const Naive &a, const std::vector<const oxArray *> &subs);
void naive_assign(Naive &a, const std::vector<const oxArray *> &subs, const Naive &rhs,
                  const Naive *filler = nullptr);
void naive_delete(Naive &a, const std::vector<const oxArray *> &subs);

} // namespace ox::test
