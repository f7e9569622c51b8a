#include "platform/narrow_text.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>

#include "ktclr/status.h"

namespace kt::text {
namespace {

static_assert(sizeof(wchar_t) == 4, "wchar_t holds a whole code point");

constexpr char32_t kMaxCodePoint = 0x10FFFF;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char16_t kHighFirst = 0xD800, kLowFirst = 0xDC00, kSurrogateEnd = 0xDFFF;

bool IsSurrogate(char32_t c) { return c >= kHighFirst && c <= kSurrogateEnd; }

// Decodes `src` (at most `limit` bytes, up to its terminator) and hands each
// code point to `put`; false on a sequence the locale cannot decode.
// `terminated` tells whether the terminator was found within the limit.
template <class Put>
bool Decode(const char* src, std::size_t limit, bool& terminated, Put put) {
    std::mbstate_t state{};
    terminated = false;
    for (std::size_t at = 0; at < limit;) {
        wchar_t w = 0;
        const std::size_t used = std::mbrtowc(&w, src + at, limit - at, &state);
        if (used == static_cast<std::size_t>(-1) || used == static_cast<std::size_t>(-2)) return false;
        if (used == 0) {
            terminated = true;
            return true;
        }
        const auto c = static_cast<char32_t>(w);
        if (c > kMaxCodePoint || IsSurrogate(c)) return false;
        if (!put(c)) return true;  // the sink is full; the caller sees no terminator
        at += used;
    }
    return true;
}

// Code points as UTF-16 units into dst[capacity]; `count` counts every unit
// even past the capacity.
struct Utf16Sink {
    char16_t* dst;
    std::size_t capacity;
    std::size_t count = 0;
    void Unit(char16_t u) {
        if (dst && count < capacity) dst[count] = u;
        ++count;
    }
    bool operator()(char32_t c) {
        if (c >= kFirstSupplementary) {
            Unit(static_cast<char16_t>(kHighFirst + ((c - kFirstSupplementary) >> 10)));
            Unit(static_cast<char16_t>(kLowFirst + ((c - kFirstSupplementary) & 0x3FF)));
        } else {
            Unit(static_cast<char16_t>(c));
        }
        return !dst || count < capacity;
    }
};

}  // namespace

KtStatus NarrowToWide(const char* src, std::size_t srcLimit, char16_t* dst, std::size_t capacity) noexcept {
    if (!dst || capacity == 0) return ERR_INVALID_PARAMETER;
    dst[0] = 0;
    if (!src) return ERR_INVALID_PARAMETER;
    Utf16Sink sink{dst, capacity};
    bool terminated = false;
    KtStatus status = STATUS_OK;
    if (!Decode(src, srcLimit, terminated, [&](char32_t c) { return sink(c); }))
        status = ERR_NO_UNICODE_TRANSLATION;
    else if (!terminated || sink.count >= capacity)
        status = ERR_BUFFER_TOO_SMALL;
    // A failure leaves no partial string behind.
    std::fill(dst + (status == STATUS_OK ? sink.count : 0), dst + std::min(sink.count + 1, capacity), u'\0');
    return status;
}

KtStatus WideToNarrow(const char16_t* src, std::size_t srcLimit, char* dst, std::size_t capacity) noexcept {
    if (!dst || capacity == 0) return ERR_INVALID_PARAMETER;
    dst[0] = 0;
    if (!src) return ERR_INVALID_PARAMETER;
    std::mbstate_t state{};
    bool substituted = false;
    std::size_t at = 0;
    auto append = [&](const char* bytes, std::size_t n) {
        if (n > capacity - 1 - at) return false;
        std::memcpy(dst + at, bytes, n);
        at += n;
        return true;
    };
    auto tooSmall = [&] {
        std::memset(dst, 0, at);  // no partial string behind
        return ERR_BUFFER_TOO_SMALL;
    };
    char bytes[MB_LEN_MAX];
    for (std::size_t i = 0; i < srcLimit && src[i]; ++i) {
        char32_t c = src[i];
        if (c >= kHighFirst && c < kLowFirst && i + 1 < srcLimit && src[i + 1] >= kLowFirst &&
            src[i + 1] <= kSurrogateEnd)
            c = kFirstSupplementary + ((c - kHighFirst) << 10) + (src[++i] - kLowFirst);
        std::size_t n = IsSurrogate(c) ? static_cast<std::size_t>(-1)
                                       : std::wcrtomb(bytes, static_cast<wchar_t>(c), &state);
        if (n == static_cast<std::size_t>(-1)) {
            state = std::mbstate_t{};
            substituted = true;
            bytes[0] = '?';
            n = 1;
        }
        if (!append(bytes, n)) return tooSmall();
    }
    // Back to the initial shift state (nothing to add in stateless encodings).
    const std::size_t n = std::wcrtomb(bytes, L'\0', &state);
    if (n != static_cast<std::size_t>(-1) && n > 1 && !append(bytes, n - 1)) return tooSmall();
    dst[at] = 0;
    return substituted ? ERR_DEFAULT_CHAR_USED : STATUS_OK;
}

bool DuplicateWide(const char* src, char16_t** out, mem::Module module) noexcept {
    *out = nullptr;
    if (!src) return true;
    const std::size_t limit = std::strlen(src) + 1;
    Utf16Sink count{nullptr, 0};
    bool terminated = false;
    if (!Decode(src, limit, terminated, [&](char32_t c) { return count(c); }) || !terminated) return false;
    auto* wide = static_cast<char16_t*>(mem::Alloc((count.count + 1) * sizeof(char16_t), module, __LINE__));
    if (!wide) return false;
    Utf16Sink fill{wide, count.count + 1};
    Decode(src, limit, terminated, [&](char32_t c) { return fill(c); });
    wide[fill.count] = 0;
    *out = wide;
    return true;
}

void FreeWide(char16_t* s, mem::Module module) noexcept {
    if (s) mem::Free(s, module, __LINE__);
}

}  // namespace kt::text
