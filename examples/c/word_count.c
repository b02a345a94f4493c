/* word_count: how often each word of a text occurs; letters count alike in both cases.
   s = word_count(text), a struct array with the fields word and count, most frequent first. */
#include <ox.h>
#include <stdlib.h>
#include <string.h>

typedef struct {
    const oxChar *text;
    size_t length, first, count; /* first: where the word stood first, to keep that order */
} Word;

static bool is_letter(oxChar c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '\'' || c > 127;
}

static int by_text(const void *a, const void *b) {
    const Word *v = a, *w = b;
    for (size_t i = 0; i < v->length && i < w->length; ++i)
        if (v->text[i] != w->text[i]) return v->text[i] < w->text[i] ? -1 : 1;
    if (v->length != w->length) return v->length < w->length ? -1 : 1;
    return v->first < w->first ? -1 : 1;
}

static int by_count(const void *a, const void *b) {
    const Word *v = a, *w = b;
    if (v->count != w->count) return v->count > w->count ? -1 : 1;
    return v->first < w->first ? -1 : 1;
}

static size_t split(const oxChar *text, size_t n, Word *words) {
    size_t count = 0;
    for (size_t i = 0; i < n;) {
        const size_t first = i;
        while (i < n && is_letter(text[i])) ++i;
        if (i > first) words[count++] = (Word){text + first, i - first, first, 1};
        if (i < n) ++i;
    }
    return count;
}

/* Sorts equal words together and leaves one of each with their number. */
static size_t merge(Word *words, size_t n) {
    size_t kept = 0;
    qsort(words, n, sizeof *words, by_text);
    for (size_t k = 0; k < n; ++k) {
        Word *last = kept ? &words[kept - 1] : NULL;
        if (last && last->length == words[k].length &&
            !memcmp(last->text, words[k].text, last->length * sizeof(oxChar)))
            ++last->count;
        else
            words[kept++] = words[k];
    }
    qsort(words, kept, sizeof *words, by_count);
    return kept;
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    static const char *fields[] = {"word", "count"};
    if (nrhs != 1 || nlhs > 1 || !oxIsChar(prhs[0]))
        oxErrMsgIdAndTxt("VELTRO:word_count:input", "s = word_count(text) takes one text.");
    const size_t n = oxGetNumberOfElements(prhs[0]);
    oxChar *text = oxMalloc((n + 1) * sizeof *text); /* listed: freed with the call */
    if (n > 0) memcpy(text, oxGetChars(prhs[0]), n * sizeof *text);
    for (size_t i = 0; i < n; ++i)
        if (text[i] >= 'A' && text[i] <= 'Z') text[i] = (oxChar)(text[i] - 'A' + 'a');

    Word *words = oxMalloc((n / 2 + 1) * sizeof *words);
    const size_t count = merge(words, split(text, n, words));
    plhs[0] = oxCreateStructMatrix(count, 1, 2, fields);
    for (size_t k = 0; k < count; ++k) {
        oxSetFieldByNumber(plhs[0], k, 0,
                           oxCreateStringFromNChars_UTF16(words[k].text, words[k].length));
        oxSetFieldByNumber(plhs[0], k, 1, oxCreateDoubleScalar((double)words[k].count));
    }
}
