// Compressing to a file: blocks of 8192 bytes, each flushed, behind 8 bytes for the tag.
#include <core/alloc.h>
#include <stream/gzip_string.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

constexpr kwSize tag_room = 8;
// One flushed block of incompressible bytes takes little more than its size.
constexpr uint32_t output_bytes = 32768, block_bound = gzip_block + 1024;

bool write_all(gzipString_tag *g, const void *bytes, kwSize n) {
    return g->write_fcn(bytes, 1, n, g->file) == n;
}

// Collects compressed bytes and writes them when the next block might not fit.
class Deflated {
public:
    explicit Deflated(gzipString_tag *g) : g_(g) {}

    bool add(const void *block, uint32_t n, int flush) {
        if (output_bytes - filled_ < block_bound && !write()) return false;
        z_stream &z = g_->z;
        z.next_in = static_cast<Bytef *>(const_cast<void *>(block));
        z.avail_in = n;
        g_->input_taken += n;
        for (;;) {
            z.next_out = bytes_ + filled_;
            z.avail_out = output_bytes - filled_;
            const int status = deflate(&z, flush);
            filled_ = output_bytes - z.avail_out;
            if (status != Z_OK && status != Z_STREAM_END && status != Z_BUF_ERROR) return false;
            if (z.avail_out > 0) return z.avail_in == 0;
            if (!write()) return false;
        }
    }

    // The room for the tag goes out together with the first compressed bytes.
    bool write() {
        static constexpr unsigned char zeros[tag_room] = {};
        if (filled_ == 0) return true;
        if (g_->byte_count == 0 && !write_all(g_, zeros, tag_room)) return false;
        if (!write_all(g_, bytes_, filled_)) return false;
        g_->byte_count += filled_;
        filled_ = 0;
        return true;
    }

private:
    gzipString_tag *g_;
    uint32_t filled_ = 0;
    unsigned char bytes_[output_bytes];
};

int32_t close_writing(gzipString_tag *g) {
    Deflated out(g);
    const bool written =
        out.add(g->staging, static_cast<uint32_t>(g->staged), Z_FINISH) && out.write();
    deflateEnd(&g->z);
    g->finished = 1;
    return written && g->byte_count <= INT32_MAX ? static_cast<int32_t>(g->byte_count) : -1;
}

// More than fits the staging buffer: that is filled up and compressed, and everything after it in
// blocks straight from the caller's bytes, the last one as short as it comes.
bool compress_blocks(gzipString_tag *g, const unsigned char *bytes, uint32_t n) {
    Deflated out(g);
    const auto head = static_cast<uint32_t>(gzip_block - g->staged);
    std::memcpy(g->staging + g->staged, bytes, head);
    g->staged = 0;
    if (!out.add(g->staging, gzip_block, Z_FULL_FLUSH)) return false;
    for (uint32_t done = head; done < n;) {
        const uint32_t block = std::min(n - done, gzip_block);
        if (!out.add(bytes + done, block, Z_FULL_FLUSH)) return false;
        done += block;
    }
    return out.write();
}

} // namespace

void gzip_clear(gzipString_tag *g, FILE *f) {
    if (is_compressing(g)) deflateEnd(&g->z);
    if (is_decompressing(g)) inflateEnd(&g->z);
    const gzipString_tag *old = g;
    const oiFreadFcn read_fcn = old->read_fcn;
    const oiFwriteFcn write_fcn = old->write_fcn;
    const oiFtellFcn tell_fcn = old->tell_fcn;
    std::memset(static_cast<void *>(g), 0, sizeof *g);
    g->file = f;
    g->read_fcn = read_fcn;
    g->write_fcn = write_fcn;
    g->tell_fcn = tell_fcn;
}

} // namespace ox

using namespace ox;

extern "C" {

gzipString_tag *oiNewGzipString(void) {
    auto *g = static_cast<gzipString_tag *>(oxCallocEx(1, sizeof(gzipString_tag)));
    if (!g) return nullptr;
    g->read_fcn = fread;
    g->write_fcn = fwrite;
    g->tell_fcn = oiFtell64;
    return g;
}

void oiDeallocateGzipString(gzipString_tag *g) {
    if (!g) return;
    gzip_clear(g, nullptr);
    oxFreeEx(g);
}

int32_t gzipStringWriteInit(gzipString_tag *g, FILE *f) {
    if (!g || !f) return 0;
    gzip_clear(g, f);
    if (deflateInit_(&g->z, Z_DEFAULT_COMPRESSION, "1.2.3", sizeof(z_stream)) != Z_OK) return 0;
    g->data_offset = gzip_position(g) + tag_room;
    g->writing = 1;
    return -1;
}

int32_t gzipStringWriteAddBytes(gzipString_tag *g, const void *bytes, int32_t count) {
    if (!is_compressing(g)) return 0;
    if (count < 1) return close_writing(g);
    const auto n = static_cast<uint32_t>(count);
    if (n <= gzip_block - g->staged) {
        std::memcpy(g->staging + g->staged, bytes, n);
        g->staged += n;
        return count;
    }
    return compress_blocks(g, static_cast<const unsigned char *>(bytes), n) ? count : -1;
}

int32_t gzipStringWriteClose(gzipString_tag *g) { return gzipStringWriteAddBytes(g, nullptr, 0); }

bool oiIsVELVariableCompressionEnabled(const gzipString_tag *g) {
    return is_compressing(g) || is_decompressing(g);
}

uint64_t oiGetCompressedVELVariableBytes(const gzipString_tag *g) {
    return is_decompressing(g) ? g->byte_count : 0;
}

uint64_t oiGetCompressedVELVariableOffset(const gzipString_tag *g) {
    return oiIsVELVariableCompressionEnabled(g) ? g->data_offset : 0;
}

} // extern "C"
