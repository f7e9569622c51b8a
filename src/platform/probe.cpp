#include "platform/probe.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace kt::platform {
namespace {

constexpr std::size_t kBatch = 1024;  // IOV_MAX on Linux

std::size_t PageSize() {
    static const std::size_t size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

// 1 = kernel probes work, 0 = unknown yet, -1 = use /proc/self/maps.
std::atomic<int> g_kernelProbes{0};

enum class Probe { ok, bad, unsupported };

Probe ProbeRange(std::uintptr_t begin, std::uintptr_t end, bool write) {
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
            at = (at / page + 1) * page;  // next page start
        }
        iovec local{scratch, n};
        ssize_t got = process_vm_readv(self, &local, 1, remote, n, 0);
        if (got < 0 && (errno == ENOSYS || errno == EPERM)) return Probe::unsupported;
        if (got != static_cast<ssize_t>(n)) return Probe::bad;
        if (write) {
            ssize_t put = process_vm_writev(self, &local, 1, remote, n, 0);
            if (put < 0 && (errno == ENOSYS || errno == EPERM)) return Probe::unsupported;
            if (put != static_cast<ssize_t>(n)) return Probe::bad;
        }
    }
    return Probe::ok;
}

bool Check(const void* p, std::size_t size, bool write) {
    if (size == 0) return false;
    if (p == nullptr) return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(p);
    if (size > UINTPTR_MAX - begin) return true;
    const std::uintptr_t end = begin + size;
    if (g_kernelProbes.load(std::memory_order_relaxed) >= 0) {
        Probe r = ProbeRange(begin, end, write);
        if (r != Probe::unsupported) {
            g_kernelProbes.store(1, std::memory_order_relaxed);
            return r == Probe::bad;
        }
        g_kernelProbes.store(-1, std::memory_order_relaxed);
    }
    return IsBadPtrByMaps(p, size, write);
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

bool IsBadPtrByMaps(const void* p, std::size_t size, bool write) noexcept {
    if (size == 0) return false;
    if (p == nullptr) return true;
    const auto begin = reinterpret_cast<std::uintptr_t>(p);
    if (size > UINTPTR_MAX - begin) return true;
    const std::uintptr_t end = begin + size;
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
                    done = true;  // gap or forbidden page inside the range
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

bool IsBadReadPtr(const void* p, std::size_t size) noexcept { return Check(p, size, false); }
bool IsBadWritePtr(void* p, std::size_t size) noexcept { return Check(p, size, true); }

}  // namespace kt::platform
