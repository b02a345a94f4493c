// Elements with owners on their way into an array: containers, handles, opaque payloads.
#include <containers/field_table.h>
#include <containers/object_layer.h>
#include <core/dispatch.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <ox.h>

#include <utility>

namespace ox {

RawArray<int32_t> match_fields(const oxArray *a, const oxArray *rhs) {
    const int32_t n = field_count(a);
    if (field_count(rhs) != n) oxErrMsg(FSUBSASSIGNDIMMISMATCH);
    RawArray<int32_t> map;
    if (n == 0 || a->record.names == rhs->record.names) return map;
    map = RawArray<int32_t>::make(static_cast<kwSize>(n));
    if (!map) raise_out_of_memory();
    for (int32_t f = 0; f < n; ++f) {
        const char *name = a->record.names->names[f];
        // The same name in the same place, so that duplicate names map onto themselves.
        map[f] = rhs->record.names->names[f] == name ? f : find_field(rhs->record.names, name);
        if (map[f] < 0) oxErrMsg(FSUBSASSIGNDIMMISMATCH);
    }
    return map;
}

Incoming::Incoming(const oxArray *target, const oxArray *rhs, kwSize n, const int32_t *map)
    : target_(target), layout_(element_layout(target)), parts_(n * layout_.parts) {
    if (parts_ == 0 || !rhs->num.pdata) {
        parts_ = 0;
        return;
    }
    block_ = RawBlock::make(parts_ * layout_.width);
    if (!block_) raise_out_of_memory();
    const bool repeats = rhs->get_number_of_elements() == 1;
    const auto *source = data<const unsigned char>(rhs);
    unsigned char *out = block_.get();
    for (kwSize i = 0; i < n; ++i)
        for (kwSize p = 0; p < layout_.parts; ++p, out += layout_.width) {
            const kwSize from = map ? static_cast<kwSize>(map[p]) : p;
            const kwSize element = repeats ? 0 : i;
            std::memcpy(out, source + (element * layout_.parts + from) * layout_.width,
                        layout_.width);
        }
    own_copied_elements(target, block_.get(), parts_);
}

Incoming::~Incoming() {
    if (block_) release_elements(target_, block_.get(), parts_);
}

void Incoming::swap_into(oxArray *target, const Selection &to) {
    if (parts_ == 0) return;
    visit_width(layout_.width, [&](auto tag) {
        using T = typename decltype(tag)::type;
        T *elements = data<T>(target), *mine = reinterpret_cast<T *>(block_.get());
        to.for_each_position([&](kwSize p) { std::swap(elements[p], *mine++); });
    });
}

oxArray *default_object_of(const oxArray *a) {
    xxInfo *info = a->opaque.info;
    const bool heterogeneous = a->is_opaque_heterogeneous();
    oxArray *object = info->default_object(heterogeneous);
    if (!object && heterogeneous && object_layer().call_static) {
        constexpr char suffix[] = ".getDefaultObject";
        const char *name = info->class_name(a);
        const kwSize length = std::strlen(name);
        auto method = RawArray<char>::make(length + sizeof suffix);
        if (!method) raise_out_of_memory();
        std::memcpy(method.get(), name, length);
        std::memcpy(method.get() + length, suffix, sizeof suffix);
        object = object_layer().call_static(method.get());
    } else if (!object && !heterogeneous && object_layer().create_class_array) {
        const kwSize one[2] = {1, 1};
        object = object_layer().create_class_array(info->class_name(a), 2, one);
    }
    if (object && object->get_number_of_elements() == 0)
        oxErrMsgIdAndTxt(
            "VELTRO:index:defaultObjectEmpty",
            "When expanding an array, the default constructor for '%s' class returned empty.",
            info->class_name(a));
    return object;
}

} // namespace ox
