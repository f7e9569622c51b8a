// Reading a file in 1,024-byte blocks with a look-ahead: when a test needs
// more bytes than the block has left, the tail moves to the front and the
// rest of the buffer is refilled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/file.h"

namespace kt::storage {

class BlockReader {
public:
    static constexpr std::size_t kBlock = 1024;

    explicit BlockReader(file::File& file) noexcept : file_(file) {}

    // Bytes available now.
    std::size_t Left() const noexcept { return end_ - pos_; }
    // Makes at least `n` bytes available if the file has them; false at the
    // end of the file (fewer are then available) or on a read error.
    bool Ensure(std::size_t n) noexcept {
        if (Left() >= n) return true;
        std::memmove(buffer_, buffer_ + pos_, Left());
        end_ = Left();
        pos_ = 0;
        while (end_ < n) {
            std::int64_t got = file_.Read(buffer_ + end_, kBlock - end_);
            if (got <= 0) return false;
            end_ += static_cast<std::size_t>(got);
        }
        return true;
    }
    const uint8_t* Peek() const noexcept { return buffer_ + pos_; }
    void Advance(std::size_t n) noexcept { pos_ += n; }

private:
    file::File& file_;
    uint8_t buffer_[kBlock];
    std::size_t pos_ = 0, end_ = 0;
};

}  // namespace kt::storage
