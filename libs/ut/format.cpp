// Formatting: vsnprintf with the width prefixes I, I64 and I32, printing to a sink, lowering case.
#include "ut/internal.h"

#include <cstdio>
#include <cstring>

namespace {

constinit utPrintSink print_sink = nullptr;

bool one_of(char c, const char *set) { return c != 0 && std::strchr(set, c) != nullptr; }

// The C library's spelling of a width prefix, whose length it adds to *taken; null if there is
// none.
const char *width_prefix(const char *text, std::size_t *taken) {
    if (text[0] != 'I') return nullptr;
    const bool sized = (text[1] == '6' && text[2] == '4') || (text[1] == '3' && text[2] == '2');
    const char *const spelling = !sized ? "z" : text[1] == '6' ? "ll" : "";
    const std::size_t length = sized ? 3 : 1;
    if (!one_of(text[length], "diouxX")) return nullptr;
    *taken = length;
    return spelling;
}

// Length of a conversion up to where a width prefix may stand: '%', flags, width, precision.
std::size_t conversion_head(const char *text) {
    std::size_t n = 1;
    while (one_of(text[n], "-+ #0'")) ++n;
    while (one_of(text[n], "0123456789.*")) ++n;
    return n;
}

// Whether any conversion has a width prefix: most formats have none and are used as they are.
bool has_width_prefix(const char *format) {
    std::size_t taken = 0;
    while ((format = std::strchr(format, '%'))) {
        const std::size_t n = conversion_head(format);
        if (width_prefix(format + n, &taken)) return true;
        format += n + (format[n] == '%'); // "%%": the second one starts nothing
    }
    return false;
}

// Copies a format with the prefixes respelled, which never makes it longer. Where `room` is too
// small the copy ends before the conversion that no longer fits.
void respell(const char *format, char *out, std::size_t room) {
    while (*format) {
        std::size_t n = 1;
        std::size_t taken = 0;
        const char *spelling = "";
        if (*format == '%') {
            n = conversion_head(format);
            if (const char *found = width_prefix(format + n, &taken))
                spelling = found;
            else if (format[n] != 0)
                ++n; // the conversion letter, or the second of "%%"
        }
        const std::size_t extra = std::strlen(spelling);
        if (n + extra >= room) break;
        std::memcpy(out, format, n);
        std::memcpy(out + n, spelling, extra);
        format += n + taken;
        out += n + extra;
        room -= n + extra;
    }
    *out = 0;
}

// A format that the C library understands: the original where it does already, else a copy. When
// memory is short a long format is cut rather than refused, for raising may not fail.
class Respelled {
public:
    explicit Respelled(const char *format) : format_(format) {
        if (!has_width_prefix(format)) return;
        const std::size_t bytes = std::strlen(format) + 1;
        if (bytes > sizeof local_) block_ = static_cast<char *>(ut::raw_allocate(bytes));
        format_ = block_ ? block_ : local_;
        if (block_)
            respell(format, block_, bytes);
        else
            respell(format, local_, sizeof local_);
    }
    ~Respelled() { ut::raw_free(block_); }
    Respelled(const Respelled &) = delete;
    Respelled &operator=(const Respelled &) = delete;
    const char *format() const { return format_; }

private:
    char local_[1024];
    char *block_ = nullptr;
    const char *format_;
};

void print_to_sink(const char *text, std::size_t length) {
    if (print_sink)
        print_sink(text, length);
    else
        std::fwrite(text, 1, length, stdout);
}

int print_formatted(const char *format, va_list arguments) {
    char local[1024];
    va_list again;
    va_copy(again, arguments);
    const int length = utVSNprintf(local, sizeof local, format, arguments);
    if (length >= 0) {
        const auto needed = static_cast<std::size_t>(length);
        char *block =
            needed < sizeof local ? nullptr : static_cast<char *>(ut::raw_allocate(needed + 1));
        if (block) utVSNprintf(block, needed + 1, format, again);
        print_to_sink(block ? block : local,
                      block || needed < sizeof local ? needed : sizeof local - 1);
        ut::raw_free(block);
    }
    va_end(again);
    return length;
}

} // namespace

int utVSNprintf(char *buffer, size_t size, const char *format, va_list arguments) {
    const Respelled respelled(format);
    const int length =
        respelled.format() ? std::vsnprintf(buffer, size, respelled.format(), arguments) : -1;
    if (length < 0 && size > 0) buffer[0] = 0;
    return length;
}

int utSNprintf(char *buffer, size_t size, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = utVSNprintf(buffer, size, format, arguments);
    va_end(arguments);
    return length;
}

int utPrintf(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = print_formatted(format, arguments);
    va_end(arguments);
    return length;
}

utPrintSink utSetPrintSink(utPrintSink sink) {
    utPrintSink previous = print_sink;
    print_sink = sink;
    return previous;
}

char *utLowerCaseCopy(char *dst, const char *src, size_t n) {
    if (n == 0) return dst;
    size_t k = 0;
    for (; k + 1 < n && src[k]; ++k) {
        const char c = src[k];
        dst[k] = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    dst[k] = 0;
    return dst;
}
