// Files that appear only once they are complete.
#include "output_file.h"

#include "failure.h"
#include "progress.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace vel {
namespace {

// The name that the handler removes; a handler may read nothing that is being changed.
char unfinished[4096];
volatile sig_atomic_t is_unfinished = 0;

void interrupted(int signal) {
    if (is_unfinished) unlink(unfinished);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void watch(const std::string &name) {
    if (name.size() >= sizeof unfinished) return;
    std::memcpy(unfinished, name.c_str(), name.size() + 1);
    is_unfinished = 1;
    for (const int s : {SIGINT, SIGTERM, SIGHUP})
        if (std::signal(s, interrupted) == SIG_IGN) std::signal(s, SIG_IGN);
}

// Keeps the signals back that would be handled.
class Uninterrupted {
public:
    Uninterrupted() {
        sigset_t kept;
        sigemptyset(&kept);
        for (const int s : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&kept, s);
        pthread_sigmask(SIG_BLOCK, &kept, &before_);
    }
    Uninterrupted(const Uninterrupted &) = delete;
    Uninterrupted &operator=(const Uninterrupted &) = delete;
    ~Uninterrupted() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

// What a file made by fopen would be: mkstemp makes it readable for its owner only.
void give_usual_mode(int fd) {
    const mode_t mask = umask(0);
    umask(mask);
    if (fchmod(fd, 0666 & ~mask) != 0) errno = 0; // the owner can read it anyway
}

} // namespace

OutputFile::OutputFile(const std::string &path) : path_(path), temporary_(path + ".XXXXXX") {
    const Uninterrupted between; // the file and the note that it must go
    const int fd = mkstemp(temporary_.data());
    if (fd < 0) fail("cannot be written");
    watch(temporary_);
    give_usual_mode(fd);
    file_ = fdopen(fd, "wb+");
    watch_output(fd);
}

OutputFile::~OutputFile() {
    if (file_) {
        close();
        unlink(temporary_.c_str());
    }
    is_unfinished = 0;
}

void OutputFile::write(const void *bytes, size_t n) {
    if (fwrite(bytes, 1, n, file_) != n) fail("cannot be written");
}

void OutputFile::commit() {
    if (fflush(file_) != 0 || ferror(file_)) fail("cannot be written");
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) fail("cannot be put into place");
    is_unfinished = 0;
    close();
}

void OutputFile::close() {
    forget(fileno(file_));
    fclose(file_);
    file_ = nullptr;
}

void OutputFile::fail(const std::string &what) const {
    throw Failure(Exit::io, path_ + ": " + what + ": " + std::strerror(errno));
}

} // namespace vel
