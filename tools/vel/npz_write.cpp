// NPZ: writing a ZIP archive of NPY files, through libzip. It asks for the members when it closes
// the archive, and each array is in memory only while its member is written.
#include "failure.h"
#include "host.h"
#include "npy.h"
#include "npz.h"
#include "output_file.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <exception>
#include <functional>
#include <optional>
#include <zip.h>

namespace vel {
namespace {

// What the library of archives calls for a source of bytes. Exceptions must not cross it: they wait
// until it has returned.
class Callbacks {
public:
    explicit Callbacks(std::exception_ptr &thrown) : thrown_(thrown) { zip_error_init(&error_); }
    Callbacks(const Callbacks &) = delete;
    Callbacks &operator=(const Callbacks &) = delete;
    virtual ~Callbacks() { zip_error_fini(&error_); }

    static zip_int64_t call(void *self, void *data, zip_uint64_t n, zip_source_cmd_t command) {
        auto &me = *static_cast<Callbacks *>(self);
        if (command == ZIP_SOURCE_ERROR) return zip_error_to_data(&me.error_, data, n);
        try {
            return me.answer(command, static_cast<char *>(data), n);
        } catch (...) {
            me.thrown_ = std::current_exception();
            zip_error_set(&me.error_, ZIP_ER_INTERNAL, 0);
            return -1;
        }
    }

protected:
    virtual zip_int64_t answer(zip_source_cmd_t command, char *data, zip_uint64_t n) = 0;
    static zip_int64_t stat(char *data, bool with_size) {
        zip_stat_t s;
        zip_stat_init(&s);
        if (with_size) s.valid |= ZIP_STAT_SIZE;
        std::memcpy(data, &s, sizeof s);
        return sizeof s;
    }
    zip_int64_t refuse(int code) {
        zip_error_set(&error_, code, errno);
        return -1;
    }

    zip_error_t error_;

private:
    std::exception_ptr &thrown_;
};

class Member : public Callbacks {
public:
    using Open = std::function<NpyPieces()>;
    Member(Open open, std::exception_ptr &thrown) : Callbacks(thrown), open_(std::move(open)) {}

private:
    zip_int64_t answer(zip_source_cmd_t command, char *data, zip_uint64_t n) override {
        switch (command) {
        case ZIP_SOURCE_OPEN:
            context_.emplace();
            pieces_.emplace(open_());
            rest_ = pieces_->next();
            return 0;
        case ZIP_SOURCE_READ:
            return read(data, n);
        case ZIP_SOURCE_CLOSE:
            pieces_.reset();
            context_.reset();
            return 0;
        case ZIP_SOURCE_STAT:
            return stat(data, false);
        case ZIP_SOURCE_FREE:
            return 0;
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(ZIP_SOURCE_OPEN, ZIP_SOURCE_READ,
                                                  ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                                                  ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, -1);
        default:
            return refuse(ZIP_ER_OPNOTSUPP);
        }
    }
    zip_int64_t read(char *to, zip_uint64_t n) {
        if (rest_.empty()) rest_ = pieces_->next();
        const size_t now = std::min<size_t>(n, rest_.size());
        if (now > 0) std::memcpy(to, rest_.data(), now);
        rest_.remove_prefix(now);
        return static_cast<zip_int64_t>(now);
    }

    Open open_;
    std::optional<Context> context_;
    std::optional<NpyPieces> pieces_;
    std::string_view rest_;
};

// The archive itself, into a file that gets its name when it is complete.
class Archive : public Callbacks {
public:
    Archive(FILE *f, std::exception_ptr &thrown) : Callbacks(thrown), file_(f) {}

private:
    zip_int64_t answer(zip_source_cmd_t command, char *data, zip_uint64_t n) override {
        switch (command) {
        case ZIP_SOURCE_WRITE:
            if (fwrite(data, 1, n, file_) != n) return refuse(ZIP_ER_WRITE);
            return static_cast<zip_int64_t>(n);
        case ZIP_SOURCE_SEEK_WRITE: {
            const auto *to = ZIP_SOURCE_GET_ARGS(zip_source_args_seek, data, n, &error_);
            if (!to) return -1;
            return oiFseek64(file_, to->offset, to->whence) == 0 ? 0 : refuse(ZIP_ER_SEEK);
        }
        case ZIP_SOURCE_TELL_WRITE:
            return oiFtell64(file_);
        case ZIP_SOURCE_STAT:
            return stat(data, true);
        case ZIP_SOURCE_SUPPORTS:
            return zip_source_make_command_bitmap(
                ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT,
                ZIP_SOURCE_ERROR, ZIP_SOURCE_FREE, ZIP_SOURCE_SEEK, ZIP_SOURCE_TELL,
                ZIP_SOURCE_SUPPORTS, ZIP_SOURCE_BEGIN_WRITE, ZIP_SOURCE_COMMIT_WRITE,
                ZIP_SOURCE_ROLLBACK_WRITE, ZIP_SOURCE_WRITE, ZIP_SOURCE_SEEK_WRITE,
                ZIP_SOURCE_TELL_WRITE, ZIP_SOURCE_REMOVE, -1);
        default:
            return 0; // nothing to be done, and nothing to be read
        }
    }

