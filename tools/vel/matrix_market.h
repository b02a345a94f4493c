// Reading Matrix Market files.
#pragma once
#include <ox.h>

#include <string>
#include <string_view>

namespace vel {

// Coordinate files give a sparse double array (a logical one for patterns), array files a full
// double one; symmetric halves are completed, duplicates summed, zeros dropped. Temporaries of the
// current context. Throws Failure with file, line and reason. Files of 2^26 columns and more cost
// memory that no bytes of the file back: they are read only when forced.
oxArray *read_matrix_market(const std::string &path, bool force);
oxArray *parse_matrix_market(std::string_view text, const std::string &name, bool force);

} // namespace vel
