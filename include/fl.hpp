// The foundation library's interface: memory manager mode, aligned heap, element pools, application
// object.
//
// Everything here serves one thread, the interpreter's: there are no locks. Other threads may use
// the C library's malloc freely at the same time; they may not call into this library.
#ifndef FL_HPP
#define FL_HPP

#include <cstddef>

/// Marks what the library exports.
#if defined(_WIN32)
#if defined(FL_BUILDING)
#define FL_API __declspec(dllexport)
#else
#define FL_API __declspec(dllimport)
#endif
#else
#define FL_API __attribute__((visibility("default")))
#endif

namespace fl {

/// The memory manager: its mode chooses the allocator behind array memory.
class FL_API manager {
public:
    /// Mode in which the utility library's allocator serves array memory.
    static constexpr int utility_allocator = 2;

    /// The process-wide manager. Never fails.
    static manager &instance();

    /// The mode: 2 selects the utility library's allocator, anything else (0 at start) the aligned
    /// heap. An installed override may raise.
    virtual int mode();

    /// Chooses the mode. Array memory asks once per process: set it before the first allocation.
    void set_mode(int mode) { mode_ = mode; }

    /// Makes `instance()` answer `other` instead (null: the built-in manager again), which stays
    /// owned by the caller and must outlive its use. Returns the previous override or null.
    static manager *set_instance(manager *other);

protected:
    constexpr manager() = default;
    ~manager() = default;

private:
    int mode_ = 0;
};

/// The heap of array memory. Blocks are aligned to at least 16 bytes. No operation throws; failure
/// is null. Sizes are in bytes and never 0; a request above 2^40 bytes answers null at once.
///
/// Three ranges: up to 1 KiB from size-class free lists, then the C library's malloc, and from
/// 128 KiB on page blocks that are kept when freed. Kept memory is bounded (`set_kept_limit`) and
/// is given back before any allocation is refused. In sanitizer builds every block is one malloc.
class FL_API aligned_heap {
public:
    /// The process-wide heap. Never fails; usable before and after static initialisation.
    static aligned_heap &instance();

    /// Whether `block` may be a block of this heap. Deliberate: always true, callers ignore it.
    virtual bool check(void *block) = 0;
    /// A block of `size` bytes with unspecified contents, or null.
    virtual void *allocate(std::size_t size) = 0;
    /// A block of `count * size` zero bytes, or null. The caller has checked that the product fits.
    virtual void *allocate_zeroed(std::size_t count, std::size_t size) = 0;
    /// `block` (may be null) with room for `size` bytes, moved where necessary, contents kept up to
    /// the smaller size. Null leaves the block as it was. Growth takes slack, so that growing by
    /// one element at a time costs amortised constant time.
    virtual void *reallocate(void *block, std::size_t size) = 0;
    /// Takes `block` back; null is ignored.
    virtual void free(void *block) = 0;

    /// Gives memory that is kept for reuse back to the system. True if there was any.
    virtual bool release_kept() = 0;
    /// Bounds the bytes kept for reuse, releasing what is above; returns the previous bound
    /// (at start a sixteenth of the physical memory).
    virtual std::size_t set_kept_limit(std::size_t bytes) = 0;
    /// Bytes kept for reuse at this moment.
    virtual std::size_t kept_bytes() const = 0;

protected:
    constexpr aligned_heap() = default;
    ~aligned_heap() = default;
};

/// Equal-sized elements in aligned chunks with a free list.
class FL_API pool {
public:
    virtual ~pool() = default;

    /// An uninitialised element (aligned to 16 bytes if its size is a multiple of 16, else to 8),
    /// or null. Constant time.
    virtual void *allocate() = 0;
    /// Takes an element of this pool back; null is ignored. Constant time.
    virtual void free(void *element) = 0;
    /// Gives chunks without a live element back to the heap. True if there was any.
    virtual bool recover() = 0;
    /// Elements allocated and not yet freed.
    virtual std::size_t live() const = 0;
};

/// A pool of elements of `elem` bytes in chunks of `block` bytes (a power of two; raised to one
/// that holds at least one element). The caller owns it, and deletes it when no element is in use.
/// Null if memory is short; no chunk is taken before the first allocation.
FL_API pool *create_managed_pool(std::size_t elem, std::size_t block);

/// The application object: one is made at start-up and destroyed at unload.
class FL_API init {
public:
    init();
    ~init();
    init(const init &) = delete;
    init &operator=(const init &) = delete;

    /// Application objects alive.
    static int count();
};

/// Test seam: `fails` is asked before every allocation and reallocation of heap and pools; where it
/// answers true that allocation returns null. Null (at start) switches it off. Returns the
/// previous.
using allocation_fault = bool (*)();
FL_API allocation_fault set_allocation_fault(allocation_fault fails);

/// Blocks of the aligned heap allocated and not yet freed.
FL_API std::size_t heap_live_blocks();

} // namespace fl

#endif
