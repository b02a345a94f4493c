// Bytes to walk over: those of a file, or what a compressed element of it holds.
#pragma once
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ox.h>

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

class FileSource : public Source {
public:
    FileSource(FILE *f, uint64_t size, uint64_t offset);
    bool inflated() const override { return false; }

private:
    bool take(void *to, size_t n) override;
    bool pass(uint64_t n) override;
    FILE *file_;
    uint64_t size_;
};

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
