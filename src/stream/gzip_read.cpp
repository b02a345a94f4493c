// Decompressing from a file: never more compressed bytes than the element has.
#include <stream/gzip_string.h>

#include <algorithm>
#include <cstring>

namespace ox {
namespace {

// Fills the staging buffer up with what is left of the element's compressed bytes.
void refill(gzipString_tag *g) {
    const uint64_t left = g->byte_count - g->consumed;
    const uint64_t room = gzip_block - g->staged;
    const auto wanted = static_cast<size_t>(std::min(left, room));
    if (wanted == 0) return;
    const size_t got = std::min(g->read_fcn(g->staging + g->staged, 1, wanted, g->file), wanted);
    g->consumed += got;
    g->staged += got;
}

// One inflate call; the input that it leaves moves to the front. Whether there may be more.
bool inflate_some(gzipString_tag *g, unsigned char *out, uint32_t n, uint32_t *produced) {
    z_stream &z = g->z;
    z.next_in = g->staging;
    z.avail_in = static_cast<uInt>(g->staged);
    z.next_out = out;
    z.avail_out = n;
    const int status = inflate(&z, Z_FULL_FLUSH);
    std::memmove(g->staging, z.next_in, z.avail_in);
    g->staged = z.avail_in;
    *produced = n - z.avail_out;
    return status == Z_OK;
}

} // namespace
} // namespace ox

using namespace ox;

extern "C" {

int32_t gzipStringReadInit(gzipString_tag *g, FILE *f, int32_t length) {
    if (!g || !f || length < 0) return 0;
    gzip_clear(g, f);
    if (inflateInit_(&g->z, "1.2.3", sizeof(z_stream)) != Z_OK) return 0;
    g->byte_count = static_cast<uint64_t>(length);
    g->data_offset = gzip_position(g);
    g->reading = 1;
    return -1;
}

int32_t gzipStringReadBytes(gzipString_tag *g, void *dst, uint64_t count) {
    if (!is_decompressing(g) || count == 0) return 0;
    unsigned char scratch[gzip_block];
    uint64_t done = 0;
    for (bool more = true; more && done < count;) {
        refill(g);
        const auto n = static_cast<uint32_t>(std::min<uint64_t>(count - done, gzip_block));
        unsigned char *out = dst ? static_cast<unsigned char *>(dst) + done : scratch;
        uint32_t produced;
        more = inflate_some(g, out, n, &produced);
        done += produced;
    }
    g->delivered += done;
    return static_cast<int32_t>(done);
}

int32_t gzipStringReadSkipBytes(gzipString_tag *g, uint64_t count) {
    return gzipStringReadBytes(g, nullptr, count);
}

uint64_t gzipStringReadSoFar(const gzipString_tag *g) {
    return is_decompressing(g) ? g->delivered : 0;
}

int32_t gzipStringReadClose(gzipString_tag *g) {
    if (!is_decompressing(g)) return 0;
    inflateEnd(&g->z);
    g->finished = 1;
    return -1;
}

} // extern "C"
