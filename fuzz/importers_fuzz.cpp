// Any bytes as a file of each kind that the tool reads, which the first byte chooses: a sentence,
// or well-formed arrays in memory that the bytes account for.
#include "harness.h"

#include <failure.h>
#include <formats.h>
#include <host.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <ut.hpp>

using namespace ox::fuzz;

namespace {

constexpr const char *kinds[] = {"vel", "ser", "csv", "tsv", "mtx", "npy", "npz"};

// Files of this process, which are gone when it ends.
class Folder {
public:
    Folder()
        : path_(std::filesystem::temp_directory_path() / ("fuzz_" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    std::string write(const char *kind, const Input &in) const {
        const std::string name = path_ / (std::string("x.") + kind);
        FILE *f = fopen(name.c_str(), "wb");
        require(f && (in.size() == 0 || fwrite(in.data(), in.size(), 1, f) == 1),
                "the file is written");
        fclose(f);
        return name;
    }

private:
    std::filesystem::path path_;
};

void read(const std::string &path) {
    const auto in = vel::open_input(path, {});
    for (size_t k = 0; k < in->names().size(); ++k) {
        const vel::Context one;
        if (const oxArray *a = in->load(k)) require_well_formed(a);
    }
}

// A text of few bytes may ask for up to 2^26 columns, which would only take time here.
bool has_long_number(const Input &in) {
    size_t digits = 0;
    for (size_t k = 0; k < in.size() && digits < 5; ++k)
        digits = in.data()[k] >= '0' && in.data()[k] <= '9' ? digits + 1 : 0;
    return digits >= 5;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static const Folder folder;
    Input in(data, size);
    const char *kind = kinds[in.byte() % std::size(kinds)];
    const std::string path = folder.write(kind, in);
    if (std::string(kind) == "mtx" && has_long_number(in)) return 0;
    try {
        const Run run(size, 8192); // deflate makes 1032 bytes of one, for numbers of up to 8
        try {
            read(path);
        } catch (const vel::Failure &e) {
            require(*e.what() && e.status() == vel::Exit::data, "a sentence about the data");
        } catch (const ut::simple_exception &e) {
            require(*e.message(), "a sentence");
            oxSetLastErrIdAndMsg("", "");
        }
    } catch (const std::bad_alloc &) {
        require(false, "memory suffices");
    }
    return 0;
}
