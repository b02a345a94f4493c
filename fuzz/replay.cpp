// Runs a fuzz target over files and the files of directories, with any compiler.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

void run(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
    std::fprintf(stderr, "%s\n", path.c_str()); // the last one is the culprit
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
}

} // namespace

int main(int argc, char **argv) {
    LLVMFuzzerTestOneInput(nullptr, 0);
    for (int k = 1; k < argc; ++k) {
        if (!std::filesystem::is_directory(argv[k])) {
            run(argv[k]);
            continue;
        }
        for (const auto &entry : std::filesystem::recursive_directory_iterator(argv[k]))
            if (entry.is_regular_file()) run(entry.path());
    }
    return 0;
}
