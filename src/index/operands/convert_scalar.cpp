// The scalar conversion kernels: the rules applied one element after the other.
#include <core/dispatch.h>
#include <index/operands/convert_rules.h>

namespace ox {
namespace {

template<class D, class S>
uint32_t convert_run(void *dst, const void *src, kwSize n, uint32_t /*wanted*/) {
    auto *d = static_cast<Stored<D> *>(dst);
    auto *s = static_cast<const S *>(src);
    uint32_t kinds = 0;
    for (kwSize i = 0; i < n; ++i) {
        if constexpr (std::is_same_v<D, bool> && std::is_floating_point_v<S>)
            if (s[i] != s[i]) return kind_nan_logical;
        d[i] = convert_value<D, S>(s[i], kinds);
    }
    return kinds;
}

} // namespace

ConvertKernel scalar_kernel(int dst_class, int src_class) {
    return visit_class<ConvertKernel>(dst_class, nullptr, [&]<class D>(std::type_identity<D>) {
        return visit_class<ConvertKernel>(src_class, nullptr,
                                          []<class S>(std::type_identity<S>) -> ConvertKernel {
                                              if constexpr (has_conversion<D, S>)
                                                  return convert_run<D, Stored<S>>;
                                              else
                                                  return nullptr;
                                          });
    });
}

} // namespace ox
