// Protected array pointers: what owning an array does to its scope.
#include <core/array.h>
#include <core/array_list.h>
#include <ox/array_list.h>
#include <ox/create.h>
#include <ox/protected.hpp>
#include <ox/sharing.h>

#include <utility>

static_assert(sizeof(Protected_oxArray) == 16 && !std::is_polymorphic_v<Protected_oxArray>);

namespace {

// The list destroys its arrays by their count, so while this one enters it the count reads 0; it
// comes back also when the list cannot grow.
struct ZeroCount {
    explicit ZeroCount(oxArray *array) : a(array), count(std::exchange(a->reference_count, 0)) {}
    ~ZeroCount() { a->reference_count = count; }
    ZeroCount(const ZeroCount &) = delete;
    ZeroCount &operator=(const ZeroCount &) = delete;
    oxArray *a;
    uint32_t count;
};

void make_temporary(oxArray *a) {
    if (!a || a->scope != oxSCOPE_NONE) return;
    ZeroCount while_listing(a);
    oxSetArrayScope(a, oxSCOPE_TEMPORARY);
}

} // namespace

oxArray *Protected_oxArray_helper::copy(oxArray *a) { return oxCreateReference(a); }
void Protected_oxArray_helper::free(oxArray *a) { oxDestroyArray(a); }

Protected_oxArray::Protected_oxArray(oxArray *a, bool owns) : Protected_cptr(a, owns) {
    myLocalize();
}
Protected_oxArray::Protected_oxArray(const Protected_oxArray &o) : Protected_cptr(o) {
    myLocalize();
}
Protected_oxArray &Protected_oxArray::operator=(const Protected_oxArray &o) {
    Protected_cptr::operator=(o);
    myLocalize();
    return *this;
}
Protected_oxArray &Protected_oxArray::operator=(oxArray *a) {
    Protected_cptr::operator=(a);
    myLocalize();
    return *this;
}

void Protected_oxArray::myLocalize() {
    if (owns() && get()) oxSetArrayScope(get(), oxSCOPE_NONE);
}

oxArray *Protected_oxArray::Unshare() {
    oxArray *a = oxUnshareEx(get());
    if (a) replace(a);
    return a;
}

oxArray *Protected_oxArray::Unprotect() {
    if (owns()) make_temporary(get());
    return Protected_cptr::Unprotect();
}

oxArray *Protected_oxArray::Unprotect_copy() const {
    oxArray *copy = oxCreateSharedCopy(get());
    make_temporary(copy);
    return copy;
}
