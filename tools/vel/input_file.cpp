// Files that are read.
#include "input_file.h"

#include "failure.h"
#include "progress.h"

#include <cerrno>
#include <cstring>
#include <ox.h>
#include <sys/stat.h>

namespace vel {

InputFile::InputFile(const std::string &path) : file_(fopen(path.c_str(), "rb")) {
    if (!file_ || !measure()) {
        const int reason = errno;
        if (file_) fclose(file_);
        throw Failure(Exit::io, path + ": cannot be read: " + std::strerror(reason));
    }
    watch_input(fileno(file_), size_);
}

bool InputFile::measure() {
    struct stat s;
    if (fstat(fileno(file_), &s) == 0 && S_ISDIR(s.st_mode)) {
        errno = EISDIR; // a folder can be opened, and has an end beyond all bounds
        return false;
    }
    if (oiFseek64(file_, 0, SEEK_END) != 0) return false;
    size_ = static_cast<uint64_t>(oiFtell64(file_));
    rewind(file_);
    return true;
}

InputFile::~InputFile() {
    forget(fileno(file_));
    fclose(file_);
}

} // namespace vel
