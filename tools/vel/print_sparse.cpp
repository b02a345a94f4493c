// Sparse arrays as triplets and as a picture of their pattern.
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

} // namespace

void print_sparse(std::ostream &out, const oxArray *a, const std::string &indent) {
    print_triplets(out, a, indent);
    if (std::max(oxGetM(a), oxGetN(a)) < least_pictured || oxGetNumNonZeroEl(a) == 0) return;
    for (const std::string &line : picture_of_pattern(a)) out << indent << "  " << line << '\n';
}

} // namespace vel
