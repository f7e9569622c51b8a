#include "storage/gather.h"

#include <cstring>

#include "platform/alloc.h"

namespace kt::storage {
namespace {
constexpr auto kModule = mem::Module::iccload;
}

bool Gather::Append(const void* bytes, std::size_t n) noexcept {
    if (n == 0) return true;
    std::size_t held = record_->profileData ? record_->profileSize : 0;
    if (n > UINT32_MAX - held) return false;
    if (held + n > capacity_ || !record_->profileData) {
        // Geometric growth: a profile arriving a byte at a time stays linear.
        std::size_t grown = capacity_ * 2 > held + n ? capacity_ * 2 : held + n;
        void* p = KT_REALLOC(record_->profileData, grown);
        if (!p) return false;
        record_->profileData = static_cast<uint8_t*>(p);
        capacity_ = grown;
    }
    std::memcpy(record_->profileData + held, bytes, n);
    record_->profileSize = static_cast<uint32_t>(held + n);
    return true;
}

uint8_t* Gather::Take(std::size_t n) noexcept {
    if (n > UINT32_MAX) return nullptr;
    auto* p = static_cast<uint8_t*>(KT_ALLOC(n ? n : 1));
    if (!p) return nullptr;
    Drop();
    record_->profileData = p;
    record_->profileSize = static_cast<uint32_t>(n);
    capacity_ = n;
    return p;
}

void Gather::Drop() noexcept {
    KT_FREE(record_->profileData);
    record_->profileData = nullptr;
    record_->profileSize = 0;
    capacity_ = 0;
}

}  // namespace kt::storage
