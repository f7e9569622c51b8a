// Vx_ClrGetEmbeddedProfile: copies of the built-in profiles for callers.
#include "colormodels/builtin_profiles.h"

#include <cstring>

#include "ktclr/embedded.h"

namespace kt::color {
namespace {

struct Entry {
    std::int32_t selector;
    data::Blob blob;
};

}  // namespace

const data::Blob* BuiltinProfile(std::int32_t selector) noexcept {
    static const Entry kProfiles[] = {
        {kProfileRgbDisplay, data::RgbDisplayProfile()},
        {kProfileLab, data::LabProfile()},
        {kProfileCmykPress, data::PressProfile()},
        {kProfileCmy, data::CmyProfile()},
    };
    for (const Entry& e : kProfiles)
        if (e.selector == selector) return &e.blob;
    return nullptr;
}

}  // namespace kt::color

// The byte count is what leaves the library: for the CMY profile that is
// more than its header declares, so its trailing copyright tag comes along.
extern "C" KTCLR_API KtStatus Vx_ClrGetEmbeddedProfile(int32_t selector, uint8_t* buffer, int32_t* size) {
    const kt::color::data::Blob* blob = kt::color::BuiltinProfile(selector);
    if (!size || !blob) return ERR_INVALID_PARAMETER;
    const auto count = static_cast<std::int32_t>(blob->size);
    if (buffer) {
        if (*size < count) return ERR_BUFFER_TOO_SMALL;
        std::memcpy(buffer, blob->bytes, blob->size);
    }
    *size = count;
    return STATUS_OK;
}
