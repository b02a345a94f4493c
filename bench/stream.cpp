// Writing and reading arrays: one large one, many small ones, a deeply filled cell; in memory, in
// files, and compressed, beside one copy or one call of the same bytes.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <unistd.h>
#include <zlib.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr std::size_t large_bytes = std::size_t{64} << 20;
constexpr std::size_t small_count = 10'000, small_side = 10;
constexpr std::size_t leaves = 100'000;
constexpr std::size_t packed_bytes = std::size_t{4} << 20;

// Noise that does not compress.
oxArray *noise(kwSize m, kwSize n) {
    oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
    uint64_t s = 12345;
    double *p = oxGetPr(a);
    for (kwSize k = 0; k < m * n; ++k) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        p[k] = static_cast<double>(s >> 11) * 0x1p-53;
    }
    return a;
}

oxArray *large() {
    static oxArray *a = noise(large_bytes / 8, 1);
    return a;
}

const std::vector<oxArray *> &small() {
    static const std::vector<oxArray *> all = [] {
        std::vector<oxArray *> v;
        for (std::size_t k = 0; k < small_count; ++k) v.push_back(noise(small_side, small_side));
        return v;
    }();
    return all;
}

// Records of ten fields, each a cell of ten scalars.
oxArray *nested() {
    static oxArray *a = [] {
        const char *names[10] = {"f0", "f1", "f2", "f3", "f4", "f5", "f6", "f7", "f8", "f9"};
        oxArray *records = oxCreateStructMatrix(leaves / 100, 1, 10, names);
        for (kwSize r = 0; r < leaves / 100; ++r)
            for (int f = 0; f < 10; ++f) {
                oxArray *cell = oxCreateCellMatrix(1, 10);
                for (kwSize k = 0; k < 10; ++k)
                    oxSetCell(cell, k, oxCreateDoubleScalar(static_cast<double>(k)));
                oxSetFieldByNumber(records, r, f, cell);
            }
        return records;
    }();
    return a;
}

int32_t room(oiStreamRec_tag *, kwSize n, kwSize *offset, kwSize *capacity) {
    *capacity = *offset + n;
    return oiSUCCESS;
}

// A file that is removed when the program ends, in memory where the system has such a place.
const char *path() {
    static const struct Path {
        char text[64];
        Path() {
            const char *place = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
            std::snprintf(text, sizeof text, "%s/ox_bench_%d", place, getpid());
        }
        ~Path() { std::remove(text); }
    } p;
    return p.text;
}

class FileStream {
public:
    FileStream(const char *mode, uint16_t options) : file_(std::fopen(path(), mode)) {
        s_ = oiCreateFileStream(file_, 0, 0, room, 0, nullptr, nullptr, nullptr, nullptr, options);
    }
    ~FileStream() {
        oiDisposeFileStream(s_);
        std::fclose(file_);
    }
    FileStream(const FileStream &) = delete;
    FileStream &operator=(const FileStream &) = delete;
    oiStreamRec_tag *get() const { return s_; }

private:
    FILE *file_;
    oiStreamRec_tag *s_;
};

