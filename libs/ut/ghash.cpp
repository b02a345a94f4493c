// A map from pointers to 32-bit numbers: open addressing, linear probing, removal by moving back.
#include "ut/internal.h"

namespace {

// The empty slot is marked by its own flag, so that null is a key like any other.
struct Entry {
    const void *key;
    std::int32_t value;
    bool used;
};

} // namespace

struct ut_ghash {
    Entry *entries;       // capacity entries
    std::size_t capacity; // a power of two
    std::size_t count;    // used entries
    double lo, hi;        // bounds of count / capacity
    std::size_t smallest; // capacity below which the table never shrinks
};

namespace {

std::size_t home(const ut_ghash &table, const void *key) {
    const auto bits =
        static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(key)) * 0x9e3779b97f4a7c15u;
    return static_cast<std::size_t>(bits >> 32) & (table.capacity - 1);
}

// The key's entry, or the free one where it belongs.
std::size_t find(const ut_ghash &table, const void *key) {
    std::size_t k = home(table, key);
    while (table.entries[k].used && table.entries[k].key != key) k = (k + 1) & (table.capacity - 1);
    return k;
}

bool resize(ut_ghash &table, std::size_t capacity) {
    auto *entries = static_cast<Entry *>(ut::raw_allocate_zeroed(capacity, sizeof(Entry)));
    if (!entries) return false;
    const ut_ghash old = table;
    table.entries = entries;
    table.capacity = capacity;
    for (std::size_t k = 0; k < old.capacity; ++k)
        if (old.entries[k].used) entries[find(table, old.entries[k].key)] = old.entries[k];
    ut::raw_free(old.entries);
    return true;
}

// At least one entry stays free, or probing would not end.
bool make_room(ut_ghash &table) {
    const auto after = static_cast<double>(table.count + 1);
    if (after <= table.hi * static_cast<double>(table.capacity) && table.count + 1 < table.capacity)
        return true;
    return resize(table, 2 * table.capacity);
}

// Moves the entries behind a hole back as far as their homes allow.
void close_hole(ut_ghash &table, std::size_t hole) {
    const std::size_t mask = table.capacity - 1;
    for (std::size_t k = (hole + 1) & mask; table.entries[k].used; k = (k + 1) & mask) {
        const std::size_t from_home = (k - home(table, table.entries[k].key)) & mask;
        if (from_home < ((k - hole) & mask)) continue;
        table.entries[hole] = table.entries[k];
        hole = k;
    }
    table.entries[hole].used = false;
}

double clamped(double x, double low, double high) { return x > low ? (x < high ? x : high) : low; }

} // namespace

ut_ghash *ut_new_ghash_table(int size, int keysize, int valsize, double lo, double hi) {
    if (keysize != sizeof(void *) || valsize != sizeof(std::int32_t)) return nullptr;
    const double bound = clamped(hi, 0.05, 0.9);
    std::size_t capacity = 16;
    while (static_cast<double>(capacity) * bound < size) capacity *= 2;
    auto *table = static_cast<ut_ghash *>(ut::raw_allocate(sizeof(ut_ghash)));
    auto *entries = static_cast<Entry *>(ut::raw_allocate_zeroed(capacity, sizeof(Entry)));
    if (!table || !entries) {
        ut::raw_free(table);
        ut::raw_free(entries);
        return nullptr;
    }
    // Halving a table must leave it below the upper bound.
    *table = {entries, capacity, 0, clamped(lo, 0.0, bound / 2), bound, capacity};
    return table;
}

bool ut_ghash_insert(ut_ghash *table, const void *key, int32_t value) {
    if (table->entries[find(*table, key)].used || !make_room(*table)) return false;
    table->entries[find(*table, key)] = {key, value, true};
    ++table->count;
    return true;
}

bool ut_ghash_replace(ut_ghash *table, const void *key, int32_t value) {
    Entry &entry = table->entries[find(*table, key)];
    if (entry.used) entry.value = value;
    return entry.used;
}

bool ut_ghash_query(const ut_ghash *table, const void *key, int32_t *value) {
    const Entry &entry = table->entries[find(*table, key)];
    if (entry.used && value) *value = entry.value;
    return entry.used;
}

bool ut_ghash_remove_element(ut_ghash *table, const void *key) {
    const std::size_t k = find(*table, key);
    if (!table->entries[k].used) return false;
    close_hole(*table, k);
    --table->count;
    // A table that cannot be made smaller just stays large.
    if (table->capacity > table->smallest &&
        static_cast<double>(table->count) < table->lo * static_cast<double>(table->capacity))
        resize(*table, table->capacity / 2);
    return true;
}

size_t ut_ghash_count(const ut_ghash *table) { return table->count; }

void ut_delete_ghash_table(ut_ghash *table) {
    if (!table) return;
    ut::raw_free(table->entries);
    ut::raw_free(table);
}
