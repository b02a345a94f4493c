// Arrays through every kind of stream and back, and the bytes in between read a second way.
#include "decoder.h"
#include "random_arrays.h"
#include <containers/check_array.h>
#include <support/array_text.h>
#include <support/faults.h>
#include <support/host.h>

namespace ox::test {
namespace {

class RoundTrip : public HostTest {};

std::vector<StreamForm> all_forms() {
    std::vector<StreamForm> forms;
    for (Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential})
        for (bool swapped : {false, true})
            for (int options :
                 {0, int{oiWIDE}, int{oiOPTION16}, int{oiCOMPRESS}, int{oiCOMPRESS | oiWIDE}})
                if (c == Carrier::file || !(options & oiCOMPRESS))
                    forms.push_back({c, swapped, static_cast<uint16_t>(options)});
    return forms;
}

// Two arrays with a plain element between them.
Bytes write_three(const StreamForm &form, const oxArray *a, const oxArray *b) {
    TestStream s(form);
    EXPECT_EQ(s.put(a, "first"), oiSUCCESS) << name_of(form);
    EXPECT_EQ(s.put(oiINT16, {1, 2, 3, 4, 5, 6}), oiSUCCESS);
    EXPECT_EQ(s.put(b), oiSUCCESS);
    return s.contents();
}

oxArray *read_array(TestStream &s, const std::string &name) {
    char got[64] = "none";
    oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(got)};
    EXPECT_EQ(oiGetCurrentItem(s.get(), &item), oiSUCCESS);
    EXPECT_EQ(item.type, oiMATRIX);
    EXPECT_EQ(got, name);
    auto *a = static_cast<oxArray *>(item.data);
    EXPECT_TRUE(a && oxIsTemp(a));
    const Finding found = check_array(a);
    EXPECT_FALSE(found) << check_rule_text(found.rule);
    return a;
}

void expect_decoded(const StreamForm &form, const Bytes &bytes, const oxArray *a,
                    const oxArray *b) {
    Decoder d(bytes, form.swapped, (form.options & oiWIDE) != 0);
    d.position = form.carrier == Carrier::buffer ? 8 : 0;
    d.expect_array(a, "first");
    d.position += 16; // small on wide streams, tag and padded data on others
    d.expect_array(b, "");
    EXPECT_EQ(d.position, bytes.size());
}

// Pieces larger than any buffer inside, one of them compressible.
oxArray *large_struct(Random &r) {
    const char *names[] = {"zeros", "noise"};
    oxArray *a = oxCreateStructMatrix(1, 1, 2, names);
    oxSetField(a, 0, "zeros", oxCreateDoubleMatrix(1000, 70, oxREAL));
    oxSetField(a, 0, "noise", oxCreateNumericMatrix(300, 200, oxINT16_CLASS, oxCOMPLEX));
    fill_random(r, oxGetData(oxGetField(a, 0, "noise")), 120000);
    return a;
}

TEST_F(RoundTrip, RandomArraysInEveryForm) {
    Random r(7);
    for (int round = 0; round < 40; ++round) {
        const Contexts contexts;
        const oxArray *a = round ? random_array(r, 3) : large_struct(r), *b = random_array(r, 2);
        for (const StreamForm &form : all_forms()) {
            SCOPED_TRACE(name_of(form) + ", round " + std::to_string(round));
            const Bytes bytes = write_three(form, a, b);
            ASSERT_NO_THROW(expect_decoded(form, bytes, a, b));
            TestStream s(form, bytes);
            const oxArray *a2 = read_array(s, "first");
            int16_t three[3];
            oiItem_tag plain{0, 0, three, 0};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &plain), oiSUCCESS);
            EXPECT_EQ(0, std::memcmp(three, "\1\2\3\4\5\6", 6));
            const oxArray *b2 = read_array(s, "");
            ASSERT_FALSE(HasFailure());
            // What is equal to the last flag and bit is written the same.
            EXPECT_TRUE(write_three(form, a2, b2) == bytes);
            oiItem_tag end{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &end), oiSHORT_READ);
        }
    }
}

TEST_F(RoundTrip, HeadersHaveNoData) {
    const struct {
        const char *array;
        bool complex;
    } cases[] = {{"double 3x4: 1 2 3 4; 5 6 7 8; 9 10 11 12+1i", true},
                 {"char 1x3: 'abc'", false},
                 {"struct 2x1 a: {double 1x1: 1} {}", false},
                 {"sparse logical 3x3 nzmax 4: (1,1)=1", false},
                 {"cell 1x2: {} {}", false}};
    for (const StreamForm &form : all_forms()) {
        for (const auto &c : cases) {
            SCOPED_TRACE(name_of(form) + c.array);
            const oxArray *a = arr(c.array);
            TestStream s(form, write_three(form, a, a));
            char name[64];
            oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
            ASSERT_EQ(oiGetMatrixHeaderAtCurrentOffset(s.get(), &item, 0), oiSUCCESS);
            const auto *h = static_cast<const oxArray *>(item.data);
            EXPECT_STREQ(name, "first");
            EXPECT_EQ(oxGetClassID(h), oxGetClassID(a));
            EXPECT_EQ(oxIsSparse(h), oxIsSparse(a));
            EXPECT_TRUE(same_dimensions(h, a));
            EXPECT_EQ(h->is_imag_marked(), c.complex);
            EXPECT_EQ(oxGetData(h), nullptr);
            EXPECT_EQ(oiGetMatrixHeaderAtCurrentOffset(s.get(), &item, 0), oiBAD_ELEMENT);
            // Announced data cannot be written; a struct announces none.
            const bool refused = oxGetNumberOfElements(h) > 0 && !oxIsStruct(h);
            EXPECT_EQ(s.put(h) == oiBAD_ELEMENT, refused);
        }
    }
}

TEST_F(RoundTrip, DeepestNestingThatIsWrittenIsRead) {
    const auto nested = [](int depth) {
        oxArray *a = oxCreateDoubleScalar(1);
        for (int k = 1; k < depth; ++k) {
            oxArray *outer = oxCreateCellMatrix(1, 1);
            oxSetCell(outer, 0, a);
            a = outer;
        }
        return a;
    };
    oxArray *a = nested(oiNESTING_LIMIT);
    TestStream s({});
    ASSERT_EQ(s.put(a), oiSUCCESS);
    oiItem_tag item{};
    EXPECT_EQ(oiGetItem(s.get(), &item, 8), oiSUCCESS);
    EXPECT_EQ(oxAreMatricesEqual(static_cast<oxArray *>(item.data), a), 1);
    EXPECT_EQ(s.put(nested(oiNESTING_LIMIT + 1)), oiSHORT_WRITE);
    // The same bytes with one more cell around them.
    const Bytes bytes = s.contents();
    Bytes deeper = hex("0e000000 00000000 06000000 08000000 01000000 00000000"
                       "05000000 08000000 01000000 01000000 01000000 00000000");
    deeper.insert(deeper.end(), bytes.begin() + 8, bytes.end());
    const auto n = static_cast<uint32_t>(deeper.size() - 8);
    std::memcpy(&deeper[4], &n, 4);
    TestStream t({Carrier::sequential}, deeper);
    EXPECT_EQ(oiGetCurrentItem(t.get(), &item), oiBAD_ELEMENT);
}

} // namespace
} // namespace ox::test
