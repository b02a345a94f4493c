// The process that gdb looks at: well-formed arrays, damaged headers and a stream, all global.
#include <ox.h>
#include <ox.hpp>
#include <ox/stream.h>

#include <cstring>

oxArray *scalar, *matrix, *pair, *rows, *big, *words, *wide, *truth, *counts, *sparse, *nothing,
    *boxes, *people, *shared, *holds_itself;
oxArray bad_class, bad_ndims, bad_sizes, bad_vector, bad_data, bad_cells, bad_names, bad_starts;
oxArray *nowhere = reinterpret_cast<oxArray *>(0x10);
oiStreamRec_tag *stream;

namespace {

oxArray *numbered(kwSize m, kwSize n) {
    oxArray *a = oxCreateDoubleMatrix(m, n, oxREAL);
    for (kwSize i = 0; i < m * n; ++i) oxGetPr(a)[i] = static_cast<double>(i + 1) / 2;
    return a;
}

void make_numbers() {
    scalar = oxCreateDoubleScalar(-2.5);
    matrix = numbered(2, 3);
    rows = numbered(40, 40);
    pair = oxCreateDoubleMatrix(1, 2, oxCOMPLEX);
    oxGetPr(pair)[0] = 1;
    oxGetPi(pair)[1] = -3;
    const kwSize dims[] = {2, 1, 2};
    counts = oxCreateNumericArray(3, dims, oxINT16_CLASS, oxREAL);
    const int16_t values[] = {-1, 2, 300, -32768};
    std::memcpy(oxGetData(counts), values, sizeof values);
    truth = oxCreateLogicalScalar(true);
    nothing = oxCreateDoubleMatrix(0, 3, oxREAL);
    // More elements than a full array may have.
    big = oxCreateSparse(kwSize{1} << 40, 1024, 1, oxREAL);
    sparse = oxCreateSparse(3, 4, 8, oxREAL);
    const kwIndex starts[] = {0, 1, 1, 3, 3}, at[] = {2, 0, 1};
    const double stored[] = {7, 8, 9.5};
    std::memcpy(oxGetJc(sparse), starts, sizeof starts);
    std::memcpy(oxGetIr(sparse), at, sizeof at);
    std::memcpy(oxGetPr(sparse), stored, sizeof stored);
}

void make_containers() {
    words = oxCreateString("it's\ta line");
    wide = oxCreateStringFromNChars_UTF16(u"A\xD800\u20AC", 3);
    boxes = oxCreateCellMatrix(1, 3);
    oxSetCell(boxes, 0, oxCreateDoubleScalar(4));
    oxSetCell(boxes, 1, oxCreateString("two"));
    const char *names[] = {"name", "age"};
    people = oxCreateStructMatrix(1, 2, 2, names);
    oxSetField(people, 1, "age", oxCreateDoubleScalar(41));
    shared = oxCreateSharedDataCopy(matrix);
    holds_itself = oxCreateCellMatrix(1, 2);
    holds_itself->cell.slots[0] = holds_itself->cell.slots[1] = holds_itself;
}

void damage() {
    void *wild = reinterpret_cast<void *>(0xdead0000);
    for (oxArray *bad : {&bad_class, &bad_ndims, &bad_sizes, &bad_vector, &bad_data})
        *bad = *matrix;
    bad_class.class_code = static_cast<oxArrayType>(77);
    bad_ndims.ndims = kwSize{1} << 60;
    bad_sizes.mn[0] = kwSize{1} << 40, bad_sizes.mn[1] = kwSize{1} << 40;
    bad_vector.ndims = 3, bad_vector.dim_vector = static_cast<kwSize *>(wild);
    bad_data.num.pdata = wild;
    bad_cells = *boxes, bad_cells.words[0] = wild;
    bad_names = *people, bad_names.words[1] = wild;
    bad_starts = *sparse, bad_starts.num.nzmax = 2;
}

} // namespace

extern "C" void ready() { asm volatile(""); }

int main() {
    oxInitArrayListManager();
    make_numbers();
    make_containers();
    damage();
    stream = oiCreateBufferStream(nullptr, 0, 0, nullptr, nullptr, nullptr, 0, oiWIDE);
    ready();
}
