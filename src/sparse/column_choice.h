// The columns of a reference: a list, or neighbours.
#pragma once
#include <ox/types.h>

namespace ox {

struct ColumnChoice {
    const kwIndex *list; // null: first, first + 1, ...
    kwSize count;
    kwIndex first = 0;

    kwIndex operator[](kwSize c) const { return list ? list[c] : first + c; }

    // Calls f(c, end) for every stretch c .. end - 1 of the choice that names neighbouring columns
    // in order: their elements stand together.
    template<class F> void for_each_run(F &&f) const {
        if (!list && count > 0) return f(kwSize{0}, count);
        for (kwSize c = 0, end; c < count; c = end) {
            for (end = c + 1; end < count && list[end] == list[end - 1] + 1;) ++end;
            f(c, end);
        }
    }
};

} // namespace ox
