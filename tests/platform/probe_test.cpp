#include "platform/probe.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/support.h"

namespace kt {
namespace {

using namespace platform;
using test::MappedPages;
using Access = MappedPages::Access;

// Pages read-write, read-only, inaccessible, unmapped, between guard pages:
// every method this kernel supports agrees on every range, to the byte.
TEST(Probe, PagesAndEdges) {
    MappedPages m(4, Access::readWrite);
    m.Protect(1, Access::read);
    m.Protect(2, Access::none);
    m.Protect(3, Access::unmapped);
    const std::ptrdiff_t pg = static_cast<std::ptrdiff_t>(m.page());
    int x = 0;
    const struct {
        const void* at;
        std::ptrdiff_t size;
        bool write, bad;
    } rows[] = {
        {nullptr, 0, false, false}, {nullptr, 1, false, true},   {nullptr, 1, true, true},
        {&x, sizeof x, false, false}, {&x, sizeof x, true, false},
        {m.data(), pg, false, false}, {m.data(), pg, true, false},
        {m.data(), 2 * pg, false, false},            // writable then read-only
        {m.data(), pg + 1, true, true},              // one byte into the read-only page
        {m.data() + pg - 1, 1, true, false},         // last writable byte
        {m.data() + pg, pg + 1, false, true},        // into the inaccessible page
        {m.data() + 2 * pg, 1, false, true},         {m.data() + 3 * pg, 1, false, true},  // unmapped
        {m.data(), 4 * pg, false, true},             {m.end(), 1, false, true},  // guard page after the run
        {m.data() - 1, 2, false, true},              // guard page before the run
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << (r.write ? "write " : "read ") << r.size << " at row " << &r - rows);
        const std::size_t n = static_cast<std::size_t>(r.size);
        EXPECT_EQ(r.write ? IsBadWritePtr(const_cast<void*>(r.at), n) : IsBadReadPtr(r.at, n), r.bad);
        EXPECT_EQ(IsBadPtrByMaps(r.at, n, r.write), r.bad) << "maps text";
        for (ProbeResult p : {ProbeByQuery(r.at, n, r.write), ProbeByCopy(r.at, n, r.write)})
            EXPECT_TRUE(p == ProbeResult::unsupported || (p == ProbeResult::bad) == r.bad) << "a method";
    }
    // A range that wraps the address space.
    EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<void*>(~std::uintptr_t{0} - 3), 16));
}

// More than one batch of pages; the write probe keeps the contents and
// leaves no signal handler behind.
TEST(Probe, LargeBufferKeepsContentsAndHandlers) {
    struct sigaction before {}, after {};
    sigaction(SIGSEGV, nullptr, &before);
    MappedPages m(4096 + 17, Access::readWrite);
    for (std::size_t i = 0; i < m.size(); ++i) m.data()[i] = static_cast<unsigned char>(i * 7);
    EXPECT_FALSE(IsBadReadPtr(m.data(), m.size()));
    EXPECT_FALSE(IsBadWritePtr(m.data() + 5, m.size() - 5));
    for (std::size_t i = 0; i < m.size(); ++i) ASSERT_EQ(m.data()[i], static_cast<unsigned char>(i * 7));
    m.Protect(4096 + 3, Access::read);
    EXPECT_FALSE(IsBadReadPtr(m.data(), m.size()));
    EXPECT_TRUE(IsBadWritePtr(m.data(), m.size()));
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
        _exit(ok && IsBadReadPtr(m, 1) ? 0 : 1);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
}  // namespace kt
