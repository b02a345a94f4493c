// Making char arrays, as cores: they answer null without memory and are handed to no hook.
#pragma once
#include <core/array.h>

namespace ox {

// 1-by-k from n bytes of the local code page, or n units; 0-by-0 where there are none. The byte
// form raises error 73 for 2^31 bytes and above.
oxArray *make_string(const char *str, kwSize n);
oxArray *make_string(const oxChar *str, kwSize n);

} // namespace ox
