// Arrays through every kind of stream and back, and the bytes in between read a second way.
#include "decoder.h"
#include <support/stream_bytes.h>
#include <support/suite.h>

#include <cstring>

namespace {

class RoundTrip : public HostTest {};

// --- Random arrays of every class that streams can hold, nested ---------------------------------

// The first n elements of both parts.
oxArray *filled(Random &r, oxArray *a, kwSize n) {
    for (void *part : {oxGetData(a), oxGetImagData(a)}) {
        auto *p = static_cast<unsigned char *>(part);
        for (kwSize k = 0; p && k < n * oxGetElementSize(a); ++k) {
            p[k] = static_cast<unsigned char>(r.bits());
            if (oxIsLogical(a)) p[k] = oxIsSparse(a) ? 1 : p[k] & 1;
        }
    }
    if (oxIsChar(a) && r.chance(0.5))
        for (kwSize k = 0; k < n; ++k) oxGetChars(a)[k] &= 0x7F;
    return a;
}

oxArray *random_full(Random &r, kwSize ndims, const kwSize *dims) {
    auto id = static_cast<oxClassID>(r.between(oxLOGICAL_CLASS, oxUINT64_CLASS));
    if (id == oxVOID_CLASS) id = oxCHAR_CLASS;
    oxArray *a = id == oxLOGICAL_CLASS
                     ? oxCreateLogicalArray(ndims, dims)
                     : oxCreateNumericArray(ndims, dims, id, r.chance(0.3) ? oxCOMPLEX : oxREAL);
    return filled(r, a, oxGetNumberOfElements(a));
}

oxArray *random_sparse(Random &r) {
    static constexpr oxClassID classes[] = {oxLOGICAL_CLASS, oxDOUBLE_CLASS, oxINT16_CLASS};
    const kwSize m = r.below(7), n = r.below(7);
    oxArray *a = oxCreateSparseNumericMatrix(m, n, m * n + r.below(3), r.pick(classes),
                                             r.chance(0.3) ? oxCOMPLEX : oxREAL);
    kwSize nnz = 0; // unused capacity is read back as zeros
    for (kwSize j = 0; j < n; oxGetJc(a)[++j] = nnz)
        for (kwSize i = 0; i < m; ++i)
            if (r.chance(0.4)) oxGetIr(a)[nnz++] = i;
    return filled(r, a, nnz);
}

oxArray *random_array(Random &r, int depth) {
    std::vector<kwSize> dims(r.chance(0.7) ? 2 : 3 + r.below(5));
    for (kwSize &d : dims) d = r.below(dims.size() > 3 ? 3 : 5);
    const uint64_t kind = r.below(depth > 0 ? 11 : 6);
    oxArray *a;
    if (kind == 0) {
        a = random_sparse(r);
    } else if (kind < 6) {
        a = random_full(r, dims.size(), dims.data());
    } else if (kind < 8) {
        const char *names[5] = {"x", "second", "a_very_long_name_of_a_field", "y1", "x"};
        const int fields = static_cast<int>(r.below(6));
        a = oxCreateStructArray(dims.size(), dims.data(), fields, names);
        for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k)
            for (int f = 0; f < fields; ++f)
                if (r.chance(0.4)) oxSetFieldByNumber(a, k, f, random_array(r, depth - 1));
        if (r.chance(0.3)) oxSetClassName(a, "thing");
    } else if (kind < 10) {
        a = oxCreateCellArray(dims.size(), dims.data());
        for (kwSize k = 0; k < oxGetNumberOfElements(a); ++k)
            if (r.chance(0.5)) oxSetCell(a, k, random_array(r, depth - 1));
    } else {
        a = oxCreateNumericMatrix(r.below(3), 1, oxFUNCTION_CLASS, oxREAL);
    }
    if (r.chance(0.1)) oxSetFromGlobalWS(a, true);
    return a;
}

// Pieces larger than any buffer inside, one of them compressible.
oxArray *large_cell(Random &r) {
    oxArray *a = oxCreateCellMatrix(1, 2);
    oxSetCell(a, 0, oxCreateDoubleMatrix(1000, 70, oxREAL));
    oxSetCell(a, 1, filled(r, oxCreateNumericMatrix(300, 200, oxINT16_CLASS, oxCOMPLEX), 60000));
    return a;
}

// --- Streams -----------------------------------------------------------------------------------

std::vector<StreamForm> all_forms() {
    std::vector<StreamForm> forms;
    for (const Carrier c : {Carrier::buffer, Carrier::file, Carrier::sequential})
        for (const char *words : {"", "wide", "option16", "compressed", "compressed wide"})
            for (const char *order : {"", "swapped "})
                if (c == Carrier::file || *words != 'c')
                    forms.push_back(form_of(order + std::string(words), c));
    return forms;
}

// Two arrays with a plain element between them.
Bytes write_three(const StreamForm &form, const oxArray *a, const oxArray *b) {
    TestStream s(form);
    EXPECT_EQ(s.put(a, "first"), oiSUCCESS);
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
    expect_well_formed(a);
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

TEST_F(RoundTrip, RandomArraysInEveryForm) {
    Random r(7);
    for (int round = 0; round < 40; ++round) {
        const Contexts contexts;
        const oxArray *a = round ? random_array(r, 3) : large_cell(r), *b = random_array(r, 2);
        for (const StreamForm &form : all_forms()) {
            SCOPED_TRACE(form.name + ", round " + std::to_string(round));
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
            // What is equal to the last flag and bit is written the same, also in other forms.
            EXPECT_TRUE(write_three(form, a2, b2) == bytes);
            EXPECT_TRUE(write_three({}, a2, b2) == write_three({}, a, b));
            oiItem_tag end{};
            EXPECT_EQ(oiGetCurrentItem(s.get(), &end), oiSHORT_READ);
        }
    }
}

TEST_F(RoundTrip, HeadersHaveNoData) {
    for (const StreamForm &form : all_forms()) {
        for (const Record &r : records("stream/golden.txt")) {
            SCOPED_TRACE(form.name + r.fields[1]);
            const Contexts contexts;
            const oxArray *a = arr(r.fields[1]);
            TestStream s(form, write_three(form, a, a));
            char name[64];
            oiItem_tag item{0, 0, nullptr, reinterpret_cast<uintptr_t>(name)};
            ASSERT_EQ(oiGetMatrixHeaderAtCurrentOffset(s.get(), &item, 0), oiSUCCESS);
            const auto *h = static_cast<const oxArray *>(item.data);
            EXPECT_STREQ(name, "first");
            EXPECT_EQ(oxGetClassID(h), oxGetClassID(a));
            EXPECT_EQ(oxIsSparse(h), oxIsSparse(a));
            EXPECT_TRUE(same_dimensions(h, a));
            EXPECT_EQ(h->is_imag_marked(), oxIsComplex(a));
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
    Bytes deeper = joined(hex("0e000000 00000000 06000000 08000000 01000000 00000000"
                              "05000000 08000000 01000000 01000000 01000000 00000000"),
                          cut(s.contents(), 8));
    const auto n = static_cast<uint32_t>(deeper.size() - 8);
    std::memcpy(&deeper[4], &n, 4);
    TestStream t({Carrier::sequential}, deeper);
    EXPECT_EQ(oiGetCurrentItem(t.get(), &item), oiBAD_ELEMENT);
}

} // namespace
