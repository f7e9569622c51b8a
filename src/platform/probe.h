// Pointer probes: does [p, p + size) lie in memory this process may read
// (or write)? They never fault and install no signal handlers; the cost is
// a system call per 1024 pages. A size of 0 is always fine; a null pointer
// with a non-zero size never is.
#pragma once

#include <cstddef>

namespace kt::platform {

bool IsBadReadPtr(const void* p, std::size_t size) noexcept;

// Like the system probe it stands for, this reads one byte of every page and
// writes the same value back, so read-only and copy-on-write pages are
// judged exactly as a real store would.
bool IsBadWritePtr(void* p, std::size_t size) noexcept;

// The /proc/self/maps fallback, used when the process cannot read its own
// memory through the kernel; exposed so tests can exercise it.
bool IsBadPtrByMaps(const void* p, std::size_t size, bool write) noexcept;

}  // namespace kt::platform
