// The error table: names and messages by number.
#include <errors/raise.h>

#include <cassert>
#include <iterator>

namespace ox {
namespace {

struct Row {
    oxErrorMessage number;
    const char *name;
    const char *message;
};

constexpr Row rows[] = {
#define X(name, message) {name, #name, message},
#include <errors/error_rows.inc>
#undef X
};

// Numbers are part of the interface: the rows must lie in the order of the enumeration.
constexpr bool rows_in_order() {
    for (std::size_t k = 0; k < std::size(rows); ++k)
        if (rows[k].number != static_cast<oxErrorMessage>(k)) return false;
    return true;
}
static_assert(std::size(rows) == FP32BITSIZE + 1 && rows_in_order());

// Deliberate: release builds do not check the number; it is the caller's fault.
const Row &row(oxErrorMessage number) {
    assert(static_cast<std::size_t>(number) < std::size(rows));
    return rows[number];
}

} // namespace
} // namespace ox

const char *oxGetErrorMessageEnumName(oxErrorMessage number) { return ox::row(number).name; }

const char *oxGetErrorTableEntry(oxErrorMessage number) { return ox::row(number).message; }
