// Interning and the pointer map, against the standard containers.
#include "ut.h"

#include <gtest/gtest.h>
#include <map>
#include <random>
#include <string>

namespace {

TEST(Intern, EqualTextsAreOnePointerAndDifferentOnesAreNot) {
    std::mt19937 rng(11);
    std::map<std::string, const char *> known;
    for (int step = 0; step < 30000; ++step) {
        // Short alphabets and all lengths up to 40: many equal, and many that differ in one place.
        std::string text(rng() % (step % 3 ? 5 : 41), 'a');
        for (char &c : text) c = static_cast<char>('a' + rng() % 3);
        const char *interned = ut_symtab_add(text.c_str());
        ASSERT_EQ(interned, text);
        ASSERT_EQ(known.emplace(text, interned).first->second, interned) << text;
    }
}

TEST(Intern, TablesAreSeparateAndSurviveLackOfMemory) {
    EXPECT_NE(ut_symtab_add("name"), ut_namehash_add("name"));
    const std::string longer(100000, 'x'); // than a block of texts
    utSetAllocationFault([] { return true; });
    EXPECT_EQ(ut_symtab_add(longer.c_str()), nullptr);
    utSetAllocationFault(nullptr);
    EXPECT_EQ(ut_symtab_add(longer.c_str()), longer);
}

const char place[4000] = {};

TEST(GHash, RandomWalkAgreesWithAMap) {
    std::mt19937 rng(5);
    for (double lo : {0.0, 0.1, 0.4}) {
        ut_ghash *table = ut_new_ghash_table(4, 8, 4, lo, 0.8);
        std::map<const void *, int32_t> model;
        for (int step = 0; step < 60000; ++step) {
            // Neighbouring keys collide; the range grows and shrinks the table several times.
            const void *key = place + rng() % (step / 10000 % 2 ? 60u : 4000u);
            const bool known = model.count(key) > 0;
            int32_t value = -1;
            switch (rng() % 4) {
            case 0:
                ASSERT_EQ(ut_ghash_insert(table, key, step), !known);
                model.emplace(key, step);
                break;
            case 1:
                ASSERT_EQ(ut_ghash_replace(table, key, step), known);
                if (known) model[key] = step;
                break;
            case 2:
                ASSERT_EQ(ut_ghash_remove_element(table, key), known);
                model.erase(key);
                break;
            default:
                ASSERT_EQ(ut_ghash_query(table, key, &value), known);
                ASSERT_EQ(value, known ? model[key] : -1);
            }
            ASSERT_EQ(ut_ghash_count(table), model.size());
        }
        ut_delete_ghash_table(table);
    }
}

TEST(GHash, RefusesOddShapesAndSurvivesLackOfMemory) {
    EXPECT_FALSE(ut_new_ghash_table(64, 4, 4, 0.1, 0.8) || ut_new_ghash_table(64, 8, 8, 0.1, 0.8));
    ut_ghash *table = ut_new_ghash_table(0, 8, 4, 0.1, 5.0); // the load stays below one
    int count = 0;
    utSetAllocationFault([] { return true; });
    EXPECT_EQ(ut_new_ghash_table(64, 8, 4, 0.1, 0.8), nullptr);
    while (count < 100 && ut_ghash_insert(table, place + count, count)) ++count;
    utSetAllocationFault(nullptr);
    EXPECT_LT(count, 100);
    for (int k = 0; k < 100; ++k) EXPECT_EQ(ut_ghash_query(table, place + k, nullptr), k < count);
    EXPECT_TRUE(ut_ghash_insert(table, place + count, 0));
    ut_delete_ghash_table(table);
}

} // namespace
