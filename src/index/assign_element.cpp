// A(i) = x, A(i, j) = x and x(end+1) = value for plain scalars: no description, no conversion.
#include <core/class_table.h>
#include <core/dispatch.h>
#include <core/position.h>
#include <errors/raise.h>
#include <index/assign.h>
#include <index/scalar_subscripts.h>
#include <ox/classes.h>

namespace ox {

namespace {

bool is_plain_value(const oxArray *a, const oxArray *rhs) {
    return rhs->class_code == a->class_code && is_plain_array(rhs) && rhs->ndims == 2 &&
           rhs->mn[0] == 1 && rhs->mn[1] == 1;
}

void store_element(oxArray *a, kwSize position, const oxArray *rhs) {
    visit_width(class_info(a->class_code).element_size, [&](auto tag) {
        using T = typename decltype(tag)::type;
        data<T>(a)[position] = *data<T>(rhs);
    });
}

// x(end+1) = value of a row, a column or a scalar: the block is reallocated, which the heap makes
// cheap, and nothing needs a filler.
bool append_element(oxArray *a, const oxArray *sub, const oxArray *rhs) {
    if (a->ndims != 2 || a->is_private_data() || (a->mn[0] != 1 && a->mn[1] != 1)) return false;
    const kwSize n = a->mn[0] * a->mn[1], width = class_info(a->class_code).element_size;
    kwSize position;
    if (n == 0 || (n + 1) * width > max_size || !plain_position(sub, n + 1, &position) ||
        position != n)
        return false;
    void *block = oxReallocEx(a->num.pdata, (n + 1) * width);
    if (!block) raise_out_of_memory();
    a->num.pdata = block;
    a->mn[a->mn[0] == 1 ? 1 : 0] = n + 1;
    store_element(a, n, rhs);
    oxClearScalarDoubleFlag(a);
    return true;
}

} // namespace

bool assign_element(oxArray *a, kwSize nsubs, const oxArray *const *subs, const oxArray *rhs) {
    if (!is_plain_array(a) || a->cross_link || a->has_flag(oxFLAG_EMPTY_BRACKET) ||
        !is_plain_value(a, rhs))
        return false;
    kwSize position;
    if (!plain_element(a, nsubs, subs, &position))
        return nsubs == 1 && append_element(a, subs[0], rhs);
    store_element(a, position, rhs);
    oxSetScalarDoubleFlagIfAppropiate(a);
    return true;
}

} // namespace ox