void put(oiStreamRec_tag *s, oxArray *a) {
    const oiItem_tag item = {oiMATRIX, 0, a, reinterpret_cast<uintptr_t>("a000")};
    if (oiPutItemAtCurrentOffsetWrapper(s, &item) != oiSUCCESS) std::abort();
}
oxArray *get(oiStreamRec_tag *s) {
    char name[64];
    oiItem_tag item = {0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
    if (oiGetCurrentItem(s, &item) != oiSUCCESS) std::abort();
    return static_cast<oxArray *>(item.data);
}

// --- Memory --------------------------------------------------------------------------------------

void copy_warm(benchmark::State &state, std::size_t bytes) {
    std::vector<char> a(bytes, 1), b(bytes, 2);
    for (auto _ : state) {
        std::memcpy(b.data(), a.data(), bytes);
        benchmark::ClobberMemory();
    }
}

void serialize(benchmark::State &state, oxArray *(*source)()) {
    oxArray *a = source();
    for (auto _ : state) {
        oxArray *bytes = oxSerialize(a);
        benchmark::DoNotOptimize(oxGetData(bytes));
        oxDestroyArray(bytes);
    }
}

void deserialize(benchmark::State &state, oxArray *(*source)()) {
    oxArray *bytes = oxSerialize(source());
    for (auto _ : state) {
        oxArray *a = oxDeserialize(oxGetData(bytes), oxGetNumberOfElements(bytes));
        benchmark::DoNotOptimize(a);
        oxDestroyArray(a);
    }
    oxDestroyArray(bytes);
}

oiStreamRec_tag *small_buffer() {
    oiStreamRec_tag *s = oiCreateBufferStream(nullptr, 0, 0, nullptr, nullptr, nullptr, 0, 0);
    for (oxArray *a : small()) put(s, a);
    return s;
}

void small_into_memory(benchmark::State &state) {
    small();
    for (auto _ : state) oiDisposeBufferStream(small_buffer());
}

void small_out_of_memory(benchmark::State &state) {
    oiStreamRec_tag *s = small_buffer();
    std::vector<oxArray *> read(small_count);
    for (auto _ : state) {
        oiSetStreamOffset(s, 8);
        for (oxArray *&a : read) a = get(s);
        for (std::size_t k = small_count; k-- > 0;) oxDestroyArray(read[k]);
    }
    oiDisposeBufferStream(s);
}

// --- Files ---------------------------------------------------------------------------------------

void large_into_file(benchmark::State &state) {
    large();
    for (auto _ : state) {
        const FileStream s("wb", 0);
        put(s.get(), large());
    }
}
void large_into_file_write(benchmark::State &state) {
    large();
    for (auto _ : state) {
        FILE *f = std::fopen(path(), "wb");
        if (write(fileno(f), oxGetPr(large()), large_bytes) < 0) std::abort();
        std::fclose(f);
    }
}
void large_out_of_file(benchmark::State &state) {
    {
        const FileStream s("wb", 0);
        put(s.get(), large());
    }
    for (auto _ : state) {
        const FileStream s("rb", 0);
        oxDestroyArray(get(s.get()));
    }
}
void large_out_of_file_read_warm(benchmark::State &state) {
    FILE *f = std::fopen(path(), "wb");
    std::fwrite(oxGetPr(large()), 1, large_bytes, f);
    std::fclose(f);
    std::vector<char> block(large_bytes, 1);
    for (auto _ : state) {
        f = std::fopen(path(), "rb");
        if (read(fileno(f), block.data(), large_bytes) < 0) std::abort();
        std::fclose(f);
    }
}

constexpr std::size_t head_bytes = 56;

void small_into_file(benchmark::State &state) {
    small();
    for (auto _ : state) {
        const FileStream s("wb", 0);
        for (oxArray *a : small()) put(s.get(), a);
    }
}
void small_into_file_fwrite(benchmark::State &state) {
    small();
    char head[head_bytes] = {};
    for (auto _ : state) {
        FILE *f = std::fopen(path(), "wb");
        for (oxArray *a : small()) {
            std::fwrite(head, 1, sizeof head, f);
            std::fwrite(oxGetPr(a), 8, small_side * small_side, f);
        }
        std::fclose(f);
    }
}
void small_out_of_file(benchmark::State &state) {
    {
        const FileStream s("wb", 0);
        for (oxArray *a : small()) put(s.get(), a);
    }
    std::vector<oxArray *> read(small_count);
    for (auto _ : state) {
        const FileStream s("rb", 0);
        for (oxArray *&a : read) a = get(s.get());
        for (std::size_t k = small_count; k-- > 0;) oxDestroyArray(read[k]);
    }
}
void small_out_of_file_fread(benchmark::State &state) {
    {
        const FileStream s("wb", 0);
        for (oxArray *a : small()) put(s.get(), a);
    }
    std::vector<void *> blocks(small_count);
    char head[head_bytes];
    for (auto _ : state) {
        FILE *f = std::fopen(path(), "rb");
        for (void *&block : blocks) {
            block = std::malloc(small_side * small_side * 8);
            if (!std::fread(head, 1, sizeof head, f)) std::abort();
            if (!std::fread(block, 8, small_side * small_side, f)) std::abort();
        }
        std::fclose(f);
        for (void *block : blocks) std::free(block);
    }
}

// --- Compression ---------------------------------------------------------------------------------

oxArray *smooth() {
    static oxArray *a = [] {
        oxArray *x = oxCreateDoubleMatrix(packed_bytes / 8, 1, oxREAL);
        for (kwSize k = 0; k < packed_bytes / 8; ++k)
            oxGetPr(x)[k] = static_cast<double>(
                static_cast<float>(1000 * std::sin(static_cast<double>(k) * 1e-4)));
        return x;
    }();
    return a;
}

void compressed_into_file(benchmark::State &state) {
    smooth();
    for (auto _ : state) {
        const FileStream s("wb", oiCOMPRESS);
        put(s.get(), smooth());
    }
}
// zlib with the same blocks and flushes, into memory.
void compressed_zlib(benchmark::State &state) {
    auto *data = static_cast<Bytef *>(oxGetData(smooth()));
    std::vector<Bytef> out(packed_bytes + packed_bytes / 8);
    for (auto _ : state) {
        z_stream z{};
        deflateInit(&z, Z_DEFAULT_COMPRESSION);
        z.next_out = out.data();
        z.avail_out = static_cast<uInt>(out.size());
        for (std::size_t at = 0; at < packed_bytes; at += 8192) {
            z.next_in = data + at;
            z.avail_in = 8192;
            deflate(&z, Z_FULL_FLUSH);
        }
        deflate(&z, Z_FINISH);
        deflateEnd(&z);
        benchmark::ClobberMemory();
    }
}

} // namespace

