// Measuring an array element: every container once, in the order of writing.
#include <stream/array_walk.h>
#include <stream/head_size.h>
#include <stream/plain_matrix.h>

namespace ox {
namespace {

class Measurer {
public:
    Measurer(oiStreamRec_tag *s, Measured *m) : s_(s), options_(encode_options(s)), m_(m) {}

    int32_t enter(const oxArray *a, const char *name, ArrayPlan &plan, WalkFrame &frame,
                  WalkFrame *parent) {
        PlainMatrix plain;
        if (parent && describe_plain(a, options_, &plain)) return add(plain.bytes(), parent);
        if (const int32_t status = plan_array(a, options_, PlanPass::measuring, &plan))
            return status;
        if (a->class_code == oxOPAQUE_CLASS)
            if (const int32_t status = save_contents(a, plan)) return status;
        HeadSize size(options_.form);
        put_head(size, a, name, plan);
        if (!size.fits) return oiSHORT_WRITE;
        if (!plan.nests) return add(size.bytes, parent);
        frame.bytes = size.bytes;
        frame.index = m_->containers.size();
        return m_->containers.push(0) ? oiSUCCESS : oiREFUSED;
    }
    void null(WalkFrame *parent) { parent->bytes += options_.form.tag_size(); }
    int32_t leave(const WalkFrame &frame, WalkFrame *parent) {
        m_->containers[frame.index] = frame.bytes;
        return add(frame.bytes, parent);
    }

private:
    int32_t add(kwSize bytes, WalkFrame *parent) {
        if (!options_.form.fits(bytes)) return oiSHORT_WRITE;
        if (parent)
            parent->bytes += options_.form.tag_size() + bytes;
        else
            m_->bytes = bytes;
        return oiSUCCESS;
    }
    int32_t save_contents(const oxArray *a, ArrayPlan &plan) {
        oxArray **slot = m_->saved.push(nullptr);
        if (!slot) return oiREFUSED;
        plan.contents = *slot = a->opaque.info->save(a, s_);
        return plan.contents ? oiSUCCESS : oiREFUSED;
    }

    oiStreamRec_tag *s_;
    EncodeOptions options_;
    Measured *m_;
};

} // namespace

int32_t measure_array(oiStreamRec_tag *s, const oxArray *a, const char *name, Measured *m) {
    if (!a) return oiSUCCESS; // an element of count 0
    Measurer measurer(s, m);
    return walk_array(a, name, measurer);
}

} // namespace ox
