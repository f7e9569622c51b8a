#include "platform/module_loader.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstring>

namespace kt::modules {
namespace {

constexpr char kSubfolder[] = "ktclr-modules";

// Resolved once: the folder of the shared object (or executable) that holds
// this function, plus the fixed subfolder.
struct Dir {
    char path[4096] = {};
    Dir() noexcept {
        Dl_info info{};
        if (!dladdr(reinterpret_cast<void*>(&ModuleDir), &info) || !info.dli_fname) return;
        const char* slash = std::strrchr(info.dli_fname, '/');
        if (!slash) {
            std::snprintf(path, sizeof path, "%s", kSubfolder);
            return;
        }
        int folder = static_cast<int>(slash - info.dli_fname);
        int n = std::snprintf(path, sizeof path, "%.*s/%s", folder, info.dli_fname, kSubfolder);
        if (n < 0 || n >= static_cast<int>(sizeof path)) path[0] = '\0';
    }
};

}  // namespace

const char* ModuleDir() noexcept {
    static const Dir dir;
    return dir.path;
}

int DllLoader::LoadLib(int id, int flags, const char* name) noexcept {
    if (!name || handle_) return handle_ ? 1 : 0;
    const char* dir = dir_[0] ? dir_ : ModuleDir();
    if (!*dir) return 0;
    char path[4096 + 256];
    int n = std::snprintf(path, sizeof path, "%s/%s.so", dir, name);
    if (n < 0 || n >= static_cast<int>(sizeof path)) return 0;
    handle_ = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!handle_) return 0;
    id_ = id;
    flags_ = flags;
    return 1;
}

bool DllLoader::AddFunction(const char* name) noexcept {
    if (!handle_ || !name || std::strlen(name) >= kMaxName) return false;
    if (GetFunction(name)) return true;
    if (count_ == kMaxFunctions) return false;
    void* address = dlsym(handle_, name);
    if (!address) return false;
    std::memcpy(functions_[count_].name, name, std::strlen(name) + 1);
    functions_[count_].address = address;
    ++count_;
    return true;
}

void* DllLoader::GetFunction(const char* name) const noexcept {
    if (!name) return nullptr;
    for (std::size_t i = 0; i < count_; ++i)
        if (std::strcmp(functions_[i].name, name) == 0) return functions_[i].address;
    return nullptr;
}

void DllLoader::Unload() noexcept {
    count_ = 0;
    if (handle_) dlclose(handle_);
    handle_ = nullptr;
}

void DllLoader::SetDirForTesting(const char* dir) noexcept {
    if (!dir) {
        dir_[0] = '\0';
        return;
    }
    std::snprintf(dir_, sizeof dir_, "%s", dir);
}

}  // namespace kt::modules
