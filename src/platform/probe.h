// Pointer probes: does [p, p + size) lie in memory this process may read
// (or write)? They never fault, install no signal handlers, modify nothing
// and are safe from any thread. A size of 0 is always fine; a null pointer
// with a non-zero size never is.
//
// The cost is a system call per mapping the range crosses: the kernel is
// asked about the mappings themselves (PROCMAP_QUERY). Where that is not
// available the probes fall back to reading one byte per page through
// process_vm_readv, and last to /proc/self/maps.
#pragma once

#include <cstddef>

namespace kt::platform {

bool IsBadReadPtr(const void* p, std::size_t size) noexcept;
bool IsBadWritePtr(void* p, std::size_t size) noexcept;

// The individual methods, exposed so tests can hold them against each other.
enum class ProbeResult { ok, bad, unsupported };
ProbeResult ProbeByQuery(const void* p, std::size_t size, bool write) noexcept;
ProbeResult ProbeByCopy(const void* p, std::size_t size, bool write) noexcept;
bool IsBadPtrByMaps(const void* p, std::size_t size, bool write) noexcept;

}  // namespace kt::platform