    FILE *file_;
};

class NpzWriter {
public:
    NpzWriter(const std::string &path, bool compress)
        : path_(path), compress_(compress), out_(path), archive_(out_.file(), thrown_) {
        source_ = zip_source_function_create(Callbacks::call, &archive_, nullptr);
        zip_ =
            source_ ? zip_open_from_source(source_, ZIP_TRUNCATE | ZIP_CREATE, nullptr) : nullptr;
        if (!zip_) throw Failure(Exit::io, path_ + ": no archive can be made");
    }
    ~NpzWriter() {
        if (zip_) zip_discard(zip_);
    }
    NpzWriter(const NpzWriter &) = delete;
    NpzWriter &operator=(const NpzWriter &) = delete;

    void add(const std::string &name, Member::Open open) {
        Member &m = members_.emplace_back(std::move(open), thrown_);
        zip_source_t *source = zip_source_function(zip_, Callbacks::call, &m);
        const auto k = zip_file_add(zip_, (name + ".npy").c_str(), source, ZIP_FL_ENC_UTF_8);
        if (k < 0) fail();
        zip_set_file_compression(zip_, static_cast<zip_uint64_t>(k),
                                 compress_ ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 0);
    }
    void commit() {
        if (zip_close(zip_) != 0) fail();
        zip_ = nullptr;
        out_.commit();
    }

private:
    [[noreturn]] void fail() {
        if (thrown_) std::rethrow_exception(thrown_);
        throw Failure(Exit::io, path_ + ": " + zip_strerror(zip_));
    }

    std::string path_;
    bool compress_;
    OutputFile out_;
    std::exception_ptr thrown_;
    Archive archive_;
    std::deque<Member> members_; // which the archive points to
    zip_source_t *source_ = nullptr;
    zip_t *zip_ = nullptr;
};

void add_sparse(NpzWriter &writer, const oxArray *a, const int64_t (&shape)[2]) {
    static_assert(sizeof(kwIndex) == sizeof(int64_t));
    const size_t n = oxGetN(a), stored = oxGetNumNonZeroEl(a);
    writer.add("format", [] { return NpyPieces("csc"); });
    writer.add("shape", [&shape] { return NpyPieces(oxINT64_CLASS, shape, nullptr, 2); });
    writer.add("indices", [=] { return NpyPieces(oxINT64_CLASS, oxGetIr(a), nullptr, stored); });
    writer.add("indptr", [=] { return NpyPieces(oxINT64_CLASS, oxGetJc(a), nullptr, n + 1); });
    writer.add("data", [=] {
        return NpyPieces(oxGetClassID(a), oxGetData(a), oxIsComplex(a) ? oxGetImagData(a) : nullptr,
                         stored);
    });
}

} // namespace

void write_npz(Input &in, const std::string &path, bool compress) {
    const std::vector<std::string> &names = in.names();
    if (names.empty()) throw Failure(Exit::data, path + ": there is nothing to put into it");
    const oxArray *first = names.size() == 1 ? in.load(0) : nullptr;
    int64_t shape[2];
    NpzWriter writer(path, compress);
    if (first && oxIsSparse(first)) {
        shape[0] = static_cast<int64_t>(oxGetM(first)),
        shape[1] = static_cast<int64_t>(oxGetN(first));
        add_sparse(writer, first, shape);
    } else {
        for (size_t k = 0; k < names.size(); ++k)
            writer.add(names[k], [&, k] {
                return NpyPieces(first ? first : in.load(k), path + ": " + names[k]);
            });
    }
    writer.commit();
}

} // namespace vel
