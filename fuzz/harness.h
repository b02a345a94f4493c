// What the fuzz targets share: the host around one input, and what must hold after it.
#pragma once
#include <ox.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace ox::fuzz {

// Stops the program with the text unless the condition holds.
void require(bool holds, const char *what);

// One input: enters contexts and, at the end, requires that nothing of the input is left alive,
// that no error was recorded, and that memory stayed within 1 MiB and `factor` times the input.
class Run {
public:
    Run(std::size_t input_size, std::size_t factor);
    ~Run();
    Run &operator=(Run &&) = delete;

private:
    std::size_t input_size_, factor_, blocks_, headers_;
    int arrays_, listed_;
};

// Requires every rule of the structure checker.
void require_well_formed(const oxArray *a);
// Reads an element, or the header of an array, and requires what comes of it to be well formed and
// its data to be readable; frees what was allocated. The status of reading.
int32_t read_item(oiStreamRec_tag *s, kwSize offset);
int32_t read_header(oiStreamRec_tag *s, kwSize offset, int mode);

// Takes bytes from the front of the input, 0 when there are none left.
class Input {
public:
    Input(const uint8_t *data, std::size_t size) : data_(data), size_(size) {}
    uint8_t byte() { return size_ > 0 ? (--size_, *data_++) : uint8_t{0}; }
    const uint8_t *data() const { return data_; }
    std::size_t size() const { return size_; }

private:
    const uint8_t *data_;
    std::size_t size_;
};

// A stream over the bytes, of the kind that the choice says: carrier, byte order, width.
class Stream {
public:
    Stream(uint8_t choice, const uint8_t *data, std::size_t size);
    ~Stream();
    Stream &operator=(Stream &&) = delete;
    oiStreamRec_tag *get() const { return s_; } // may be null

private:
    FILE *file_ = nullptr;
    oiStreamRec_tag *s_ = nullptr;
};

// Reads from a stream of the input's bytes sixteen times. The first byte chooses the stream and the
// mode that read() gets, the second which offsets are the input's instead of the current one. 0.
int read_stream(const uint8_t *data, std::size_t size,
                int32_t (*read)(oiStreamRec_tag *, kwSize offset, int mode));

} // namespace ox::fuzz
