// The slow paths of small blocks: new slabs, and finding the unused ones.
#include "foundation/small_blocks.h"
#include "foundation/pages.h"

namespace fl {
namespace {

// Memory is committed in steps of a huge page; small programs stay on small pages.
constexpr std::size_t commit_bytes = pages::huge;
constexpr std::size_t small_page_steps = 4;

} // namespace

void *SmallBlocks::carve(std::size_t cls) {
    List &list = lists_[cls];
    if (list.fresh == list.end && !new_slab(cls)) return nullptr;
    char *block = list.fresh;
    list.fresh += bytes_of(cls);
    return block;
}

bool SmallBlocks::new_slab(std::size_t cls) {
    std::size_t slab;
    if (spare_slab_ > 0) {
        slab = spare_slab_ - 1;
        spare_slab_ = unused_[slab];
    } else {
        if (used_slabs_ == committed_slabs_ && !commit_more()) return false;
        slab = used_slabs_++;
    }
    class_of_[slab] = static_cast<std::uint8_t>(cls);
    List &list = lists_[cls];
    list.fresh = start_of(slab);
    list.end = list.fresh + slab_bytes / bytes_of(cls) * bytes_of(cls);
    return true;
}

// A process may be limited in its address space: most of it is for what will be used, not for what
// is only reserved.
bool SmallBlocks::reserve_region() {
    const std::size_t most = pages::address_space() / 8;
    for (std::size_t bytes = most_slabs * slab_bytes; bytes >= 64 * commit_bytes; bytes /= 4) {
        if (bytes > most) continue;
        if (char *start = pages::reserve(bytes)) {
            base_ = address(start);
            region_bytes_ = bytes;
            return true;
        }
    }
    refused_ = true;
    return false;
}

bool SmallBlocks::commit_more() {
    if (refused_ || (region_bytes_ == 0 && !reserve_region())) return false;
    const std::size_t done = committed_slabs_ * slab_bytes;
    if (done == region_bytes_) return false;
    const bool huge_pages = done >= small_page_steps * commit_bytes;
    if (!pages::commit(start_of(committed_slabs_), commit_bytes, huge_pages)) return false;
    committed_slabs_ += commit_bytes / slab_bytes;
    return true;
}

// Blocks of a slab that were handed out at least once.
std::size_t SmallBlocks::carved(std::size_t slab) const {
    const std::size_t bytes = bytes_of(class_of_[slab]);
    const List &list = lists_[class_of_[slab]];
    const char *start = start_of(slab);
    const bool newest = list.end > start && list.end <= start + slab_bytes;
    return newest ? static_cast<std::size_t>(list.fresh - start) / bytes : slab_bytes / bytes;
}

void SmallBlocks::count_unused(std::size_t cls) {
    for (Node *node = lists_[cls].free; node; node = node->next) ++unused_[slab_of(node)];
}

// Takes the free blocks of wholly unused slabs off the class's list.
void SmallBlocks::drop_unused(std::size_t cls) {
    for (Node **link = &lists_[cls].free; *link;) {
        const std::size_t slab = slab_of(*link);
        if (unused_[slab] == carved(slab))
            *link = (*link)->next;
        else
            link = &(*link)->next;
    }
}

bool SmallBlocks::release() {
    for (std::size_t slab = 0; slab < used_slabs_; ++slab)
        if (class_of_[slab] != 0) unused_[slab] = 0;
    for (std::size_t cls = 1; cls < classes; ++cls) count_unused(cls);
    for (std::size_t cls = 1; cls < classes; ++cls) drop_unused(cls);

    bool any = false;
    for (std::size_t slab = 0; slab < used_slabs_; ++slab) {
        if (class_of_[slab] == 0 || unused_[slab] != carved(slab)) continue;
        List &list = lists_[class_of_[slab]];
        if (list.end > start_of(slab) && list.end <= start_of(slab) + slab_bytes)
            list.fresh = list.end = nullptr;
        pages::discard(start_of(slab), slab_bytes);
        class_of_[slab] = 0;
        unused_[slab] = static_cast<std::uint32_t>(spare_slab_);
        spare_slab_ = slab + 1;
        any = true;
    }
    return any;
}

} // namespace fl
