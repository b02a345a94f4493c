// Bytes to go over once: those of a file, of memory, or what a compressed element holds.
#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ox.h>
#include <string>
#include <string_view>

namespace vel {

class Source {
public:
    virtual ~Source() = default;
    uint64_t at() const { return at_; }
    // False when fewer than n bytes are left.
    bool read(void *to, size_t n) { return advance(n, take(to, n)); }
    bool skip(uint64_t n) { return advance(n, pass(n)); }
    virtual bool inflated() const = 0;

protected:
    virtual bool take(void *to, size_t n) = 0;
    virtual bool pass(uint64_t n) = 0;
    uint64_t at_ = 0;

private:
    bool advance(uint64_t n, bool good) {
        at_ += good ? n : 0;
        return good;
    }
};

// One whose end is known.
class SizedSource : public Source {
public:
    explicit SizedSource(uint64_t size) : size_(size) {}
    uint64_t size() const { return size_; }
    uint64_t left() const { return size_ - at_; }
    bool inflated() const override { return false; }
    virtual void rewind() = 0;

private:
    uint64_t size_;
};

class FileSource : public SizedSource {
public:
    FileSource(FILE *f, uint64_t size, uint64_t offset);
    void rewind() override;

private:
    bool take(void *to, size_t n) override;
    bool pass(uint64_t n) override;
    FILE *file_;
};

class MemorySource : public SizedSource {
public:
    explicit MemorySource(std::string_view bytes) : SizedSource(bytes.size()), bytes_(bytes) {}
    void rewind() override { at_ = 0; }

private:
    bool take(void *to, size_t n) override;
    bool pass(uint64_t n) override { return n <= left(); }
    std::string_view bytes_;
};

// A whole file; what is no regular file, such as a pipe, is read into memory first. Throws Failure.
std::unique_ptr<SizedSource> open_source(const std::string &path);

class InflatedSource : public Source {
public:
    // length bytes from the file's position on.
    InflatedSource(FILE *f, uint64_t length);
    ~InflatedSource() override;
    bool inflated() const override { return true; }

private:
    bool take(void *to, size_t n) override;
    bool pass(uint64_t n) override;
    gzipString_tag *gzip_;
};

} // namespace vel
