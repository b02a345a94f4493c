// Interning: two open-addressing tables of process-lifetime texts, where equal texts are one
// pointer.
#include "ut/internal.h"

#include <cstring>

namespace {

std::uint64_t word(const char *p) {
    std::uint64_t w;
    std::memcpy(&w, p, 8);
    return w;
}

std::uint64_t half_word(const char *p) {
    std::uint32_t w;
    std::memcpy(&w, p, 4);
    return w;
}

// All bytes of a text of one to three.
std::uint64_t half_word_of_bytes(char first, char middle, char last) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(first)) << 16 |
           static_cast<std::uint64_t>(static_cast<unsigned char>(middle)) << 8 |
           static_cast<unsigned char>(last);
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    const unsigned __int128 product = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

constexpr std::uint64_t k0 = 0x9e3779b97f4a7c15u;
constexpr std::uint64_t k1 = 0xd6e8feb86659fd93u;

// Reads the text as overlapping words: a short name costs two loads and two multiplications.
std::uint64_t hash_of(const char *text, std::size_t n) {
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    std::uint64_t h = n * k1;
    if (n >= 8) {
        for (std::size_t k = 16; k < n; k += 16)
            h = mix(word(text + k - 16) ^ k0 ^ h, word(text + k - 8) ^ k1);
        a = word(text + (n >= 16 ? n - 16 : 0));
        b = word(text + n - 8);
    } else if (n >= 4) {
        a = half_word(text);
        b = half_word(text + n - 4);
    } else if (n > 0) {
        a = half_word_of_bytes(text[0], text[n / 2], text[n - 1]);
    }
    return mix(mix(a ^ k0 ^ h, b ^ k1) ^ h, k0);
}

struct Slot {
    std::uint64_t hash; // of the text
    const char *text;   // null: free
};

class InternTable {
public:
    const char *add(const char *text) {
        const std::size_t n = std::strlen(text);
        const std::uint64_t hash = hash_of(text, n);
        if (capacity_ > 0) {
            const Slot &slot = slot_for(text, n, hash);
            if (slot.text) return slot.text;
        }
        return insert(text, n, hash);
    }

private:
    // The slot of the text, or the free slot where it belongs.
    Slot &slot_for(const char *text, std::size_t n, std::uint64_t hash) const {
        std::size_t k = hash & (capacity_ - 1);
        while (slots_[k].text &&
               (slots_[k].hash != hash || std::memcmp(slots_[k].text, text, n + 1) != 0))
            k = (k + 1) & (capacity_ - 1);
        return slots_[k];
    }

    const char *insert(const char *text, std::size_t n, std::uint64_t hash) {
        if (2 * (count_ + 1) > capacity_ && !widen()) return nullptr;
        char *copy = store(text, n + 1);
        if (!copy) return nullptr;
        slot_for(text, n, hash) = {hash, copy};
        ++count_;
        return copy;
    }

    bool widen() {
        const std::size_t wider = capacity_ ? 2 * capacity_ : 256;
        auto *slots = static_cast<Slot *>(ut::raw_allocate_zeroed(wider, sizeof(Slot)));
        if (!slots) return false;
        for (std::size_t k = 0; k < capacity_; ++k) {
            if (!slots_[k].text) continue;
            std::size_t j = slots_[k].hash & (wider - 1);
            while (slots[j].text) j = (j + 1) & (wider - 1);
            slots[j] = slots_[k];
        }
        ut::raw_free(slots_);
        slots_ = slots;
        capacity_ = wider;
        return true;
    }

    // Texts lie one behind the other in blocks that are never freed. Each block starts with a link
    // to the one before, which also lets leak checkers reach it.
    char *store(const char *text, std::size_t bytes) {
        if (bytes > room_) {
            const std::size_t size = sizeof(char *) + (bytes > block_bytes ? bytes : block_bytes);
            auto *block = static_cast<char *>(ut::raw_allocate(size));
            if (!block) return nullptr;
            std::memcpy(block, &blocks_, sizeof blocks_);
            blocks_ = block;
            place_ = block + sizeof blocks_;
            room_ = size - sizeof blocks_;
        }
        char *copy = place_;
        std::memcpy(copy, text, bytes);
        place_ += bytes;
        room_ -= bytes;
        return copy;
    }

    static constexpr std::size_t block_bytes = 16 * 1024 - sizeof(char *);

    Slot *slots_ = nullptr;
    std::size_t capacity_ = 0; // a power of two, or 0
    std::size_t count_ = 0;
    char *blocks_ = nullptr; // newest block of texts
    char *place_ = nullptr;  // its free part
    std::size_t room_ = 0;
};

constinit InternTable symbols;
constinit InternTable names;

} // namespace

const char *ut_symtab_add(const char *text) { return symbols.add(text); }

const char *ut_namehash_add(const char *text) { return names.add(text); }
