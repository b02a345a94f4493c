// Reading Matrix Market files.
#pragma once
#include "source.h"

#include <ox.h>

#include <string>

namespace vel {

// Coordinate files give a sparse double array (a logical one for patterns), array files a full
// double one; symmetric halves are completed, duplicates summed, zeros dropped. Temporaries of the
// current context. Throws Failure with file, line and reason. Files of 2^26 columns and more cost
// memory that no bytes of the file back: they are read only when forced.
oxArray *read_matrix_market(SizedSource &in, const std::string &name, bool force);

} // namespace vel
