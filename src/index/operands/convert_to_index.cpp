// Subscripts as lists of positions, and size arguments, for callers outside the library.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/operands/subscript.h>

#include <cmath>

using namespace ox;

int oxConvertToIndex(const oxArray **subscript, kwSize extent, int base, kwSize *count,
                     kwSize *maxPosition, kwIndex **indices) {
    Subscript s;
    s.read_or_raise(*subscript, extent);
    *count = s.count;
    *maxPosition = s.max;
    *indices = nullptr;
    if (s.is_none()) return 1;
    if (s.is_all()) return extent == 0 ? -1 : 0;
    if (s.count > max_size / sizeof(kwIndex)) raise_out_of_memory();
    auto *list = static_cast<kwIndex *>(oxMalloc(s.count * sizeof(kwIndex)));
    if (!list) raise_out_of_memory();
    s.copy_positions(list, static_cast<kwIndex>(base));
    *indices = list;
    return 0;
}

namespace {

kwSize as_size(double x) {
    if (std::isnan(x) || x != std::trunc(x))
        oxErrMsgIdAndTxt("VELTRO:NonIntegerInput",
                         "Size vector should be a row vector with integer elements.");
    return double_to_size(x);
}

kwSize as_size(int64_t x) { return x < 0 ? 0 : as_size(static_cast<double>(x)); }
kwSize as_size(uint64_t x) { return x > max_size ? max_size : x; }

// out[k] = the k-th element of a real array, full or sparse.
template<class T> void read_sizes(const oxArray *a, kwSize n, kwSize *out) {
    const T *values = data<T>(a);
    auto read = [values](kwIndex p) {
        if constexpr (std::is_floating_point_v<T>)
            return as_size(static_cast<double>(values[p]));
        else if constexpr (std::is_signed_v<T>)
            return as_size(int64_t{values[p]});
        else
            return as_size(uint64_t{values[p]});
    };
    if (!is_sparse(a)) {
        for (kwSize k = 0; k < n; ++k) out[k] = read(k);
        return;
    }
    const kwSize m = rows(a), columns = cols(a);
    for (kwSize k = 0; k < n; ++k) out[k] = 0;
    for (kwIndex j = 0; j < columns; ++j)
        for (kwIndex p = a->num.jc[j]; p < a->num.jc[j + 1]; ++p)
            out[a->num.ir[p] + j * m] = read(p);
}

} // namespace

void oxArgMustBeIndices(const oxArray *a, kwSize n, kwSize *out) {
    if (a->get_number_of_elements() != n)
        oxErrMsgIdAndTxt("VELTRO:NonScalarInput", "Input arguments must be scalar.");
    if (is_complex(a))
        oxErrMsgIdAndTxt("VELTRO:obsoleteComplexInput",
                         "Size vector must be a row vector with real elements.");
    const bool read = visit_class(a->class_code, n == 0, [&](auto tag) {
        read_sizes<typename decltype(tag)::type>(a, n, out);
        return true;
    });
    if (!read) as_size(std::nan("")); // containers hold no numbers
}
