// Building the result of a full catenation once operands, class and dimensions are settled.
#pragma once
#include <core/array.h>

namespace ox {

// n operands of one class, to be joined along dimension `dim` (from 0) into `dims`. reference is
// the operand whose header (field table, class name, payload class) the result takes over.
struct CatParts {
    kwSize n;
    const oxArray *const *operands;
    const oxArray *reference;
    kwSize dim;
    kwSize ndim;
    const kwSize *dims;
    bool scalars; // every operand is one real element
};

// The joined array, on no list; containers share their elements with the operands. Null without
// memory.
oxArray *join_full(const CatParts &parts);

} // namespace ox
