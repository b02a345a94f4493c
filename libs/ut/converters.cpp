// The local code page and the per-thread cache of ICU converters.
#include "ut/converters.h"

#include <atomic>
#include <cstring>
#if !defined(_WIN32)
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
    return nl_langinfo(CODESET);
#endif
}

// UTF-16 and UTF-32 fail the first test, stateful and EBCDIC encodings one of the others. Shift_JIS
// passes: a trail byte may be ASCII, but a text that is all ASCII bytes has no lead bytes.
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

struct CachedCodec {
    char name[longest_name]; // as asked for; "" for the local code page
    unsigned version;        // of the local code page when opened
    Codec codec;
};

// One thread's converters, closed when it ends.
class CodecCache {
public:
    ~CodecCache() {
        for (std::size_t k = 0; k < count_; ++k) ucnv_close(entries_[k].codec.converter);
    }

    Codec find(const char *encoding) {
        for (std::size_t k = 0; k < count_; ++k) {
            CachedCodec &entry = entries_[k];
            if (std::strcmp(entry.name, encoding) != 0) continue;
            if (*encoding == 0 && entry.version != local_version.load(std::memory_order_acquire))
                open(entry);
            if (entry.codec.converter) ucnv_reset(entry.codec.converter);
            return entry.codec;
        }
        return add(encoding);
    }

private:
    static constexpr std::size_t room = 16;

    // A full cache closes its latest entry, never the local code page's or UTF-8's, which come
    // first in any real program.
    Codec add(const char *encoding) {
        if (std::strlen(encoding) >= longest_name) return {nullptr, false};
        const bool full = count_ == room;
        CachedCodec &entry = entries_[full ? room - 1 : count_];
        if (full) ucnv_close(entry.codec.converter);
        std::strcpy(entry.name, encoding);
        entry.codec = {nullptr, false};
        open(entry);
        if (entry.codec.converter)
            count_ = full ? room : count_ + 1;
        else
            count_ = full ? room - 1 : count_;
        return entry.codec;
    }

    void open(CachedCodec &entry) {
        const bool local = entry.name[0] == 0;
        if (local) {
            entry.version = local_version.load(std::memory_order_acquire);
            ucnv_close(entry.codec.converter);
        }
        UErrorCode status = U_ZERO_ERROR;
        UConverter *converter = ucnv_open(local ? utGetLocalCodePage() : entry.name, &status);
        if (U_FAILURE(status) && local) {
            status = U_ZERO_ERROR;
            converter = ucnv_open("UTF-8", &status);
        }
        entry.codec = {nullptr, false};
        if (U_FAILURE(status)) return;
        entry.codec = {converter, is_ascii_superset(converter)};
        ucnv_reset(converter);
    }

    CachedCodec entries_[room];
    std::size_t count_ = 0;
};

} // namespace

Codec codec(const char *encoding) {
    static thread_local CodecCache cache;
    return cache.find(encoding ? encoding : "");
}

} // namespace ut

UConverter *utGetConverter(const char *encoding) { return ut::codec(encoding).converter; }

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
