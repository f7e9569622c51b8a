// The pointer probes from several threads at once (run under
// ThreadSanitizer by the threads label).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "platform/probe.h"
#include "support/support.h"

namespace kt {
namespace {

using platform::IsBadReadPtr;
using platform::IsBadWritePtr;
using test::MappedPages;
using Access = MappedPages::Access;

TEST(Probe, ConcurrentProbes) {
    MappedPages m(64, Access::readWrite);
    m.Protect(40, Access::none);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 2000; ++i) {
                const std::size_t pages = static_cast<std::size_t>((i + t) % 64 + 1);
                const bool expectBad = pages > 40;
                if (IsBadReadPtr(m.data(), pages * m.page()) != expectBad) ++wrong;
                if (IsBadWritePtr(m.data(), pages * m.page()) != expectBad) ++wrong;
            }
        });
    }
    for (auto& th : threads) th.join();
    EXPECT_EQ(wrong.load(), 0);
}

}  // namespace
}  // namespace kt
