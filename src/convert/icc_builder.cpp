// The transform builder. It opens at most three profiles (a source, a
// destination and one built-in fallback) and closes all it opened before
// returning; the transform keeps what it needs.
#include "convert/icc_builder.h"

#include <lcms2.h>

#include "colormodels/builtin_profiles.h"
#include "convert/caller_path.h"
#include "colormodels/space_table.h"
#include "convert/icc_format.h"
#include "convert/icc_setup.h"
#include "platform/probe.h"
#include "platform/utf16.h"

namespace kt::convert {
namespace {

constexpr auto kModule = mem::Module::ktclr;
constexpr std::uint32_t kFlagNoWhiteFix = 1;
constexpr int kMaxProfiles = 255;

// The built-in profile for a format, from the space table. The Lab profile
// serves only the built-in method; a caller's missing Lab side has no
// fallback.
const color::data::Blob* BuiltinFor(std::uint32_t format, bool asFallback) {
    for (const color::SpaceInfo& s : color::kSpaces)
        if (s.iccFormat == format && s.profile != 0 && (s.profileFallback || !asFallback))
            return color::BuiltinProfile(s.profile);
    return nullptr;
}

cmsHPROFILE OpenBuiltin(const color::data::Blob* blob) {
    return cmsOpenProfileFromMem(blob->bytes, blob->declared);
}

// The profiles opened so far, closed together on the way out.
class OpenProfiles {
public:
    OpenProfiles() = default;
    OpenProfiles(const OpenProfiles&) = delete;
    OpenProfiles& operator=(const OpenProfiles&) = delete;
    ~OpenProfiles() {
        if (src) cmsCloseProfile(src);
        if (dst) cmsCloseProfile(dst);
    }
    cmsHPROFILE src = nullptr;
    cmsHPROFILE dst = nullptr;
};

KtStatus OpenCallerProfile(const IccProfileSource& s, cmsHPROFILE* out) {
    *out = nullptr;
    if (s.bytes) {
        if (s.length == 0 || platform::IsBadReadPtr(s.bytes, s.length)) return ERR_INVALID_PARAMETER;
        *out = cmsOpenProfileFromMem(s.bytes, s.length);
        return *out ? STATUS_OK : ERR_PROFILE_OPEN;
    }
    std::size_t length = 0;
    const PathState state = LookUpPath(s.path, kCallerPathUnits, &length);
    if (length == 0) return STATUS_OK;  // no profile for this side
    if (state == PathState::noMemory) return ERR_ALLOC;
    if (state == PathState::missing) return ERR_FILE_NOT_FOUND;
    text::Utf8 name;
    if (!name.Assign(s.path, length, kModule)) return ERR_ALLOC;
    *out = cmsOpenProfileFromFile(name.c_str(), "r");
    return *out ? STATUS_OK : ERR_PROFILE_OPEN;
}

// Source then destination, whichever exist; the intent comes from the
// destination's header.
cmsHTRANSFORM Attempt(const OpenProfiles& p, std::uint32_t srcFormat, std::uint32_t dstFormat, std::uint32_t flags,
                      KtStatus* status) {
    cmsHPROFILE list[2];
    int count = 0;
    if (p.src) list[count++] = p.src;
    if (p.dst) list[count++] = p.dst;
    if (count < 1 || count > kMaxProfiles) {
        *status = ERR_PROFILE_COUNT;
        return nullptr;
    }
    const cmsUInt32Number intent = p.dst ? cmsGetHeaderRenderingIntent(p.dst) : INTENT_PERCEPTUAL;
    const cmsUInt32Number lcmsFlags = (flags & kFlagNoWhiteFix) ? cmsFLAGS_NOWHITEONWHITEFIXUP : 0;
    cmsHTRANSFORM t = cmsCreateMultiprofileTransformTHR(cmsGetProfileContextID(list[0]), list,
                                                        static_cast<cmsUInt32Number>(count), srcFormat, dstFormat,
                                                        intent, lcmsFlags);
    // lcms2 refuses pixel formats that do not fit the profiles' spaces.
    *status = t ? STATUS_OK : ERR_BAD_COLOR_SPACE;
    return t;
}

}  // namespace

void* BuildIccTransform(std::uint32_t srcFormat, std::uint32_t dstFormat, std::uint32_t flags,
                        const IccProfileSource& src, const IccProfileSource& dst, KtStatus* status) noexcept {
    OpenProfiles p;
    if (!(flags & kIccFlagCustom)) {
        const color::data::Blob* s = BuiltinFor(srcFormat, false);
        const color::data::Blob* d = BuiltinFor(dstFormat, false);
        if (!s || !d) {
            *status = ERR_UNSUPPORTED_SPACE;
            return nullptr;
        }
        p.src = OpenBuiltin(s);
        p.dst = OpenBuiltin(d);
        if (!p.src || !p.dst) {
            *status = ERR_PROFILE_OPEN;
            return nullptr;
        }
        return Attempt(p, srcFormat, dstFormat, flags, status);
    }

    if ((*status = OpenCallerProfile(src, &p.src)) != STATUS_OK) return nullptr;
    if ((*status = OpenCallerProfile(dst, &p.dst)) != STATUS_OK) return nullptr;
    if (cmsHTRANSFORM t = Attempt(p, srcFormat, dstFormat, flags, status)) return t;

    // One side missing: stand in the built-in profile of its format and try
    // once more.
    const color::data::Blob* fallback = nullptr;
    cmsHPROFILE* slot = nullptr;
    if (!p.dst) {
        fallback = BuiltinFor(dstFormat, true);
        slot = &p.dst;
    } else if (!p.src) {
        fallback = BuiltinFor(srcFormat, true);
        slot = &p.src;
    }
    if (fallback) *slot = OpenBuiltin(fallback);
    cmsHTRANSFORM t = Attempt(p, srcFormat, dstFormat, flags, status);
    if (t) *status = STATUS_OK;
    return t;
}

}  // namespace kt::convert
