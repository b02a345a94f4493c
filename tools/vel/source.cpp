// Bytes to walk over.
#include "source.h"

#include <algorithm>
#include <limits>

namespace vel {
namespace {
constexpr uint64_t piece = uint64_t{1} << 30; // the decompressor counts in 32 bits
}

FileSource::FileSource(FILE *f, uint64_t size, uint64_t offset) : file_(f), size_(size) {
    at_ = offset;
    oiFseek64(f, static_cast<int64_t>(offset), SEEK_SET);
}
bool FileSource::take(void *to, size_t n) { return fread(to, 1, n, file_) == n; }
bool FileSource::pass(uint64_t n) {
    return n <= size_ - at_ && oiFseek64(file_, static_cast<int64_t>(n), SEEK_CUR) == 0;
}

InflatedSource::InflatedSource(FILE *f, uint64_t length) : gzip_(oiNewGzipString()) {
    if (length <= static_cast<uint64_t>(std::numeric_limits<int32_t>::max()))
        gzipStringReadInit(gzip_, f, static_cast<int32_t>(length));
}
InflatedSource::~InflatedSource() {
    gzipStringReadClose(gzip_);
    oiDeallocateGzipString(gzip_);
}
bool InflatedSource::take(void *to, size_t n) {
    return gzipStringReadBytes(gzip_, to, n) == static_cast<int64_t>(n);
}
bool InflatedSource::pass(uint64_t n) {
    while (n > 0) {
        const uint64_t now = std::min(n, piece);
        if (gzipStringReadSkipBytes(gzip_, now) != static_cast<int64_t>(now)) return false;
        n -= now;
    }
    return true;
}

} // namespace vel
