// The stdio carrier that can seek: positions, the turn between reading and writing, length.
#include <core/tuning.h>
#include <stream/carrier.h>

#include <algorithm>

namespace ox {
namespace {

constexpr kwSize gzip_piece = kwSize{1} << 30; // the compressor's counts are 32-bit

kwSize unpack(oiStreamRec_tag *s, void *dst, kwSize n) {
    kwSize done = 0;
    while (done < n) {
        const kwSize wanted = std::min(n - done, gzip_piece);
        const int32_t got =
            gzipStringReadBytes(s->gzip, static_cast<unsigned char *>(dst) + done, wanted);
        done += static_cast<kwSize>(std::max(got, 0));
        if (got < 0 || static_cast<kwSize>(got) < wanted) break;
    }
    return done;
}

kwSize pack(oiStreamRec_tag *s, const void *src, kwSize n) {
    kwSize done = 0;
    while (done < n) {
        const auto piece = static_cast<int32_t>(std::min(n - done, gzip_piece));
        const auto *from = static_cast<const unsigned char *>(src) + done;
        if (gzipStringWriteAddBytes(s->gzip, from, piece) != piece) break;
        done += static_cast<kwSize>(piece);
    }
    return done;
}

kwSize file_read(oiStreamRec_tag *s, void *dst, kwSize n) {
    if (is_packed(s)) return unpack(s, dst, n);
    if (!turn_to(s, Operation::read)) return 0;
    const kwSize moved = s->fread_fcn(dst, 1, n, file_of(s));
    s->position += moved;
    return moved;
}

kwSize file_write(oiStreamRec_tag *s, const void *src, kwSize n) {
    if (is_packed(s)) return pack(s, src, n);
    if (!turn_to(s, Operation::write)) return 0;
    const kwSize moved = s->fwrite_fcn(src, 1, n, file_of(s));
    s->position += moved;
    return moved;
}

bool seek_to(oiStreamRec_tag *s, int64_t offset, int whence) {
    if (s->fseek_fcn(file_of(s), offset, whence) != 0) return false;
    s->last_operation = static_cast<uint32_t>(Operation::none);
    return true;
}

} // namespace

bool turn_to(oiStreamRec_tag *s, Operation operation) {
    const auto op = static_cast<uint32_t>(operation);
    const bool turn = s->last_operation != 0 && s->last_operation != op;
    if (turn && (s->flags & oiFILE) && !seek_to(s, 0, SEEK_CUR)) return false;
    s->last_operation = op;
    return true;
}

bool carrier_settle(oiStreamRec_tag *s) {
    if (!(s->flags & oiFILE) || is_packed(s) || s->offset == s->position) return true;
    if (s->offset > INT64_MAX || !seek_to(s, static_cast<int64_t>(s->offset), SEEK_SET))
        return false;
    s->position = s->offset;
    return true;
}

Backing carrier_backing(oiStreamRec_tag *s, kwSize n) {
    if (plain_buffer_for_reading(s)) {
        const kwSize left = s->offset < s->capacity ? s->capacity - s->offset : 0;
        return n <= left ? Backing::enough : Backing::too_few;
    }
    if (!(s->flags & oiFILE) || is_packed(s) || n < tuning::ask_length_bytes) return Backing::none;
    if (!turn_to(s, Operation::read) || !seek_to(s, 0, SEEK_END)) return Backing::none;
    const int64_t end = s->ftell_fcn(file_of(s));
    if (!seek_to(s, static_cast<int64_t>(s->position), SEEK_SET)) return Backing::too_few;
    if (end < 0) return Backing::none;
    const auto length = static_cast<uint64_t>(end);
    const bool enough = length >= s->position && n <= length - s->position;
    return enough ? Backing::enough : Backing::too_few;
}

oiStreamRec_tag *new_file_stream(FILE *f, uint32_t kind, uint16_t version, uint16_t indicator,
                                 oiReserveFcn reserve, kwSize size, oiFreadFcn fread_fcn,
                                 oiFwriteFcn fwrite_fcn, oiFseekFcn fseek_fcn, oiFtellFcn ftell_fcn,
                                 uint16_t options) {
    if (!f || !reserve) return nullptr;
    oiStreamRec_tag *s = new_stream(kind, version, indicator, options);
    if (!s) return nullptr;
    s->gzip = oiNewGzipString();
    if (!s->gzip || !valid_order(s)) {
        free_stream(s);
        return nullptr;
    }
    s->handle = f;
    s->reserve = reserve;
    s->size = size;
    s->read = file_read;
    s->write = file_write;
    s->fread_fcn = fread_fcn;
    s->fwrite_fcn = fwrite_fcn;
    s->fseek_fcn = fseek_fcn;
    s->ftell_fcn = ftell_fcn;
    s->gzip->read_fcn = fread_fcn;
    s->gzip->write_fcn = fwrite_fcn;
    s->gzip->tell_fcn = ftell_fcn;
    const int64_t start = ftell_fcn(f);
    s->position = s->offset = start < 0 ? 0 : static_cast<uint64_t>(start);
    return s;
}

} // namespace ox

using namespace ox;

extern "C" {

// Deliberate: whence 2 goes to the very end, and the offset is not looked at.
int oiFseek64(FILE *f, int64_t offset, int whence) {
    if (whence < 0 || whence > 2) return -1;
    const int from = whence == 0 ? SEEK_SET : whence == 1 ? SEEK_CUR : SEEK_END;
    if (whence == 2) offset = 0;
#if defined(_WIN32)
    return _fseeki64(f, offset, from);
#else
    return fseeko(f, offset, from);
#endif
}

int64_t oiFtell64(FILE *f) {
#if defined(_WIN32)
    return _ftelli64(f);
#else
    return ftello(f);
#endif
}

oiStreamRec_tag *oiCreateFileStream(FILE *f, uint16_t version, uint16_t indicator,
                                    oiReserveFcn reserve, kwSize size, oiFreadFcn fread_fcn,
                                    oiFwriteFcn fwrite_fcn, oiFseekFcn fseek_fcn,
                                    oiFtellFcn ftell_fcn, uint16_t options) {
    return new_file_stream(f, oiFILE, version, indicator, reserve, size,
                           fread_fcn ? fread_fcn : fread, fwrite_fcn ? fwrite_fcn : fwrite,
                           fseek_fcn ? fseek_fcn : oiFseek64, ftell_fcn ? ftell_fcn : oiFtell64,
                           options);
}

void oiDisposeFileStream(oiStreamRec_tag *s) {
    if (s) free_stream(s);
}

} // extern "C"
