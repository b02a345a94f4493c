// The sink that only counts the bytes of an array's sub-elements.
#pragma once
#include <stream/array_plan.h>

namespace ox {

struct HeadSize {
    explicit HeadSize(TagForm f) : form(f) {}

    void words(uint32_t, const kwSize *, kwSize n) { element(n * form.word()); }
    void bytes_of(uint32_t, const char *, kwSize n) { element(n); }
    void number(int32_t) { element(4); }
    void names(const name_index_info *table, kwSize length) {
        element(table ? static_cast<kwSize>(table->count) * length : 0);
    }
    void numbers(const NumberPart &part) { element(part.bytes()); }

    TagForm form;
    kwSize bytes = 0;
    bool fits = true;

private:
    void element(kwSize n) {
        bytes += form.element_size(n);
        fits = fits && form.fits(n);
    }
};

} // namespace ox
