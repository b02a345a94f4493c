/* game_of_life: generations of cells on a torus. Neighbours are counted in eight references with
   shifted ranges; the dead and the new are assigned by mask. */
#include <ox.h>
#include <string.h>

/* 1 to n, moved round by -1, 0 or 1. */
static oxArray *ring(size_t n, int shift) {
    oxArray *a = oxCreateDoubleMatrix(1, n, oxREAL);
    for (size_t k = 0; k < n; ++k) oxGetPr(a)[k] = (double)((k + n + (size_t)shift) % n + 1);
    return a;
}

/* A dead world of m by n with the pattern in its middle. */
static oxArray *populate(const oxArray *pattern, size_t m, size_t n) {
    oxArray *world = oxCreateLogicalMatrix(m, n);
    const size_t rows = oxGetM(pattern), cols = oxGetN(pattern);
    const double i = (double)((m - rows) / 2), j = (double)((n - cols) / 2);
    const oxArray *middle[] = {oxColonop(i + 1, 1, i + (double)rows, oxDOUBLE_CLASS),
                               oxColonop(j + 1, 1, j + (double)cols, oxDOUBLE_CLASS)};
    oxSubscriptedAssignment(world, 2, middle, pattern);
    return world;
}

static void count_neighbours(const oxArray *world, oxArray *rows[3], oxArray *cols[3],
                             unsigned char *counts) {
    const size_t n = oxGetNumberOfElements(world);
    memset(counts, 0, n);
    for (int s = 0; s < 9; ++s) {
        const oxArray *subs[] = {rows[s / 3], cols[s % 3]};
        if (s == 4) continue; /* the cell itself */
        oxArray *neighbour = oxSubscriptedReference(world, 2, subs);
        for (size_t k = 0; k < n; ++k) counts[k] += oxGetLogicals(neighbour)[k];
        oxDestroyArray(neighbour);
    }
}

static void live(oxArray *world, int generations) {
    const size_t m = oxGetM(world), n = oxGetN(world);
    oxArray *rows[] = {ring(m, -1), ring(m, 0), ring(m, 1)};
    oxArray *cols[] = {ring(n, -1), ring(n, 0), ring(n, 1)};
    oxArray *dying = oxCreateLogicalMatrix(m, n), *born = oxCreateLogicalMatrix(m, n);
    oxArray *off = oxCreateLogicalScalar(false), *on = oxCreateLogicalScalar(true);
    const oxArray *deaths[] = {dying}, *births[] = {born};
    unsigned char *counts = oxMalloc(m * n); /* listed: freed with the call */
    for (int g = 0; g < generations; ++g) {
        count_neighbours(world, rows, cols, counts);
        for (size_t k = 0; k < m * n; ++k) {
            oxGetLogicals(dying)[k] = counts[k] < 2 || counts[k] > 3;
            oxGetLogicals(born)[k] = counts[k] == 3;
        }
        oxSubscriptedAssignment(world, 1, deaths, off);
        oxSubscriptedAssignment(world, 1, births, on);
    }
}

void vexFunction(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]) {
    if (nrhs < 2 || nrhs > 3 || nlhs > 1 || oxGetNumberOfDimensions(prhs[0]) != 2 ||
        oxIsEmpty(prhs[0]) || oxIsEmpty(prhs[1]))
        oxErrMsgIdAndTxt("VELTRO:game_of_life:input",
                         "world = game_of_life(pattern, generations, [rows columns]) takes a "
                         "matrix and numbers.");
    double sizes[] = {64, 64};
    if (nrhs == 3 && oxIsDouble(prhs[2]) && oxGetNumberOfElements(prhs[2]) == 2)
        memcpy(sizes, oxGetPr(prhs[2]), sizeof sizes);
    if (!(sizes[0] >= (double)oxGetM(prhs[0]) && sizes[1] >= (double)oxGetN(prhs[0]) &&
          sizes[0] <= 4096 && sizes[1] <= 4096))
        oxErrMsgIdAndTxt("VELTRO:game_of_life:size", "The pattern must fit into the world.");
    plhs[0] = populate(prhs[0], (size_t)sizes[0], (size_t)sizes[1]);
    live(plhs[0], (int)oxGetScalar(prhs[1]));
}
