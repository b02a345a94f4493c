// The utility library's C++ parts: the exception that every raise throws, and the UTF-16 output
// converter.
#ifndef UT_HPP
#define UT_HPP

#include "ut.h"

#include <exception>
#include <string>

struct UConverter;

namespace ut {

/// Carries an identifier and a message. Copying never throws or allocates. Making one cannot fail
/// either: when memory is short the texts go, cut if need be, into a static reserve.
class UT_API simple_exception : public std::exception {
public:
    /// Copies both texts (null is "").
    simple_exception(const char *identifier, const char *message) noexcept;
    simple_exception(const simple_exception &other) noexcept;
    simple_exception &operator=(const simple_exception &other) noexcept;
    ~simple_exception() override;

    /// The texts, never null; what() is the message.
    const char *identifier() const noexcept;
    const char *message() const noexcept;
    const char *what() const noexcept override { return message(); }

private:
    struct Block;
    Block *block_; // shared by all copies; never null
};

/// Converts UTF-16 units to an encoding. The byte length is known after construction; short
/// results are already there (inline), longer ones are produced by convert().
class UT_API utf16_out {
public:
    /// Reads `count` units at `units`, which must outlive the object. A null encoding is the local
    /// code page; an unknown one is served as the local code page.
    utf16_out(const utChar16 *units, int32_t count, const char *encoding);
    utf16_out(const utf16_out &) = delete;
    utf16_out &operator=(const utf16_out &) = delete;

    /// Bytes of the whole result; no terminator.
    std::size_t length() const { return length_; }
    /// Whether data() holds the result.
    bool is_inline() const { return length_ <= sizeof inline_; }
    /// The result where is_inline(), else null. Not terminated.
    const char *data() const { return is_inline() ? inline_ : nullptr; }
    /// Writes length() bytes to `dst`, inline or not.
    void convert(char *dst) const;
    /// Appends the result. May throw std::bad_alloc.
    void append_to(std::string &out) const;

private:
    const utChar16 *units_;
    int32_t count_;
    std::size_t length_;
    UConverter *converter_; // null where pure ASCII is copied
    char inline_[1024];
};

} // namespace ut

#endif
