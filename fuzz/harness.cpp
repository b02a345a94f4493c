// What the fuzz targets share.
#include "harness.h"

#include <containers/check_array.h>
#include <core/check_header.h>
#include <core/startup.h>

#include <fl.hpp>

#include <cstring>

// The sanitizer run-time calls these for every block; without it nothing is counted.
extern "C" {
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void *, size_t),
                                                            void (*)(const volatile void *));
[[gnu::weak]] size_t __sanitizer_get_allocated_size(const volatile void *);
}

namespace ox::fuzz {
namespace {

std::size_t current = 0, peak = 0, start = 0;

void on_malloc(const volatile void *, size_t size) {
    current += size;
    if (current > peak) peak = current;
}
void on_free(const volatile void *block) {
    if (block) current -= __sanitizer_get_allocated_size(block);
}

void start_once() {
    static const bool started = [] {
        oxInitAllocListManager();
        oxInitArrayListManager();
        oxDestroyArray(oxCreateDoubleScalar(0)); // the lists have their first blocks
        oxFree(oxMalloc(1));
        if (__sanitizer_install_malloc_and_free_hooks)
            __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free);
        return true;
    }();
    static_cast<void>(started);
}

} // namespace

void require(bool holds, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

Run::Run(std::size_t input_size, std::size_t factor) : input_size_(input_size), factor_(factor) {
    start_once();
    arrays_ = oxEnterNewArrayListContext();
    listed_ = oxEnterNewAllocListContext();
    blocks_ = fl::heap_live_blocks();
    headers_ = live_headers();
    start = peak = current;
}

Run::~Run() {
    require(peak - start <= (std::size_t{1} << 20) + factor_ * input_size_, "bound of memory");
    require(!*oxGetLastErrMsg(), "no error is recorded");
    oxExitArrayListContext(arrays_, nullptr, 0, true);
    oxFreeAllocListContext();
    oxRestorePreviousAllocListContext(listed_);
    require(live_headers() == headers_, "no header is left");
    require(fl::heap_live_blocks() <= blocks_ + 1, "no block is left"); // a list may have grown
}

void require_well_formed(const oxArray *a) {
    const Finding found = check_array(a);
    require(!found, check_rule_text(found.rule));
}

int32_t read_item(oiStreamRec_tag *s, kwSize offset) {
    oiItem_tag item{};
    const int32_t status = oiGetItem(s, &item, offset);
    require(status == oiSUCCESS || !item.data, "no data without success");
    if (!item.data || item.data == &item.name) return status;
    if (item.type == oiMATRIX) {
        require_well_formed(static_cast<const oxArray *>(item.data));
        oxDestroyArray(static_cast<oxArray *>(item.data));
        return status;
    }
    const volatile auto *bytes = static_cast<char *>(item.data);
    for (uint64_t k = 0; k < item.count; ++k) static_cast<void>(bytes[k]); // each can be read
    s->free(item.data);
    return status;
}

int32_t read_header(oiStreamRec_tag *s, kwSize offset, int mode) {
    char name[64];
    std::memset(name, 'x', sizeof name);
    oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
    const int32_t status = oiGetMatrixHeader(s, &item, offset, mode);
    require(status == oiSUCCESS || !item.data, "no array without success");
    auto *a = static_cast<oxArray *>(item.data);
    if (!a) return status;
    require(std::memchr(name, 0, sizeof name) != nullptr, "the name is terminated");
    require(check_header(a, CheckDepth::header) == 0, "rules of a header");
    if (mode) require_well_formed(a);
    oxDestroyArray(a);
    return status;
}

Stream::Stream(uint8_t choice, const uint8_t *data, std::size_t size) {
    const bool swapped = choice & 4;
    const uint16_t version = swapped ? oiSWAPPED_VERSION : 0;
    const uint16_t indicator = swapped ? oiSWAPPED_INDICATOR : 0;
    const uint16_t options = choice & 8 ? oiWIDE : 0;
    if ((choice & 3) == 0) {
        void *block = oxMallocEx(size);
        if (block) std::memcpy(block, data, size);
        s_ = oiCreateBufferStream(block, version, indicator, nullptr, nullptr, nullptr, size,
                                  options);
        if (!s_) oxFreeEx(block);
        return;
    }
    if (size == 0) return;
    const auto room = [](oiStreamRec_tag *, kwSize n, kwSize *offset, kwSize *capacity) -> int32_t {
        *capacity = *offset + n;
        return oiSUCCESS;
    };
    file_ = fmemopen(const_cast<uint8_t *>(data), size, "rb");
    s_ = (choice & 3) == 1 ? oiCreateSequentialStream(file_, version, indicator, room, 0, nullptr,
                                                      nullptr, options)
                           : oiCreateFileStream(file_, version, indicator, room, 0, nullptr,
                                                nullptr, nullptr, nullptr, options);
}

Stream::~Stream() {
    (file_ ? oiDisposeFileStream : oiDisposeBufferStream)(s_);
    if (file_) fclose(file_);
}

int read_stream(const uint8_t *data, std::size_t size,
                int32_t (*read)(oiStreamRec_tag *, kwSize, int)) {
    Input in(data, size);
    const uint8_t choice = in.byte(), moves = in.byte();
    const Run run(size, 16 * ((choice & 3) ? 1032 : 1));
    const Stream s(choice, in.data(), in.size());
    if (!s.get()) return 0;
    for (unsigned k = 0; k < 16; ++k) {
        const bool moved = moves >> (k & 7) & 1 && in.size() > 0;
        const kwSize offset = moved ? moves * 37U * k % in.size() : oiCURRENT_OFFSET;
        if (read(s.get(), offset, choice >> 4 & 1) == oiSHORT_READ && !moves) break;
    }
    return 0;
}

} // namespace ox::fuzz
