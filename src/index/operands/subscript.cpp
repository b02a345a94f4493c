// Reading one subscript array into a description of the positions that it selects.
#include <core/class_table.h>
#include <core/imaginary.h>
#include <errors/raise.h>
#include <index/operands/colon_range.h>
#include <index/operands/positions.h>
#include <index/operands/subscript.h>

#include <cmath>

namespace ox {

namespace {

// Whether p is an arithmetic progression; random lists are recognised by their first entries.
bool is_progression(const kwIndex *p, kwSize n) {
    const kwIndex step = p[1] - p[0];
    for (kwSize k = 2; k < n; ++k)
        if (p[k] - p[k - 1] != step) return false;
    return true;
}

// Why the values of a subscript were refused: the first one that is no position decides.
SubscriptFault fault_of(const oxArray *sub, kwSize n) {
    auto of_float = [n](auto *x) {
        for (kwSize k = 0; k < n; ++k)
            if (!(x[k] >= 1 && std::trunc(x[k]) == x[k]) || x[k] > 18446744073709551615.0)
                return x[k] == 0 ? SubscriptFault::zero : SubscriptFault::not_integer;
        return SubscriptFault::not_integer;
    };
    if (sub->class_code == oxDOUBLE_CLASS) return of_float(data<double>(sub));
    if (sub->class_code == oxSINGLE_CLASS) return of_float(data<float>(sub));
    return SubscriptFault::zero;
}

} // namespace

SubscriptFault Subscript::read(const oxArray *sub, kwSize extent) {
    set_none();
    colon_character = is_colon_character(sub);
    SubscriptFault fault = SubscriptFault::none;
    if (colon_character)
        set_all(extent);
    else if (sub->has_flag(oxFLAG_COLON))
        fault = read_colon_object(sub);
    else if (sub->class_code == oxLOGICAL_CLASS)
        fault = is_sparse(sub) ? read_sparse_mask(sub) : read_full_mask(sub);
    else
        fault = read_numeric(sub);
    if (fault != SubscriptFault::none) set_none();
    return fault;
}

void Subscript::read_or_raise(const oxArray *sub, kwSize extent) {
    const SubscriptFault fault = read(sub, extent);
    if (fault != SubscriptFault::none) raise_subscript_fault(fault);
}

SubscriptFault Subscript::read_colon_object(const oxArray *sub) {
    const ColonRecord r = ox::read_colon_object(sub);
    const IndexRange range = colon_index_range(r.first, r.step, r.last);
    if (range.count == 0) return SubscriptFault::none;
    const int64_t end = range.whole
                            ? range.first + static_cast<int64_t>(range.count - 1) * range.step
                            : colon_index_floor(r.first, r.step, range.count - 1);
    const int64_t begin = range.whole ? range.first : colon_index_floor(r.first, r.step, 0);
    const int64_t lowest = begin < end ? begin : end;
    if (lowest < 1) return lowest == 0 ? SubscriptFault::zero : SubscriptFault::not_integer;
    if (range.whole) {
        set_range(static_cast<kwIndex>(begin - 1), range.step, range.count);
        return SubscriptFault::none;
    }
    kwIndex *p = list_storage(range.count);
    if (!p) return SubscriptFault::no_memory;
    for (kwSize k = 0; k < range.count; ++k)
        p[k] = static_cast<kwIndex>(colon_index_floor(r.first, r.step, k)) - 1;
    set_list(p, range.count, static_cast<kwSize>(begin < end ? end : begin));
    return SubscriptFault::none;
}

SubscriptFault Subscript::read_full_mask(const oxArray *sub) {
    const auto *bytes = data<const uint8_t>(sub);
    kwSize n = sub->get_number_of_elements();
    const kwSize selected = bytes ? count_true(bytes, n) : 0;
    if (selected == 0) return SubscriptFault::none;
    while (bytes[n - 1] == 0) --n;
    kwSize begin = 0;
    while (bytes[begin] == 0) ++begin;
    if (n - begin == selected) { // one run of true values
        set_range(begin, 1, selected);
        return SubscriptFault::none;
    }
    kind = Kind::mask;
    count = selected;
    max = mask_size = n;
    mask = bytes;
    return SubscriptFault::none;
}

// Positions count down the columns, like those of a full mask.
SubscriptFault Subscript::read_sparse_mask(const oxArray *sub) {
    const kwSize m = rows(sub), n = cols(sub);
    const kwIndex *jc = sub->num.jc, *ir = sub->num.ir;
    const auto *pr = data<const uint8_t>(sub);
    const kwSize selected = count_true(pr, jc[n]);
    if (selected == 0) return SubscriptFault::none;
    kwIndex *p = list_storage(selected);
    if (!p) return SubscriptFault::no_memory;
    kwSize k = 0;
    for (kwIndex j = 0; j < n; ++j)
        for (kwIndex q = jc[j]; q < jc[j + 1]; ++q)
            if (pr[q]) p[k++] = ir[q] + j * m;
    set_list(p, selected, p[selected - 1] + 1);
    return SubscriptFault::none;
}

SubscriptFault Subscript::read_numeric(const oxArray *sub) {
    if (is_complex(sub)) return SubscriptFault::not_real;
    const kwSize n = sub->get_number_of_elements();
    if (n == 0) return SubscriptFault::none;
    if (is_sparse(sub) && sub->num.jc[cols(sub)] != n) return SubscriptFault::not_real;
    if (!is_numeric(sub) && !sub->is_char()) return SubscriptFault::not_integer;

    kwIndex *p = list_storage(n);
    if (!p) return SubscriptFault::no_memory;
    kwSize largest = 0;
    const bool good =
        sub->class_code == oxDOUBLE_CLASS ? positions_from_double(data<double>(sub), n, p, &largest)
        : sub->class_code == oxSINGLE_CLASS
            ? positions_from_single(data<float>(sub), n, p, &largest)
            : positions_from_bits(sub->num.pdata, class_info(sub->class_code).element_size, n, p,
                                  &largest);
    if (!good) return fault_of(sub, n);
    if (n == 1 || (largest <= max_size && is_progression(p, n))) // else steps wrap around
        set_range(p[0], n == 1 ? 0 : static_cast<int64_t>(p[1] - p[0]), n);
    else
        set_list(p, n, largest);
    return SubscriptFault::none;
}

kwIndex *Subscript::list_storage(kwSize n) {
    if (n <= sizeof few_ / sizeof *few_) return few_;
    many_ = RawArray<kwIndex>::make(n);
    return many_.get();
}

bool Subscript::mask_to_list() {
    if (kind != Kind::mask) return true;
    kwIndex *p = list_storage(count);
    if (!p) return false;
    positions_from_mask(mask, mask_size, p);
    set_list(p, count, max);
    return true;
}

void Subscript::copy_positions(kwIndex *out, kwIndex base) const {
    if (kind == Kind::mask && base == 0) return positions_from_mask(mask, mask_size, out);
    for_each([&](kwIndex p) { *out++ = p + base; });
}

void Subscript::set_none() {
    kind = Kind::none;
    colon_character = false;
    count = max = 0;
}

void Subscript::set_all(kwSize extent) {
    kind = Kind::all;
    count = max = extent;
}

void Subscript::set_range(kwIndex begin, int64_t by, kwSize n) {
    kind = n == 0 ? Kind::none : n == 1 ? Kind::scalar : Kind::range;
    first = begin;
    step = n == 1 ? 0 : by;
    count = n;
    const kwIndex end = begin + (n - 1) * static_cast<kwIndex>(step);
    max = n == 0 ? 0 : (by >= 0 ? end : begin) + 1;
}

void Subscript::set_list(const kwIndex *positions, kwSize n, kwSize largest) {
    kind = Kind::list;
    list = positions;
    count = n;
    max = largest;
}

void raise_subscript_fault(SubscriptFault fault) {
    if (fault == SubscriptFault::no_memory) raise_out_of_memory();
    oxHandleSubscriptError(1);
}

} // namespace ox
