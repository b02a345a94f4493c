// The slot of the allocation-fault seam.
#include "fault.h"

namespace fl {

constinit allocation_fault fault = nullptr;

allocation_fault set_allocation_fault(allocation_fault fails) {
    allocation_fault previous = fault;
    fault = fails;
    return previous;
}

} // namespace fl
