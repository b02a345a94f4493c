// Files that are read.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>

namespace vel {

// Open for its lifetime, at its front, and watched by the progress line.
class InputFile {
public:
    explicit InputFile(const std::string &path); // throws Failure
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;
    ~InputFile();
    FILE *file() const { return file_; }
    uint64_t size() const { return size_; }

private:
    bool measure();

    FILE *file_;
    uint64_t size_ = 0;
};

} // namespace vel
