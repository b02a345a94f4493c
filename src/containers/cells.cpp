// Creating cell arrays, and storing arrays in them.
#include <core/array_list.h>
#include <core/create.h>
#include <core/destroy.h>
#include <ox/cells.h>
#include <ox/sharing.h>

namespace ox {
namespace {

// Deliberate: without the limit on elements that oxCreateCellArray has.
oxArray *make_cell(kwSize m, kwSize n) {
    ArrayGuard a(make_header(oxCELL_CLASS, m, n));
    if (!a || m == 0 || n == 0) return a.release();
    kwSize count;
    if (__builtin_mul_overflow(m, n, &count)) return nullptr;
    a->cell.slots = static_cast<oxArray **>(oxCallocEx(count, sizeof(oxArray *)));
    return a->cell.slots ? a.release() : nullptr;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

oxArray *oxCreateCellMatrix_730(kwSize m, kwSize n) { return hand_over(make_cell(m, n)); }

oxArray *oxCreateCellArray_730(kwSize ndim, const kwSize *dims) {
    return hand_over(make_full_nd(ndim, dims, oxCELL_CLASS, false));
}

oxArray *oxGetCell_730(const oxArray *a, kwSize i) { return a->cell.slots[i]; }

void oxSetCell_730(oxArray *a, kwSize i, oxArray *v) { a->cell.slots[i] = contained(v); }

void oxSetCopyInCell(oxArray *a, kwSize i, oxArray *v) {
    oxSetCell_730(a, i, oxCreateReference(v));
}

oxArray **oxGetCells(const oxArray *a) { return a->cell.slots; }

void oxSetCells(oxArray *a, oxArray **block) { a->set_cells_untrusted(block); }

} // extern "C"
