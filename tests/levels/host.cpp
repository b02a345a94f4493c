// Runs modules of both levels in one process and compares what they answer.
#include <ox.h>

#include <ut.hpp>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

int failures = 0;

void expect(bool holds, const char *module, const char *what) {
    if (holds) return;
    std::fprintf(stderr, "%s: %s\n", module, what);
    ++failures;
}

// The module's first output, or null when it raised; the identifier then.
oxArray *call(const char *path, int nrhs, const oxArray **prhs, std::string &raised) {
    void *library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(2);
    }
    const auto entry = reinterpret_cast<decltype(&vexFunction)>(dlsym(library, "vexFunction"));
    oxArray *result = nullptr;
    try {
        entry(1, &result, nrhs, prhs);
    } catch (const ut::simple_exception &e) {
        raised = e.identifier();
        return nullptr;
    }
    return result;
}

} // namespace

int main(int count, char **paths) {
    oxInitAllocListManager();
    oxInitArrayListManager();
    const int context = oxEnterNewArrayListContext();
    const kwSize dims[] = {2, 3, 2};
    const oxArray *inputs[] = {oxCreateNumericArray(3, dims, oxINT8_CLASS, oxREAL),
                               oxCreateSparse(3, 3, 1, oxREAL)};
    oxArray *first = nullptr;
    for (int k = 1; k < count; ++k) {
        std::string raised;
        oxArray *result = call(paths[k], 1, inputs, raised);
        expect(result != nullptr, paths[k], raised.c_str());
        if (!result) continue;
        if (!first) first = result;
        const oxArray *row = oxGetCell(result, 0);
        expect(oxGetNumberOfElements(row) == 3 && oxGetPr(row)[1] == 3 && oxGetPr(row)[2] == 2,
               paths[k], "dimensions");
        expect(oxGetScalar(oxGetField(oxGetCell(result, 2), 1, "field")) == 11, paths[k],
               "position of [1 2 1]");
        expect(oxGetScalar(oxGetCell(result, 3)) == 5, paths[k], "capacity");
        expect(oxAreMatricesEqual(first, result), paths[k], "the other modules answer otherwise");

        const bool refuses = std::strstr(paths[k], "level700") != nullptr;
        result = call(paths[k], 2, inputs, raised);
        expect((result == nullptr) == refuses, paths[k], "row indices");
        expect(!refuses || raised == "VELTRO:matrix:ERR_SPARSE_64BIT_OBSOLETE", paths[k],
               raised.c_str());
    }
    oxExitArrayListContext(context, nullptr, 0, true);
    oxErrorCleanup();
    oxShutdownArrayList();
    oxShutdownAllocLst();
    return failures || count != 4;
}
