// NPZ: reading a ZIP archive of NPY files, through libzip.
#include "npz.h"

#include "elements.h"
#include "failure.h"
#include "host.h"
#include "input_file.h"
#include "npy.h"
#include "triplets.h"

#include <algorithm>
#include <map>
#include <unistd.h>
#include <zip.h>

namespace vel {
namespace {

constexpr uint64_t most_expansion = 1032; // deflate cannot do better

struct Discard {
    void operator()(zip_t *z) const { zip_discard(z); }
    void operator()(zip_file_t *f) const { zip_fclose(f); }
};

[[noreturn]] void fail(const std::string &path, const std::string &what) {
    throw Failure(Exit::data, path + ": " + what);
}

// What a member holds, without compression.
class MemberSource : public SizedSource {
public:
    MemberSource(zip_t *z, const zip_stat_t &entry, std::string name)
        : SizedSource(entry.size), name_(std::move(name)),
          file_(zip_fopen_index(z, entry.index, 0)) {
        if (!file_) fail(name_, zip_strerror(z));
    }
    void rewind() override { fail(name_, "a member is read once"); }

private:
    bool take(void *to, size_t n) override {
        for (size_t got = 0; got < n;) {
            const zip_int64_t now = zip_fread(file_.get(), static_cast<char *>(to) + got, n - got);
            if (now <= 0) fail(name_, zip_file_strerror(file_.get()));
            got += static_cast<size_t>(now);
        }
        // The checksum is looked at when the end is found.
        char none;
        if (n == left() && zip_fread(file_.get(), &none, 1) != 0)
            fail(name_, zip_file_strerror(file_.get()));
        return true;
    }
    bool pass(uint64_t) override { return false; }

    std::string name_;
    std::unique_ptr<zip_file_t, Discard> file_;
};

class NpzInput : public Input {
public:
    NpzInput(const std::string &path, bool force) : path_(path), file_(path), force_(force) {
        open();
        for (zip_int64_t k = 0; k < zip_get_num_entries(zip_.get(), 0); ++k) add(k);
        sparse_ = is_sparse();
        if (sparse_) names_ = {"sparse"};
    }
    const oxArray *load(size_t k) override {
        return sparse_ ? load_sparse() : load_member(names_[k]);
    }

private:
    // Over a second descriptor of the file: the archive closes the one it is given.
    void open() {
        zip_error_t error;
        zip_error_init(&error);
        FILE *f = fdopen(dup(fileno(file_.file())), "rb");
        zip_source_t *source = f ? zip_source_filep_create(f, 0, -1, &error) : nullptr;
        if (source) zip_.reset(zip_open_from_source(source, ZIP_RDONLY | ZIP_CHECKCONS, &error));
        const std::string what = zip_error_strerror(&error);
        zip_error_fini(&error);
        if (zip_) return;
        if (source)
            zip_source_free(source);
        else if (f)
            fclose(f);
        fail(path_, "cannot be read: " + what);
    }
    void add(zip_int64_t k) {
        zip_stat_t entry;
        if (zip_stat_index(zip_.get(), static_cast<zip_uint64_t>(k), 0, &entry) != 0)
            fail(path_, zip_strerror(zip_.get()));
        std::string name = entry.name;
        if (!name.ends_with(".npy")) fail(path_, name + " is no NPY file");
        if (entry.size / most_expansion > entry.comp_size)
            fail(path_, name + ": a size of " + std::to_string(entry.size) +
                            " bytes that no compression gives");
        name.resize(name.size() - 4);
        if (members_.contains(name)) fail(path_, "two members are called " + name);
        entry.name = nullptr; // belongs to the archive
        members_[name] = entry;
        names_.push_back(name);
    }
    MemberSource member(const std::string &name) {
        if (!members_.contains(name)) fail(path_, "the member " + name + " is missing");
        return {zip_.get(), members_.at(name), path_ + ": " + name};
    }
    oxArray *load_member(const std::string &name) {
        MemberSource in = member(name);
        return read_npy(in, path_ + ": " + name);
    }

    // --- Sparse matrices ---
    bool is_sparse() const {
        for (const char *name : {"format", "shape", "data"})
            if (!members_.contains(name)) return false;
        return true;
    }
    // The integers of a member.
    std::vector<size_t> sizes(const std::string &name) {
        const Context context;
        const oxArray *a = load_member(name);
        std::vector<size_t> values(oxGetNumberOfElements(a));
        visit_elements(a, [&](auto e) {
            for (size_t k = 0; k < values.size(); ++k) {
                const auto x = static_cast<double>(e.re[k]);
                if (!(x >= 0 && x < 0x1p63)) fail(path_, name + ": a number that is no size");
                values[k] = static_cast<size_t>(e.re[k]);
            }
        });
        return values;
    }
    // Where the stored values lie.
    struct Places {
        std::vector<size_t> i, j;
    };
    // Compressed columns or rows: start says where each begins.
    std::vector<size_t> unpacked(size_t extent, size_t stored) {
        const std::vector<size_t> start = sizes("indptr");
        if (start.size() != extent + 1 || start.front() != 0 || start.back() != stored ||
            !std::is_sorted(start.begin(), start.end()))
            misfit();
        std::vector<size_t> major(stored);
        for (size_t j = 0; j < extent; ++j)
            std::fill(major.begin() + start[j], major.begin() + start[j + 1], j);
        return major;
    }
    Places places(const std::vector<size_t> &shape, size_t stored) {
        MemberSource in = member("format");
        const std::string format = read_npy_bytes(in, path_ + ": format");
        if (format == "coo") return {sizes("row"), sizes("col")};
        if (format == "csc") return {sizes("indices"), unpacked(shape[1], stored)};
        if (format == "csr") return {unpacked(shape[0], stored), sizes("indices")};
        fail(path_, "the sparse format '" + format + "' is not supported");
    }
    const oxArray *load_sparse() {
        const std::vector<size_t> shape = sizes("shape");
        const oxArray *data = load_member("data");
        const size_t stored = oxGetNumberOfElements(data);
        if (shape.size() != 2) misfit();
        const Places at = places(shape, stored);
        if (at.i.size() != stored || at.j.size() != stored) misfit();
        if (too_many_columns(shape[1]) && !force_) fail(path_, too_many_columns_text(shape[1]));
        Triplets t{shape[0], shape[1], oxIsComplex(data), oxIsLogical(data), {}};
        t.entries.reserve(stored);
        visit_elements(data, [&](auto e) {
            for (size_t k = 0; k < stored; ++k) {
                if (at.i[k] >= shape[0] || at.j[k] >= shape[1])
                    fail(path_, "an index lies outside of the shape");
                t.entries.push_back({at.i[k], at.j[k], static_cast<double>(e.re[k]),
                                     e.im ? static_cast<double>(e.im[k]) : 0});
            }
        });
        return make_sparse(std::move(t));
    }
    [[noreturn]] void misfit() const {
        fail(path_, "the parts of the sparse matrix do not fit together");
    }

    std::string path_;
    InputFile file_;
    bool force_, sparse_ = false;
    std::unique_ptr<zip_t, Discard> zip_;
    std::map<std::string, zip_stat_t> members_; // names without .npy
};

} // namespace

std::unique_ptr<Input> open_npz(const std::string &path, bool force) {
    return std::make_unique<NpzInput>(path, force);
}

} // namespace vel
