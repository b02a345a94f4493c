// Start-up of the module: the application object and the pool of array headers.
#include <core/array.h>
#include <core/startup.h>

#include <cstdint>
#include <fl.hpp>
#include <new>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

constexpr std::size_t pool_block = 8192; // bytes of one chunk of headers

constinit fl::pool *header_pool = nullptr;
constinit int constructed_objects = 0;

// Guards one process-wide object: a re-entrant call during construction, and every call after a
// successful one, does nothing; a construction that raises may be tried again.
struct OnceGuard {
    bool busy = false, done = false;

    template<class F> bool run(F &&construct) {
        if (busy || done) return true;
        busy = true;
        try {
            construct();
        } catch (...) {
            busy = false;
            throw;
        }
        busy = false;
        done = true;
        ++constructed_objects;
        return true;
    }
};
constinit OnceGuard init_guard, pool_guard;

// Destroyed at unload, in reverse order of construction: headers freed later are ignored.
struct PoolOwner {
    PoolOwner() : pool(fl::create_managed_pool(sizeof(oxArray), pool_block)) { header_pool = pool; }
    ~PoolOwner() {
        header_pool = nullptr;
        delete pool;
    }
    fl::pool *pool;
};

} // namespace

namespace detail::matrix {

bool init_application_init(int) {
    return init_guard.run([] { static fl::init application; });
}

bool init_pool(int) {
    return pool_guard.run([] { static PoolOwner owner; });
}

} // namespace detail::matrix

namespace {

[[maybe_unused]] const bool application_ready = detail::matrix::init_application_init(0);
[[maybe_unused]] const bool pool_ready = detail::matrix::init_pool(0);

} // namespace

namespace ox {

namespace {

// Word by word in vectors: of this size a memset becomes a string instruction, whose start alone
// costs more than the stores.
oxArray *cleared(void *header) {
    typedef uint64_t Vector __attribute__((vector_size(16), may_alias));
    typedef Vector Pair __attribute__((aligned(8)));
    static_assert(sizeof(oxArray) == 6 * sizeof(Pair) + sizeof(uint64_t));
    Pair *p = static_cast<Pair *>(header); // auto would drop the alignment
    p[0] = p[1] = p[2] = p[3] = p[4] = p[5] = Pair{};
    auto *a = static_cast<oxArray *>(header);
    a->dim32 = nullptr;
    return a;
}

} // namespace

// Another module's initialiser may create arrays before ours ran.
oxArray *allocate_header() {
    if (!header_pool) [[unlikely]] {
        detail::matrix::init_pool(0);
        if (!header_pool) return nullptr;
    }
    void *header = header_pool->allocate();
    return header ? cleared(header) : nullptr;
}

void free_header(oxArray *a) {
    if (a && header_pool) header_pool->free(a);
}

int constructed_static_objects() { return constructed_objects; }
std::size_t live_headers() { return header_pool ? header_pool->live() : 0; }

} // namespace ox

void *oxArray_tag::operator new(std::size_t) noexcept { return ox::allocate_header(); }
void oxArray_tag::operator delete(void *header) noexcept {
    ox::free_header(static_cast<oxArray *>(header));
}

extern "C" bool oxRecoverArrayStorage(void) { return header_pool && header_pool->recover(); }

#if defined(_WIN32)
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
    return TRUE;
}
#endif
