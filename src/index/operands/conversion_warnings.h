// The three warnings of integer conversion and their cached statuses.
#pragma once
#include <cstdint>

namespace ox {

// The kinds (convert_rules.h) whose warning is shown. The statuses are read once and then again
// whenever any warning's status changes.
// Deliberate: a warning whose status is "error" is neither issued nor raised; only "shown" counts.
uint32_t shown_conversion_warnings();

// Issues the warning of one kind for the destination class.
void warn_of_conversion(uint32_t kind, const char *class_name);

} // namespace ox
