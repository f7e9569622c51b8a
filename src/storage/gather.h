// The gathering buffer of the profile readers: pieces are appended to the
// record's profileData as they arrive; profileSize counts the bytes held.
#pragma once

#include <cstddef>
#include <cstdint>

#include "ktclr/icc.h"

namespace kt::storage {

class Gather {
public:
    explicit Gather(ICCProfileRecord* record) noexcept : record_(record) {}
    // Appends a copy of `n` bytes (the first piece allocates). False when out
    // of memory or the profile would pass 4 GiB.
    bool Append(const void* bytes, std::size_t n) noexcept;
    // Hands the record a block of exactly `n` bytes to fill. Null when out
    // of memory.
    uint8_t* Take(std::size_t n) noexcept;
    // Releases what this object put into the record and clears the fields.
    void Drop() noexcept;
    ICCProfileRecord* record() const noexcept { return record_; }

private:
    ICCProfileRecord* record_;
    std::size_t capacity_ = 0;
};

}  // namespace kt::storage
