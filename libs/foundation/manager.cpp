// The memory manager, which holds the allocator mode, and the application object.
#include "fl.hpp"

namespace fl {
namespace {

struct BuiltInManager final : manager {
    constexpr BuiltInManager() = default;
};

constinit BuiltInManager built_in;
constinit manager *override_instance = nullptr;
constinit int applications = 0;

} // namespace

manager &manager::instance() { return override_instance ? *override_instance : built_in; }

int manager::mode() { return mode_; }

manager *manager::set_instance(manager *other) {
    manager *previous = override_instance;
    override_instance = other;
    return previous;
}

init::init() { ++applications; }

init::~init() { --applications; }

int init::count() { return applications; }

} // namespace fl
