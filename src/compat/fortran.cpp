// The Fortran-callable entry points of fortran.def, each under three spellings.
//
// NAME is the documented one, name_ what gfortran, flang and Intel's compiler on Linux call, name
// what compilers without the underscore call.
#include <compat/fortran.h>
#include <ox.h>

#include <ut.h>

using namespace ox;
using namespace ox::fortran;
using ox::compat::wide;

#if defined(__has_attribute) && __has_attribute(copy)
#define ALIAS(NAME) alias(#NAME), copy(NAME)
#else
#define ALIAS(NAME) alias(#NAME)
#endif
#define ALSO(NAME, name) OX_API decltype(NAME) name __attribute__((ALIAS(NAME)));
#define DEFINE(NAME, result, arguments, value)                                                     \
    OX_API result NAME arguments { return value; }

#define ENTRY(NAME, name, result, arguments, value)                                                \
    DEFINE(NAME, result, arguments, value)                                                         \
    ALSO(NAME, name)                                                                               \
    ALSO(NAME, name##_)
#define SIZED(...)

extern "C" {
#include <compat/fortran.def>
}

#undef ENTRY
#undef SIZED
#define ENTRY(...)

namespace narrow {
using Size = int;
int answer(kwSize n) { return compat::narrow(n); }
#define LEVEL(function) function##_700
#define SIZED(NAME, name, result, arguments, value)                                                \
    DEFINE(NAME##700, result, arguments, value)                                                    \
    ALSO(NAME##700, name##700)                                                                     \
    ALSO(NAME##700, name##700_)                                                                    \
    ALSO(NAME##700, NAME)                                                                          \
    ALSO(NAME##700, name)                                                                          \
    ALSO(NAME##700, name##_)

extern "C" {
#include <compat/fortran.def>
}
} // namespace narrow

#undef SIZED
#undef LEVEL

namespace full {
using Size = kwSize;
kwSize answer(kwSize n) { return n; }
#define LEVEL(function) function##_730
#define SIZED(NAME, name, result, arguments, value)                                                \
    DEFINE(NAME##730, result, arguments, value)                                                    \
    ALSO(NAME##730, name##730)                                                                     \
    ALSO(NAME##730, name##730_)

extern "C" {
#include <compat/fortran.def>
}
} // namespace full
