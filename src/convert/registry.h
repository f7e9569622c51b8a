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

// The membership checks of validation: list empty, or h not on it, is false.
bool Contains(const ClrHandle* h) noexcept;

// Atomically checks membership and removes h's node. False when h is not live.
bool Take(ClrHandle* h) noexcept;

// The handle of the head node, or null when the list is empty.
ClrHandle* Head() noexcept;

std::size_t Count() noexcept;

}  // namespace kt::convert::registry
