// What the vel tool does with files, from inside of its library: converting a large matrix beside
// one read and one write of it, reading text beside a bare loop over its numbers.
#include <benchmark/benchmark.h>
#include <formats.h>
#include <host.h>
#include <vel_file.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t matrix_bytes = std::size_t{64} << 20;
constexpr std::size_t table_rows = 100'000, table_columns = 10, entries = 1'000'000;

// In memory where the system has such a place, and gone when the program ends.
class Folder {
public:
    Folder() {
        const std::filesystem::path shm = "/dev/shm";
        std::error_code ignored;
        path_ = std::filesystem::is_directory(shm, ignored)
                    ? shm
                    : std::filesystem::temp_directory_path();
        path_ /= "ox_bench_" + std::to_string(getpid());
        std::filesystem::create_directories(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string operator/(const char *name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};
const Folder &folder() {
    static const Folder one;
    return one;
}

struct Noise {
    double operator()() {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<double>(state >> 11) * 0x1p-53;
    }
    uint64_t state = 12345;
};

const std::string &matrix_file() {
    static const std::string path = [] {
        const vel::Context context;
        Noise noise;
        oxArray *a = oxCreateDoubleMatrix(matrix_bytes / 8 / 1024, 1024, oxREAL);
        for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k) oxGetPr(a)[k] = noise();
        vel::VelWriter writer(folder() / "matrix.vel", {}, false);
        writer.put("a", a);
        writer.commit();
        return folder() / "matrix.vel";
    }();
    return path;
}

std::string make_table(const char *name, int digits) {
    std::ofstream out(folder() / name);
    out.precision(digits);
    Noise noise;
    for (std::size_t i = 0; i < table_rows; ++i)
        for (std::size_t j = 0; j < table_columns; ++j)
            out << 10 * noise() << (j + 1 < table_columns ? ',' : '\n');
    return folder() / name;
}
const std::string &table_file() {
    static const std::string path = make_table("table.csv", 17);
    return path;
}
const std::string &short_table_file() {
    static const std::string path = make_table("short_table.csv", 3);
    return path;
}

const std::string &sparse_file() {
    static const std::string path = [] {
        std::ofstream out(folder() / "sparse.mtx");
        out.precision(17);
        Noise noise;
        const auto position = [&] { return 1 + static_cast<std::size_t>(noise() * 1e5); };
        out << "%%MatrixMarket matrix coordinate real general\n100000 100000 " << entries << "\n";
        for (std::size_t k = 0; k < entries; ++k)
            out << position() << ' ' << position() << ' ' << noise() << '\n';
        return folder() / "sparse.mtx";
    }();
    return path;
}

void read_and_write(benchmark::State &state) {
    const std::string &from = matrix_file(), to = folder() / "copy";
    for (auto _ : state) {
        const int in = open(from.c_str(), O_RDONLY);
        const int out = open(to.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        void *block = std::malloc(matrix_bytes);
        if (read(in, block, matrix_bytes) < 0 || write(out, block, matrix_bytes) < 0)
            state.SkipWithError("the file cannot be copied");
        std::free(block);
        close(in), close(out);
        unlink(to.c_str());
    }
}

void convert(benchmark::State &state, const char *name) {
    const std::string &from = matrix_file(), to = folder() / name;
    for (auto _ : state) {
        const vel::Context context;
        vel::write_all(to, *vel::open_input(from, {}), {});
        unlink(to.c_str());
    }
}

void read_text(benchmark::State &state, const std::string &(*file)()) {
    const std::string &path = file();
    for (auto _ : state) {
        const vel::Context context;
        benchmark::DoNotOptimize(vel::open_input(path, {})->load(0));
    }
}

// All numbers of a text in memory, one after the other.
void from_chars(benchmark::State &state, const std::string &(*file)(), std::size_t numbers) {
    std::ifstream in(file());
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    const char *end = text.data() + text.size(), *start = text.data();
    if (*start == '%') start += text.find('\n') + 1;
    std::vector<double> values(numbers);
    for (auto _ : state) {
        const char *p = start;
        for (double &x : values) p = std::from_chars(p, end, x).ptr + 1;
        benchmark::DoNotOptimize(values.data());
    }
}

} // namespace

BENCHMARK(read_and_write)->Name("vel_to_npy/64MiB/limit_read_and_write");
BENCHMARK_CAPTURE(convert, x, "x.npy")->Name("vel_to_npy/64MiB/ox");
BENCHMARK(read_and_write)->Name("vel_to_npz/64MiB/limit_read_and_write");
BENCHMARK_CAPTURE(convert, x, "x.npz")->Name("vel_to_npz/64MiB/ox");
BENCHMARK_CAPTURE(from_chars, x, table_file, table_rows *table_columns)
    ->Name("read_csv/1e6_numbers/limit_from_chars");
BENCHMARK_CAPTURE(read_text, x, table_file)->Name("read_csv/1e6_numbers/ox");
BENCHMARK_CAPTURE(from_chars, x, short_table_file, table_rows *table_columns)
    ->Name("read_csv/1e6_short_numbers/limit_from_chars");
BENCHMARK_CAPTURE(read_text, x, short_table_file)->Name("read_csv/1e6_short_numbers/ox");
BENCHMARK_CAPTURE(from_chars, x, sparse_file, 3 * entries + 3)
    ->Name("read_mtx/1e6_entries/limit_from_chars");
BENCHMARK_CAPTURE(read_text, x, sparse_file)->Name("read_mtx/1e6_entries/ox");
