// Creating, validating and freeing handles from several threads at once.
// Run under ThreadSanitizer with -DKTCLR_TSAN=ON.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "convert/registry.h"
#include "ktclr/convert.h"

namespace kt {
namespace {

TEST(HandleThreads, CreateValidateFreeFromEightThreads) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 400;
    const std::size_t before = convert::registry::Count();
    std::atomic<int> errors{0};
    // Each thread publishes its newest handle so others can validate it.
    std::atomic<ClrHandle*> published[kThreads] = {};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            ClrHandle* mine[4] = {};
            for (int i = 0; i < kRounds; ++i) {
                ClrHandle*& slot = mine[i % 4];
                if (slot) {
                    published[t].store(nullptr);
                    if (Vx_ClrFree(slot) != STATUS_OK) ++errors;
                    slot = nullptr;
                }
                if (Vx_ClrInit(&slot, CS_RGB, (i % 2) ? CS_HSV : CS_YCCK, nullptr) != STATUS_OK) ++errors;
                if (Vx_ClrIsValid(slot) != STATUS_OK) ++errors;
                published[t].store(slot);
                // Validating another thread's handle races with its free:
                // either answer is fine, a crash or a tear is not.
                if (ClrHandle* other = published[(t + 1) % kThreads].load()) {
                    const KtStatus s = Vx_ClrIsValid(other);
                    if (s != STATUS_OK && s != ERR_INVALID_COLOR_HANDLE) ++errors;
                }
            }
            published[t].store(nullptr);
            for (ClrHandle* h : mine)
                if (h && Vx_ClrFree(h) != STATUS_OK) ++errors;
        });
    }
    for (auto& th : threads) th.join();
    EXPECT_EQ(errors.load(), 0);
    EXPECT_EQ(convert::registry::Count(), before);
}

}  // namespace
}  // namespace kt
