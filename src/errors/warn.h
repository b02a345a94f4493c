// Warnings from inside the library: the public calls and the hook behind shown warnings.
#pragma once
#include <ox/warnings.h>

namespace ox {

// Called once a shown warning has been handed to the message handler; returns the previous hook.
using AfterWarning = void (*)();
AfterWarning set_after_warning_hook(AfterWarning fn);

} // namespace ox
