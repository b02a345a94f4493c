// Random reference, assignment and deletion against the naive model: results, errors, and that
// nothing else changes.
#include <core/check_header.h>
#include <support/naive_index.h>
#include <support/suite.h>

namespace {

using Subs = std::vector<const oxArray *>;

// OX_TEST_ROUNDS widens a run.
int rounds(int usual) {
    const char *wish = std::getenv("OX_TEST_ROUNDS");
    return wish ? std::atoi(wish) : usual;
}

class RandomIndex : public HostTest {
protected:
    Random r{20240611};

    static constexpr int number_classes[] = {3, 4, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr int classes[] = {1, 1, 1, 2, 2, 6,  6,  6,  6,  6,  6, 6,
                                      3, 4, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    static constexpr double bad_positions[] = {0, -1, 1.5};
    static constexpr double steps[] = {1, 1, 2, -1, -2, 3};

    Dims dims() {
        Dims d(static_cast<size_t>(r.chance(0.6) ? 2 : r.between(3, 5)));
        for (kwSize &x : d) x = r.chance(0.25) ? 1 : r.chance(0.07) ? 0 : r.below(5) + 1;
        if (r.chance(0.05)) d.assign(2, 0);
        if (r.chance(0.01)) d = {40, 50}; // where the kernels take whole vectors
        if (r.chance(0.02)) d = {400, 6}; // and columns are searched for few rows
        return d;
    }
    Naive value(int cls, const Dims &d) {
        Naive n{cls, d, {}};
        const bool numeric = cls >= oxDOUBLE_CLASS, complex = numeric && r.chance(0.2);
        const kwSize most = cls == oxLOGICAL_CLASS ? 1 : 100;
        const double fill = r.chance(0.5) ? 1 : r.unit();
        for (kwSize k = 0; k < n.numel(); ++k) {
            Naive::Element e = n.zero();
            for (double &x : e) x = r.chance(fill) ? static_cast<double>(1 + r.below(most)) : 0;
            if (cls == oxCELL_CLASS && r.chance(0.2)) e[0] = -1;
            if (e.size() == 2 && (!complex || r.chance(0.5))) e[1] = 0;
            n.elements.push_back(e);
        }
        return n;
    }

    oxArray *numbers(int cls, const Dims &d, const std::vector<double> &x) {
        Naive n{cls, d, {}};
        for (double v : x) n.elements.push_back({v, 0});
        return n.make();
    }
    // Positions up to a little beyond the extent when it may grow or fail.
    double position(kwSize extent, bool beyond) {
        const kwSize top = extent + (beyond && r.chance(0.15) ? 2 : 0);
        return top ? static_cast<double>(1 + r.below(top)) : 1;
    }
    oxArray *list(kwSize extent, bool beyond) {
        const kwSize most = extent >= 40 && r.chance(0.5) ? 90 : 6;
        const kwSize n = extent == 0 && !beyond ? 0 : r.chance(0.3) ? 1 : r.below(most);
        std::vector<double> x;
        for (kwSize k = 0; k < n; ++k) x.push_back(position(extent, beyond));
        const bool odd = n > 0 && r.chance(0.03);
        if (odd) x[r.below(n)] = r.pick(bad_positions);
        Dims d = r.chance(0.3) ? Dims{n, 1} : Dims{1, n};
        if (n == 4 && r.chance(0.6)) d = r.chance(0.6) ? Dims{2, 2} : Dims{2, 1, 2};
        if (n == 0 && r.chance(0.5)) d = {0, 0};
        const int cls = extent > 100 || odd || r.chance(0.6) ? 6 : r.pick(number_classes);
        return numbers(cls == oxLOGICAL_CLASS ? 6 : cls, d, x);
    }
    oxArray *mask(const Dims &shape) {
        std::vector<double> x(element_count(shape));
        const double p = r.chance(0.1) ? 0 : r.chance(0.1) ? 1 : 0.5;
        for (double &v : x) v = r.chance(p);
        oxArray *m = numbers(oxLOGICAL_CLASS, shape, x);
        return r.chance(0.25) && shape.size() == 2 ? oxMustBeSparse(m) : m;
    }
    const oxArray *subscript(kwSize extent, bool beyond) {
        const kwSize kind = r.below(7);
        if (kind < 2) return numbers(oxCHAR_CLASS, {1, 1}, {':'});
        if (kind == 2) {
            const double a = position(extent, beyond), b = position(extent, beyond);
            return oxCreateColonObject(a, r.pick(steps), b,
                                       r.chance(0.7) ? oxDOUBLE_CLASS : oxINT32_CLASS);
        }
        if (kind == 3) return mask(r.chance(0.5) ? Dims{1, extent} : Dims{extent, 1});
        if (kind == 4) return numbers(oxDOUBLE_CLASS, {1, 1}, {position(extent, beyond)});
        return list(extent, beyond);
    }

    Subs subscripts(const Dims &d, bool beyond) {
        const kwSize n = element_count(d) > 1000 ? 1 + r.below(2)
                         : r.chance(0.35)        ? 1
                         : r.chance(0.7)         ? d.size()
                         : r.chance(0.8)         ? 1 + r.below(6)
                                                 : 11 + r.below(2);
        Subs s;
        for (kwSize extent : naive_extents(d, n))
            s.push_back(n == 1 && r.chance(0.2) ? mask(d) : subscript(extent, beyond));
        return s;
    }
    // What fits the subscripts, with ones in between now and then; or not.
    Dims rhs_dims(const Naive &a, const Subs &s) {
        if (r.chance(0.3)) return {1, 1};
        if (r.chance(0.1)) return dims();
        Dims d;
        try {
            d = naive_counts(a.dims, s);
        } catch (const NaiveError &) {
            return {1, 1};
        }
        std::erase_if(d, [&](kwSize x) { return x == 1 && r.chance(0.4); });
        while (d.size() < 2)
            d.insert(d.begin() + static_cast<std::ptrdiff_t>(r.below(d.size() + 1)), 1);
        while (d.size() > 2 && d.back() == 1) d.pop_back();
        return d;
    }

    // Now and then the array in sparse storage, where the kernels for it must do the same; some
    // zeros of doubles are stored.
    oxArray *make(const Naive &a) {
        const bool is_double = a.cls == oxDOUBLE_CLASS,
                   can = (is_double || a.cls == oxLOGICAL_CLASS) && a.dims.size() == 2;
        if (!can || !r.chance(0.3)) return a.make();
        constexpr double zero = 200; // which no element is
        Naive marked = a;
        for (Naive::Element &e : marked.elements)
            if (is_double && e[0] == 0 && r.chance(0.2)) e[0] = zero;
        oxArray *s = oxMustBeSparse(marked.make());
        if (is_double) std::replace(oxGetPr(s), oxGetPr(s) + oxGetNumNonZeroEl(s), zero, 0.0);
        return s;
    }
    // Runs both sides: either both fail alike and a is unchanged, or `call` gives what the model
    // makes of the value before, and who shared the data has them still.
    void compare(const Naive &before, const Subs &s, const std::function<void(Naive &)> &model,
                 oxArray *a, const std::function<const oxArray *()> &call) {
        const oxArray *sharer = r.chance(0.3) ? oxCreateSharedDataCopy(a) : nullptr;
        std::string trace = before.text();
        for (const oxArray *x : s) // ranges as such
            trace += (x->has_flag(oxFLAG_COLON) ? "\n  range " : "\n  ") + Naive::read(x).text();
        SCOPED_TRACE(trace);
        Naive want = before;
        try {
            model(want);
        } catch (const NaiveError &e) {
            EXPECT_TRUE(raises(e.id.c_str(), e.text.c_str(), [&] { call(); }));
            EXPECT_EQ(Naive::read(a), before);
            return;
        }
        if (oxIsSparse(a) && want.dims.size() > 2) return; // a result without a sparse form
        const oxArray *result = nullptr;
        ASSERT_NO_THROW(result = call()) << "expected " << want.text();
        const Naive got = Naive::read(result);
        EXPECT_TRUE(got == want) << "got      " << got.text() << "\nexpected " << want.text();
        EXPECT_EQ(oxIsSparse(result), oxIsSparse(a));
        EXPECT_EQ(check_header(result, CheckDepth::storage), 0);
        EXPECT_TRUE(!sharer || Naive::read(sharer) == before);
        if (oxIsSparse(a)) return;
        EXPECT_EQ(oxIsComplex(result), want.complex());
        EXPECT_EQ(oxIsScalarDoubleFlagSet(result), want.cls == oxDOUBLE_CLASS && want.numel() == 1);
    }

    // Runs n cases, each in contexts of its own, until one fails.
    void repeat(int n, const std::function<void()> &one) {
        for (int i = 0; i < n && !HasFailure(); ++i) {
            SCOPED_TRACE("case " + std::to_string(i) + ", seed " + std::to_string(r.seed()));
            const Contexts contexts;
            one();
        }
    }
};

TEST_F(RandomIndex, ReferenceAgreesWithTheModel) {
    repeat(rounds(40000), [&] {
        const Naive a = value(r.pick(classes), dims());
        Subs s = subscripts(a.dims, r.chance(0.3));
        oxArray *x = make(a);
        compare(
            a, s, [&](Naive &n) { n = naive_reference(a, s); }, x,
            [&] { return oxSubscriptedReference(x, s.size(), s.data()); });
        EXPECT_EQ(Naive::read(x), a);
    });
}

TEST_F(RandomIndex, AssignmentAgreesWithTheModel) {
    repeat(rounds(40000), [&] {
        const Naive a = value(r.pick(classes), dims());
        Subs s = subscripts(a.dims, true);
        const bool same = a.cls <= oxSTRUCT_CLASS || r.chance(0.6);
        const int cls = same ? a.cls : r.chance(0.5) ? 6 : 9;
        const Naive rhs = r.chance(0.05) ? a : value(cls, rhs_dims(a, s));
        const Naive filler = value(static_cast<int>(r.between(6, 15)), {1, 1});
        const bool fills = a.cls != oxSTRUCT_CLASS && r.chance(0.3);
        // Positions of a sparse array have no third subscript that could be repeated.
        const bool repeats = s.size() > 2 && rhs.numel() != 1;
        oxArray *x = fills || repeats ? a.make() : make(a);
        const oxArray *y = rhs == a ? x : make(rhs), *f = fills ? filler.make() : nullptr;
        if (r.chance(0.02) && oxIsDouble(x)) s[0] = x;
        compare(
            a, s, [&](Naive &n) { naive_assign(n, s, rhs, fills ? &filler : nullptr); }, x,
            [&] {
                oxSubscriptedAssignmentWithFiller(x, s.size(), s.data(), y, f, false);
                return x;
            });
        EXPECT_TRUE(y == x || Naive::read(y) == rhs);
    });
}

TEST_F(RandomIndex, DeletionAgreesWithTheModel) {
    repeat(rounds(40000), [&] {
        const Naive a = value(r.pick(classes), dims());
        Subs s = subscripts(a.dims, r.chance(0.1));
        const kwSize keep = r.below(s.size());
        for (kwSize k = 0; k < s.size(); ++k)
            if (k != keep && r.chance(0.97)) s[k] = numbers(oxCHAR_CLASS, {1, 1}, {':'});
        oxArray *x = make(a);
        if (r.chance(0.02) && oxIsDouble(x)) s[keep] = x;
        const bool scalar = oxIsScalarDoubleFlagSet(x);
        compare(
            a, s, [&](Naive &n) { naive_delete(n, s); }, x,
            [&] {
                oxSubscriptedDelete(x, s.size(), s.data());
                if (scalar && oxGetNumberOfElements(x) == 1) oxSetScalarDoubleFlag(x);
                return x;
            });
    });
}

} // namespace
