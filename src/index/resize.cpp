// Changing the size of a full array in place.
#include <containers/unshare.h>
#include <core/destroy.h>
#include <core/dispatch.h>
#include <core/imaginary.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/elements.h>
#include <index/growth.h>
#include <index/operands/convert.h>
#include <index/sparse_route.h>
#include <ox.h>
#include <sparse/storage/csc.h>

#include <algorithm>
#include <bit>
#include <utility>

namespace ox {

namespace {

// From one list of dimensions to another; a list that has ended goes on with ones.
struct Change {
    const kwSize *old_dims, *new_dims;
    kwSize old_nd, new_nd;
    kwSize nd, first; // of both; and the first dimension that differs, or nd

    Change(const kwSize *from, kwSize nfrom, const Extents &to)
        : old_dims(from), new_dims(to.get()), old_nd(nfrom), new_nd(to.size()),
          nd(std::max(nfrom, to.size())), first(0) {
        while (first < nd && before(first) == after(first)) ++first;
    }
    kwSize before(kwSize k) const { return k < old_nd ? old_dims[k] : 1; }
    kwSize after(kwSize k) const { return k < new_nd ? new_dims[k] : 1; }
    kwSize kept(kwSize k) const { return std::min(before(k), after(k)); }

    kwSize run() const { // neighbours that stay neighbours
        kwSize n = 1;
        for (kwSize k = 0; k <= first && k < nd; ++k) n *= kept(k);
        return n;
    }
    bool keeps_none() const {
        for (kwSize k = 0; k < nd; ++k)
            if (kept(k) == 0) return true;
        return false;
    }
    // What stays is the beginning of both blocks: behind the first difference there is but one.
    bool keeps_positions() const {
        for (kwSize k = first + 1; k < nd; ++k)
            if (kept(k) > 1) return keeps_none();
        return true;
    }
    kwSize prefix() const { return keeps_none() ? 0 : run(); }

    // Calls f(offset before, offset after) for every run.
    template<class F> void for_each_run(F &&f) const;
};

template<class F> void Change::for_each_run(F &&f) const {
    if (keeps_none()) return;
    Extents at(nd);
    for (kwSize k = 0; k < nd; ++k) at[k] = 0;
    for (;;) {
        kwSize from = 0, to = 0, unit_from = 1, unit_to = 1;
        for (kwSize k = 0; k < nd; ++k) {
            from += at[k] * unit_from;
            to += at[k] * unit_to;
            unit_from *= before(k);
            unit_to *= after(k);
        }
        f(from, to);
        kwSize k = first + 1;
        while (k < nd && ++at[k] == kept(k)) at[k++] = 0;
        if (k >= nd) return;
    }
}

// What new elements hold; all zero bytes are left to the allocator.
struct Filling {
    uint64_t real = 0, imag = 0; // bit patterns, in the low bytes of the element in memory order
};

void convert_part(const oxArray *a, void *out, const oxArray *filler, const void *part) {
    const int from = filler->class_code, to = a->class_code;
    if (from == to) {
        std::memcpy(out, part, class_info(to).element_size);
        return;
    }
    const Converted status = convert_elements(out, to, part, from, 1);
    raise_unless_converted(status);
    if (status == Converted::impossible)
        oxErrMsgIdAndTxt("VELTRO:invalidConversion", "Conversion to %s from %s is not possible.",
                         oxArrayClassIDName(static_cast<oxClassID>(to)), oxGetClassName(filler));
}

Filling read_filler(const oxArray *a, const oxArray *filler) {
    Filling filling;
    if (filler && a->class_code == oxOPAQUE_CLASS && filler->class_code == oxOPAQUE_CLASS &&
        filler->num.pdata) { // the payload itself, until own_payload_fillers
        std::memcpy(&filling.real, filler->num.pdata, sizeof filling.real);
        return filling;
    }
    if (!filler || a->class_code > oxUINT64_CLASS || is_container(a) ||
        filler->num.pdata == nullptr)
        return filling;
    if (is_sparse(filler)) {
        const ArrayGuard full(sparse_to_full(filler));
        if (!full) raise_out_of_memory();
        return read_filler(a, full.get());
    }
    convert_part(a, &filling.real, filler, filler->num.pdata);
    if (has_imag_block(filler) && has_imag_block(a))
        convert_part(a, &filling.imag, filler, filler->num.pimag);
    return filling;
}

void fill(void *block, kwSize width, kwSize begin, kwSize end, uint64_t pattern) {
    if (begin >= end) return;
    if (pattern == 0) {
        std::memset(static_cast<char *>(block) + begin * width, 0, (end - begin) * width);
        return;
    }
    visit_width(width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        if constexpr (sizeof(T) <= sizeof pattern) {
            T value;
            std::memcpy(&value, &pattern, sizeof value);
            std::fill_n(static_cast<T *>(block) + begin, end - begin, value);
        }
    });
}

// New elements of an opaque array hold the filler's payload: each gets a copy of its own.
void own_payload_fillers(oxArray *a, uint64_t pattern) {
    const kwSize n = a->get_number_of_elements();
    bool failed = false;
    for (kwSize i = 0; i < n; ++i) {
        void **slot = static_cast<void **>(a->opaque.giblet) + i;
        if (std::bit_cast<uint64_t>(*slot) != pattern) continue;
        void *payload = std::exchange(*slot, nullptr);
        failed = failed || !a->opaque.info->copy_element(slot, payload);
    }
    if (failed) raise_out_of_memory();
}

class Resizer {
public:
    Resizer(oxArray *a, const Extents &dims, Filling filling)
        : a_(a), layout_(element_layout(a)), change_(a->get_dimensions(), a->ndims, dims),
          old_count_(a->get_number_of_elements()), filling_(filling) {
        for (kwSize k = 0; k < dims.size(); ++k) new_count_ *= dims[k];
    }

