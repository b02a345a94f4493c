// The line on a terminal that says how far a long run is: a thread that looks at the positions of
// the open files ten times a second.
#include "progress.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>

namespace vel {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr auto patience = 500ms, interval = 100ms;
constexpr size_t bar_width = 30;

struct Watched {
    uint64_t size; // of an input
    bool output;
};

std::string amount(double bytes) {
    const char *unit[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    size_t k = 0;
    for (; bytes >= 1000 && k < 4; ++k) bytes /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, bytes < 10 && k > 0 ? "%.1f %s" : "%.0f %s", bytes, unit[k]);
    return text;
}

class Line {
public:
    ~Line() { end(); }

    void watch(int fd, Watched w) {
        if (!isatty(STDERR_FILENO)) return;
        const std::lock_guard lock(mutex_);
        files_[fd] = w;
        if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
    }
    void forget(int fd) {
        const std::lock_guard lock(mutex_);
        files_.erase(fd);
    }
    void end() {
        {
            const std::lock_guard lock(mutex_);
            over_ = true;
        }
        wake_.notify_all();
        if (thread_.joinable()) thread_.join();
        over_ = false;
    }

private:
    void run() {
        sigset_t all; // they are for the main thread, which may hold them back
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        std::unique_lock lock(mutex_);
        auto wait = patience;
        bool shown = false;
        for (; !wake_.wait_for(lock, wait, [this] { return over_; }); wait = interval, shown = true)
            show();
        if (shown) clear();
    }
    static void clear() { std::fputs("\r\x1b[K", stderr), std::fflush(stderr); }

    void show() {
        double done = 0, size = 0, written = 0;
        for (const auto &[fd, w] : files_) {
            const auto at = static_cast<double>(std::max<off_t>(lseek(fd, 0, SEEK_CUR), 0));
            (w.output ? written : done) += at;
            size += static_cast<double>(w.size);
        }
        const bool reading = size > 0 && done < size;
        const double now = reading ? done : written;
        if (reading != reading_ || now < begun_at_) begin(reading, now); // a new stretch of work
        const double seconds = std::chrono::duration<double>(Clock::now() - begun_).count(),
                     rate = seconds > 0 ? (now - begun_at_) / seconds : 0;
        const double share = size > 0 ? std::min(done / size, 1.) : 0;
        std::string text = "\r[" + std::string(static_cast<size_t>(share * bar_width), '#');
        text.resize(bar_width + 2, '.');
        text += "] " + std::to_string(static_cast<int>(share * 100)) + " % of " + amount(size);
        if (!reading && written > 0) text += ", " + amount(written) + " written";
        if (rate > 0) text += ", " + amount(rate) + "/s";
        if (rate > 0 && reading)
            text += ", " + std::to_string(static_cast<long long>((size - done) / rate)) + " s left";
        std::fputs((text + "\x1b[K").c_str(), stderr), std::fflush(stderr);
    }
    void begin(bool reading, double now) {
        reading_ = reading;
        begun_at_ = now;
        begun_ = Clock::now();
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::map<int, Watched> files_;
    std::thread thread_;
    bool over_ = false, reading_ = true;
    double begun_at_ = 0;
    Clock::time_point begun_ = Clock::now();
};

Line &line() {
    static Line one;
    return one;
}

} // namespace

void watch_input(int fd, uint64_t size) { line().watch(fd, {size, false}); }
void watch_output(int fd) { line().watch(fd, {0, true}); }
void forget(int fd) { line().forget(fd); }
void end_progress() { line().end(); }

} // namespace vel
