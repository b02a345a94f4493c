// Finding a field by name, beside hash maps and one comparison of the right name.
#include <benchmark/benchmark.h>
#include <ox.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

// count field names, and 1024 queries in random order that are texts of their own.
struct Names {
    explicit Names(std::size_t count, bool hit) {
        for (std::size_t k = 0; k < count; ++k) fields.push_back("field_" + std::to_string(k * 7));
        std::mt19937 random(1);
        for (int k = 0; k < 1024; ++k) {
            const std::string &name = fields[random() % count];
            queries.push_back(hit ? name : name + "_no");
        }
    }
    std::vector<std::string> fields, queries;
};

template<class Find> void run(benchmark::State &state, const Names &names, Find &&find) {
    std::size_t k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(find(names.queries[k].c_str()));
        k = (k + 1) % names.queries.size();
    }
}

void compare_once(benchmark::State &state, std::size_t count, bool hit) {
    const Names names(count, hit);
    const std::vector<std::string> copies = names.queries;
    std::size_t k = 0;
    run(state, names, [&](const char *query) {
        const std::string &right = copies[k];
        k = (k + 1) % copies.size();
        return std::memcmp(query, right.data(), std::strlen(query));
    });
}

void find_ox(benchmark::State &state, std::size_t count, bool hit) {
    const Names names(count, hit);
    std::vector<const char *> p;
    for (const std::string &s : names.fields) p.push_back(s.c_str());
    oxArray *a = oxCreateStructMatrix(1, 1, static_cast<int>(count), p.data());
    run(state, names, [&](const char *query) { return oxGetFieldNumber(a, query); });
    oxDestroyArray(a);
}

template<class Key> void find_map(benchmark::State &state, std::size_t count, bool hit) {
    const Names names(count, hit);
    std::unordered_map<Key, int> map;
    for (std::size_t k = 0; k < count; ++k) map.emplace(names.fields[k], static_cast<int>(k));
    run(state, names, [&](const char *query) {
        const auto found = map.find(Key(query));
        return found == map.end() ? -1 : found->second;
    });
}

void find_strcmp(benchmark::State &state, std::size_t count, bool hit) {
    const Names names(count, hit);
    run(state, names, [&](const char *query) {
        auto k = static_cast<int>(count);
        while (--k >= 0 && names.fields[static_cast<std::size_t>(k)] != query) continue;
        return k;
    });
}

[[maybe_unused]] const bool registered = [] {
    for (const std::size_t count : {8u, 63u, 64u, 1000u})
        for (const bool hit : {true, false}) {
            const auto add = [&](const char *who, auto fn) {
                const std::string name =
                    (hit ? "find_field/" : "miss_field/") + std::to_string(count) + '/' + who;
                benchmark::RegisterBenchmark(name.c_str(), fn, count, hit);
            };
            add("limit_compare_once", compare_once);
            add("ox", find_ox);
            add("map_string", find_map<std::string>);
            add("map_string_view", find_map<std::string_view>);
            if (count < 64) add("linear_compare", find_strcmp);
        }
    return true;
}();

} // namespace
