// The field-name table: interned names in one shared block, copied before it changes.
//
// Behind the names lies one signature byte per name, in whole words of eight. A lookup compares
// the signature of the wanted name with eight of them at a time and looks at a name only where the
// byte agrees, so that a short table is searched without interning the name or comparing texts.
#include <containers/field_table.h>
#include <core/alloc.h>
#include <core/tuning.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <ut.h>

namespace ox {
namespace {

constexpr kwSize word = sizeof(uint64_t);

kwSize to_size(int32_t count) { return static_cast<kwSize>(count); }
kwSize signature_bytes(int32_t count) { return (to_size(count) + word - 1) / word * word; }
kwSize table_bytes(int32_t count) {
    return offsetof(name_index_info, names) + to_size(count) * sizeof(char *) +
           signature_bytes(count);
}
// Where the signatures of a table with room for count names lie.
uint8_t *signatures(const name_index_info *t, int32_t count) {
    return reinterpret_cast<uint8_t *>(const_cast<const char **>(t->names + count));
}

template<class T> uint64_t load(const char *p) {
    T w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

// Depends on every byte and on the length; one byte of it is kept.
uint8_t signature_of(const char *name) {
    constexpr uint64_t odd = 0x9e3779b97f4a7c15u;
    const kwSize n = std::strlen(name);
    uint64_t h = n, last = 0;
    for (kwSize k = 0; k + word < n; k += word) {
        h = (h ^ load<uint64_t>(name + k)) * odd;
        h ^= h >> 32;
    }
    if (n >= word)
        last = load<uint64_t>(name + n - word);
    else if (n >= 4)
        last = load<uint32_t>(name) | load<uint32_t>(name + n - 4) << 32;
    else if (n > 0)
        last = load<uint8_t>(name) | load<uint8_t>(name + n / 2) << 8 |
               load<uint8_t>(name + n - 1) << 16;
    return static_cast<uint8_t>(((h ^ last) * odd) >> 56);
}

name_index_info *new_table(int32_t count) {
    auto *t = static_cast<name_index_info *>(oxMallocEx(table_bytes(count)));
    if (!t) return nullptr;
    t->count = count;
    t->reference_count = 1;
    t->hash = nullptr;
    std::memset(signatures(t, count), 0, signature_bytes(count));
    return t;
}

// Moves the signatures to where a table of count names has them; the block has room for either.
void set_count(name_index_info *t, int32_t count) {
    const kwSize kept = to_size(std::min(t->count, count));
    uint8_t *sig = signatures(t, count);
    std::memmove(sig, signatures(t, t->count), kept);
    std::memset(sig + kept, 0, signature_bytes(count) - kept);
    t->count = count;
}

void drop_hash(name_index_info *t) {
    ut_delete_ghash_table(t->hash);
    t->hash = nullptr;
}

void release(name_index_info *t) {
    if (--t->reference_count > 0) return;
    drop_hash(t);
    oxFreeEx(t);
}

// Later names replace earlier ones, as the search from the last name does.
bool put(ut_ghash *hash, const char *name, int32_t number) {
    return ut_ghash_replace(hash, name, number) || ut_ghash_insert(hash, name, number);
}

// Brings the hash in line with the names: none for a small table. False without memory; the table
// then has none, and answers the same more slowly.
bool rebuild_hash(name_index_info *t) {
    drop_hash(t);
    if (to_size(t->count) < tuning::field_hash_min) return true;
    t->hash = ut_new_ghash_table(64, sizeof(char *), sizeof(int32_t), 0.1, 0.8);
    for (int32_t k = 0; t->hash && k < t->count; ++k)
        if (!put(t->hash, t->names[k], k)) drop_hash(t);
    return t->hash != nullptr;
}

// A copy with room for one name more, or for as many; one owner and no hash.
name_index_info *copy_table(const name_index_info *t, int32_t room) {
    name_index_info *copy = new_table(room);
    if (!copy) return nullptr;
    std::memcpy(copy->names, t->names, to_size(t->count) * sizeof(char *));
    std::memcpy(signatures(copy, room), signatures(t, t->count), to_size(t->count));
    return copy;
}

// A private table of one name more, whose last name is still to be set; null without memory. It is
// the array's own, grown, or a new one.
name_index_info *widen(oxArray *a) {
    name_index_info *t = a->record.names;
    if (!t) return new_table(1);
    const int32_t k = t->count;
    if (t->reference_count > 1) return copy_table(t, k + 1);
    t = static_cast<name_index_info *>(oxReallocEx(t, table_bytes(k + 1)));
    if (!t) return nullptr;
    a->record.names = t;
    set_count(t, k + 1);
    return t;
}

// Undoes widen() after a failure behind it.
void narrow_again(oxArray *a, name_index_info *t) {
    if (t == a->record.names)
        set_count(t, t->count - 1);
    else
        release(t);
}

// The table of name_at(0) ... name_at(count - 1). Null without memory.
template<class NameAt> name_index_info *table_of(int32_t count, NameAt &&name_at) {
    name_index_info *t = new_table(count);
    if (!t) return nullptr;
    for (int32_t k = 0; k < count; ++k) {
        const char *name = name_at(k);
        t->names[k] = ut_symtab_add(name);
        if (!t->names[k]) {
            release(t);
            return nullptr;
        }
        signatures(t, count)[k] = signature_of(name);
    }
    if (!rebuild_hash(t)) {
        release(t);
        return nullptr;
    }
    return t;
}

} // namespace

name_index_info *make_field_table(int32_t count, const char *const *names) {
    return table_of(count, [=](int32_t k) { return names[k]; });
}

name_index_info *make_field_table(int32_t count, const char *slots, kwSize length) {
    auto name = RawArray<char>::make(length + 1);
    if (!name) return nullptr;
    name[length] = '\0';
    return table_of(count, [&](int32_t k) {
        std::memcpy(name.get(), slots + to_size(k) * length, length);
        return name.get();
    });
}

void release_field_table(oxArray *a) {
    if (a->record.names) release(a->record.names);
    a->record.names = nullptr;
}

// Deliberate: among duplicates the highest number wins, hence the search from the last name.
int32_t find_field(const name_index_info *t, const char *name) {
    if (!t) return -1;
    int32_t number = -1;
    if (t->hash) {
        const char *interned = ut_symtab_add(name);
        return interned && ut_ghash_query(t->hash, interned, &number) ? number : -1;
    }
    constexpr uint64_t ones = 0x0101010101010101u;
    const uint8_t wanted = signature_of(name);
    const uint8_t *sig = signatures(t, t->count);
    for (int32_t base = (t->count - 1) & ~7; base >= 0; base -= 8) {
        uint64_t w;
        std::memcpy(&w, sig + base, word);
        w ^= ones * wanted;
        if (((w - ones) & ~w & (ones << 7)) == 0) continue; // no byte agrees
        for (int32_t k = std::min(base + 8, t->count); k-- > base;)
            if (sig[k] == wanted && std::strcmp(t->names[k], name) == 0) return k;
    }
    return -1;
}

bool add_field_name(oxArray *a, const char *name) {
    const char *interned = ut_symtab_add(name);
    name_index_info *t = interned ? widen(a) : nullptr;
    if (!t) return false;
    const int32_t k = t->count - 1;
    t->names[k] = interned;
    signatures(t, k + 1)[k] = signature_of(name);
    if (!(t->hash ? put(t->hash, interned, k) : rebuild_hash(t))) {
        narrow_again(a, t);
        return false;
    }
    if (t != a->record.names) {
        release_field_table(a);
        a->record.names = t;
    }
    return true;
}

bool own_field_table(oxArray *a) {
    name_index_info *t = a->record.names;
    if (!t || t->reference_count == 1) return true;
    name_index_info *copy = copy_table(t, t->count);
    if (!copy) return false;
    release_field_table(a);
    a->record.names = copy;
    return true;
}

void remove_field_name(oxArray *a, int32_t n) {
    name_index_info *t = a->record.names;
    if (t->count == 1) {
        release_field_table(a);
        return;
    }
    const int32_t left = t->count - 1;
    uint8_t *sig = signatures(t, t->count);
    std::memmove(sig + n, sig + n + 1, to_size(left - n));
    std::memmove(t->names + n, t->names + n + 1, to_size(left - n) * sizeof(char *));
    set_count(t, left);
    if (void *smaller = oxReallocEx(t, table_bytes(left)))
        t = a->record.names = static_cast<name_index_info *>(smaller);
    rebuild_hash(t); // also renumbers; a duplicate that was hidden until now is found again
}

} // namespace ox
