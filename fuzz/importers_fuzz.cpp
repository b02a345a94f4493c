// Any bytes as a file of each kind that the tool reads, which the first byte chooses: a sentence,
// or well-formed arrays in memory that the bytes account for.
#include "harness.h"

#include <failure.h>
#include <formats.h>
#include <host.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <ut.hpp>

using namespace ox::fuzz;

namespace {

constexpr const char *kinds[] = {"vel", "ser", "csv", "tsv", "mtx", "npy", "npz"};

void read(const std::string &path) {
    const auto in = vel::open_input(path, {});
    for (size_t k = 0; k < in->names().size(); ++k) {
        const vel::Context one;
        if (const oxArray *a = in->load(k)) require_well_formed(a);
    }
}

// A text of few bytes may ask for up to 2^26 columns, which would only take time here.
bool has_long_number(const Input &in) {
    const auto is_digit = [](uint8_t c, int) { return c >= '0' && c <= '9'; };
    const uint8_t *end = in.data() + in.size();
    return std::search_n(in.data(), end, 5, 0, is_digit) != end;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const std::string kind = kinds[in.byte() % std::size(kinds)];
    if (kind == "mtx" && has_long_number(in)) return 0;
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("fuzz_" + std::to_string(getpid()) + "." + kind);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char *>(in.data()), static_cast<std::streamsize>(in.size()));
    const Run run(size, 8192); // deflate makes 1032 bytes of one, for numbers of up to 8
    try {
        read(path);
    } catch (const vel::Failure &e) {
        require(*e.what() && e.status() == vel::Exit::data, "a sentence about the data");
    } catch (const ut::simple_exception &e) {
        require(*e.message(), "a sentence");
        oxSetLastErrIdAndMsg("", "");
    }
    std::filesystem::remove(path);
    return 0;
}