BENCHMARK_CAPTURE(copy_warm, x, large_bytes)->Name("write_memory/64MiB/limit_memcpy");
BENCHMARK_CAPTURE(serialize, x, large)->Name("write_memory/64MiB/ox");
BENCHMARK_CAPTURE(copy_warm, x, large_bytes)->Name("read_memory/64MiB/limit_memcpy");
BENCHMARK_CAPTURE(deserialize, x, large)->Name("read_memory/64MiB/ox");

BENCHMARK_CAPTURE(copy_warm, x, small_count * 856)->Name("write_memory/1e4_of_10x10/limit_memcpy");
BENCHMARK(small_into_memory)->Name("write_memory/1e4_of_10x10/ox");
BENCHMARK_CAPTURE(copy_warm, x, small_count * 856)->Name("read_memory/1e4_of_10x10/limit_memcpy");
BENCHMARK(small_out_of_memory)->Name("read_memory/1e4_of_10x10/ox");

BENCHMARK_CAPTURE(copy_warm, x, leaves * 64)->Name("write_memory/nested_1e5_leaves/limit_memcpy");
BENCHMARK_CAPTURE(serialize, x, nested)->Name("write_memory/nested_1e5_leaves/ox");
BENCHMARK_CAPTURE(copy_warm, x, leaves * 64)->Name("read_memory/nested_1e5_leaves/limit_memcpy");
BENCHMARK_CAPTURE(deserialize, x, nested)->Name("read_memory/nested_1e5_leaves/ox");

BENCHMARK(large_into_file_write)->Name("write_file/64MiB/limit_write_one_call");
BENCHMARK(large_into_file)->Name("write_file/64MiB/ox");
BENCHMARK(large_out_of_file_read_warm)->Name("read_file/64MiB/limit_read_one_call_warm");
BENCHMARK(large_out_of_file)->Name("read_file/64MiB/ox");

BENCHMARK(small_into_file_fwrite)->Name("write_file/1e4_of_10x10/limit_fwrite");
BENCHMARK(small_into_file)->Name("write_file/1e4_of_10x10/ox");
BENCHMARK(small_out_of_file_fread)->Name("read_file/1e4_of_10x10/limit_fread");
BENCHMARK(small_out_of_file)->Name("read_file/1e4_of_10x10/ox");

BENCHMARK(compressed_zlib)->Name("write_file/4MiB_zlib/limit_zlib_same_blocks");
BENCHMARK(compressed_into_file)->Name("write_file/4MiB_zlib/ox");
