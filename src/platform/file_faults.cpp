#include "platform/file_faults.h"

#include <atomic>
#include <cerrno>

namespace kt::file::faults {
namespace {
constexpr int kOps = static_cast<int>(Op::count);
std::atomic<std::int64_t> g_count[kOps];
std::atomic<std::int64_t> g_failAt[kOps];
std::atomic<bool> g_fired{false};
}  // namespace

bool Fails(Op op) noexcept {
    const int i = static_cast<int>(op);
    const std::int64_t n = g_count[i].fetch_add(1, std::memory_order_relaxed) + 1;
    if (n != g_failAt[i].load(std::memory_order_relaxed)) return false;
    g_fired.store(true, std::memory_order_relaxed);
    errno = EIO;
    return true;
}

namespace testing {
void FailNth(Op op, std::int64_t n) {
    g_count[static_cast<int>(op)].store(0);
    g_failAt[static_cast<int>(op)].store(n);
    g_fired.store(false);
}
std::int64_t Count(Op op) { return g_count[static_cast<int>(op)].load(); }
bool Fired() { return g_fired.load(); }
void Reset() {
    for (int i = 0; i < kOps; ++i) {
        g_count[i].store(0);
        g_failAt[i].store(0);
    }
    g_fired.store(false);
}
}  // namespace testing

}  // namespace kt::file::faults
