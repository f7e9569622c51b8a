// s15Fixed16 and u8Fixed8 numbers. The conversions from double build the
// fraction one hexadecimal digit at a time, stop as soon as the fraction is
// used up and round only the last digit, so a short fraction comes back
// unshifted (0.5 gives 0x8) and these values, not plain scaling, are what
// profiles carry. The FixedPoint tests pin them digit by digit.
#include <cstdint>

#include "ktclr/icc.h"

namespace {

constexpr int kDigitBits = 4;
constexpr double kDigitBase = 16.0;
constexpr unsigned kDigitMask = 0xF;

// Truncation toward zero as the processor does it: anything without a 32-bit
// representation (NaN, out of range) becomes INT32_MIN instead of undefined
// behaviour.
int32_t Truncate(double x) {
    constexpr double kLimit = 2147483648.0;
    if (!(x > -kLimit - 1.0 && x < kLimit)) return INT32_MIN;
    return static_cast<int32_t>(x);
}

// Shared digit loop: `digits` rounds, the last one rounded to nearest.
// A rounded digit of 16 keeps only its low four bits, without a carry.
template <class Word>
Word AppendFractionDigits(Word value, double fraction, int digits) {
    for (int round = 1; round <= digits; ++round) {
        fraction *= kDigitBase;
        const bool last = round == digits;
        const int32_t digit = Truncate(last ? fraction + 0.5 : fraction);
        value = static_cast<Word>((value << kDigitBits) | (static_cast<unsigned>(digit) & kDigitMask));
        fraction -= digit;
        if (!(fraction > 0.0)) break;
    }
    return value;
}

}  // namespace

extern "C" KTCLR_API uint32_t Vx_DoubleTo2bFixed2bNumber(double value) {
    constexpr int kDigits = 4;
    constexpr int kFractionBits = 16;
    const int32_t whole = Truncate(value);
    const double fraction = value - whole;
    if (!(fraction > 0.0)) return static_cast<uint32_t>(whole) << kFractionBits;
    return AppendFractionDigits<uint32_t>(static_cast<uint32_t>(whole), fraction, kDigits);
}

extern "C" KTCLR_API int32_t Vx_DoubleToU8Fixed8Number(double value) {
    constexpr int kDigits = 2;
    constexpr int kFractionBits = 8;
    const auto whole = static_cast<uint16_t>(Truncate(value));
    const double fraction = value - static_cast<int16_t>(whole);
    if (!(fraction > 0.0)) return static_cast<uint16_t>(whole << kFractionBits);
    return AppendFractionDigits<uint16_t>(whole, fraction, kDigits);
}

extern "C" KTCLR_API double Vx_2bFixed2bNumberToDouble(int32_t value) {
    const auto bits = static_cast<uint32_t>(value);
    return static_cast<double>(bits >> 16) + static_cast<double>(bits & 0xFFFFu) / 65536.0;
}

extern "C" KTCLR_API double Vx_U8Fixed8NumberToDouble(uint32_t value) {
    return static_cast<double>((value >> 8) & 0xFFu) + static_cast<double>(value & 0xFFu) / 256.0;
}
