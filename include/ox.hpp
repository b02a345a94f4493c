// The array library for C++: the C interface, the array record, and the class-behaviour seam.
#ifndef OX_HPP
#define OX_HPP

#include <ox.h>
#include <ox/array.hpp>
#include <ox/object_layer.hpp>
#include <ox/protected.hpp>
#include <ox/text.hpp>

#endif
