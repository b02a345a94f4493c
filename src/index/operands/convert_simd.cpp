// The vector conversion kernels.
#include <index/operands/convert_rules.h>

namespace ox {
ConvertKernel vector_kernel(int dst_class, int src_class) {
    return scalar_kernel(dst_class, src_class);
}
} // namespace ox
