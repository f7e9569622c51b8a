#include "platform/probe.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/support.h"

namespace kt {
namespace {

using platform::IsBadPtrByMaps;
using platform::IsBadReadPtr;
using platform::IsBadWritePtr;
using platform::ProbeByCopy;
using platform::ProbeByQuery;
using platform::ProbeResult;
using test::MappedPages;
using Access = MappedPages::Access;

// Every method this kernel supports must agree on every case.
struct Probes {
    bool check(const void* p, std::size_t n, bool write) const {
        const bool verdict = write ? IsBadWritePtr(const_cast<void*>(p), n) : IsBadReadPtr(p, n);
        EXPECT_EQ(IsBadPtrByMaps(p, n, write), verdict) << "maps text disagrees";
        for (ProbeResult r : {ProbeByQuery(p, n, write), ProbeByCopy(p, n, write)})
            if (r != ProbeResult::unsupported) {
                EXPECT_EQ(r == ProbeResult::bad, verdict) << "a method disagrees";
            }
        return verdict;
    }
    bool read(const void* p, std::size_t n) const { return check(p, n, false); }
    bool write(void* p, std::size_t n) const { return check(p, n, true); }
};

TEST(Probe, SizesAndNull) {
    Probes probe;
    int x = 0;
    EXPECT_FALSE(probe.read(nullptr, 0));
    EXPECT_TRUE(probe.read(nullptr, 1));
    EXPECT_TRUE(probe.write(nullptr, 1));
    EXPECT_FALSE(probe.read(&x, sizeof x));
    EXPECT_FALSE(probe.write(&x, sizeof x));
    // A range that wraps the address space.
    EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<void*>(~std::uintptr_t{0} - 3), 16));
}

TEST(Probe, ProtectionsAndEdges) {
    Probes probe;
    MappedPages m(4, Access::readWrite);
    const std::size_t pg = m.page();
    m.Protect(1, Access::read);
    m.Protect(2, Access::none);
    m.Protect(3, Access::unmapped);
    unsigned char* p = m.data();

    EXPECT_FALSE(probe.read(p, pg));
    EXPECT_FALSE(probe.write(p, pg));
    EXPECT_FALSE(probe.read(p, 2 * pg));     // writable then read-only
    EXPECT_TRUE(probe.write(p, pg + 1));     // one byte into the read-only page
    EXPECT_FALSE(probe.write(p + pg - 1, 1)); // last writable byte
    EXPECT_TRUE(probe.read(p + pg, pg + 1)); // into the inaccessible page
    EXPECT_TRUE(probe.read(p + 2 * pg, 1));
    EXPECT_TRUE(probe.read(p + 3 * pg, 1));  // unmapped
    EXPECT_TRUE(probe.read(p, 4 * pg));
    EXPECT_TRUE(probe.read(m.end(), 1));     // guard page after the run
    EXPECT_TRUE(probe.read(p - 1, 2));       // guard page before the run
}

TEST(Probe, WriteProbeKeepsContents) {
    MappedPages m(3, Access::readWrite);
    for (std::size_t i = 0; i < m.size(); ++i) m.data()[i] = static_cast<unsigned char>(i * 7);
    EXPECT_FALSE(IsBadWritePtr(m.data() + 5, m.size() - 5));
    for (std::size_t i = 0; i < m.size(); ++i) ASSERT_EQ(m.data()[i], static_cast<unsigned char>(i * 7));
}

TEST(Probe, LargeBufferAndNoHandlersLeft) {
    struct sigaction before {};
    sigaction(SIGSEGV, nullptr, &before);
    MappedPages m(4096 + 17, Access::readWrite);  // more than one batch of pages
    EXPECT_FALSE(IsBadReadPtr(m.data(), m.size()));
    EXPECT_FALSE(IsBadWritePtr(m.data(), m.size()));
    m.Protect(4096 + 3, Access::read);
    EXPECT_FALSE(IsBadReadPtr(m.data(), m.size()));
    EXPECT_TRUE(IsBadWritePtr(m.data(), m.size()));
    struct sigaction after {};
    sigaction(SIGSEGV, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}

TEST(Probe, ForkedChildAsksAboutItsOwnMemory) {
    int x = 0;
    ASSERT_FALSE(IsBadReadPtr(&x, sizeof x));  // the parent has its descriptor now
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        // A mapping only the child has.
        void* m = mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        const bool ok = m != MAP_FAILED && !IsBadWritePtr(m, 4096);
        munmap(m, 4096);
        const bool gone = IsBadReadPtr(m, 1);
        _exit(ok && gone ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
}  // namespace kt
