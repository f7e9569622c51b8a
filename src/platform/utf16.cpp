#include "platform/utf16.h"

#include <cstdint>

namespace kt::text {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Decodes one code point at s[i] and advances i.
char32_t Next(const char16_t* s, std::size_t length, std::size_t& i) {
    char32_t c = s[i++];
    if (c >= 0xD800 && c <= 0xDBFF) {
        if (i < length && s[i] >= 0xDC00 && s[i] <= 0xDFFF) {
            char32_t lo = s[i++];
            return 0x10000 + ((c - 0xD800) << 10) + (lo - 0xDC00);
        }
        return kReplacement;
    }
    if (c >= 0xDC00 && c <= 0xDFFF) return kReplacement;
    return c;
}

std::size_t Encode(char32_t c, char* out) {
    if (c < 0x80) {
        if (out) out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        if (out) {
            out[0] = static_cast<char>(0xC0 | (c >> 6));
            out[1] = static_cast<char>(0x80 | (c & 0x3F));
        }
        return 2;
    }
    if (c < 0x10000) {
        if (out) {
            out[0] = static_cast<char>(0xE0 | (c >> 12));
            out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out[2] = static_cast<char>(0x80 | (c & 0x3F));
        }
        return 3;
    }
    if (out) {
        out[0] = static_cast<char>(0xF0 | (c >> 18));
        out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[3] = static_cast<char>(0x80 | (c & 0x3F));
    }
    return 4;
}

}  // namespace

std::size_t Utf16Length(const char16_t* s, std::size_t limit) noexcept {
    std::size_t n = 0;
    while (n < limit && s[n]) ++n;
    return n;
}

void Utf16Copy(char16_t* dst, std::size_t units, const char16_t* src) noexcept {
    if (units == 0) return;
    std::size_t n = Utf16Length(src, units - 1);
    for (std::size_t i = 0; i < n; ++i) dst[i] = src[i];
    dst[n] = 0;
}

std::size_t Utf8Size(const char16_t* s, std::size_t length) noexcept {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < length;) bytes += Encode(Next(s, length, i), nullptr);
    return bytes;
}

bool Utf8::Assign(const char16_t* s, std::size_t length, mem::Module module) noexcept {
    Reset();
    std::size_t bytes = Utf8Size(s, length);
    auto* out = static_cast<char*>(mem::Alloc(bytes + 1, module, __LINE__));
    if (!out) return false;
    std::size_t at = 0;
    for (std::size_t i = 0; i < length;) at += Encode(Next(s, length, i), out + at);
    out[at] = 0;
    data_ = out;
    module_ = module;
    return true;
}

void Utf8::Reset() noexcept {
    if (data_) mem::Free(data_, module_, __LINE__);
    data_ = nullptr;
}

std::size_t Utf8ToUtf16(const char* s, std::size_t length, char16_t* dst, std::size_t dstUnits) noexcept {
    const auto* b = reinterpret_cast<const unsigned char*>(s);
    std::size_t units = 0;
    auto put = [&](char16_t u) {
        if (dst && units < dstUnits) dst[units] = u;
        ++units;
    };
    for (std::size_t i = 0; i < length;) {
        unsigned char c = b[i];
        char32_t cp = kReplacement;
        std::size_t need = c < 0x80 ? 0 : (c >> 5) == 6 ? 1 : (c >> 4) == 14 ? 2 : (c >> 3) == 30 ? 3 : 9;
        if (need == 0) {
            cp = c;
            i += 1;
        } else if (need <= 3) {
            char32_t v = c & (0x3F >> need);
            bool ok = true;
            for (std::size_t k = 1; k <= need && ok; ++k) {
                if (i + k >= length || (b[i + k] & 0xC0) != 0x80) ok = false;
                else v = (v << 6) | (b[i + k] & 0x3F);
            }
            static constexpr char32_t kMin[] = {0, 0x80, 0x800, 0x10000};
            if (ok && v >= kMin[need] && v <= 0x10FFFF && !(v >= 0xD800 && v <= 0xDFFF)) {
                cp = v;
                i += need + 1;
            } else {
                i += 1;
            }
        } else {
            i += 1;
        }
        if (cp >= 0x10000) {
            put(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
            put(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
        } else {
            put(static_cast<char16_t>(cp));
        }
    }
    put(0);
    return units;
}

}  // namespace kt::text
