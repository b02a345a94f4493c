// Sparse arrays as triplets and as a picture of their pattern, truth values as a picture.
#include "braille.h"
#include "print.h"

#include <algorithm>
#include <ostream>

namespace vel {
namespace {

constexpr size_t most_triplets = 12, least_pictured = 16;

void print_triplets(std::ostream &out, const oxArray *a, const std::string &indent) {
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    const size_t n = oxGetN(a), stored = jc[n];
    for (size_t k : cut(stored, most_triplets)) {
        if (k == stored) {
            out << indent << "  ...\n";
            continue;
        }
        const auto column = std::upper_bound(jc, jc + n + 1, k) - jc; // from 1
        out << indent << "  (" << ir[k] + 1 << "," << column << ")  " << format_element(a, k)
            << '\n';
    }
}

void print_picture(std::ostream &out, const oxArray *a, const std::string &indent) {
    for (const std::string &line : picture_of_pattern(a)) out << indent << "  " << line << '\n';
}

} // namespace

void print_sparse(std::ostream &out, const oxArray *a, const std::string &indent) {
    print_triplets(out, a, indent);
    if (std::max(oxGetM(a), oxGetN(a)) < least_pictured || oxGetNumNonZeroEl(a) == 0) return;
    print_picture(out, a, indent);
}

bool has_pattern(const oxArray *a) {
    return oxIsLogical(a) && !oxIsSparse(a) && oxGetNumberOfDimensions(a) == 2 &&
           std::min(oxGetM(a), oxGetN(a)) >= least_pictured;
}

void print_pattern(std::ostream &out, const oxArray *a, const std::string &indent) {
    oxArray *copy = oxCreateSharedDataCopy(a), *pattern = oxMustBeSparse(copy);
    print_picture(out, pattern, indent);
    oxDestroyArray(pattern);
    if (pattern != copy) oxDestroyArray(copy);
}

} // namespace vel
