// B = A(rows, columns) by the number of rows.
//
// Either way gives the same elements, and a result of the capacity that the size rule asks for:
// the exact count, or an upper bound. All raise error 18 and hand nothing over.
#pragma once
#include <core/array.h>
#include <sparse/column_choice.h>

namespace ox {

struct RowChoice {
    const kwIndex *list; // zero-based, below the rows of A; any order, repeats
    kwSize count;
    bool increasing; // never decreases
};

// Looks the chosen columns through for the rows that are wanted, and collects what it finds.
// O(rows log rows + stored elements of the columns); no vector as long as A has rows.
oxArray *reference_few_rows(const oxArray *a, const RowChoice &rows, const ColumnChoice &columns);

// Maps every row of A to its positions. A has fewer than 2^32 rows, the request as well.
// O(rows of A + stored elements of the columns), and sorting inside columns.
oxArray *reference_many_rows(const oxArray *a, const RowChoice &rows, const ColumnChoice &columns);

// Deliberate: the factor decides the capacity of the result, whichever way is taken. Where a map
// of the rows pays, because they are not many beside the elements or the request, it is exact.
inline constexpr kwSize exact_share = 10;
bool counts_exactly(const oxArray *a, const RowChoice &rows);

// The result without its elements; raises error 18.
oxArray *make_reference(const oxArray *a, kwSize m, kwSize n, kwSize nzmax);

// Stored elements of the chosen columns.
kwSize stored(const oxArray *a, const ColumnChoice &columns);

} // namespace ox
