// Raising from inside the library: the public raisers, the translation hook, clean-up hooks.
#pragma once
#include <ox/errors.h>

namespace ox {

// Raises error 18, the universal allocation failure.
[[noreturn]] void raise_out_of_memory();

// Every message format passes through the translation before it is used.
using Translation = const char *(*)(const char *format);
// Installs a translation (null: identity) and returns the previous one.
Translation set_message_translation(Translation fn);
const char *translate(const char *format);

} // namespace ox
