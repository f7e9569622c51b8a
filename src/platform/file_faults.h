// Injected file failures. The file layer asks before every read, write,
// flush and rename whether that operation should fail; tests arm the n-th
// operation of a kind to fail and check that nothing was lost. Not part of
// the public interface.
#pragma once

#include <cstdint>

namespace kt::file::faults {

enum class Op : int { read, write, sync, rename, count };

// True when this operation is the armed one (errno is then set to EIO).
bool Fails(Op op) noexcept;

namespace testing {
// Makes the n-th operation of that kind from now (1-based) fail; 0 disarms.
void FailNth(Op op, std::int64_t n);
// Operations of that kind asked about since the last FailNth or Reset.
std::int64_t Count(Op op);
bool Fired();
// Disarms every kind and zeroes the counters.
void Reset();
}  // namespace testing

}  // namespace kt::file::faults
