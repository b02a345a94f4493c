// The benchmark program: installs the managers as the interpreter does, then runs what is
// registered.
#include <benchmark/benchmark.h>
#include <ox.h>

int main(int argc, char **argv) {
    oxInitAllocListManager();
    oxInitArrayListManager();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    oxShutdownArrayList();
    oxShutdownAllocLst();
    return 0;
}
