// Loads the module given and calls it once well and once badly: status 0 when it doubles and when
// it raises.
#include <dlfcn.h>
#include <ox.h>

int main(int, char **argv) {
    oxInitAllocListManager();
    oxInitArrayListManager();
    void *module = dlopen(argv[1], RTLD_NOW);
    if (!module) return 1;
    using Entry = void (*)(int, oxArray **, int, const oxArray **);
    const auto entry = reinterpret_cast<Entry>(dlsym(module, "vexFunction"));
    if (!entry) return 2;

    oxArray *in = oxCreateDoubleScalar(21);
    oxArray *out = nullptr;
    const oxArray *args[] = {in, in};
    entry(1, &out, 1, args);
    if (!out || *oxGetPr(out) != 42) return 3;
    try {
        entry(1, &out, 2, args);
        return 4;
    } catch (...) { // The raise came up through the C frame of the module.
        const char *id = nullptr, *message = nullptr;
        oxGetLastErrIdAndMsg(&id, &message);
        return id[0] == 't' ? 0 : 5;
    }
}
