// Helpers shared by the test suites: memory with chosen protections, the
// allocation-failure and file-failure loops, conversion parameters and
// handles, sample bytes, files in a scratch folder, a per-thread locale.
#pragma once

#include <locale.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ktclr/convert.h"
#include "ktclr/embedded.h"
#include "platform/alloc_control.h"
#include "platform/file_faults.h"

namespace kt::test {

using Bytes = std::vector<std::uint8_t>;

// A run of pages, each mapped with its own protection, between unmapped
// guard pages. Unmapped pages inside the run are allowed too.
class MappedPages {
public:
    enum class Access { none, read, readWrite, unmapped };
    MappedPages(std::size_t pages, Access access);
    ~MappedPages();
    MappedPages(const MappedPages&) = delete;
    MappedPages& operator=(const MappedPages&) = delete;

    void Protect(std::size_t page, Access access);
    unsigned char* data() const { return base_; }
    std::size_t size() const { return pages_ * page_; }
    std::size_t page() const { return page_; }
    // First byte past the run (an unmapped guard page).
    unsigned char* end() const { return base_ + size(); }

private:
    unsigned char* base_ = nullptr;
    std::size_t pages_ = 0, page_ = 0;
};

// Each module's count of live blocks.
using LiveCounts = std::vector<std::int64_t>;
LiveCounts Live();

// Calls `run` with allocation number n = 1, 2, ... set to fail, until a run
// completes without the failure firing, and checks after each failing run
// that every module's live-block count is back where it was. `run` returns
// the status it got and must undo whatever it made on success;
// `check(n, status)` judges each failing run. Returns the number of
// allocations of a clean run.
int ForEachAllocationFailure(const std::function<int()>& run, const std::function<void(int n, int status)>& check);

// Zero bytes throughout (records are compared with memcmp), the long form.
inline ConversionParams Params(std::uint32_t method, std::uint32_t prepare = 0) {
    ConversionParams p;
    std::memset(&p, 0, sizeof p);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX, p.method = method, p.prepareMethods = prepare ? prepare : method;
    return p;
}

inline CmykOptions Cmyk(std::uint32_t value, std::uint32_t mask = 0) { return {KTCLR_SIZEOF_CMYK_OPTIONS, value, mask}; }

inline LabOptions Lab(std::int32_t base, std::uint32_t mask = 0) {
    return {KTCLR_SIZEOF_LAB_OPTIONS, mask, {base, base + 1, base + 2, base + 3, base + 4, base + 5}};
}

inline YuvOptions Yuv(void* buffer, std::uint32_t count, std::uint32_t mask = 0) {
    YuvOptions o{};
    o.structSize = KTCLR_SIZEOF_YUV_OPTIONS, o.validMask = mask, o.buffer = buffer, o.byteCount = count;
    return o;
}

// A handle freed on scope exit.
struct Handle {
    ClrHandle* h = nullptr;
    Handle() = default;
    Handle(int src, int dst, ConversionParams* p = nullptr) { Vx_ClrInit(&h, src, dst, p); }
    // With parameters of one method, prepared alone.
    Handle(int src, int dst, std::uint32_t method) { Init(src, dst, Params(method)); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { Vx_ClrFree(h); }  // null: refused
    KtStatus Init(int src, int dst, ConversionParams* p = nullptr) { return Vx_ClrInit(&h, src, dst, p); }
    KtStatus Init(int src, int dst, ConversionParams p) { return Vx_ClrInit(&h, src, dst, &p); }
};

// Pseudo-random bytes.
Bytes Random(std::size_t n, unsigned seed);

// A built-in profile as the library hands it out (inline, so that suites
// which do not link the conversions can use the rest).
inline Bytes BuiltinProfile(std::int32_t selector) {
    std::int32_t size = 0;
    Vx_ClrGetEmbeddedProfile(selector, nullptr, &size);
    Bytes b(static_cast<std::size_t>(size));
    Vx_ClrGetEmbeddedProfile(selector, b.data(), &size);
    return b;
}

// Runs an operation once per file operation of each kind it makes, failing
// that one operation, until a run completes without the failure firing.
// `run` returns the status it got; `check(op, n, status)` judges each run in
// which the n-th operation of kind `op` failed. Returns the number of
// operations of all kinds in a clean run.
int ForEachFileFault(const std::function<int()>& run, const std::function<void(file::faults::Op, int, int)>& check);

// A fresh temporary folder, removed with everything in it at scope exit.
class ScratchDir {
public:
    ScratchDir();
    ~ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    const std::string& path() const { return path_; }
    std::string File(const std::string& name) const { return path_ + "/" + name; }
    // Writes `b` as the file `name` in the folder; returns its path.
    std::string Write(const std::string& name, const Bytes& b) const;
    // Names in the folder, sorted.
    std::vector<std::string> Entries() const;

private:
    std::string path_;
};

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
std::u16string Wide(const std::string& utf8);
// Runs a shell command; returns its exit status and fills `out` with stdout.
int Run(const std::string& command, std::string* out = nullptr);

// Runs a test's calls under a chosen LC_CTYPE locale (this thread only).
class ScopedLocale {
public:
    explicit ScopedLocale(const char* name)
        : locale_(newlocale(LC_CTYPE_MASK, name, locale_t{})), previous_(locale_ ? uselocale(locale_) : locale_t{}) {}
    ~ScopedLocale() {
        if (locale_) uselocale(previous_), freelocale(locale_);
    }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;
    bool ok() const { return locale_ != locale_t{}; }

private:
    locale_t locale_, previous_;
};

// An ASCII path into a caller's path field.
void SetPath(KtChar16* field, const std::string& path);

}  // namespace kt::test
