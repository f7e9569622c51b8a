// Handles from several threads at once: creating, validating and freeing
// them, and converting through distinct handles of every method while
// others come and go. Run under ThreadSanitizer by the threads label.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "convert/registry.h"
#include "support/support.h"

namespace kt {
namespace {

// Each thread keeps four handles in turn and publishes its newest, which
// the next thread validates while its owner may be freeing it: either
// answer is fine, a crash or a tear is not.
TEST(HandleThreads, CreateValidateFreeFromEightThreads) {
    constexpr int kThreads = 8, kRounds = 400;
    const std::size_t before = convert::registry::Count();
    std::atomic<int> errors{0};
    std::atomic<ClrHandle*> published[kThreads] = {};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            ClrHandle* mine[4] = {};
            for (int i = 0; i < kRounds; ++i) {
                ClrHandle*& slot = mine[i % 4];
                published[t].store(nullptr);
                if (slot && Vx_ClrFree(slot) != STATUS_OK) ++errors;
                if (Vx_ClrInit(&slot, CS_RGB, (i % 2) ? CS_HSV : CS_YCCK, nullptr) != STATUS_OK) ++errors;
                if (Vx_ClrIsValid(slot) != STATUS_OK) ++errors;
                published[t].store(slot);
                const KtStatus s = Vx_ClrIsValid(published[(t + 1) % kThreads].load());
                if (s != STATUS_OK && s != ERR_INVALID_COLOR_HANDLE) ++errors;
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

// Each thread converts the same pixels through its own handle of a method
// and must get what one thread alone got.
TEST(HandleThreads, ConversionsOnDistinctHandlesAgree) {
    struct Case {
        int src, dst;
        std::uint32_t method;
    } cases[] = {{CS_RGB, CS_LAB, METHOD_BUILTIN}, {CS_CMYK, CS_RGB, METHOD_ICC},
                 {CS_LAB, CS_RGB, METHOD_BUILTIN_EMULATION}, {CS_HSV, CS_CMYK, METHOD_BUILTIN}};
    constexpr int kWidth = 256, kRounds = 20;
    test::Bytes in = test::Random(4 * kWidth, 3);
    for (const Case& c : cases) {
        ConversionParams p = test::Params(c.method);
        p.emulationMethod = c.method;
        test::Handle alone(c.src, c.dst, &p);
        test::Bytes want(4 * kWidth);
        ASSERT_EQ(Vx_ClrConvert(alone.h, in.data(), want.data(), kWidth, 1, 0, 0), STATUS_OK);
        std::atomic<int> wrong{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&] {
                test::Handle h(c.src, c.dst, &p);
                test::Bytes out(4 * kWidth);
                for (int i = 0; i < kRounds; ++i)
                    if (Vx_ClrConvert(h.h, in.data(), out.data(), kWidth, 1, 0, 0) != STATUS_OK || out != want) ++wrong;
            });
        }
        for (auto& th : threads) th.join();
        EXPECT_EQ(wrong.load(), 0) << c.src << "->" << c.dst;
    }
}

}  // namespace
}  // namespace kt
