// Allocator of the library. Every block carries the module that asked for it
// and the source line, so tests can count live blocks per module and make
// any single allocation fail.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kt::mem {

enum class Module : uint8_t { ktclr, iccprofile, iccload, iccsave, ktclasses_, count };

void* Alloc(std::size_t size, Module module, int line) noexcept;
void* AllocZero(std::size_t size, Module module, int line) noexcept;
void* Realloc(void* block, std::size_t size, Module module, int line) noexcept;
void Free(void* block, Module module, int line) noexcept;

// Large blocks (profile images) come from a separate pair, so that a block
// is always freed by the pair that made it; they are counted like the others.
void* AllocLarge(std::size_t size, Module module, int line) noexcept;
void FreeLarge(void* block, Module module, int line) noexcept;

// Typed helpers for owned records.
template <class T>
T* AllocOf(Module module, int line, std::size_t count = 1) noexcept {
    return static_cast<T*>(Alloc(sizeof(T) * count, module, line));
}
template <class T>
T* AllocZeroOf(Module module, int line, std::size_t count = 1) noexcept {
    return static_cast<T*>(AllocZero(sizeof(T) * count, module, line));
}

}  // namespace kt::mem

// Shorthands that pass the line. Each source file names its module once:
//   constexpr auto kModule = kt::mem::Module::ktclr;
#define KT_ALLOC(size) ::kt::mem::Alloc((size), kModule, __LINE__)
#define KT_ALLOC_ZERO(size) ::kt::mem::AllocZero((size), kModule, __LINE__)
#define KT_REALLOC(block, size) ::kt::mem::Realloc((block), (size), kModule, __LINE__)
#define KT_FREE(block) ::kt::mem::Free((block), kModule, __LINE__)
#define KT_ALLOC_LARGE(size) ::kt::mem::AllocLarge((size), kModule, __LINE__)
#define KT_FREE_LARGE(block) ::kt::mem::FreeLarge((block), kModule, __LINE__)
