// A byte block that grows at its end and lives in a record's pointer field:
// every step leaves the field pointing at the current block, so whatever
// happens the record's release frees it.
#pragma once

#include <cstdint>
#include <cstring>

#include "platform/alloc.h"

namespace kt::icc {

class BytePool {
public:
    explicit BytePool(std::uint8_t*& block) noexcept : block_(block) {}
    BytePool(const BytePool&) = delete;
    BytePool& operator=(const BytePool&) = delete;

    // Room for `bytes` more bytes at the end, or null when the block cannot
    // grow (it is then as it was).
    std::uint8_t* Grow(std::uint64_t bytes) noexcept {
        if (bytes > SIZE_MAX - size_) return nullptr;
        void* grown = mem::Realloc(block_, static_cast<std::size_t>(size_ + bytes), kModule, __LINE__);
        if (!grown) return nullptr;
        block_ = static_cast<std::uint8_t*>(grown);
        std::uint8_t* room = block_ + size_;
        size_ += bytes;
        return room;
    }

    // A new block holding `bytes` bytes of the pool from `from`, or null.
    std::uint8_t* CopyOut(std::uint64_t from, std::uint64_t bytes) const noexcept {
        auto* copy = static_cast<std::uint8_t*>(mem::Alloc(static_cast<std::size_t>(bytes), kModule, __LINE__));
        if (copy && bytes) std::memcpy(copy, block_ + from, static_cast<std::size_t>(bytes));
        return copy;
    }

    std::uint64_t size() const noexcept { return size_; }

private:
    static constexpr auto kModule = mem::Module::iccprofile;
    std::uint8_t*& block_;
    std::uint64_t size_ = 0;
};

}  // namespace kt::icc
