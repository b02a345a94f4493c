// The sizes of an array as int, kept with the array.
#define OX_NO_LEVEL_MACROS
#include <compat/sizes.h>
#include <core/array.h>
#include <ox/compat.h>

using namespace ox;

namespace {

// The array's cache with room for n sizes; raises 18, the cache then empty.
ox_dim32_cache *cache_for(oxArray *a, int32_t n) {
    if (!a->dim32) a->dim32 = static_cast<ox_dim32_cache *>(oxCallocEx(1, sizeof *a->dim32));
    ox_dim32_cache *cache = a->dim32;
    if (!cache) raise_out_of_memory();
    if (cache->length == n) return cache;
    const kwSize bytes = static_cast<kwSize>(n) * sizeof(int);
    void *room = cache->dims ? oxReallocEx(cache->dims, bytes) : oxMallocEx(bytes);
    if (!room) oxFreeEx(cache->dims);
    *cache = {static_cast<int *>(room), room ? n : 0};
    if (!room) raise_out_of_memory();
    return cache;
}

} // namespace

extern "C" {

int *oxGetDimensions_700(const oxArray *a) {
    const kwSize *dims = oxGetDimensions_730(a); // completes them where the class knows better
    const int n = oxGetNumberOfDimensions_700(a);
    ox_dim32_cache *cache = cache_for(const_cast<oxArray *>(a), n);
    for (int k = 0; k < n; ++k) cache->dims[k] = compat::narrow(dims[k]);
    return cache->dims;
}

OX_API decltype(oxGetDimensions_700) oxGetDimensions
    __attribute__((alias("oxGetDimensions_700"))); // the plain name

} // extern "C"
