// Declares the Fortran entry points from the library's own list of them.
#pragma once
#include <compat/fortran.h>

#define ENTRY(NAME, name, result, arguments, value) result NAME arguments;
#define SIZED(NAME, name, result, arguments, value) result NAME arguments;
namespace ox::fortran {
using Size = int;
extern "C" {
#include <compat/fortran.def>
}
} // namespace ox::fortran
#undef ENTRY
#undef SIZED
#define ENTRY(...)
#define SIZED(NAME, name, result, arguments, value) result NAME##730 arguments;
namespace ox::fortran::wide_sizes {
using Size = kwSize;
extern "C" {
#include <compat/fortran.def>
}
} // namespace ox::fortran::wide_sizes
#undef ENTRY
#undef SIZED
