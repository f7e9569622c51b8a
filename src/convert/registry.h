// The process-wide list of live conversion handles: an ordered doubly linked
// list (the unload sweep frees head first) with a hash index beside it so
// that validation costs the same whatever the number of handles. One mutex
// guards both, which makes creating, validating and freeing handles from
// several threads safe.
#pragma once

#include <cstddef>

#include "ktclr/convert.h"

namespace kt::convert::registry {

// Allocates a node and links it at the tail. False when the allocation fails.
bool Append(ClrHandle* h) noexcept;

// Unlinks and frees h's node, if any.
void Remove(ClrHandle* h) noexcept;

// Validation: true when h is on the list and its size field is intact. The
// block is read only once it is known to be on the list, under the lock, so
// validating races safely with another thread's free.
bool Contains(const ClrHandle* h) noexcept;

// Atomically validates as Contains does and removes h's node. False when h
// is not live.
bool Take(ClrHandle* h) noexcept;

// The handle of the head (oldest) or tail (newest) node; null when empty.
ClrHandle* Head() noexcept;
ClrHandle* Tail() noexcept;

std::size_t Count() noexcept;

}  // namespace kt::convert::registry
