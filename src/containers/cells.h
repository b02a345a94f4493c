// Cell arrays as cores: they answer null without memory and are handed to no hook.
#pragma once
#include <core/array.h>

namespace ox {

// m-by-n empty cells.
oxArray *make_cell(kwSize m, kwSize n);
oxArray *make_cell_nd(kwSize ndim, const kwSize *dims);

} // namespace ox
