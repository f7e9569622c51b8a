// Vx_LoadICCProfile and Vx_HasICCProfile: identify the file, run the reader
// of its format family.
#include <cerrno>

#include "formats/identify.h"
#include "ktclr/storage.h"
#include "platform/file.h"
#include "storage/readers.h"

namespace kt::storage {
namespace {

using namespace kt::formats;

KtStatus RunReader(int32_t format, file::File& f, Gather& gather) noexcept {
    if (IsJpegFamily(format)) return ReadJpegProfile(f, gather);
    if (IsTiffFamily(format)) return ReadTiffProfile(f, gather);
    if (IsPostScriptFamily(format)) return ReadPostScriptProfile(f, gather);
    if (IsWebp(format)) return ReadWebpProfile(f, gather);
    switch (format) {
        case kFormatMarker56: return ReadMarker56Profile(f, gather);
        case kFormatPng: return ReadPngProfile(f, gather);
        case kFormatPhotoshop: return ReadPhotoshopProfile(f, gather);
        default: return ERR_FORMAT_NOT_SUPPORTED;
    }
}

KtStatus Load(const char16_t* fileName, ICCProfileRecord* profile, const Vx_LoadFileOptions* options) noexcept {
    if (!fileName || !profile) return ERR_INVALID_PARAMETER;
    if (profile->structSize != KTCLR_SIZEOF_ICC_PROFILE_RECORD) return ERR_BAD_STRUCT_SIZE;
    if (options && options->structSize != KTCLR_SIZEOF_LOAD_FILE_OPTIONS) return ERR_BAD_STRUCT_SIZE;
    if (options && options->flags != 0) return ERR_INVALID_PARAMETER;
    uint8_t* earlierData = nullptr;
    uint32_t earlierSize = 0;
    if (profile->profileSize != 0) {
        earlierData = profile->profileData;
        earlierSize = profile->profileSize;
    }
    profile->profileData = nullptr;
    profile->profileSize = 0;

    int32_t format = kFormatUnknown;
    KtStatus status = Identify(fileName, &format);
    if (status != STATUS_OK) return status;
    if (!HasReader(format)) return ERR_FORMAT_NOT_SUPPORTED;
    file::File f;
    if (!f.Open(fileName, file::Mode::read, mem::Module::iccload))
        return errno == ENOMEM ? ERR_NO_MEMORY : ERR_FILE_READ;
    Gather gather(profile);
    status = RunReader(format, f, gather);
    f.Close();
    if (status == STATUS_OK && !profile->profileData) {
        profile->profileData = earlierData;
        profile->profileSize = earlierSize;
        return ERR_NO_ICC_PROFILE;
    }
    if (status != STATUS_OK) gather.Drop();  // nothing half-read stays with the caller
    return status;
}

}  // namespace
}  // namespace kt::storage

extern "C" KTCLR_API KtStatus Vx_LoadICCProfile(const KtChar16* fileName, ICCProfileRecord* profile,
                                                const Vx_LoadFileOptions* loadOptions) {
    return kt::storage::Load(fileName, profile, loadOptions);
}

extern "C" KTCLR_API KtStatus Vx_HasICCProfile(const KtChar16* fileName, const Vx_LoadFileOptions* loadOptions) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    KtStatus status = Vx_LoadICCProfile(fileName, &record, loadOptions);
    Vx_FreeICCProfile(&record);
    return status == STATUS_OK ? 1 : 0;
}
