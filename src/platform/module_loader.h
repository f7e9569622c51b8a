// Dynamically loaded modules (the PNG codec, the dialog). They live in the
// folder "ktclr-modules" beside libktclr.so, in the build tree and the
// install tree alike, so nothing needs configuring.
#pragma once

#include <cstddef>

namespace kt::modules {

// The module folder (no trailing slash): "ktclr-modules" beside the file that
// holds this code. An empty string when that file cannot be told.
const char* ModuleDir() noexcept;

// One loaded module and the functions taken from it. Names passed to
// AddFunction are copied.
class DllLoader {
public:
    DllLoader() = default;
    DllLoader(const DllLoader&) = delete;
    DllLoader& operator=(const DllLoader&) = delete;
    ~DllLoader() { Unload(); }

    bool IsLoaded() const noexcept { return handle_ != nullptr; }
    // Loads ModuleDir()/<name>.so (dlopen, RTLD_NOW | RTLD_LOCAL). `id` and
    // `flags` are recorded and not interpreted. Nonzero on success.
    int LoadLib(int id, int flags, const char* name) noexcept;
    // Looks the function up in the loaded module; false when absent.
    bool AddFunction(const char* name) noexcept;
    bool IsFunctionOk(const char* name) const noexcept { return GetFunction(name) != nullptr; }
    void* GetFunction(const char* name) const noexcept;
    // Forgets the functions and closes the module.
    void Unload() noexcept;

    // Loads from `dir` instead of ModuleDir(); null restores it. For tests.
    void SetDirForTesting(const char* dir) noexcept;

private:
    static constexpr std::size_t kMaxFunctions = 8;
    static constexpr std::size_t kMaxName = 64;
    struct Entry {
        char name[kMaxName];
        void* address;
    };
    void* handle_ = nullptr;
    int id_ = 0;
    int flags_ = 0;
    std::size_t count_ = 0;
    Entry functions_[kMaxFunctions] = {};
    char dir_[512] = {};
};

}  // namespace kt::modules
