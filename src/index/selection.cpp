// Turning subscripts into axes.
#include <core/position.h>
#include <index/selection.h>

namespace ox {

Selection::Selection(SubscriptSet &subs, const kwSize *extents, kwSize inner) : count(inner) {
    for (const Subscript &s : subs) count = saturating_multiply(count, s.count);
    if (subs.size() + 1 > inside_count) {
        block_ = RawArray<Axis>::make(subs.size() + 1);
        if (!block_) raise_out_of_memory();
        p_ = block_.get();
    }
    if (subs.size() == 1 && inner == 1 && subs[0].kind == Subscript::Kind::mask) {
        mask = &subs[0];
        return;
    }
    if (inner != 1) add_steps(inner, 1);
    kwSize stride = inner;
    for (kwSize k = 0; k < subs.size(); ++k) {
        if (!subs[k].mask_to_list()) raise_out_of_memory();
        add(subs[k], stride);
        stride *= extents[k];
    }
}

void Selection::add(const Subscript &s, kwSize stride) {
    if (s.kind == Subscript::Kind::list) {
        p_[axes_++] = Axis{s.count, 0, s.list, stride};
        return;
    }
    if (!s.is_all()) base += s.first * stride;
    const int64_t step = s.is_all() ? 1 : s.step;
    if (s.count != 1) add_steps(s.count, step * static_cast<int64_t>(stride));
}

void Selection::add_steps(kwSize n, int64_t step) {
    Axis *last = axes_ ? p_ + axes_ - 1 : nullptr;
    if (last && !last->list && static_cast<int64_t>(last->count) * last->step == step)
        last->count *= n;
    else
        p_[axes_++] = Axis{n, step, nullptr, 0};
}

} // namespace ox
