// Bytes to go over once.
#include "source.h"

#include "files.h"
#include "input_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <limits>

namespace vel {
namespace {

constexpr uint64_t piece = uint64_t{1} << 30; // the decompressor counts in 32 bits

struct OwnedFile : private InputFile, public FileSource {
    explicit OwnedFile(const std::string &path)
        : InputFile(path), FileSource(file(), InputFile::size(), 0) {}
};

struct OwnedText {
    std::string text;
};
struct OwnedMemory : private OwnedText, public MemorySource {
    explicit OwnedMemory(std::string bytes)
        : OwnedText{std::move(bytes)}, MemorySource(OwnedText::text) {}
};

} // namespace

std::unique_ptr<SizedSource> open_source(const std::string &path) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) return std::make_unique<OwnedFile>(path);
    return std::make_unique<OwnedMemory>(read_file(path));
}

FileSource::FileSource(FILE *f, uint64_t size, uint64_t offset) : SizedSource(size), file_(f) {
    at_ = offset;
    oiFseek64(f, static_cast<int64_t>(offset), SEEK_SET);
}
void FileSource::rewind() {
    at_ = 0;
    oiFseek64(file_, 0, SEEK_SET);
}
bool FileSource::take(void *to, size_t n) { return fread(to, 1, n, file_) == n; }
bool FileSource::pass(uint64_t n) {
    return n <= left() && oiFseek64(file_, static_cast<int64_t>(n), SEEK_CUR) == 0;
}

bool MemorySource::take(void *to, size_t n) {
    if (n > left()) return false;
    if (n > 0) std::memcpy(to, bytes_.data() + at_, n);
    return true;
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
