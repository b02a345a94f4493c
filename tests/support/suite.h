// What most tests of arrays need, under the names that they use.
#pragma once
#include <core/array.h>
#include <ox.hpp>
#include <support/array_text.h>
#include <support/expect.h>
#include <support/fake_layer.h>
#include <support/faults.h>
#include <support/host.h>
#include <support/random.h>

using namespace ox;
using namespace ox::test;
