#include "platform/probe.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

namespace kt::platform {
namespace {

// The mapping query of /proc/<pid>/maps (Linux 6.11 and later); declared
// here because the system headers of older distributions lack it.
struct ProcmapQuery {
    std::uint64_t size;
    std::uint64_t queryFlags;
    std::uint64_t queryAddr;
    std::uint64_t vmaStart;
    std::uint64_t vmaEnd;
    std::uint64_t vmaFlags;
    std::uint64_t vmaPageSize;
    std::uint64_t vmaOffset;
    std::uint64_t inode;
    std::uint32_t devMajor;
    std::uint32_t devMinor;
    std::uint32_t vmaNameSize;
    std::uint32_t buildIdSize;
    std::uint64_t vmaNameAddr;
    std::uint64_t buildIdAddr;
};
constexpr unsigned long kProcmapQuery = _IOWR('f', 17, ProcmapQuery);
constexpr std::uint64_t kQueryReadable = 0x01;
constexpr std::uint64_t kQueryWritable = 0x02;

constexpr std::size_t kBatch = 1024;  // IOV_MAX on Linux

std::size_t PageSize() {
    static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

// One descriptor of /proc/self/maps per process. A forked child inherits
// the parent's, which describes the parent's memory, so it is reopened
// whenever the process id changes.
class MapsDescriptor {
public:
    int Get() {
        const pid_t me = getpid();
        if (pid_.load(std::memory_order_acquire) == me) return fd_.load(std::memory_order_relaxed);
        std::lock_guard<std::mutex> guard(lock_);
        if (pid_.load(std::memory_order_relaxed) != me) {
            const int old = fd_.load(std::memory_order_relaxed);
            fd_.store(open("/proc/self/maps", O_RDONLY | O_CLOEXEC), std::memory_order_relaxed);
            if (old >= 0) close(old);
            pid_.store(me, std::memory_order_release);
        }
        return fd_.load(std::memory_order_relaxed);
    }
    // Forces a reopen on the next call (the descriptor was closed under us).
    void Invalidate() { pid_.store(0, std::memory_order_release); }

private:
    std::mutex lock_;
    std::atomic<int> fd_{-1};
    std::atomic<pid_t> pid_{0};
};

MapsDescriptor& Maps() {
    alignas(MapsDescriptor) static unsigned char storage[sizeof(MapsDescriptor)];
    static MapsDescriptor* maps = new (storage) MapsDescriptor();
    return *maps;
}

// Which method works here: 0 unknown, 1 query, 2 copy, 3 maps text.
std::atomic<int> g_method{0};

bool Range(const void* p, std::size_t size, std::uintptr_t* begin, std::uintptr_t* end) {
    *begin = reinterpret_cast<std::uintptr_t>(p);
    if (size > UINTPTR_MAX - *begin) return false;
    *end = *begin + size;
    return true;
}

ProbeResult QueryOnce(int fd, std::uintptr_t begin, std::uintptr_t end, bool write) {
    std::uintptr_t at = begin;
    while (at < end) {
        ProcmapQuery q;
        std::memset(&q, 0, sizeof q);
        q.size = sizeof q;
        q.queryFlags = kQueryReadable | (write ? kQueryWritable : 0);
        q.queryAddr = at;
        if (ioctl(fd, kProcmapQuery, &q) != 0) return errno == ENOENT ? ProbeResult::bad : ProbeResult::unsupported;
        if (q.vmaEnd <= at) return ProbeResult::unsupported;  // not an answer we understand
        at = static_cast<std::uintptr_t>(q.vmaEnd);
    }
    return ProbeResult::ok;
}

ProbeResult Check(const void* p, std::size_t size, bool write) {
    if (size == 0) return ProbeResult::ok;
    if (p == nullptr) return ProbeResult::bad;
    switch (g_method.load(std::memory_order_relaxed)) {
        case 0:
        case 1: {
            ProbeResult r = ProbeByQuery(p, size, write);
            if (r != ProbeResult::unsupported) {
                g_method.store(1, std::memory_order_relaxed);
                return r;
            }
            g_method.store(2, std::memory_order_relaxed);
        }
            [[fallthrough]];
        case 2: {
            ProbeResult r = ProbeByCopy(p, size, write);
            if (r != ProbeResult::unsupported) return r;
            g_method.store(3, std::memory_order_relaxed);
        }
            [[fallthrough]];
        default:
            return IsBadPtrByMaps(p, size, write) ? ProbeResult::bad : ProbeResult::ok;
    }
}

// Parses one "start-end perms ..." line of /proc/self/maps.
bool ParseMapsLine(const char* s, const char* e, std::uintptr_t* lo, std::uintptr_t* hi, bool* r, bool* w) {
    char* stop = nullptr;
    *lo = std::strtoull(s, &stop, 16);
    if (stop >= e || *stop != '-') return false;
    *hi = std::strtoull(stop + 1, &stop, 16);
    if (stop + 3 >= e || *stop != ' ') return false;
    *r = stop[1] == 'r';
    *w = stop[2] == 'w';
    return true;
}

}  // namespace

ProbeResult ProbeByQuery(const void* p, std::size_t size, bool write) noexcept {
    std::uintptr_t begin, end;
    if (size == 0) return ProbeResult::ok;
    if (!p || !Range(p, size, &begin, &end)) return ProbeResult::bad;
    int fd = Maps().Get();
    if (fd < 0) return ProbeResult::unsupported;
    ProbeResult r = QueryOnce(fd, begin, end, write);
    if (r == ProbeResult::unsupported && errno == EBADF) {
        // Someone closed our descriptor: reopen once.
        Maps().Invalidate();
        fd = Maps().Get();
        if (fd >= 0) r = QueryOnce(fd, begin, end, write);
    }
    return r;
}

// Reads one byte of every page; for writes, copies each of those bytes onto
// itself, which the kernel refuses for pages this process may not write.
ProbeResult ProbeByCopy(const void* p, std::size_t size, bool write) noexcept {
    std::uintptr_t begin, end;
    if (size == 0) return ProbeResult::ok;
    if (!p || !Range(p, size, &begin, &end)) return ProbeResult::bad;
    const std::size_t page = PageSize();
    const pid_t self = getpid();
    unsigned char scratch[kBatch];
    iovec remote[kBatch];
    std::uintptr_t at = begin;
    while (at < end) {
        std::size_t n = 0;
        while (n < kBatch && at < end) {
            remote[n].iov_base = reinterpret_cast<void*>(at);
            remote[n].iov_len = 1;
            ++n;
            at = (at / page + 1) * page;
        }
        ssize_t done;
        if (write) {
            done = process_vm_writev(self, remote, n, remote, n, 0);
        } else {
            iovec local{scratch, n};
            done = process_vm_readv(self, &local, 1, remote, n, 0);
        }
        if (done < 0 && (errno == ENOSYS || errno == EPERM)) return ProbeResult::unsupported;
        if (done != static_cast<ssize_t>(n)) return ProbeResult::bad;
    }
    return ProbeResult::ok;
}

bool IsBadPtrByMaps(const void* p, std::size_t size, bool write) noexcept {
    std::uintptr_t begin, end;
    if (size == 0) return false;
    if (!p || !Range(p, size, &begin, &end)) return true;
    int fd = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (fd < 0) return true;
    // Mappings are listed in address order; walk them until the range is
    // covered by consecutive accessible mappings.
    std::uintptr_t covered = begin;
    char buf[8192];
    std::size_t have = 0;
    bool bad = true, done = false;
    while (!done) {
        ssize_t got = read(fd, buf + have, sizeof buf - have);
        if (got <= 0) break;
        have += static_cast<std::size_t>(got);
        std::size_t start = 0;
        for (std::size_t i = 0; i < have && !done; ++i) {
            if (buf[i] != '\n') continue;
            std::uintptr_t lo, hi;
            bool r, w;
            if (ParseMapsLine(buf + start, buf + i, &lo, &hi, &r, &w) && hi > covered) {
                if (lo > covered || !r || (write && !w)) {
                    done = true;
                } else {
                    covered = hi;
                    if (covered >= end) bad = false, done = true;
                }
            }
            start = i + 1;
        }
        std::memmove(buf, buf + start, have - start);
        have -= start;
        if (have == sizeof buf) break;  // absurd line; give up
    }
    close(fd);
    return bad;
}

bool IsBadReadPtr(const void* p, std::size_t size) noexcept { return Check(p, size, false) == ProbeResult::bad; }
bool IsBadWritePtr(void* p, std::size_t size) noexcept { return Check(p, size, true) == ProbeResult::bad; }

}  // namespace kt::platform
