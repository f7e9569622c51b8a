// Exported big-endian helpers for numbers of 1 to 8 bytes.
#include "ktclr/icc.h"

namespace {
constexpr int kMaxBytes = 8;
}

// The accumulator is 32 bits wide on purpose: for 5 to 8 bytes only the last
// four survive (Header.ByteHelpers pins it).
extern "C" KTCLR_API uint64_t Vx_ClrIntIccGetBytes(const unsigned char* bytes, int count) {
    if (!bytes || count <= 0 || count > kMaxBytes) return 0;
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = (value << 8) | bytes[i];
    return value;
}

extern "C" KTCLR_API KtStatus Vx_ClrIntIccSetBytes(unsigned char* bytes, uint64_t value, int count) {
    if (!bytes || count <= 0 || count > kMaxBytes) return ERR_INVALID_PARAMETER;
    for (int i = count - 1; i >= 0; --i, value >>= 8) bytes[i] = static_cast<unsigned char>(value);
    return STATUS_OK;
}
