// Installing the allocation-fault seam.
#include "foundation/fault.h"

namespace fl {

allocation_fault set_allocation_fault(allocation_fault fails) {
    allocation_fault previous = fault;
    fault = fails;
    return previous;
}

} // namespace fl
