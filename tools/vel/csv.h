// Reading a table of numbers from comma-separated text (RFC 4180).
#pragma once
#include "source.h"

#include <ox.h>

#include <string>

namespace vel {

// A real double matrix, a temporary of the current context. A first row without any number is a
// header and skipped; an empty cell is NaN. Throws Failure with file, line and column for ragged
// rows, cells that are no numbers, open quotes and files without data.
oxArray *read_csv(SizedSource &in, const std::string &name, char separator);

} // namespace vel
