// Narrow strings in the process locale's multibyte encoding (UTF-8 under a
// UTF-8 locale) and their UTF-16 forms: the fixed-capacity mappings of the
// narrow records and the allocating conversion of the narrow file names.
// The encoding is that of the calling thread's LC_CTYPE locale.
#pragma once

#include <cstddef>

#include "ktclr/export.h"
#include "platform/alloc.h"

namespace kt::text {

// Capacity, in units or bytes with the terminator, of the path fields that
// the narrow records exchange with the wide ones.
inline constexpr std::size_t kNarrowFieldCapacity = 264;

// Narrow to UTF-16. `dst` is emptied first and holds the whole string with
// its terminator on success. Reads `src` up to its terminator but never past
// `srcLimit` bytes (no terminator within them: the string does not fit).
// STATUS_OK; ERR_BUFFER_TOO_SMALL when it does not fit in `capacity` units;
// ERR_INVALID_PARAMETER for a null pointer or no capacity;
// ERR_NO_UNICODE_TRANSLATION for a sequence the locale cannot decode. On a
// failure `dst` is left empty.
KtStatus NarrowToWide(const char* src, std::size_t srcLimit, char16_t* dst, std::size_t capacity) noexcept;

// UTF-16 to narrow, the counterpart with the same statuses; a character the
// locale cannot encode (a lone surrogate included) is written as '?' and the
// result, otherwise whole, is ERR_DEFAULT_CHAR_USED.
KtStatus WideToNarrow(const char16_t* src, std::size_t srcLimit, char* dst, std::size_t capacity) noexcept;

// The allocating conversion: a new UTF-16 string from the library allocator
// in *out (null for a null `src`). False when the string cannot be decoded
// or the allocation fails; *out is then null.
bool DuplicateWide(const char* src, char16_t** out, mem::Module module) noexcept;
// Releases what DuplicateWide made (null is fine).
void FreeWide(char16_t* s, mem::Module module) noexcept;

// A narrow name converted for the duration of a call.
class WideName {
public:
    explicit WideName(mem::Module module) : module_(module) {}
    WideName(const WideName&) = delete;
    WideName& operator=(const WideName&) = delete;
    ~WideName() { FreeWide(wide_, module_); }
    // False when a non-null name cannot be converted.
    bool Assign(const char* narrow) noexcept { return DuplicateWide(narrow, &wide_, module_); }
    const char16_t* get() const noexcept { return wide_; }

private:
    char16_t* wide_ = nullptr;
    mem::Module module_;
};

}  // namespace kt::text
