// Files that appear only once they are complete.
#pragma once
#include <cstdio>
#include <string>

namespace vel {

// Written under a temporary name in the same folder. Without commit, and when the process is
// interrupted, nothing stays behind.
class OutputFile {
public:
    explicit OutputFile(const std::string &path); // throws Failure
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    ~OutputFile();

    FILE *file() const { return file_; }
    void write(const void *bytes, size_t n);
    void commit(); // gives the file its name

private:
    void close();
    [[noreturn]] void fail(const std::string &what) const;

    std::string path_, temporary_;
    FILE *file_ = nullptr;
};

} // namespace vel
