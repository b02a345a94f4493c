/* group_by: the rows of a table, sorted out by the values of one column.
   [groups, keys] = group_by(table, column), a cell with one table for each key, keys ascending. */
#include <ox.h>
#include <stdlib.h>

static int ascending(const void *a, const void *b) {
    const double x = *(const double *)a, y = *(const double *)b;
    return (x > y) - (x < y);
}

static size_t distinct(const double *column, size_t m, double *keys) {
    size_t count = 0;
    for (size_t i = 0; i < m; ++i)
        if (oxIsNaN(column[i]))
            oxErrMsgIdAndTxt("VELTRO:group_by:key", "Row %u has no key.", (unsigned)(i + 1));
        else
            keys[i] = column[i];
    qsort(keys, m, sizeof *keys, ascending);
    for (size_t i = 0; i < m; ++i)
        if (count == 0 || keys[i] != keys[count - 1]) keys[count++] = keys[i];
    return count;
}

/* The rows whose key is the given one. */
static oxArray *select_rows(const oxArray *table, const double *column, double key) {
    const size_t m = oxGetM(table), n = oxGetN(table);
    size_t rows = 0;
    for (size_t i = 0; i < m; ++i) rows += column[i] == key;
    oxArray *group = oxCreateDoubleMatrix(rows, n, oxREAL);
    double *to = oxGetPr(group);
    for (size_t j = 0; j < n; ++j)
        for (size_t i = 0; i < m; ++i)
            if (column[i] == key) *to++ = oxGetPr(table)[j * m + i];
    return group;
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs != 2 || nlhs > 2)
        oxErrMsgIdAndTxt("VELTRO:group_by:arguments",
                         "[groups, keys] = group_by(table, column) takes two arguments.");
    const oxArray *table = prhs[0];
    if (!oxIsDouble(table) || oxIsSparse(table) || oxIsComplex(table))
        oxErrMsgIdAndTxt("VELTRO:group_by:table", "The table must be a full real double matrix.");
    const size_t m = oxGetM(table), n = oxGetN(table);
    const double c = oxIsRealScalar(prhs[1]) ? oxGetScalar(prhs[1]) : 0;
    if (!(c >= 1 && c <= (double)n && c == (double)(size_t)c))
        oxErrMsgIdAndTxt("VELTRO:group_by:column", "The column must be a number from 1 to %u.",
                         (unsigned)n);

    const double *column = oxGetPr(table) + ((size_t)c - 1) * m;
    double *keys = oxMalloc((m + 1) * sizeof *keys); /* listed: freed with the call */
    const size_t count = distinct(column, m, keys);
    plhs[0] = oxCreateCellMatrix(count, 1);
    for (size_t k = 0; k < count; ++k) oxSetCell(plhs[0], k, select_rows(table, column, keys[k]));
    if (nlhs < 2) return;
    plhs[1] = oxCreateDoubleMatrix(count, 1, oxREAL);
    for (size_t k = 0; k < count; ++k) oxGetPr(plhs[1])[k] = keys[k];
}
