#include "platform/alloc.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "platform/alloc_control.h"

namespace kt::mem {
namespace {

constexpr int kModules = static_cast<int>(Module::count);

// A header in front of every block remembers its module and size, so a free
// with the wrong tag still balances the books and realloc keeps the module.
struct alignas(16) Header {
    std::size_t size;
    std::uint32_t module;
    std::uint32_t magic;
};
constexpr std::uint32_t kMagicLive = 0x6b74636cu;  // "ktcl"
constexpr std::uint32_t kMagicFreed = 0x66726565u;

std::atomic<std::int64_t> g_live[kModules];
std::atomic<std::int64_t> g_count{0};
std::atomic<std::int64_t> g_failAt{0};  // countdown; fires when it reaches 1
std::atomic<bool> g_fired{false};
std::atomic<std::uint32_t> g_lastSite{0};

bool ShouldFail() {
    g_count.fetch_add(1, std::memory_order_relaxed);
    std::int64_t n = g_failAt.load(std::memory_order_relaxed);
    while (n > 0) {
        if (g_failAt.compare_exchange_weak(n, n - 1, std::memory_order_relaxed)) {
            if (n == 1) {
                g_fired.store(true, std::memory_order_relaxed);
                return true;
            }
            return false;
        }
    }
    return false;
}

void* Raw(std::size_t size, Module module, int line, bool zero) {
    g_lastSite.store((static_cast<std::uint32_t>(module) << 24) | (static_cast<std::uint32_t>(line) & 0xffffffu),
                     std::memory_order_relaxed);
    if (ShouldFail()) return nullptr;
    if (size > SIZE_MAX - sizeof(Header)) return nullptr;
    void* p = zero ? std::calloc(1, sizeof(Header) + size) : std::malloc(sizeof(Header) + size);
    if (!p) return nullptr;
    auto* h = static_cast<Header*>(p);
    h->size = size;
    h->module = static_cast<std::uint32_t>(module);
    h->magic = kMagicLive;
    g_live[h->module].fetch_add(1, std::memory_order_relaxed);
    return h + 1;
}

void Release(void* block) {
    if (!block) return;
    Header* h = static_cast<Header*>(block) - 1;
    if (h->magic != kMagicLive) std::abort();  // double free or foreign block
    h->magic = kMagicFreed;
    g_live[h->module].fetch_sub(1, std::memory_order_relaxed);
    std::free(h);
}

}  // namespace

void* Alloc(std::size_t size, Module module, int line) noexcept { return Raw(size, module, line, false); }
void* AllocZero(std::size_t size, Module module, int line) noexcept { return Raw(size, module, line, true); }

void* Realloc(void* block, std::size_t size, Module module, int line) noexcept {
    if (!block) return Raw(size, module, line, false);
    if (ShouldFail()) return nullptr;
    if (size > SIZE_MAX - sizeof(Header)) return nullptr;
    Header* h = static_cast<Header*>(block) - 1;
    if (h->magic != kMagicLive) std::abort();
    void* p = std::realloc(h, sizeof(Header) + size);
    if (!p) return nullptr;
    h = static_cast<Header*>(p);
    h->size = size;
    return h + 1;
}

void Free(void* block, Module, int) noexcept { Release(block); }
void* AllocLarge(std::size_t size, Module module, int line) noexcept { return Raw(size, module, line, false); }
void FreeLarge(void* block, Module, int) noexcept { Release(block); }

namespace testing {
std::int64_t LiveBlocks(Module module) { return g_live[static_cast<int>(module)].load(); }
std::int64_t LiveBlocksTotal() {
    std::int64_t total = 0;
    for (auto& n : g_live) total += n.load();
    return total;
}
std::int64_t AllocationCount() { return g_count.load(); }
void ResetAllocationCount() { g_count.store(0); }
void FailNthAllocation(std::int64_t n) {
    g_fired.store(false);
    g_failAt.store(n);
}
bool FailureFired() { return g_fired.load(); }
Site LastAllocationSite() {
    std::uint32_t v = g_lastSite.load();
    return Site{static_cast<Module>(v >> 24), static_cast<int>(v & 0xffffffu)};
}
}  // namespace testing

}  // namespace kt::mem
