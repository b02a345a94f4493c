// The class layer of the tests.
#include <core/array_list.h>
#include <core/create.h>
#include <core/dispatch.h>
#include <ox.h>
#include <support/array_text.h>
#include <support/fake_layer.h>

#include <cstring>

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

void drop(Payload *p) {
    if (p && --p->owners == 0) oxFreeEx(p);
}

class OpaqueClass : public xxInfo {
    const char *class_name(const oxArray *) const override { return "Numbers"; }
    void release(oxArray *a) override {
        ++layer_calls.releases;
        auto **payloads = static_cast<Payload **>(a->opaque.giblet);
        for (kwSize k = 0; payloads && k < a->get_number_of_elements(); ++k) drop(payloads[k]);
    }
    bool copy_element(void **dst, void *src) override {
        ++layer_calls.element_copies;
        if (src) *dst = new_payload(static_cast<Payload *>(src)->number);
        return !src || *dst;
    }
};

class LazyClass : public xxInfo {
    const char *class_name(const oxArray *) const override { return "Lazy"; }
    void complete_dimensions(oxArray *a) override {
        ++layer_calls.completions;
        const auto *p = static_cast<Payload *>(a->opaque.giblet);
        a->mn[0] = p ? p->m : 0;
        a->mn[1] = p ? p->n : 0;
    }
    void release(oxArray *a) override {
        ++layer_calls.releases;
        drop(static_cast<Payload *>(a->opaque.giblet));
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

bool copy_handle(void *dst, const void *src) {
    ++layer_calls.handle_copies;
    Payload *source, *copy = nullptr;
    std::memcpy(&source, src, sizeof source);
    if (source) copy = new_payload(source->number);
    std::memcpy(dst, &copy, sizeof copy);
    return !source || copy;
}

void release_handle(void *element) {
    ++layer_calls.handle_releases;
    Payload *p;
    std::memcpy(&p, element, sizeof p);
    drop(p);
}

// An array of the class with room for the payload pointer of each element.
oxArray *room_for(int id, const Dims &dims) {
    oxArray *a = make_header(id, 0, 0);
    store_dimensions(a, dims.size(), dims.data());
    a->num.pdata = oxCallocEx(element_count(dims), sizeof(Bytes32));
    return a;
}

oxArray *make_handle(const char *number) {
    oxArray *a = room_for(oxFUNCTION_CLASS, {1, 1});
    *data<Payload *>(a) = new_payload(std::strtod(number, nullptr));
    return a;
}

constexpr ox_object_layer layer = [] {
    ox_object_layer l{};
    l.object_created = [](oxArray *, const oxArray *) { ++layer_calls.objects_created; };
    l.object_release = [](oxArray *) { ++layer_calls.objects_released; };
    l.fh_create = make_handle;
    l.fh_copy_element = copy_handle;
    l.fh_release_element = release_handle;
    return l;
}();

// --- As text ---------------------------------------------------------------------------------

Payload *&payload(const oxArray *a, kwSize k) {
    const kwSize stride = a->class_code == oxOPAQUE_CLASS ? sizeof(Payload *) : sizeof(Bytes32);
    return *reinterpret_cast<Payload **>(data<unsigned char>(a) + k * stride);
}

double read_double(Scanner &in) { return std::strtod(std::string(in.number()).c_str(), nullptr); }

template<int id> oxArray *read_payloads(Scanner &in) {
    oxArray *a = room_for(id, read_dims(in));
    for (kwSize k = 0; in.accept(k == 0 ? ':' : ' ') || in.at_digit(); ++k)
        payload(a, k) = new_payload(read_double(in));
    if (id == oxOPAQUE_CLASS) a->opaque.info = opaque_class();
    return hand_over(a);
}

void print_payloads(const oxArray *a, std::string &out) {
    print_dims(a, out);
    for (kwSize k = 0; a->num.pdata && k < a->get_number_of_elements(); ++k) {
        const Payload *p = payload(a, k);
        out += (k ? " " : ": ") + std::to_string(p ? static_cast<int>(p->number) : -1);
    }
}

bool is_lazy(const oxArray *a) { return a->is_indexing_opaque(); }

oxArray *make_lazy(Scanner &in) {
    const Dims dims = read_dims(in);
    oxArray *a = lazy_class()->empty_copy();
    if (in.accept(':')) a->opaque.giblet = new_payload(read_double(in), dims[0], dims[1]);
    return hand_over(a);
}

void print_lazy(const oxArray *a, std::string &out) {
    print_dims(a, out);
    const auto *p = static_cast<const Payload *>(a->opaque.giblet);
    if (p) out += ": " + std::to_string(static_cast<int>(p->number));
}

} // namespace

xxInfo *opaque_class() {
    static OpaqueClass the_class;
    return &the_class;
}

xxInfo *lazy_class() {
    static LazyClass the_class;
    return &the_class;
}

WithLayer::WithLayer() : outer_(ox_register_object_layer(&layer)) { layer_calls = {}; }
WithLayer::~WithLayer() { ox_register_object_layer(outer_); }

const TextForm opaque_form = {"opaque", oxIsOpaque, read_payloads<oxOPAQUE_CLASS>, print_payloads};
const TextForm lazy_form = {"lazy", is_lazy, make_lazy, print_lazy};
const TextForm handle_form = {"function_handle", oxIsFunctionHandle,
                              read_payloads<oxFUNCTION_CLASS>, print_payloads};

} // namespace ox::test
