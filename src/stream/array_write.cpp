// Writing an array element that was measured.
#include <stream/array_walk.h>
#include <stream/head_size.h>
#include <stream/plain_matrix.h>

namespace ox {
namespace {

// The sink that lays the sub-elements into an output.
class HeadWriter {
public:
    explicit HeadWriter(Output &out) : out_(out), form_(out.form()) {}

    void words(uint32_t type, const kwSize *w, kwSize n) {
        const kwSize bytes = n * form_.word();
        if (form_.wide) return out_.put_element(type, w, bytes);
        out_.put_tag(type, bytes);
        for (kwSize k = 0; k < n; ++k) put_word(static_cast<uint32_t>(w[k]));
        out_.put_padding(bytes);
    }
    void bytes_of(uint32_t type, const char *p, kwSize n) { out_.put_element(type, p, n); }
    void number(int32_t v) { out_.put_element(oiINT32, &v, sizeof v); }
    void names(const name_index_info *table, kwSize length) {
        const kwSize fields = table ? static_cast<kwSize>(table->count) : 0;
        out_.put_tag(oiINT8, fields * length);
        for (kwSize k = 0; k < fields; ++k) {
            const kwSize n = std::strlen(table->names[k]);
            out_.put(table->names[k], n);
            put_zeros(length - n);
        }
        out_.put_padding(fields * length);
    }
    void numbers(const NumberPart &part) {
        if (!part.store) return out_.put_element(part.type, part.data, part.bytes());
        if (form_.is_small(part.bytes())) {
            unsigned char small[8];
            part.store(small, part.data, 0, part.count);
            return out_.put_small(part.type, small, part.bytes());
        }
        out_.put_tag(part.type, part.bytes());
        store_part(part);
        out_.put_padding(part.bytes());
    }

private:
    void put_word(uint32_t w) {
        unsigned char *to = out_.room(4);
        ox::store(to, form_.swapped ? reverse_bytes(w) : w);
        out_.advance(to + 4);
    }
    void put_zeros(kwSize n) {
        static constexpr unsigned char zeros[64] = {};
        for (; n > sizeof zeros; n -= sizeof zeros) out_.put(zeros, sizeof zeros);
        out_.put(zeros, n);
    }
    void store_part(const NumberPart &part) {
        for (kwSize done = 0; done < part.count;) {
            kwSize bytes = (part.count - done) * part.size;
            unsigned char *to = out_.span(&bytes);
            const kwSize n = bytes / part.size;
            part.store(to, part.data, done, n);
            if (form_.swapped) reverse_in_place(to, bytes, part.size);
            out_.advance(to + bytes);
            done += n;
        }
    }

    Output &out_;
    TagForm form_;
};

class Writer {
public:
    Writer(Output &out, EncodeOptions options, const Measured &m)
        : out_(out), head_(out), options_(options), m_(m) {}

    int32_t enter(const oxArray *a, const char *name, ArrayPlan &plan, WalkFrame &,
                  WalkFrame *parent) {
        PlainMatrix plain;
        if (parent && describe_plain(a, options_, &plain)) {
            put_plain(a, plain);
            return oiSUCCESS;
        }
        plan_array(a, options_, PlanPass::writing, &plan);
        if (a->class_code == oxOPAQUE_CLASS) plan.contents = m_.saved[next_saved_++];
        const kwSize own = plan.nests ? m_.containers[next_container_++] : 0;
        if (parent) {
            HeadSize size(options_.form);
            if (!plan.nests) put_head(size, a, name, plan);
            out_.put_tag(oiMATRIX, plan.nests ? own : size.bytes);
        }
        put_head(head_, a, name, plan);
        return oiSUCCESS;
    }
    void null(WalkFrame *) { out_.put_tag(oiMATRIX, 0); }
    int32_t leave(const WalkFrame &, WalkFrame *) { return oiSUCCESS; }

private:
    void put_plain(const oxArray *a, const PlainMatrix &p) {
        const uint32_t tag[2] = {oiMATRIX, static_cast<uint32_t>(p.bytes())};
        unsigned char *to = out_.room(sizeof tag + sizeof p.words);
        std::memcpy(to, tag, sizeof tag);
        std::memcpy(to + sizeof tag, p.words, sizeof p.words);
        out_.advance(to + sizeof tag + sizeof p.words);
        out_.put(a->num.pdata, p.data_bytes());
        if (padding(p.data_bytes())) out_.put_padding(p.data_bytes());
    }

    Output &out_;
    HeadWriter head_;
    EncodeOptions options_;
    const Measured &m_;
    kwSize next_container_ = 0, next_saved_ = 0;
};

} // namespace

int32_t write_array(Output &out, const oxArray *a, const char *name, EncodeOptions options,
                    const Measured &m) {
    if (!a) return oiSUCCESS;
    Writer writer(out, options, m);
    return walk_array(a, name, writer);
}

} // namespace ox
