// Fixtures that do what the interpreter does around a piece of work, and look for what it left.
#pragma once
#include <ox.h>

#include <gtest/gtest.h>

#include <array>
#include <optional>

namespace ox::test {

// How many are alive: blocks of the heap and of the utility library, and array headers.
using Live = std::array<std::size_t, 3>;
Live live();

// An array-list and an allocation-list context; leaving destroys and frees what is in them.
class Contexts {
public:
    Contexts() : arrays_(oxEnterNewArrayListContext()), blocks_(oxEnterNewAllocListContext()) {}
    ~Contexts() { leave(); }
    Contexts &operator=(Contexts &&) = delete;
    void leave();

private:
    int arrays_, blocks_;
    bool left_ = false;
};

void install_managers();
// Back to the state at load: no hooks, no listeners, no lists, no last error, no host callbacks,
// every warning shown.
void reset_library();

// The state at load, without managers; whatever a test creates it must destroy. At the end nothing
// may be listed and no more alive than before.
class BareTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    Live before_{};
};

// The managers are installed and contexts are entered; at the end what is still listed must be well
// formed, and once the contexts are left nothing may be alive.
class HostTest : public BareTest {
protected:
    void SetUp() override;
    void TearDown() override;

private:
    std::optional<Contexts> contexts_; // the first ones
};

} // namespace ox::test
