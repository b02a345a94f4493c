// Loading extension modules.
#pragma once
#include <ox.h>

#include <string>

namespace vel {

// An extension module, loaded for as long as the object lives.
class Module {
public:
    using Entry = void (*)(int nlhs, oxArray *plhs[], int nrhs, const oxArray *prhs[]);

    // Throws Failure when the file cannot be loaded or has no entry point.
    explicit Module(const std::string &path);
    Module(const Module &) = delete;
    Module &operator=(const Module &) = delete;
    ~Module();
    Entry entry() const { return entry_; }

private:
    void *handle_ = nullptr;
    Entry entry_ = nullptr;
};

} // namespace vel
