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

namespace ox::test {

// With the class layer installed.
class LayerTest : public HostTest {
    WithLayer layer_;
};

} // namespace ox::test

using namespace ox;
using namespace ox::test;
