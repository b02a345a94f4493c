// The class layer of the tests.
#include <core/array_list.h>
#include <core/create.h>
#include <core/dispatch.h>
#include <ox.h>
#include <support/array_text.h>
#include <support/fake_layer.h>

namespace ox::test {

constinit LayerCalls layer_calls{};

const std::vector<const char *> one_of_each = {
    "1",
    "double 2x2: 1 2; 3 4",
    "double 1x2: 1+2i 3",
    "double 1x2x2: 1 2 | 3 4",
    "sparse double 3x2 nzmax 8: (0,0)=1 (2,1)=5",
    "sparse double 2x2: (0,0)=1+2i",
    "sparse logical 2x1: (1,0)=1",
    "int16 2x1: 4; 5",
    "logical 1x2: 1 0",
    "char 2x2: 'ab'; 'cd'",
    "cell 1x3: {1} {} {cell 1x1: {2}}",
    "cell 1x1x2: {char 1x1: 'c'} {2}",
    "struct 1x2 a,b: {1 2} {} {3} {sparse double 1x1: (0,0)=1}",
    "object Point 1x1 a: {cell 1x1: {7}}",
    "opaque 1x3: 5 6 7",
    "function_handle 1x1: 8",
};

namespace {

// What a payload is: a raw block, so that failing and leaking allocations show.
struct Payload {
    double number;
    int owners;
    kwSize m, n;
};

Payload *new_payload(double number, kwSize m = 0, kwSize n = 0) {
    auto *p = static_cast<Payload *>(oxMallocEx(sizeof(Payload)));
    if (p) *p = {number, 1, m, n};
    return p;
}

void drop(void *p) {
    if (p && --static_cast<Payload *>(p)->owners == 0) oxFreeEx(p);
}

bool copy(void **dst, const void *src) {
    if (src) *dst = new_payload(static_cast<const Payload *>(src)->number);
    return !src || *dst;
}

struct OpaqueClass : xxInfo {
    const char *class_name(const oxArray *) const override { return "Numbers"; }
    void release(oxArray *a) override {
        ++layer_calls.releases;
        auto **payloads = static_cast<void **>(a->opaque.giblet);
        for (kwSize k = 0; payloads && k < a->get_number_of_elements(); ++k) drop(payloads[k]);
    }
    bool copy_element(void **dst, void *src) override {
        ++layer_calls.element_copies;
        return copy(dst, src);
    }
};

struct LazyClass : xxInfo {
    const char *class_name(const oxArray *) const override { return "Lazy"; }
    void complete_dimensions(oxArray *a) override {
        ++layer_calls.completions;
        const auto *p = static_cast<Payload *>(a->opaque.giblet);
        a->mn[0] = p ? p->m : 0;
        a->mn[1] = p ? p->n : 0;
    }
    void release(oxArray *a) override {
        ++layer_calls.releases;
        drop(a->opaque.giblet);
    }
    void share(const oxArray *source, oxArray *) override {
        ++layer_calls.shares;
        ++static_cast<Payload *>(source->opaque.giblet)->owners;
    }
    oxArray *empty_copy() override {
        ++layer_calls.empty_copies;
        oxArray *a = make_header(oxOPAQUE_CLASS, 0, 0);
        if (!a) return nullptr;
        a->set_flag(oxFLAG_INDEXING_OPAQUE, true);
        a->opaque.info = this;
        return a;
    }
};

OpaqueClass numbers;
LazyClass lazy;

// An array of the class with room for the payload pointer of each element.
oxArray *room_for(int id, const Dims &dims) {
    oxArray *a = make_header(id, 0, 0);
    store_dimensions(a, dims.size(), dims.data());
    a->num.pdata = oxCallocEx(element_count(dims), sizeof(Bytes32));
    return a;
}

constexpr ox_object_layer layer = [] {
    ox_object_layer l{};
    l.object_created = [](oxArray *, const oxArray *) { ++layer_calls.objects_created; };
    l.object_release = [](oxArray *) { ++layer_calls.objects_released; };
    l.fh_create = [](const char *number) {
        oxArray *a = room_for(oxFUNCTION_CLASS, {1, 1});
        *data<Payload *>(a) = new_payload(std::stod(number));
        return a;
    };
    l.fh_copy_element = [](void *dst, const void *src) {
        ++layer_calls.handle_copies;
        return copy(static_cast<void **>(dst), *static_cast<void *const *>(src));
    };
    l.fh_release_element = [](void *element) {
        ++layer_calls.handle_releases;
        drop(*static_cast<void **>(element));
    };
    return l;
}();

// --- As text ---------------------------------------------------------------------------------

Payload *&payload(const oxArray *a, kwSize k) {
    const kwSize stride = a->class_code == oxOPAQUE_CLASS ? sizeof(Payload *) : sizeof(Bytes32);
    return *reinterpret_cast<Payload **>(data<unsigned char>(a) + k * stride);
}

template<int id> oxArray *read_payloads(Scanner &in) {
    const Dims dims = in.dims();
    oxArray *a = room_for(id, dims);
    in.accept(':');
    for (kwSize k = 0; k < element_count(dims); ++k)
        payload(a, k) = new_payload(std::stod(in.token()));
    if (id == oxOPAQUE_CLASS) a->opaque.info = opaque_class();
    return hand_over(a);
}

bool is_lazy(const oxArray *a) { return a->is_indexing_opaque(); }

void print_payloads(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const kwSize n = is_lazy(a) ? 1 : a->get_number_of_elements();
    for (kwSize k = 0; a->num.pdata && k < n; ++k) {
        const Payload *p = is_lazy(a) ? data<Payload>(a) : payload(a, k);
        out += (k ? " " : ": ") + std::to_string(p ? static_cast<int>(p->number) : -1);
    }
}

oxArray *make_lazy(Scanner &in) {
    const Dims dims = in.dims();
    oxArray *a = lazy.empty_copy();
    if (in.accept(':')) a->opaque.giblet = new_payload(std::stod(in.token()), dims[0], dims[1]);
    return hand_over(a);
}

} // namespace

xxInfo *opaque_class() { return &numbers; }
xxInfo *lazy_class() { return &lazy; }

WithLayer::WithLayer() : outer_(ox_register_object_layer(&layer)) { layer_calls = {}; }
WithLayer::~WithLayer() { ox_register_object_layer(outer_); }

const TextForm opaque_form = {"opaque", oxIsOpaque, read_payloads<oxOPAQUE_CLASS>, print_payloads};
const TextForm lazy_form = {"lazy", is_lazy, make_lazy, print_payloads};
const TextForm handle_form = {"function_handle", oxIsFunctionHandle,
                              read_payloads<oxFUNCTION_CLASS>, print_payloads};

} // namespace ox::test
