// The limit that names of variables and fields have.
#pragma once
#include <ox/names.h>

namespace ox {

inline constexpr kwSize max_name_length = 63; // bytes

} // namespace ox
