// Converting a run of elements: the kernel chosen once, run by blocks, each warning issued once.
#include <core/class_table.h>
#include <core/stream_copy.h>
#include <core/tuning.h>
#include <index/operands/conversion_warnings.h>
#include <index/operands/convert.h>
#include <index/operands/convert_rules.h>
#include <ox/errors.h>

#include <algorithm>
#include <bit>

namespace ox {
namespace {

using Byte = unsigned char;

class Conversion {
public:
    Conversion(int dst_class, int src_class, kwSize n)
        : kernel_(n < tuning::simd_min_elements ? scalar_kernel(dst_class, src_class)
                                                : vector_kernel(dst_class, src_class)),
          dst_class_(dst_class), src_class_(src_class),
          dst_size_(class_info(dst_class).element_size),
          src_size_(class_info(src_class).element_size),
          block_(tuning::convert_block / std::max<kwSize>({dst_size_, src_size_, 1})) {}

    explicit operator bool() const { return kernel_ != nullptr; }

    // False at a NaN on its way to logical; the elements before it are written.
    bool run(Byte *dst, const Byte *src, kwSize n) {
        wanted_ = shown_conversion_warnings();
        if (n * dst_size_ >= tuning::stream_min_bytes) return run_past_caches(dst, src, n);
        for (kwSize i = 0; i < n; i += block_)
            if (!step(dst + i * dst_size_, src + i * src_size_, std::min(block_, n - i)))
                return false;
        return true;
    }

private:
    bool step(Byte *dst, const Byte *src, kwSize n) {
        const uint32_t kinds = kernel_(dst, src, n, wanted_);
        if (kinds & wanted_) [[unlikely]]
            warn(kinds & wanted_, src, n);
        return !(kinds & kind_nan_logical);
    }

    bool run_past_caches(Byte *dst, const Byte *src, kwSize n) {
        alignas(64) Byte buffer[tuning::convert_block];
        bool ok = true;
        for (kwSize i = 0; ok && i < n; i += block_) {
            const kwSize count = std::min(block_, n - i);
            ok = step(buffer, src + i * src_size_, count);
            if (ok)
                stream_copy(dst + i * dst_size_, buffer, count * dst_size_);
            else
                step(dst + i * dst_size_, src + i * src_size_, count);
        }
        stream_fence();
        return ok;
    }

    // Issues the kinds found in a block in the order of the elements that show them.
    void warn(uint32_t found, const Byte *src, kwSize n) {
        const ConvertKernel one = scalar_kernel(dst_class_, src_class_);
        for (kwSize i = 0; found && i < n; ++i) {
            uint64_t unused;
            const uint32_t kind = std::has_single_bit(found)
                                      ? found
                                      : one(&unused, src + i * src_size_, 1, 0) & found;
            if (!kind) continue;
            found &= ~kind;
            wanted_ &= ~kind;
            // A char destination is filled as uint16 is.
            const int named = dst_class_ == oxCHAR_CLASS ? oxUINT16_CLASS : dst_class_;
            warn_of_conversion(kind, class_info(named).name);
        }
    }

    ConvertKernel kernel_;
    int dst_class_, src_class_;
    kwSize dst_size_, src_size_; // bytes of an element
    // Elements of one step, few enough that a second look at them, and a copy out of a buffer,
    // finds them in the first-level cache.
    kwSize block_;
    uint32_t wanted_ = 0; // kinds that are still to be warned of
};

} // namespace

Converted convert_elements(void *dst, int dst_class, const void *src, int src_class, kwSize n) {
    Conversion conversion(dst_class, src_class, n);
    if (!conversion) return Converted::impossible;
    const bool ok = conversion.run(static_cast<Byte *>(dst), static_cast<const Byte *>(src), n);
    return ok ? Converted::done : Converted::nan_to_logical;
}

void raise_sparse_class() {
    oxErrMsgIdAndTxt("VELTRO:unimplementedSparseType",
                     "Attempt to convert to unimplemented sparse type");
}

void raise_unless_converted(Converted status) {
    if (status == Converted::nan_to_logical) oxErrMsg(FNOLOGICALNAN);
    if (status == Converted::complex_to_logical) oxErrMsg(FNOLOGICALCOMPLEX);
    if (status == Converted::too_large) oxErrMsg(FPMAXSIZE);
    if (status == Converted::sparse_class) raise_sparse_class();
}

} // namespace ox

extern "C" void oxConvertBufferToType(void *dst, oxClassID dst_class, const void *src,
                                      oxClassID src_class, size_t n) {
    ox::raise_unless_converted(ox::convert_elements(dst, dst_class, src, src_class, n));
}
