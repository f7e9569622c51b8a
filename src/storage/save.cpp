// Vx_SaveICCProfile: check the arguments, identify the file, run the writer
// of its format family on a temporary copy and put the copy in place.
#include "formats/identify.h"
#include "ktclr/storage.h"
#include "platform/error_report.h"
#include "platform/safe_replace.h"
#include "storage/writers.h"

namespace kt::storage {
namespace {

using namespace kt::formats;

enum class Writer { none, gif, jpeg, tiff, webp };

Writer WriterFor(int32_t format) {
    if (format == kFormatGif) return Writer::gif;
    if (IsJpegFamily(format)) return Writer::jpeg;
    if (IsTiffFamily(format)) return Writer::tiff;
    if (IsWebp(format)) return Writer::webp;
    return Writer::none;
}

KtStatus Run(Writer writer, const char16_t* fileName, ProfileBytes profile, uint32_t flags,
             const char16_t* backup) noexcept {
    file::SafeReplace edit(mem::Module::iccsave);
    KtStatus status = edit.Begin(fileName);
    if (status != STATUS_OK) return status;
    switch (writer) {
        case Writer::gif: status = WriteGifProfile(edit, profile); break;
        case Writer::jpeg: status = WriteJpegProfile(edit, profile); break;
        case Writer::tiff: status = WriteTiffProfile(edit, profile); break;
        case Writer::webp: status = WriteWebpProfile(edit, profile, flags & VX_SAVE_WEBP_CONTAINER_RULES); break;
        case Writer::none: return ERR_FORMAT_NOT_SUPPORTED;
    }
    return status == STATUS_OK ? edit.Commit(backup) : status;
}

KtStatus Save(const char16_t* fileName, const ICCProfileRecord* profile, const Vx_SaveFileOptions* options) noexcept {
    if (!fileName || !profile) return ERR_INVALID_PARAMETER;
    if (profile->structSize != KTCLR_SIZEOF_ICC_PROFILE_RECORD) return ERR_BAD_STRUCT_SIZE;
    if (options && options->structSize != KTCLR_SIZEOF_SAVE_FILE_OPTIONS) return ERR_BAD_STRUCT_SIZE;
    if (options && (options->flags & ~VX_SAVE_WEBP_CONTAINER_RULES)) return ERR_INVALID_PARAMETER;
    if (!profile->profileData && profile->profileSize) return ERR_INVALID_PARAMETER;
    int32_t format = kFormatUnknown;
    KtStatus status = Identify(fileName, &format);
    if (status != STATUS_OK) return status;
    const Writer writer = WriterFor(format);
    if (writer == Writer::none) return ERR_FORMAT_NOT_SUPPORTED;
    status = Run(writer, fileName, ProfileBytes{profile->profileData, profile->profileSize}, options ? options->flags : 0,
                 options ? options->backupFileName : nullptr);
    // The GIF and WebP writers answer no status of their own: a failure is
    // recorded as the thread's last reported error and the call answers
    // STATUS_OK, the file untouched (Statuses.FilesLoadedAndSaved).
    if (status != STATUS_OK && (writer == Writer::gif || writer == Writer::webp)) {
        report::Error(status);
        return STATUS_OK;
    }
    return status;
}

}  // namespace
}  // namespace kt::storage

extern "C" KTCLR_API KtStatus Vx_SaveICCProfile(const KtChar16* fileName, const ICCProfileRecord* profile,
                                                const Vx_SaveFileOptions* saveOptions) {
    return kt::storage::Save(fileName, profile, saveOptions);
}
