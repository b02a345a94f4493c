// The exception of every raise: one shared block of text that copies count references to.
#include "ut.hpp"
#include "ut/internal.h"

#include <atomic>
#include <cstring>
#include <new>

namespace ut {

struct simple_exception::Block {
    std::atomic<int> references; // exceptions that share the block; 0 marks a free reserve
    bool reserve;                // static: never freed
    const char *message;         // within the text that follows the identifier
    const char *identifier() const { return reinterpret_cast<const char *>(this + 1); }
    char *text() { return reinterpret_cast<char *>(this + 1); }
};

namespace {

constexpr std::size_t reserve_bytes = 4096;
constexpr int reserve_count = 4;
alignas(16) constinit char reserves[reserve_count][reserve_bytes] = {};

// Copies at most `room` - 1 bytes and terminates; answers the place behind the terminator.
char *put(char *dst, std::size_t room, const char *text) {
    std::size_t n = std::strlen(text);
    if (n >= room) n = room - 1;
    std::memcpy(dst, text, n);
    dst[n] = 0;
    return dst + n + 1;
}

} // namespace

simple_exception::simple_exception(const char *identifier, const char *message) noexcept {
    if (!identifier) identifier = "";
    if (!message) message = "";
    std::size_t bytes = sizeof(Block) + std::strlen(identifier) + std::strlen(message) + 2;
    void *memory = raw_allocate(bytes);
    const bool reserve = !memory;
    if (reserve) {
        // The last reserve is shared by all that come too late; it tells of the latest of them.
        bytes = reserve_bytes;
        int k = 0;
        while (k < reserve_count - 1 &&
               reinterpret_cast<Block *>(reserves[k])->references.load() > 0)
            ++k;
        memory = reserves[k];
    }
    const int others = reserve ? static_cast<Block *>(memory)->references.load() : 0;
    block_ = new (memory) Block{others + 1, reserve, nullptr};
    char *rest = put(block_->text(), (bytes - sizeof(Block)) / (reserve ? 2 : 1), identifier);
    block_->message = rest;
    put(rest, bytes - static_cast<std::size_t>(rest - reinterpret_cast<char *>(block_)), message);
}

simple_exception::simple_exception(const simple_exception &other) noexcept
    : std::exception(other), block_(other.block_) {
    ++block_->references;
}

simple_exception &simple_exception::operator=(const simple_exception &other) noexcept {
    simple_exception copy(other);
    Block *mine = block_;
    block_ = copy.block_;
    copy.block_ = mine;
    return *this;
}

simple_exception::~simple_exception() {
    if (--block_->references == 0 && !block_->reserve) raw_free(block_);
}

const char *simple_exception::identifier() const noexcept { return block_->identifier(); }

const char *simple_exception::message() const noexcept { return block_->message; }

} // namespace ut
