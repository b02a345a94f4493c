// NPZ: a ZIP archive of NPY files, through libzip.
#include "npz.h"

#include "elements.h"
#include "failure.h"
#include "npy.h"
#include "triplets.h"

#include <algorithm>
#include <map>
#include <memory>
#include <zip.h>

namespace vel {
namespace {

using Members = std::map<std::string, std::string>; // name without .npy, bytes

constexpr uint64_t most_expansion = 1032; // deflate cannot do better

struct Discard {
    void operator()(zip_t *z) const { zip_discard(z); }
};
using Archive = std::unique_ptr<zip_t, Discard>;

[[noreturn]] void fail(const std::string &path, const std::string &what) {
    throw Failure(Exit::data, path + ": " + what);
}

std::string member(zip_t *z, const zip_stat_t &entry, const std::string &path) {
    if (entry.size / most_expansion > entry.comp_size)
        fail(path, std::string(entry.name) + ": a size of " + std::to_string(entry.size) +
                       " bytes that no compression gives");
    std::string bytes(entry.size, '\0');
    zip_file_t *f = zip_fopen_index(z, entry.index, 0);
    const bool good =
        f && zip_fread(f, bytes.data(), bytes.size()) == static_cast<zip_int64_t>(bytes.size());
    if (f) zip_fclose(f);
    if (!good) fail(path, std::string(entry.name) + ": " + zip_strerror(z));
    return bytes;
}

Members read_members(const std::string &path) {
    int error = 0;
    const Archive z(zip_open(path.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
    if (!z) {
        zip_error_t e;
        zip_error_init_with_code(&e, error);
        const std::string what = zip_error_strerror(&e);
        zip_error_fini(&e);
        throw Failure(error == ZIP_ER_OPEN || error == ZIP_ER_NOENT ? Exit::io : Exit::data,
                      path + ": cannot be read: " + what);
    }
    Members members;
    for (zip_int64_t k = 0; k < zip_get_num_entries(z.get(), 0); ++k) {
        zip_stat_t entry;
        if (zip_stat_index(z.get(), static_cast<zip_uint64_t>(k), 0, &entry) != 0) continue;
        std::string name = entry.name;
        if (!name.ends_with(".npy")) fail(path, name + " is no NPY file");
        name.resize(name.size() - 4);
        members[name] = member(z.get(), entry, path);
    }
    return members;
}

// The integers of a member, as sizes.
std::vector<size_t> sizes(const Members &members, const char *name, const std::string &path) {
    const oxArray *a = parse_npy(members.at(name), path + ": " + name);
    std::vector<size_t> values(oxGetNumberOfElements(a));
    visit_elements(a, [&](auto e) {
        for (size_t k = 0; k < values.size(); ++k) {
            if (static_cast<double>(e.re[k]) < 0)
                fail(path, std::string(name) + ": a negative number");
            values[k] = static_cast<size_t>(e.re[k]);
        }
    });
    return values;
}

bool is_sparse(const Members &m) {
    for (const char *name : {"format", "shape", "data", "indices", "indptr"})
        if (!m.contains(name)) return false;
    return true;
}

oxArray *make_sparse_array(const Members &m, const std::string &path) {
    const std::string format = npy_bytes(m.at("format"), path + ": format");
    if (format != "csc" && format != "csr")
        fail(path, "the sparse format '" + format + "' is not supported");
    const bool by_columns = format == "csc";
    const std::vector<size_t> shape = sizes(m, "shape", path), minor = sizes(m, "indices", path),
                              start = sizes(m, "indptr", path);
    const oxArray *data = parse_npy(m.at("data"), path + ": data");
    const size_t stored = oxGetNumberOfElements(data);
    if (shape.size() != 2 || minor.size() != stored || start.size() != shape[by_columns] + 1 ||
        start.front() != 0 || start.back() != stored || !std::is_sorted(start.begin(), start.end()))
        fail(path, "the parts of the sparse matrix do not fit together");
    Triplets t{shape[0], shape[1], oxIsComplex(data), oxIsLogical(data), {}};
    t.entries.reserve(stored);
    visit_elements(data, [&](auto e) {
        for (size_t j = 0; j + 1 < start.size(); ++j)
            for (size_t k = start[j]; k < start[j + 1]; ++k) {
                if (minor[k] >= shape[!by_columns])
                    fail(path, "an index lies outside of the shape");
                t.entries.push_back({by_columns ? minor[k] : j, by_columns ? j : minor[k],
                                     static_cast<double>(e.re[k]),
                                     e.im ? static_cast<double>(e.im[k]) : 0});
            }
    });
    return make_sparse(std::move(t));
}

template<class T> std::string column(const T *values, size_t n, oxClassID id, bool complex = false,
                                     const T *im = nullptr) {
    oxArray *a = id == oxLOGICAL_CLASS
                     ? oxCreateLogicalMatrix(n, 1)
                     : oxCreateNumericMatrix(n, 1, id, complex ? oxCOMPLEX : oxREAL);
    std::copy_n(values, n, static_cast<T *>(oxGetData(a)));
    if (complex) std::copy_n(im, n, static_cast<T *>(oxGetImagData(a)));
    // A vector there has one dimension: readers of sparse matrices insist on it.
    std::string npy = make_npy(a, "data");
    const std::string two = "(" + std::to_string(n) + ", 1, )",
                      one = "(" + std::to_string(n) + ", )";
    npy.replace(npy.find(two), two.size(), one + "   ");
    return npy;
}

Members sparse_members(const oxArray *a) {
    const kwIndex *ir = oxGetIr(a), *jc = oxGetJc(a);
    const size_t n = oxGetN(a), stored = jc[n];
    const int64_t shape[] = {static_cast<int64_t>(oxGetM(a)), static_cast<int64_t>(n)};
    const std::vector<int64_t> rows(ir, ir + stored), starts(jc, jc + n + 1);
    Members m;
    m["format"] = make_npy_bytes("csc");
    m["shape"] = column(shape, 2, oxINT64_CLASS);
    m["indices"] = column(rows.data(), stored, oxINT64_CLASS);
    m["indptr"] = column(starts.data(), n + 1, oxINT64_CLASS);
    visit_elements(a, [&](auto e) {
        m["data"] = column(e.re, stored, oxGetClassID(a), e.im != nullptr, e.im);
    });
    return m;
}

std::string archive_bytes(zip_source_t *buffer) {
    zip_stat_t stat;
    std::string bytes;
    if (zip_source_stat(buffer, &stat) != 0 || zip_source_open(buffer) != 0) return bytes;
    bytes.resize(stat.size);
    const auto n = zip_source_read(buffer, bytes.data(), bytes.size());
    bytes.resize(static_cast<size_t>(std::max<zip_int64_t>(n, 0)));
    zip_source_close(buffer);
    return bytes;
}

} // namespace

std::vector<Named> read_npz(const std::string &path) {
    const Members members = read_members(path);
    if (is_sparse(members)) return {{"sparse", make_sparse_array(members, path)}};
    std::vector<Named> arrays;
    for (const auto &[name, bytes] : members)
        arrays.push_back({name, parse_npy(bytes, path + ": " + name)});
    return arrays;
}

std::string make_npz(const std::vector<Named> &arrays, const std::string &path, bool compress) {
    Members members;
    if (arrays.size() == 1 && arrays[0].value && oxIsSparse(arrays[0].value))
        members = sparse_members(arrays[0].value);
    else
        for (const Named &a : arrays) members[a.name] = make_npy(a.value, path + ": " + a.name);

    zip_source_t *buffer = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(buffer);
    Archive z(zip_open_from_source(buffer, ZIP_TRUNCATE, nullptr));
    for (const auto &[name, bytes] : members) {
        zip_source_t *source = zip_source_buffer(z.get(), bytes.data(), bytes.size(), 0);
        const auto k = zip_file_add(z.get(), (name + ".npy").c_str(), source, ZIP_FL_ENC_UTF_8);
        if (k < 0) fail(path, zip_strerror(z.get()));
        zip_set_file_compression(z.get(), static_cast<zip_uint64_t>(k),
                                 compress ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 0);
    }
    if (zip_close(z.get()) != 0) fail(path, zip_strerror(z.get()));
    static_cast<void>(z.release()); // closing it disposed of it
    std::string bytes = archive_bytes(buffer);
    zip_source_free(buffer);
    return bytes;
}

} // namespace vel
