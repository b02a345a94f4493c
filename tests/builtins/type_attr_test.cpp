// Arrays made from a class and attributes.
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <sstream>

namespace {

using TypeAttr = HostTest;

constexpr oxArray_attributes full_real = oxATTR_FULL | oxATTR_REAL,
                             sparse_complex = oxATTR_SPARSE | oxATTR_COMPLEX;

// The attributes' words in the order of their bits, from oxATTR_REAL on; 1 is a bit without
// meaning.
oxArray_attributes attributes(std::istream &in) {
    const std::string words = "real complex scalar row column matrix 3d 4d nd full sparse ";
    oxArray_attributes bits = 0;
    for (std::string word; in >> word;)
        bits |= word == "1" ? 1
                            : oxATTR_REAL << std::count(
                                  words.begin(), words.begin() + words.find(word + ' '), ' ');
    return bits;
}

TEST_F(TypeAttr, GivesTheSmallestArrayOrNull) {
    for (const Record &r : records("builtins/type_attr.txt")) {
        std::istringstream in(r.fields[0]);
        std::string name;
        in >> name;
        const oxClassID id = std::isdigit(name[0]) ? static_cast<oxClassID>(std::stoi(name))
                                                   : oxClassIDFromClassName(name.c_str());
        const oxArray_attributes asked = attributes(in);
        const oxArray *a = oxCreateArrayFromTypeAttr(id, asked);
        EXPECT_EQ(text(a), text(arr(r.fields[1]))) << r.fields[0];
        EXPECT_TRUE(!a || a->get_attributes() == asked) << r.fields[0];
    }
    const oxArray *a = oxCreateArrayFromTypeAttr(oxSINGLE_CLASS, sparse_complex | oxATTR_MATRIX);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(oxGetNzmax(a), 1u);
    EXPECT_TRUE(oxIsSingle(a) && oxIsComplex(a));
}

TEST(TypeAttrSweep, EveryAllocationFailsOnce) {
    sweep_everywhere({{}}, [](auto &) {
        return oxCreateArrayFromTypeAttr(oxCELL_CLASS, full_real | oxATTR_ND);
    });
    sweep({.name = "sparse",
           .make =
               [](auto &) {
                   return oxCreateArrayFromTypeAttr(oxDOUBLE_CLASS, sparse_complex | oxATTR_SCALAR);
               },
           .silent = true});
}

} // namespace
