#include "formats/save_options_conv.h"

#include "platform/narrow_text.h"
#include "platform/probe.h"

namespace kt::formats {

namespace {
constexpr auto kModule = mem::Module::iccsave;
}

KtStatus SaveOptionsConv::Begin() noexcept {
    End();
    if (!narrow_) return STATUS_OK;
    if (platform::IsBadReadPtr(narrow_, sizeof *narrow_)) return ERR_BAD_POINTER;
    wide_.structSize = narrow_->structSize;
    wide_.flags = narrow_->flags;
    // Only a record of the right size is known to carry the name.
    if (narrow_->structSize == KTCLR_SIZEOF_SAVE_FILE_OPTIONS &&
        !text::DuplicateWide(narrow_->backupFileName, &backup_, kModule))
        return ERR_NO_MEMORY;
    wide_.backupFileName = backup_;
    return STATUS_OK;
}

void SaveOptionsConv::End() noexcept {
    text::FreeWide(backup_, kModule);
    backup_ = nullptr;
    wide_ = Vx_SaveFileOptions{};
}

}  // namespace kt::formats
