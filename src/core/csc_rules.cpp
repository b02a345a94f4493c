// Checking the rules of compressed columns.
#include <core/csc_rules.h>

namespace ox {

int broken_csc_rule(kwSize m, kwSize n, kwSize nzmax, const kwIndex *jc, const kwIndex *ir) {
    if (jc[0] != 0) return 1;
    for (kwSize j = 0; j < n; ++j)
        if (jc[j] > jc[j + 1]) return 1;
    if (jc[n] > nzmax) return 2;
    for (kwSize j = 0; j < n; ++j)
        for (kwIndex k = jc[j]; k < jc[j + 1]; ++k)
            if (ir[k] >= m || (k > jc[j] && ir[k] <= ir[k - 1])) return 3;
    return nzmax == 0 ? 4 : 0;
}

} // namespace ox
