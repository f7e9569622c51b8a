// UTF-16 strings as the interface carries them (char16_t), and their UTF-8
// form for the operating system.
#pragma once

#include <cstddef>

#include "platform/alloc.h"

namespace kt::text {

// Units before the terminator, looking at no more than `limit` units.
std::size_t Utf16Length(const char16_t* s, std::size_t limit) noexcept;

// Copies at most `units - 1` units and always terminates.
void Utf16Copy(char16_t* dst, std::size_t units, const char16_t* src) noexcept;

// An owned, zero-terminated UTF-8 string from the library allocator.
class Utf8 {
public:
    Utf8() = default;
    Utf8(const Utf8&) = delete;
    Utf8& operator=(const Utf8&) = delete;
    Utf8(Utf8&& o) noexcept : data_(o.data_), module_(o.module_) { o.data_ = nullptr; }
    ~Utf8() { Reset(); }

    // Converts `length` units (lone surrogates become U+FFFD). False when the
    // allocation fails.
    bool Assign(const char16_t* s, std::size_t length, mem::Module module) noexcept;
    const char* c_str() const noexcept { return data_ ? data_ : ""; }
    bool empty() const noexcept { return !data_ || !*data_; }
    void Reset() noexcept;

private:
    char* data_ = nullptr;
    mem::Module module_ = mem::Module::ktclr;
};

// Bytes that `Assign` writes for those units, without the terminator.
std::size_t Utf8Size(const char16_t* s, std::size_t length) noexcept;

// UTF-8 bytes to UTF-16 units; returns the units needed (including the
// terminator). Writes nothing when dst is null. Invalid bytes become U+FFFD.
std::size_t Utf8ToUtf16(const char* s, std::size_t length, char16_t* dst, std::size_t dstUnits) noexcept;

}  // namespace kt::text
