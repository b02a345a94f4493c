// The marker of an imaginary part to come, and dropping an imaginary part.
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <ox/convert.h>

#include <algorithm>

namespace ox {
namespace {

// Whether n elements equal 0; -0.0 does. Looks at blocks, so that a value near the start ends it.
template<class T> bool all_zero(const T *p, kwSize n) {
    constexpr kwSize block = 1024;
    for (kwSize i = 0; i < n;) {
        bool other = false;
        for (const kwSize end = std::min(n, i + block); i < end; ++i) other |= p[i] != T{0};
        if (other) return false;
    }
    return true;
}

} // namespace

void *imag_marker() {
    static char marker;
    return &marker;
}

void drop_imag(oxArray *a) {
    if (has_imag_block(a)) oxFreeEx(a->num.pimag);
    a->num.pimag = nullptr;
}

void drop_imag_if_zero(oxArray *a) {
    if (!has_imag_block(a) || a->cross_link) return;
    const kwSize n = is_sparse(a) ? a->num.jc[cols(a)] : a->get_number_of_elements();
    const bool zero = visit_class<bool>(a->class_code, false, [&]<class T>(std::type_identity<T>) {
        return all_zero(imag<T>(a), n);
    });
    if (!zero) return;
    if (a->is_private_data())
        a->num.pimag = nullptr;
    else
        drop_imag(a);
}

} // namespace ox

bool oxArray_tag::is_imag_marked() const {
    return has_flag(oxFLAG_NUMERIC) && num.pimag == ox::imag_marker();
}

extern "C" {

void oxMarkImagData(oxArray *a) { a->num.pimag = ox::imag_marker(); }
void oxFreeImagIfZero(oxArray *a) { ox::drop_imag_if_zero(a); }

} // extern "C"
