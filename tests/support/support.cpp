#include "support/support.h"

#include <gtest/gtest.h>

#include <random>

namespace kt::test {

LiveCounts Live() {
    LiveCounts c;
    for (int m = 0; m < static_cast<int>(mem::Module::count); ++m)
        c.push_back(mem::testing::LiveBlocks(static_cast<mem::Module>(m)));
    return c;
}

int ForEachAllocationFailure(const std::function<int()>& run, const std::function<void(int, int)>& check) {
    for (int n = 1; n < 100000; ++n) {
        const LiveCounts before = Live();
        mem::testing::FailNthAllocation(n);
        const int status = run();
        const bool fired = mem::testing::FailureFired();
        mem::testing::FailNthAllocation(0);
        if (!fired) return n - 1;
        check(n, status);
        EXPECT_EQ(Live(), before) << "blocks leaked when allocation " << n << " failed";
    }
    ADD_FAILURE() << "operation never completed";
    return -1;
}

Bytes Random(std::size_t n, unsigned seed) {
    std::mt19937 rng(seed);
    Bytes b(n);
    for (auto& x : b) x = static_cast<std::uint8_t>(rng());
    return b;
}

void SetPath(KtChar16* field, const std::string& path) {
    std::size_t i = 0;
    for (; i < path.size() && i + 1 < KTCLR_PARAMS_PATH_UNITS; ++i) field[i] = static_cast<KtChar16>(path[i]);
    field[i] = 0;
}

}  // namespace kt::test
