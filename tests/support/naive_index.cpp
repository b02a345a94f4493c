// Reference, assignment and deletion spelled out element by element.
#include <support/array_text.h>
#include <support/expect.h>
#include <support/naive_index.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <utility>

namespace ox::test {

namespace {

using Positions = std::vector<kwSize>; // one-based

void trim(Dims &d) {
    while (d.size() > 2 && d.back() == 1) d.pop_back();
}

bool is_numeric_class(int cls) { return cls >= oxLOGICAL_CLASS && cls <= oxUINT64_CLASS; }

[[noreturn]] void fail(const char *id, const char *text) { throw NaiveError{id, text}; }
[[noreturn]] void fail_entry(oxErrorMessage n) {
    throw NaiveError{entry_id(n), oxGetErrorTableEntry(n)};
}
kwSize position(double x) {
    if (x < 1 || x != std::floor(x))
        fail("VELTRO:badsubscript",
             "Subscript indices must either be real positive integers or logicals.");
    return static_cast<kwSize>(x);
}

bool is_colon(const oxArray *s) {
    return oxIsChar(s) && oxGetNumberOfElements(s) == 1 && oxGetChars(s)[0] == ':';
}
bool is_colon_object(const oxArray *s) { return s->has_flag(oxFLAG_COLON); }

Positions up_to(kwSize n) {
    Positions p(n);
    std::iota(p.begin(), p.end(), kwSize{1});
    return p;
}

Positions read_positions(const oxArray *s, kwSize extent) {
    if (is_colon(s)) return up_to(extent);
    Positions p;
    if (is_colon_object(s)) {
        double v[3]; // first, step, last
        oxGetColonObjValues(s, v);
        for (double x = v[0]; v[1] > 0 ? x <= v[2] : x >= v[2]; x += v[1]) p.push_back(position(x));
        return p;
    }
    const kwSize n = oxGetNumberOfElements(s);
    const double *values = n ? oxGetPr(oxMustBeFullDouble(const_cast<oxArray *>(s))) : nullptr;
    for (kwSize k = 0; k < n; ++k)
        if (!oxIsLogical(s))
            p.push_back(position(oxIsComplex(s) ? 0 : values[k]));
        else if (values[k] != 0)
            p.push_back(k + 1);
    return p;
}

kwSize dim(const Dims &d, kwSize k) { return k < d.size() ? d[k] : 1; }

Dims without_ones(Dims d) {
    std::erase(d, kwSize{1});
    return d;
}

Dims dims_of(const oxArray *s) {
    return Dims(oxGetDimensions(s), oxGetDimensions(s) + oxGetNumberOfDimensions(s));
}

// What a vector of dimensions d has when it is n long.
std::optional<Dims> resized_vector(Dims d, kwSize n) {
    if (without_ones(d).size() != 1) return {};
    for (kwSize &x : d)
        if (x != 1) x = n;
    return d;
}

Dims linear_shape(const Dims &a, const oxArray *s, kwSize n) {
    const Dims i = dims_of(s);
    const auto like_a = resized_vector(a, n), like_i = resized_vector(i, n);
    if (is_colon(s)) return {n, 1};
    if (is_colon_object(s)) return like_a.value_or(Dims{1, n});
    if (!oxIsLogical(s)) return like_a && without_ones(i).size() < 2 ? *like_a : i;
    if (n == 0 && (i == Dims{1, 1} || i == Dims{0, 0})) return {0, 0};
    return like_a ? *like_a : like_i.value_or(Dims{n, 1});
}

Dims counts(const std::vector<Positions> &p) {
    Dims c;
    for (const Positions &x : p) c.push_back(x.size());
    return c;
}

// The offsets of all that is selected, the first subscript fastest.
Dims offsets(const std::vector<Positions> &p, const Dims &extents) {
    Dims all{0};
    for (kwSize k = p.size(); k-- > 0;)
        for (const Dims outer = std::exchange(all, {}); kwSize at : outer)
            for (kwSize x : p[k]) all.push_back(at * dim(extents, k) + x - 1);
    return all;
}

std::vector<Naive::Element> selected(const Naive &a, const std::vector<Positions> &p) {
    std::vector<Naive::Element> e;
    for (kwSize at : offsets(p, naive_extents(a.dims, p.size()))) e.push_back(a.elements[at]);
    return e;
}

kwSize largest(const Positions &p) { return p.empty() ? 0 : *std::max_element(p.begin(), p.end()); }

// The elements of a in an array of other dimensions, by subscript.
void regrow(Naive &a, const Dims &dims, const Naive::Element &fill) {
    std::vector<Naive::Element> grown(element_count(dims), fill);
    std::vector<Positions> all;
    for (kwSize d : a.dims) all.push_back(up_to(d));
    const Dims to = offsets(all, dims);
    for (kwSize i = 0; i < to.size(); ++i) grown[to[i]] = a.elements[i];
    a.dims = dims;
    a.elements = std::move(grown);
}

// Whether the counts but those of 1 are the dimensions of the right side but those of 1.
void check_counts(const Dims &counts, const Naive &rhs) {
    const char *const id = "VELTRO:subsassigndimmismatch";
    const Dims c = without_ones(counts), r = without_ones(rhs.dims);
    for (kwSize k = 0; k < c.size(); ++k) {
        if (k >= r.size())
            fail(id, "Assignment has fewer non-singleton rhs dimensions "
                     "than non-singleton\nsubscripts");
        if (c[k] != r[k]) fail_entry(FSUBSASSIGNDIMMISMATCH);
    }
    if (r.size() > c.size())
        fail(id, "Assignment has more non-singleton rhs dimensions than non-singleton\nsubscripts");
}

// What the target of dimensions 0 becomes; a colon takes what the right side has.
Dims dims_from_nothing(const std::vector<const oxArray *> &subs, const std::vector<Positions> &p,
                       const Naive &rhs, const Dims &old) {
    const kwSize n = subs.size();
    const bool scalar = rhs.numel() == 1;
    if (n == 1) {
        if (is_colon(subs[0])) return scalar ? Dims{1, 1} : rhs.dims;
        if (p[0].empty()) return old;
        const bool column = rhs.dims.size() == 2 && rhs.dims[1] == 1 && rhs.dims[0] != 1;
        return column ? Dims{largest(p[0]), 1} : Dims{1, largest(p[0])};
    }
    bool in_place = rhs.dims.size() <= n;
    for (kwSize k = 0; k < n; ++k)
        in_place = in_place && (is_colon(subs[k]) || p[k].size() == dim(rhs.dims, k));
    Dims d, counts;
    const Dims r = without_ones(rhs.dims);
    for (kwSize k = 0; k < n; ++k) {
        const kwSize all = in_place ? dim(rhs.dims, k) : dim(r, without_ones(counts).size());
        counts.push_back(is_colon(subs[k]) ? all : p[k].size());
        d.push_back(is_colon(subs[k]) ? all : largest(p[k]));
    }
    if (!scalar) check_counts(counts, rhs);
    trim(d);
    return d;
}

Dims grown(const Dims &d, const std::vector<Positions> &p) {
    const kwSize n = p.size();
    const Dims extents = naive_extents(d, n);
    Dims g = d, needed = extents;
    for (kwSize k = 0; k < n; ++k) needed[k] = std::max(extents[k], largest(p[k]));
    if (needed == extents) return d; // only growth drops trailing ones
    g.resize(std::max(n, d.size()), 1);
    std::copy_n(needed.begin(), n < d.size() ? n - 1 : n, g.begin());
    const kwSize l = needed.back();
    if (n < d.size() && l > extents.back()) {
        if (d.size() != 2)
            fail("VELTRO:indexed_matrix_cannot_be_resized",
                 "Attempt to grow array along ambiguous dimension.");
        const bool row = d[0] <= 1 || d[1] == 0, column = d[1] == 1 && d[0] != 1;
        g = column ? Dims{l, 1} : row ? Dims{1, l} : Dims{d[0], (l + d[0] - 1) / d[0]};
    }
    trim(g);
    return g;
}

void check_conversion(const Naive &rhs, int to) {
    if (rhs.numel() == 0 || rhs.cls == to) return;
    if (to == oxCELL_CLASS)
        fail("VELTRO:invalidConversion", "Conversion to cell from double is not possible.");
    if (to == oxLOGICAL_CLASS && rhs.complex()) fail_entry(FNOLOGICALCOMPLEX);
    if (to == oxCHAR_CLASS && rhs.complex())
        fail("VELTRO:noConversionComplexToChar", "Complex values cannot be converted to chars");
}

// The values of the tests are in the range of every class but logical.
Naive::Element converted(Naive::Element e, int to) {
    if (to == oxLOGICAL_CLASS)
        for (double &x : e) x = x != 0;
    return e;
}

} // namespace

Naive Naive::read(const oxArray *a) {
    if (is_colon_object(a)) return read(oxExpandColonObj(oxCreateDeepCopy(a)));
    Naive n{static_cast<int>(oxGetClassID(a)), dims_of(a), {}};
    const bool numeric = is_numeric_class(n.cls);
    const oxArray *x = numeric ? oxMustBeFullDouble(const_cast<oxArray *>(a)) : nullptr;
    const double *pr = numeric ? oxGetPr(x) : nullptr, *pi = numeric ? oxGetPi(x) : nullptr;
    for (kwSize k = 0; k < n.numel(); ++k) {
        Element e = n.zero();
        for (kwSize p = 0; !numeric && p < e.size(); ++p)
            if (const oxArray *slot = oxGetCell(a, k * e.size() + p)) e[p] = oxGetScalar(slot);
        if (numeric) e = {pr[k], pi ? pi[k] : 0};
        n.elements.push_back(e);
    }
    return n;
}

oxArray *Naive::make() const {
    const kwSize nd = dims.size();
    if (is_numeric_class(cls)) {
        const WarningRecorder quiet; // of positions that saturate
        oxArray *a =
            oxCreateNumericArray(nd, dims.data(), oxDOUBLE_CLASS, complex() ? oxCOMPLEX : oxREAL);
        for (kwSize k = 0; k < elements.size(); ++k) {
            oxGetPr(a)[k] = elements[k][0];
            if (double *pi = oxGetPi(a)) pi[k] = elements[k][1];
        }
        return oxMustBe(a, static_cast<oxClassID>(cls));
    }
    const char *names[struct_fields] = {"a", "b", "c"};
    oxArray *a = cls == oxCELL_CLASS ? oxCreateCellArray(nd, dims.data())
                                     : oxCreateStructArray(nd, dims.data(), struct_fields, names);
    for (kwSize k = 0; k < elements.size(); ++k)
        for (kwSize p = 0; p < elements[k].size(); ++p)
            if (elements[k][p] != -1) // cells have one value each
                oxSetCell(a, k * elements[k].size() + p, oxCreateDoubleScalar(elements[k][p]));
    return a;
}

bool Naive::complex() const {
    return std::any_of(elements.begin(), elements.end(),
                       [](const Element &e) { return e.size() == 2 && e[1] != 0; }) &&
           cls >= oxDOUBLE_CLASS && is_numeric_class(cls);
}

Naive::Element Naive::zero() const {
    if (is_numeric_class(cls)) return {0, 0};
    return Element(cls == oxCELL_CLASS ? 1 : struct_fields, -1);
}

Dims naive_extents(const Dims &d, kwSize nsubs) {
    Dims e;
    for (kwSize k = 0; k < nsubs; ++k) e.push_back(dim(d, k));
    for (kwSize k = nsubs; k < d.size(); ++k) e.back() *= d[k];
    return e;
}

Dims naive_counts(const Dims &d, const std::vector<const oxArray *> &subs) {
    std::vector<Positions> p;
    for (const oxArray *s : subs)
        p.push_back(read_positions(s, naive_extents(d, subs.size())[p.size()]));
    return counts(p);
}

Naive naive_reference(const Naive &a, const std::vector<const oxArray *> &subs) {
    const Dims extents = naive_extents(a.dims, subs.size());
    std::vector<Positions> p;
    for (kwSize k = 0; k < subs.size(); ++k) {
        p.push_back(read_positions(subs[k], extents[k]));
        if (largest(p[k]) > extents[k])
            fail("VELTRO:badsubscript", "Index exceeds matrix dimensions.");
    }
    Naive b{a.cls, counts(p), selected(a, p)};
    if (subs.size() == 1) b.dims = linear_shape(a.dims, subs[0], p[0].size());
    trim(b.dims);
    return b;
}

void naive_assign(Naive &a, const std::vector<const oxArray *> &subs, const Naive &rhs,
                  const Naive *filler) {
    const kwSize n = subs.size();
    const bool nothing = std::all_of(a.dims.begin(), a.dims.end(), [](kwSize d) { return d == 0; });
    const bool scalar = rhs.numel() == 1;
    const Dims old = nothing ? Dims(n, 0) : naive_extents(a.dims, n);
    std::vector<Positions> p;
    for (kwSize k = 0; k < n; ++k) p.push_back(read_positions(subs[k], old[k]));
    for (kwSize k = 0; scalar && k < n; ++k)
        if (p[k].empty() && !(nothing && is_colon(subs[k]))) return;
    const bool takes_all = nothing && is_colon(subs[0]);
    if (n == 1 && !scalar && !takes_all && p[0].size() != rhs.numel())
        fail_entry(FSUBSASSIGNNUMELMISMATCH);
    if (n > 1 && !scalar && !nothing) check_counts(counts(p), rhs);
    const Dims dims = nothing ? dims_from_nothing(subs, p, rhs, a.dims) : grown(a.dims, p);
    check_conversion(rhs, a.cls);
    Naive::Element fill = a.zero();
    if (filler && is_numeric_class(a.cls) && filler->numel() != 0) {
        fill = converted(filler->elements[0], a.cls);
        if (!a.complex() || !filler->complex()) fill[1] = 0;
    }
    if (dims != a.dims) regrow(a, dims, fill);
    const Dims extents = naive_extents(a.dims, n);
    for (kwSize k = 0; nothing && k < n; ++k)
        if (is_colon(subs[k])) p[k] = read_positions(subs[k], extents[k]);
    const Dims to = offsets(p, extents);
    for (kwSize k = 0; rhs.numel() != 0 && k < to.size(); ++k)
        a.elements[to[k]] = converted(rhs.elements[scalar ? 0 : k], a.cls);
}

void naive_delete(Naive &a, const std::vector<const oxArray *> &subs) {
    const kwSize n = subs.size();
    const auto one = std::find_if_not(subs.begin(), subs.end(), is_colon);
    if (std::count_if(subs.begin(), subs.end(), is_colon) + 1 < static_cast<long>(n))
        fail_entry(FBADNULLASSIGN);
    const bool all = one == subs.end();
    const Dims extents = naive_extents(a.dims, n);
    const kwSize at = all ? 0 : static_cast<kwSize>(one - subs.begin());
    if (oxGetNumberOfElements(subs[at]) == 0) return;
    const Positions gone = read_positions(subs[at], extents[at]);
    if (largest(gone) > extents[at]) fail_entry(FSUBSDELDIMMISMATCH);
    if (gone.empty() && !all) return;
    std::vector<Positions> kept;
    for (kwSize extent : extents) kept.push_back(up_to(extent));
    for (kwSize x : gone) std::erase(kept[at], x);
    const kwSize left = kept[at].size();
    a.elements = selected(a, kept);
    a.dims = n > 1 ? extents
             : all ? Dims{0, 0}
                   : resized_vector(a.dims, left).value_or(Dims{1, left});
    if (n > 1) a.dims[at] = left;
    trim(a.dims);
}

} // namespace ox::test
