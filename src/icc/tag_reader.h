// Reads a tag element front to back without trusting it. Every read is
// checked against the element's size; the first one that does not fit sets
// a failure that sticks, and it and every later read yield zeros. A parse
// reads straight through and asks once, before it allocates for a count
// read from the element, whether that many items are there (Holds).
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "icc/big_endian.h"
#include "ktclr/export.h"
#include "ktclr/status.h"

namespace kt::icc {

class TagReader {
public:
    TagReader(const std::uint8_t* element, std::uint32_t size) noexcept : element_(element), size_(size) {}

    // `bytes` bytes from the current position, which moves past them; null
    // (and the reader failed) when they are not all there.
    const std::uint8_t* Take(std::uint64_t bytes) noexcept {
        if (!ok_ || position_ > size_ || bytes > size_ - position_) {
            ok_ = false;
            return nullptr;
        }
        const std::uint8_t* p = element_ + position_;
        position_ += bytes;
        return p;
    }

    std::uint8_t U8() noexcept {
        const std::uint8_t* p = Take(1);
        return p ? *p : 0;
    }
    std::uint16_t U16() noexcept {
        const std::uint8_t* p = Take(2);
        return p ? Load16(p) : 0;
    }
    // Read as they stand in memory, not big-endian.
    std::uint16_t Little16() noexcept {
        const std::uint8_t* p = Take(2);
        return p ? static_cast<std::uint16_t>(p[0] | (p[1] << 8)) : 0;
    }
    std::uint32_t U32() noexcept {
        const std::uint8_t* p = Take(4);
        return p ? Load32(p) : 0;
    }
    std::int32_t S32() noexcept { return static_cast<std::int32_t>(U32()); }
    std::uint64_t U64() noexcept {
        const std::uint8_t* p = Take(8);
        return p ? Load64(p) : 0;
    }
    void Copy(void* to, std::size_t bytes) noexcept {
        const std::uint8_t* p = Take(bytes);
        if (p && bytes) std::memcpy(to, p, bytes);
    }
    void Skip(std::uint64_t bytes) noexcept { Take(bytes); }

    // Moves to `offset` bytes from the start of the element; a position
    // past the end fails at the next read.
    void Seek(std::uint64_t offset) noexcept { position_ = offset; }

    // Whether `count` items of `unit` bytes lie ahead; the reader fails
    // when they do not. Nothing moves.
    bool Holds(std::uint64_t count, std::uint64_t unit) noexcept {
        if (ok_ && position_ <= size_ && (unit == 0 || count <= (size_ - position_) / unit)) return true;
        ok_ = false;
        return false;
    }

    // A reader over the bytes from the current position to the end, as an
    // element of its own (an 'mluc' inside 'pseq').
    TagReader Rest() const noexcept {
        TagReader rest(element_ + (position_ <= size_ ? position_ : size_),
                       position_ <= size_ ? static_cast<std::uint32_t>(size_ - position_) : 0);
        rest.ok_ = ok_ && position_ <= size_;
        return rest;
    }

    std::uint64_t Remaining() const noexcept { return position_ <= size_ ? size_ - position_ : 0; }
    std::uint64_t Position() const noexcept { return position_; }
    bool ok() const noexcept { return ok_; }
    KtStatus Status() const noexcept { return ok_ ? STATUS_OK : ERR_INVALID_TAG; }

private:
    const std::uint8_t* element_;
    std::uint64_t size_;
    std::uint64_t position_ = 0;
    bool ok_ = true;
};

}  // namespace kt::icc
