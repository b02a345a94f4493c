// Creation cores: they answer null instead of raising and touch no hook; callers hand results over.
#pragma once
#include <core/array.h>
#include <core/array_list.h>

namespace ox {

// Arrays that may lend their data to a new one.
struct Candidates {
    kwSize count = 0;
    oxArray *const *arrays = nullptr;
};

// A header of the class, m-by-n, without data. Null without memory.
oxArray *make_header(int id, kwSize m, kwSize n);

// Zero-filled arrays of a class that holds numbers, characters or truth values, as the creators of
// <ox/create.h> describe them. Null without memory or above the element limit.
oxArray *make_full(kwSize m, kwSize n, int id, bool complex, Candidates reuse = {});
oxArray *make_full_nd(kwSize ndim, const kwSize *dims, int id, bool complex, Candidates reuse = {});
// The same with undefined contents (1-by-1 is zeroed); no limit but that of the memory.
oxArray *make_uninit(kwSize m, kwSize n, int id, bool complex, Candidates reuse = {});
oxArray *make_uninit_nd(kwSize ndim, const kwSize *dims, int id, bool complex);
// A real 1-by-1 double.
oxArray *make_double_scalar(double value);

// Tries the candidates for an array whose class and m-by-n size are set; true when it took one's
// data and joined its ring.
bool take_reusable(oxArray *a, bool complex, Candidates reuse);

} // namespace ox
