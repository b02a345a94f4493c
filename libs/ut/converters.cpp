// The local code page and the per-thread cache of ICU converters.
#include "ut/converters.h"

#include <atomic>
#include <cstring>
#if defined(_WIN32)
#include <new>
#include <windows.h>
#else
#include <langinfo.h>
#endif

namespace ut {
namespace {

constexpr std::size_t longest_name = 64;

// The pinned name is replaced by hosts and tests only; `local_version` tells the threads' caches.
constinit char local_name[longest_name] = "";
constinit std::atomic<unsigned> local_version{0};

const char *process_code_page() {
#if defined(_WIN32)
    return ucnv_getDefaultName(); // the system's own code page here
#else
    const char *name = nl_langinfo(CODESET);
    return std::strcmp(name, "ANSI_X3.4-1968") == 0 ? "UTF-8" : name;
#endif
}

// UTF-16 and UTF-32 fail the comparison, and so does Shift_JIS, which exchanges three control
// codes. Encodings with states are excluded by type: ASCII bytes stand for other characters in some
// states.
bool is_ascii_superset(UConverter *converter) {
    char ascii[128];
    UChar units[160];
    for (int c = 0; c < 128; ++c) ascii[c] = static_cast<char>(c);
    UErrorCode status = U_ZERO_ERROR;
    const UConverterType type = ucnv_getType(converter);
    if (type == UCNV_ISO_2022 || type == UCNV_HZ || type == UCNV_UTF7 ||
        type == UCNV_IMAP_MAILBOX || type == UCNV_SCSU || type == UCNV_BOCU1 ||
        type == UCNV_EBCDIC_STATEFUL)
        return false;
    const int32_t n = ucnv_toUChars(converter, units, 160, ascii, 128, &status);
    if (U_FAILURE(status) || n != 128) return false;
    for (int c = 0; c < 128; ++c)
        if (units[c] != c) return false;
    char back[160];
    return ucnv_fromUChars(converter, back, 160, units, 128, &status) == 128 && U_SUCCESS(status) &&
           std::memcmp(back, ascii, 128) == 0;
}

// One thread's converters, closed when it ends.
class CodecCache {
public:
    ~CodecCache() {
        ucnv_close(local_.codec.converter);
        for (std::size_t k = 0; k < count_; ++k) ucnv_close(named_[k].codec.converter);
    }

    const Codec &local() {
        if (!local_.codec.converter ||
            local_.version != local_version.load(std::memory_order_acquire))
            open_local();
        return local_.codec;
    }

    Codec named(const char *encoding) {
        for (std::size_t k = 0; k < count_; ++k)
            if (std::strcmp(named_[k].name, encoding) == 0) return named_[k].codec;
        return add(encoding);
    }

private:
    static constexpr std::size_t room = 16;

    // A full cache gives its last place up.
    Codec add(const char *encoding) {
        if (std::strlen(encoding) >= longest_name) return {nullptr, false};
        const Codec codec = open(encoding);
        if (!codec.converter) return codec;
        if (count_ == room) ucnv_close(named_[--count_].codec.converter);
        std::strcpy(named_[count_].name, encoding);
        named_[count_++].codec = codec;
        return codec;
    }

    void open_local() {
        ucnv_close(local_.codec.converter);
        local_.version = local_version.load(std::memory_order_acquire);
        local_.codec = open(utGetLocalCodePage());
        if (!local_.codec.converter) local_.codec = open("UTF-8");
    }

    static Codec open(const char *encoding) {
        UErrorCode status = U_ZERO_ERROR;
        UConverter *converter = ucnv_open(encoding, &status);
        if (U_FAILURE(status)) return {nullptr, false};
        return {converter, is_ascii_superset(converter)};
    }

    struct Named {
        char name[longest_name]; // as asked for
        Codec codec;
    };
    struct Local {
        unsigned version = 0; // of the local code page when opened
        Codec codec = {nullptr, false};
    };

    Local local_;
    Named named_[room];
    std::size_t count_ = 0;
};

#if defined(_WIN32)
// The compiler's runtime frees the memory of thread-locals before it runs their destructors here.
// So the system keeps the caches and tells of a thread's end, and the slot outlives no unloading of
// the library.
class ThreadCaches {
public:
    ThreadCaches() : slot_(FlsAlloc(close)) {}
    ~ThreadCaches() { FlsFree(slot_); } // with those of the threads that still run
    ThreadCaches(const ThreadCaches &) = delete;
    ThreadCaches &operator=(const ThreadCaches &) = delete;

    CodecCache *mine() {
        auto *cache = static_cast<CodecCache *>(FlsGetValue(slot_));
        if (cache) return cache;
        cache = new (std::nothrow) CodecCache;
        if (cache && FlsSetValue(slot_, cache)) return cache;
        delete cache;
        return nullptr;
    }

private:
    static void WINAPI close(void *cache) { delete static_cast<CodecCache *>(cache); }

    DWORD slot_;
};

CodecCache *thread_cache() {
    static ThreadCaches caches;
    return caches.mine();
}
#else
CodecCache *thread_cache() {
    static thread_local CodecCache cache;
    return &cache;
}
#endif

} // namespace

Codec codec(const char *encoding) {
    CodecCache *const cache = thread_cache();
    if (!cache) return {nullptr, false};
    return encoding ? cache->named(encoding) : cache->local();
}

} // namespace ut

UConverter *utGetConverter(const char *encoding) {
    UConverter *converter = ut::codec(encoding).converter;
    if (converter) ucnv_reset(converter);
    return converter;
}

bool utIsAsciiSuperset(const char *encoding) { return ut::codec(encoding).ascii; }

const char *utGetLocalCodePage() {
    return *ut::local_name ? ut::local_name : ut::process_code_page();
}

bool utSetLocalCodePage(const char *encoding) {
    if (encoding) {
        if (std::strlen(encoding) >= ut::longest_name || *encoding == 0) return false;
        UErrorCode status = U_ZERO_ERROR;
        UConverter *probe = ucnv_open(encoding, &status);
        if (U_FAILURE(status)) return false;
        ucnv_close(probe);
    }
    std::strcpy(ut::local_name, encoding ? encoding : "");
    ut::local_version.fetch_add(1, std::memory_order_release);
    return true;
}
