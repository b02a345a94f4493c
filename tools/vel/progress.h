// The line on a terminal that says how far a long run is.
#pragma once
#include <cstdint>

namespace vel {

// Files by their descriptors, from which the line reads how far they are: whoever reads or writes,
// the library included, need not report. The line appears on stderr after half a second when that
// is a terminal.
void watch_input(int fd, uint64_t size);
void watch_output(int fd);
void forget(int fd); // before it is closed

// Removes the line; before anything else is printed.
void end_progress();

} // namespace vel
