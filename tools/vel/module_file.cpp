// Loading extension modules with the system's loader.
#include "module_file.h"

#include "failure.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace vel {
namespace {

constexpr const char *entry_name = "vexFunction";

#if defined(_WIN32)
void *load(const std::string &path) { return LoadLibraryA(path.c_str()); }
void *symbol(void *module, const char *name) {
    return reinterpret_cast<void *>(GetProcAddress(static_cast<HMODULE>(module), name));
}
void unload(void *module) { FreeLibrary(static_cast<HMODULE>(module)); }
std::string reason() { return "error " + std::to_string(GetLastError()); }
#else
void *load(const std::string &path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }
void *symbol(void *module, const char *name) { return dlsym(module, name); }
void unload(void *module) { dlclose(module); }
std::string reason() { return dlerror(); }
#endif

// Without a folder the loader would search the system's folders only.
std::string with_folder(const std::string &path) {
    return path.find_first_of("/\\") == std::string::npos ? "./" + path : path;
}

} // namespace

Module::Module(const std::string &path) : handle_(load(with_folder(path))) {
    if (!handle_) throw Failure(Exit::io, path + ": cannot be loaded: " + reason());
    entry_ = reinterpret_cast<Entry>(symbol(handle_, entry_name));
    if (!entry_) {
        unload(handle_);
        throw Failure(Exit::data,
                      path + ": is no extension module: it has no function vexFunction");
    }
}

Module::~Module() { unload(handle_); }

} // namespace vel