    // The data, but not yet the dimensions; false without memory, a then as before.
    bool run() {
        if (parts(new_count_) == 0) return drop_all();
        if (change_.keeps_positions() && !a_->is_private_data()) return in_place();
        return into_new_blocks();
    }

private:
    kwSize parts(kwSize elements) const { return elements * layout_.parts; }
    kwSize bytes(kwSize elements) const { return elements * layout_.bytes(); }
    bool has_imag() const { return has_imag_block(a_); }

    bool drop_all() {
        if (a_->num.pdata) release_elements(a_, a_->num.pdata, parts(old_count_));
        if (!a_->is_private_data()) oxFreeEx(a_->num.pdata);
        a_->num.pdata = nullptr;
        if (is_numeric(a_)) drop_imag(a_);
        return true;
    }

    // A block that shrinks is reallocated last and may stay as it is.
    bool in_place() {
        const kwSize prefix = change_.prefix();
        const bool grows = new_count_ > old_count_ || !a_->num.pdata;
        if (grows && !reallocate()) return false;
        if (old_count_ > prefix)
            release_elements(a_, static_cast<char *>(a_->num.pdata) + bytes(prefix),
                             parts(old_count_ - prefix));
        fill(a_->num.pdata, layout_.width, parts(prefix), parts(new_count_), filling_.real);
        if (has_imag()) fill(a_->num.pimag, layout_.width, prefix, new_count_, filling_.imag);
        if (!grows && new_count_ < old_count_) reallocate();
        return true;
    }

    bool reallocate() {
        void *block = oxReallocEx(a_->num.pdata, bytes(new_count_));
        if (!block) return false;
        a_->num.pdata = block;
        if (!has_imag()) return true;
        void *imag_block = oxReallocEx(a_->num.pimag, bytes(new_count_));
        if (imag_block) a_->num.pimag = imag_block;
        return imag_block != nullptr;
    }

    RawBlock make_block(uint64_t pattern) const {
        const kwSize n = bytes(new_count_);
        RawBlock block = pattern == 0 ? RawBlock::zeroed(n) : RawBlock::make(n);
        if (block && pattern != 0) fill(block.get(), layout_.width, 0, parts(new_count_), pattern);
        return block;
    }

    void move_runs(void *to, void *from) const {
        const kwSize run = bytes(change_.run());
        const bool owned = !elements_are_bytes(a_);
        change_.for_each_run([&](kwSize i, kwSize j) {
            char *source = static_cast<char *>(from) + bytes(i);
            std::memcpy(static_cast<char *>(to) + bytes(j), source, run);
            if (owned) std::memset(source, 0, run); // moved, not to be released
        });
    }

    bool into_new_blocks() {
        RawBlock real = make_block(filling_.real), imag;
        if (!real) return false;
        if (has_imag() && !(imag = make_block(filling_.imag))) return false;
        if (a_->num.pdata) {
            move_runs(real.get(), a_->num.pdata);
            release_elements(a_, a_->num.pdata, parts(old_count_));
        }
        if (imag) move_runs(imag.get(), a_->num.pimag);
        const bool frees = !a_->is_private_data();
        a_->set_private_data(false);
        if (frees) oxFreeEx(a_->num.pdata);
        a_->num.pdata = real.release();
        if (!imag) return true;
        if (frees) oxFreeEx(a_->num.pimag);
        a_->num.pimag = imag.release();
        return true;
    }

    oxArray *a_;
    ElementLayout layout_;
    Change change_;
    kwSize old_count_, new_count_ = 1;
    Filling filling_;
};

} // namespace

bool own_for_writing(oxArray *a) { return is_container(a) ? own_slots(a) : own_storage(a); }

void resize_array(oxArray *a, const Extents &dims, const oxArray *filler) {
    oxCheckDim(dims.get(), dims.size(), oxGetElementSize(a));
    const Filling filling = read_filler(a, filler);
    RawArray<kwSize> vector; // made first, so that nothing can fail once the data have changed
    if (dims.size() > 2) {
        vector = RawArray<kwSize>::make(dims.size());
        if (!vector) raise_out_of_memory();
        std::memcpy(vector.get(), dims.get(), dims.size() * sizeof(kwSize));
    }
    if (!own_for_writing(a) || !Resizer(a, dims, filling).run()) raise_out_of_memory();
    store_mn(a, dims[0], dims[1]);
    if (vector) {
        a->ndims = dims.size();
        a->dim_vector = vector.release();
    }
    oxSetScalarDoubleFlagIfAppropiate(a);
    if (a->class_code == oxOPAQUE_CLASS && filling.real != 0) own_payload_fillers(a, filling.real);
}

} // namespace ox

using namespace ox;

void oxResizeArray(oxArray *a, kwSize ndims, const kwSize *dims) {
    Extents e(dims, ndims);
    if (ndims == 0) e.assign(kwSize{0}, 0);
    if (ndims == 1) e.assign(dims[0], 1);
    is_sparse(a) ? resize_sparse(a, e.get(), e.size()) : resize_array(a, e, nullptr);
}

void oxResize(oxArray *a, kwSize m, kwSize n) {
    const kwSize dims[2] = {m, n};
    oxResizeArray(a, 2, dims);
}
