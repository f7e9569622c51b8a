// Narrow twins of the profile file functions: the name (and the save
// options) converted to UTF-16, then the wide function.
#include "formats/save_options_conv.h"
#include "ktclr/narrow.h"
#include "platform/narrow_text.h"

namespace {

using kt::mem::Module;
using kt::text::WideName;

}  // namespace

extern "C" KTCLR_API KtStatus Vx_FillICCProfileFromICCFileA(const char* fileName, ICCProfileRecord* profile) {
    WideName name(Module::iccprofile);
    if (!name.Assign(fileName)) return ERR_NO_MEMORY;
    return Vx_FillICCProfileFromICCFile(name.get(), profile);
}

extern "C" KTCLR_API KtStatus Vx_LoadICCProfileA(const char* fileName, ICCProfileRecord* profile,
                                                 const Vx_LoadFileOptions* loadOptions) {
    WideName name(Module::iccload);
    if (!name.Assign(fileName)) return ERR_NO_MEMORY;
    return Vx_LoadICCProfile(name.get(), profile, loadOptions);
}

extern "C" KTCLR_API KtStatus Vx_HasICCProfileA(const char* fileName, const Vx_LoadFileOptions* loadOptions) {
    WideName name(Module::iccload);
    if (!name.Assign(fileName)) return ERR_NO_MEMORY;
    return Vx_HasICCProfile(name.get(), loadOptions);
}

extern "C" KTCLR_API KtStatus Vx_GenerateICCFileA(ICCProfileRecord* profile, const char* fileName) {
    WideName name(Module::iccprofile);
    if (!name.Assign(fileName)) return ERR_NO_MEMORY;
    if (!profile || !name.get()) return ERR_INVALID_PARAMETER;
    return Vx_GenerateICCFile(profile, name.get());
}

extern "C" KTCLR_API KtStatus Vx_SaveICCProfileA(const char* fileName, const ICCProfileRecord* profile,
                                                 const Vx_SaveFileOptionsA* saveOptions) {
    WideName name(Module::iccsave);
    if (!name.Assign(fileName)) return ERR_NO_MEMORY;
    kt::formats::SaveOptionsConv options(saveOptions);
    const KtStatus begun = options.Begin();
    if (begun != STATUS_OK) return begun;
    const KtStatus status = Vx_SaveICCProfile(name.get(), profile, options.ValueW());
    options.End();
    return status;
}
