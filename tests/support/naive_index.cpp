// Reference, assignment and deletion spelled out element by element.
#include <support/array_text.h>
#include <support/expect.h>
#include <support/naive_index.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

namespace ox::test {

namespace {

using Positions = std::vector<kwSize>; // one-based

void trim(Dims &d) {
    while (d.size() > 2 && d.back() == 1) d.pop_back();
}

double slot_value(const oxArray *slot) { return slot ? oxGetScalar(slot) : -1; }

bool is_numeric_class(int cls) { return cls >= oxLOGICAL_CLASS && cls <= oxUINT64_CLASS; }

[[noreturn]] void fail(const char *id, const char *text) { throw NaiveError{id, text}; }
[[noreturn]] void fail_bad() {
    fail("VELTRO:badsubscript",
         "Subscript indices must either be real positive integers or logicals.");
}
[[noreturn]] void fail_outside() {
    fail("VELTRO:badsubscript", "Index exceeds matrix dimensions.");
}
[[noreturn]] void fail_entry(oxErrorMessage n) {
    throw NaiveError{entry_id(n), oxGetErrorTableEntry(n)};
}

bool is_colon(const oxArray *s) {
    return oxIsChar(s) && oxGetNumberOfElements(s) == 1 && oxGetChars(s)[0] == ':';
}
bool is_colon_object(const oxArray *s) { return s->has_flag(oxFLAG_COLON); }

Positions range(double first, double step, double last) {
    Positions p;
    for (double x = first; step > 0 ? x <= last : step < 0 && x >= last; x += step) {
        if (x < 1) fail_bad();
        p.push_back(static_cast<kwSize>(x));
    }
    return p;
}

Positions read_positions(const oxArray *s, kwSize extent) {
    if (is_colon(s)) return range(1, 1, static_cast<double>(extent));
    if (is_colon_object(s)) {
        double v[3];
        oxGetColonObjValues(s, v);
        return range(v[0], v[1], v[2]);
    }
    Positions p;
    const kwSize n = oxGetNumberOfElements(s);
    if (n != 0 && oxIsComplex(s)) fail_bad();
    const double *values = n ? oxGetPr(oxMustBeFullDouble(const_cast<oxArray *>(s))) : nullptr;
    for (kwSize k = 0; k < n; ++k) {
        double x = values[k];
        if (oxIsLogical(s)) {
            if (x != 0) p.push_back(k + 1);
            continue;
        }
        const double wrap = oxIsInt8(s) ? 256 : oxIsInt16(s) ? 65536 : oxIsInt32(s) ? 0x1p32 : 0;
        if (x < 0) x += wrap; // signed classes are read as unsigned
        if (!(x >= 1) || x != std::floor(x) || x > 281474976710655.0) fail_bad();
        p.push_back(static_cast<kwSize>(x));
    }
    return p;
}

kwSize dim(const Dims &d, kwSize k) { return k < d.size() ? d[k] : 1; }

Dims folded(const Dims &d, kwSize nsubs) {
    Dims e;
    for (kwSize k = 0; k < nsubs; ++k) e.push_back(dim(d, k));
    for (kwSize k = nsubs; k < d.size(); ++k) e.back() *= d[k];
    return e;
}

Dims without_ones(Dims d) {
    std::erase(d, kwSize{1});
    return d;
}

std::optional<kwSize> vector_dimension(const Dims &d) {
    if (without_ones(d).size() != 1) return {};
    kwSize k = 0;
    while (d[k] == 1) ++k;
    return k;
}

Dims oriented(kwSize nd, kwSize k, kwSize n) {
    Dims d(nd, 1);
    d[k] = n;
    return d;
}

Dims dims_of(const oxArray *s) {
    return Dims(oxGetDimensions(s), oxGetDimensions(s) + oxGetNumberOfDimensions(s));
}

Dims linear_shape(const Dims &a, const oxArray *s, kwSize n) {
    const auto ka = vector_dimension(a), ki = vector_dimension(dims_of(s));
    if (is_colon(s)) return {n, 1};
    if (is_colon_object(s)) return ka ? oriented(a.size(), *ka, n) : Dims{1, n};
    const Dims i = dims_of(s);
    if (oxIsLogical(s)) {
        if (n == 0 && (i == Dims{1, 1} || i == Dims{0, 0})) return {0, 0};
        if (ka) return oriented(a.size(), *ka, n);
        return ki ? oriented(i.size(), *ki, n) : Dims{n, 1};
    }
    return without_ones(i).size() < 2 && ka ? oriented(a.size(), *ka, n) : i;
}

// Calls f(k-th selected, zero-based linear position) over all combinations, first subscript
// fastest.
void for_each(const std::vector<Positions> &p, const Dims &extents,
              const std::function<void(kwSize, kwSize)> &f) {
    Dims counts;
    for (const Positions &x : p) counts.push_back(x.size());
    for (kwSize i = 0; i < element_count(counts); ++i) {
        kwSize rest = i, at = 0, stride = 1;
        for (kwSize k = 0; k < p.size(); ++k) {
            at += (p[k][rest % p[k].size()] - 1) * stride;
            rest /= p[k].size();
            stride *= extents[k];
        }
        f(i, at);
    }
}

kwSize largest(const Positions &p) { return p.empty() ? 0 : *std::max_element(p.begin(), p.end()); }

// The elements of a in an array of other dimensions, by subscript.
void regrow(Naive &a, const Dims &dims, const Naive::Element &fill) {
    std::vector<Naive::Element> grown(element_count(dims), fill);
    const kwSize nd = std::max(dims.size(), a.dims.size());
    for (kwSize i = 0; i < a.elements.size(); ++i) {
        kwSize rest = i, at = 0, stride = 1;
        for (kwSize k = 0; k < nd; ++k) {
            at += rest % dim(a.dims, k) * stride;
            rest /= dim(a.dims, k);
            stride *= dim(dims, k);
        }
        grown[at] = a.elements[i];
    }
    a.dims = dims;
    a.elements = std::move(grown);
}

void check_counts(const Dims &counts, const Naive &rhs) {
    if (counts.size() == 1) {
        if (counts[0] != rhs.numel()) fail_entry(FSUBSASSIGNNUMELMISMATCH);
        return;
    }
    const Dims c = without_ones(counts), r = without_ones(rhs.dims);
    for (kwSize k = 0; k < c.size(); ++k) {
        if (k >= r.size())
            fail("VELTRO:subsassigndimmismatch",
                 "Assignment has fewer non-singleton rhs dimensions "
                 "than non-singleton\nsubscripts");
        if (c[k] != r[k]) fail_entry(FSUBSASSIGNDIMMISMATCH);
    }
    if (r.size() > c.size())
        fail("VELTRO:subsassigndimmismatch",
             "Assignment has more non-singleton rhs dimensions than non-singleton\nsubscripts");
}

Dims dims_from_nothing(const std::vector<const oxArray *> &subs, const std::vector<Positions> &p,
                       const Naive &rhs, const Dims &old) {
    const kwSize n = subs.size();
    const bool scalar = rhs.numel() == 1;
    if (n == 1 && !scalar) {
        if (is_colon(subs[0])) return rhs.dims;
        if (p[0].size() != rhs.numel()) fail_entry(FSUBSASSIGNNUMELMISMATCH);
        if (p[0].empty()) return old;
        const bool column = rhs.dims.size() == 2 && rhs.dims[1] == 1 && rhs.dims[0] != 1;
        return column ? Dims{largest(p[0]), 1} : Dims{1, largest(p[0])};
    }
    if (n == 1) return {1, is_colon(subs[0]) ? 1 : largest(p[0])};
    Dims d;
    bool in_place = rhs.dims.size() <= n;
    for (kwSize k = 0; k < n; ++k)
        in_place = in_place && (is_colon(subs[k]) || p[k].size() == dim(rhs.dims, k));
    const Dims r = without_ones(rhs.dims);
    kwSize next = 0;
    for (kwSize k = 0; k < n; ++k) {
        if (scalar || in_place) {
            d.push_back(!is_colon(subs[k]) ? largest(p[k]) : scalar ? 1 : dim(rhs.dims, k));
        } else if (is_colon(subs[k])) {
            d.push_back(next < r.size() ? r[next++] : 1);
        } else if (p[k].size() == 1) {
            d.push_back(largest(p[k]));
        } else {
            if (next >= r.size()) check_counts({2, 2}, Naive{rhs.cls, {1, 1}, {{0, 0}}, {}});
            if (r[next++] != p[k].size()) fail_entry(FSUBSASSIGNDIMMISMATCH);
            d.push_back(largest(p[k]));
        }
    }
    if (!scalar && !in_place && next < r.size()) check_counts({1, 1}, rhs);
    trim(d);
    return d;
}

Dims grown(const Dims &d, const std::vector<Positions> &p) {
    const kwSize n = p.size();
    const Dims extents = folded(d, n);
    Dims g = d;
    g.resize(std::max(n, d.size()), 1);
    bool grows = false;
    for (kwSize k = 0; k < n; ++k) {
        const kwSize l = largest(p[k]);
        if (l <= extents[k]) continue;
        grows = true;
        if (k + 1 < n || n >= d.size())
            g[k] = l;
        else if (d.size() != 2)
            fail("VELTRO:indexed_matrix_cannot_be_resized",
                 "Attempt to grow array along ambiguous dimension.");
        else if (d[0] * d[1] == 0)
            g = d[1] == 1 ? Dims{l, 1} : Dims{1, l};
        else if (d[0] == 1)
            g = {1, l};
        else
            g = d[1] == 1 ? Dims{l, 1} : Dims{d[0], (l + d[0] - 1) / d[0]};
    }
    trim(g);
    return grows ? g : d; // only growth drops trailing ones
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
    Naive n{static_cast<int>(oxGetClassID(a)), dims_of(a), {}, {}};
    const bool numeric = is_numeric_class(n.cls);
    const int nf = oxIsStruct(a) ? oxGetNumberOfFields(a) : 0;
    for (int f = 0; f < nf; ++f) n.fields.emplace_back(oxGetFieldNameByNumber(a, f));
    const oxArray *x = numeric ? oxMustBeFullDouble(const_cast<oxArray *>(a)) : nullptr;
    const double *pr = numeric ? oxGetPr(x) : nullptr, *pi = numeric ? oxGetPi(x) : nullptr;
    for (kwSize k = 0; k < n.numel(); ++k) {
        Element e;
        for (int f = 0; f < nf; ++f) e.push_back(slot_value(oxGetFieldByNumber(a, k, f)));
        if (oxIsCell(a)) e = {slot_value(oxGetCell(a, k))};
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
    std::vector<const char *> names;
    for (const std::string &f : fields) names.push_back(f.c_str());
    oxArray *a =
        cls == oxCELL_CLASS
            ? oxCreateCellArray(nd, dims.data())
            : oxCreateStructArray(nd, dims.data(), static_cast<int>(fields.size()), names.data());
    for (kwSize k = 0; k < elements.size(); ++k)
        for (kwSize p = 0; p < elements[k].size(); ++p)
            if (elements[k][p] != -1) // cells have one value each
                oxSetCell(a, k * elements[k].size() + p, oxCreateDoubleScalar(elements[k][p]));
    return a;
}

kwSize Naive::numel() const { return element_count(dims); }

bool Naive::complex() const {
    return std::any_of(elements.begin(), elements.end(),
                       [](const Element &e) { return e.size() == 2 && e[1] != 0; }) &&
           cls >= oxDOUBLE_CLASS && is_numeric_class(cls);
}

Naive::Element Naive::zero() const {
    if (is_numeric_class(cls)) return {0, 0};
    return Element(cls == oxCELL_CLASS ? 1 : fields.size(), -1);
}

Naive naive_reference(const Naive &a, const std::vector<const oxArray *> &subs) {
    const Dims extents = folded(a.dims, subs.size());
    std::vector<Positions> p;
    for (kwSize k = 0; k < subs.size(); ++k) {
        p.push_back(read_positions(subs[k], extents[k]));
        if (largest(p[k]) > extents[k]) fail_outside();
    }
    Naive b{a.cls, {}, {}, a.fields};
    if (subs.size() == 1)
        b.dims = linear_shape(a.dims, subs[0], p[0].size());
    else
        for (const Positions &x : p) b.dims.push_back(x.size());
    trim(b.dims);
    for_each(p, extents, [&](kwSize, kwSize at) { b.elements.push_back(a.elements[at]); });
    return b;
}

void naive_assign(Naive &a, const std::vector<const oxArray *> &subs, const Naive &rhs,
                  const Naive *filler) {
    const bool nothing = std::all_of(a.dims.begin(), a.dims.end(), [](kwSize d) { return d == 0; });
    const bool scalar = rhs.numel() == 1;
    const Dims old = nothing ? Dims(subs.size(), 0) : folded(a.dims, subs.size());
    std::vector<Positions> p;
    Dims counts;
    for (kwSize k = 0; k < subs.size(); ++k) {
        p.push_back(read_positions(subs[k], old[k]));
        counts.push_back(p[k].size());
    }
    for (kwSize k = 0; scalar && k < subs.size(); ++k)
        if (p[k].empty() && !(nothing && is_colon(subs[k]))) return;
    if (!nothing && !scalar) check_counts(counts, rhs);
    const Dims dims = nothing ? dims_from_nothing(subs, p, rhs, a.dims) : grown(a.dims, p);
    check_conversion(rhs, a.cls);
    Naive::Element fill = a.zero();
    if (filler && is_numeric_class(a.cls) && filler->numel() != 0) {
        fill = converted(filler->elements[0], a.cls);
        if (!a.complex() || !filler->complex()) fill[1] = 0;
    }
    if (dims != a.dims) regrow(a, dims, fill);
    const Dims extents = folded(a.dims, subs.size());
    for (kwSize k = 0; nothing && k < subs.size(); ++k)
        if (is_colon(subs[k])) p[k] = read_positions(subs[k], extents[k]);
    for_each(p, extents, [&](kwSize k, kwSize at) {
        if (rhs.numel() != 0) a.elements[at] = converted(rhs.elements[scalar ? 0 : k], a.cls);
    });
}

void naive_delete(Naive &a, const std::vector<const oxArray *> &subs) {
    const kwSize n = subs.size();
    kwSize at = n;
    for (kwSize k = 0; k < n; ++k) {
        if (is_colon(subs[k])) continue;
        if (at != n) fail_entry(FBADNULLASSIGN);
        at = k;
    }
    const Dims extents = folded(a.dims, n);
    const auto along = vector_dimension(a.dims);
    auto shape = [&](kwSize k, kwSize kept) {
        Dims d = extents;
        d[k] = kept;
        if (n == 1) d = along ? oriented(a.dims.size(), *along, kept) : Dims{1, kept};
        trim(d);
        return d;
    };
    if (at == n) {
        a.dims = n == 1 ? Dims{0, 0} : shape(0, 0);
        a.elements.clear();
        return;
    }
    if (oxGetNumberOfElements(subs[at]) == 0) return;
    const Positions p = read_positions(subs[at], extents[at]);
    if (largest(p) > extents[at]) fail_entry(FSUBSDELDIMMISMATCH);
    if (p.empty()) return;
    std::vector<Naive::Element> kept;
    std::vector<bool> gone(extents[at], false);
    for (kwSize x : p) gone[x - 1] = true;
    const auto left = static_cast<kwSize>(std::count(gone.begin(), gone.end(), false));
    kwSize inner = 1;
    for (kwSize k = 0; k < at; ++k) inner *= extents[k];
    for (kwSize i = 0; i < a.elements.size(); ++i)
        if (!gone[i / inner % extents[at]]) kept.push_back(a.elements[i]);
    if (a.elements.empty() && left != 0 && n >= a.dims.size()) {
        a.dims.resize(std::max(a.dims.size(), at + 1), 1);
        a.dims[at] = left;
        trim(a.dims);
    } else {
        a.dims = shape(at, left);
    }
    a.elements = std::move(kept);
}

} // namespace ox::test
