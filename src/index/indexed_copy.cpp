// The indexed copy functions of each class, for callers that walk subscripts themselves.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <ox/reference.h>

using namespace ox;

namespace {

template<class T> void take(void *dst, const void *src, const kwIndex *index, kwSize n,
                            kwSize stride, kwSize offset) {
    auto *out = static_cast<T *>(dst);
    const auto *in = static_cast<const T *>(src) + offset;
    if (index)
        for (kwSize i = 0; i < n; ++i) out[i] = in[index[i] * stride];
    else
        for (kwSize i = 0; i < n; ++i) out[i] = in[i * stride];
}

template<class T> void put(void *dst, const kwIndex *index, const void *src, kwSize n,
                           kwSize stride, kwSize offset, bool scalar) {
    auto *out = static_cast<T *>(dst) + offset;
    const auto *in = static_cast<const T *>(src);
    for (kwSize i = 0; i < n; ++i) out[(index ? index[i] : i) * stride] = in[scalar ? 0 : i];
}

} // namespace

oxIndexedSourceCopyFcn oxGetIndexedSourceCopyFcn(oxClassID id) {
    oxIndexedSourceCopyFcn f = nullptr;
    visit_width(class_info(id).element_size,
                [&](auto tag) { f = take<typename decltype(tag)::type>; });
    return f;
}

oxIndexedDestinationCopyFcn oxGetIndexedDestinationCopyFcn(oxClassID id) {
    oxIndexedDestinationCopyFcn f = nullptr;
    visit_width(class_info(id).element_size,
                [&](auto tag) { f = put<typename decltype(tag)::type>; });
    return f;
}
