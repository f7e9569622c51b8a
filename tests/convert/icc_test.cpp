// The ICC methods. Little CMS itself, given the same profiles, formats and
// flags, is the witness both for METHOD_ICC (between the built-in profiles)
// and for METHOD_CUSTOM_ICC (the caller's profiles from files or memory,
// the one-profile first attempt, the built-in fallbacks and rebuilding
// through Vx_ClrSetConversionParams). Padded rows: bitmap_convert_test.cpp.
#include <gtest/gtest.h>
#include <lcms2.h>

#include "ktclr/embedded.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Bytes;
using test::BuiltinProfile;
using test::Handle;
using test::Params;
using test::SetPath;

// The size a profile's header declares.
std::uint32_t DeclaredSize(const Bytes& b) { return std::uint32_t(b[0]) << 24 | b[1] << 16 | b[2] << 8 | b[3]; }

// The handle writes what a transform made directly through Little CMS
// writes, from the same profile bytes with the intent of the last
// profile's header; a Lab output gets the handle's +128 on a and b. The
// input: a grey ramp (white among it), then random pixels.
void ExpectSameAsLcms(ClrHandle* h, const std::vector<const Bytes*>& profiles, cmsUInt32Number inFormat,
                      cmsUInt32Number outFormat, cmsUInt32Number flags = 0) {
    std::vector<cmsHPROFILE> open;
    for (const Bytes* b : profiles) open.push_back(cmsOpenProfileFromMem(b->data(), DeclaredSize(*b)));
    const cmsUInt32Number intent = open.size() == 2 ? cmsGetHeaderRenderingIntent(open[1]) : 0;
    cmsHTRANSFORM t = cmsCreateMultiprofileTransform(open.data(), static_cast<cmsUInt32Number>(open.size()), inFormat,
                                                     outFormat, intent, flags);
    for (cmsHPROFILE p : open) cmsCloseProfile(p);
    ASSERT_NE(t, nullptr);
    constexpr int kPixels = 3000;
    const int in = T_CHANNELS(inFormat) + T_EXTRA(inFormat), out = T_CHANNELS(outFormat) + T_EXTRA(outFormat);
    Bytes pixels = test::Random(kPixels * in, 5), mine(kPixels * out), theirs(kPixels * out);
    for (int i = 0; i < 256 * in; ++i) pixels[i] = static_cast<std::uint8_t>(i / in);
    EXPECT_EQ(Vx_ClrConvert(h, pixels.data(), mine.data(), kPixels, 1, 0, 0), STATUS_OK);
    cmsDoTransform(t, pixels.data(), theirs.data(), kPixels);
    cmsDeleteTransform(t);
    for (int i = 0; T_COLORSPACE(outFormat) == PT_Lab && i < kPixels * 3; i += 3)
        theirs[i + 1] += 128, theirs[i + 2] += 128;
    EXPECT_EQ(mine, theirs);
}

struct Side {
    int space;
    std::int32_t selector;
    cmsUInt32Number format;
};
const Side kSides[] = {{CS_RGB, KTCLR_PROFILE_RGB_DISPLAY, TYPE_RGB_8},
                       {CS_BGR, KTCLR_PROFILE_RGB_DISPLAY, TYPE_BGR_8},
                       {CS_CMYK, KTCLR_PROFILE_CMYK_PRESS, TYPE_CMYK_8}, {CS_CMY, KTCLR_PROFILE_CMY, TYPE_CMY_8},
                       {CS_LAB, KTCLR_PROFILE_LAB, TYPE_Lab_8}};

TEST(EmbeddedProfile, SizeProtocol) {
    const char* source = std::getenv("KTCLR_SOURCE_DIR");
    const std::pair<std::int32_t, const char*> files[] = {
        {KTCLR_PROFILE_RGB_DISPLAY, "rgb_display.icc"}, {KTCLR_PROFILE_LAB, "lab.icc"},
        {KTCLR_PROFILE_CMYK_PRESS, "cmyk_press.icc"}, {KTCLR_PROFILE_CMY, "cmy.icc"}};
    for (const auto& [selector, file] : files) {
        SCOPED_TRACE(file);
        const Bytes bytes = BuiltinProfile(selector);
        const auto size = static_cast<std::int32_t>(bytes.size());
        // The library hands out its data file whole.
        const std::string data = source ? test::ReadFile(std::string(source) + "/data/builtin/" + file) : "";
        EXPECT_TRUE(!source || data == std::string(bytes.begin(), bytes.end()));
        Bytes buffer(bytes.size() + 16, 0xEE);
        std::int32_t small = size - 1, large = size + 16;
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), &small), ERR_BUFFER_TOO_SMALL);
        EXPECT_TRUE(small == size - 1 && buffer[0] == 0xEE);  // nothing written
        ASSERT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), &large), STATUS_OK);
        EXPECT_TRUE(large == size && buffer[bytes.size()] == 0xEE);
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, buffer.data(), nullptr), ERR_INVALID_PARAMETER);
    }
    // The CMY profile's copyright tag lies just past its declared size; the
    // block handed out covers it and eight bytes more.
    const Bytes cmy = BuiltinProfile(KTCLR_PROFILE_CMY);
    EXPECT_EQ(cmy.size(), DeclaredSize(cmy) + 64u);
    std::int32_t size = 77;
    for (std::int32_t selector : {0, 104, 108, 109, 111, -105})
        EXPECT_EQ(Vx_ClrGetEmbeddedProfile(selector, nullptr, &size), ERR_INVALID_PARAMETER);
    EXPECT_EQ(size, 77);
}

TEST(IccMethod, EveryPairMatchesLittleCms) {
    for (std::uint32_t flags : {0u, 1u})
        for (const Side& s : kSides)
            for (const Side& d : kSides) {
                if (s.space == d.space) continue;
                SCOPED_TRACE(testing::Message() << s.space << " -> " << d.space << " flags " << flags);
                ConversionParams p = Params(METHOD_ICC);
                p.iccFlags = flags;
                Handle h(s.space, d.space, &p);
                ASSERT_NE(h.h, nullptr);
                if (h.h->PathKind == KTCLR_PATH_TWO_STEP) {
                    EXPECT_EQ(h.h->iccTransform, nullptr);  // CMYK and CMY meet through RGB
                    continue;
                }
                const Bytes sp = BuiltinProfile(s.selector), dp = BuiltinProfile(d.selector);
                ExpectSameAsLcms(h.h, {&sp, &dp}, s.format, d.format, flags ? cmsFLAGS_NOWHITEONWHITEFIXUP : 0);
            }
}

TEST(IccMethod, RebuildAndFailures) {
    // Bit 4 under METHOD_ICC rebuilds from the built-in profiles, now with
    // the caller's flags.
    ConversionParams p = Params(METHOD_ICC);
    Handle h(CS_CMYK, CS_RGB, &p);
    IccOptions options{{1, 2, 3, 4, 5}};
    ConversionParams change = Params(0, KTCLR_CHANGE_ICC_OPTIONS);
    change.iccOptions = &options;
    change.iccFlags = 1;
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    const Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS), rgb = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    ExpectSameAsLcms(h.h, {&press, &rgb}, TYPE_CMYK_8, TYPE_RGB_8, cmsFLAGS_NOWHITEONWHITEFIXUP);

    // A pair through RGB in two steps builds no transform; a later rebuild
    // finds no built-in profile for its ids.
    p = Params(METHOD_ICC, METHOD_ICC | METHOD_BUILTIN);
    Handle two(CS_HSV, CS_YIQ, &p);
    EXPECT_EQ(Vx_ClrSetConversionParams(two.h, &change), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(two.h->iccTransform, nullptr);
}

// lcms2's own sRGB, so a caller's profile differs from the built-in one.
Bytes LcmsSrgb() {
    cmsHPROFILE p = cmsCreate_sRGBProfile();
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(p, nullptr, &size);
    Bytes b(size);
    cmsSaveProfileToMem(p, b.data(), &size);
    cmsCloseProfile(p);
    return b;
}

class CustomIcc : public testing::Test {
protected:
    test::ScratchDir dir;
    const Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS);
    const Bytes display = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    const Bytes srgb = LcmsSrgb();
    const std::string pressFile_ = dir.Write("press.icc", press), srgbFile_ = dir.Write("srgb.icc", srgb);
};

TEST_F(CustomIcc, EachSideFromFileMemoryOrFallback) {
    // A side's profile: a file, bytes in memory (which win over a path, and
    // which the handle copies: the caller's bytes are scrambled before the
    // conversion), a name that does not exist (ignored like an empty one),
    // or unusable bytes.
    enum Source { none, pressFile, srgbFile, displayFile, pressBytes, srgbBytes, missing, junkFile, junkBytes,
                  emptyBytes, badPointer };
    const Bytes junk(300, 0x5A), one(1);
    const std::string junkPath = dir.Write("junk.icc", junk), displayPath = dir.Write("display.icc", display);
    const std::pair<const Bytes*, std::string> sources[] = {
        {nullptr, ""},       {nullptr, pressFile_}, {nullptr, srgbFile_},   {nullptr, displayPath},
        {&press, ""},        {&srgb, ""},           {nullptr, dir.path() + "/missing.icc"},
        {nullptr, junkPath}, {&junk, ""},           {&one, ""},             {&one, ""}};
    struct Case {
        int src, dst;
        Source from, to;
        KtStatus status;
        std::vector<const Bytes*> witness = {};  // profiles Little CMS is given
        cmsUInt32Number in = 0, out = 0;
    } cases[] = {
        {CS_CMYK, CS_RGB, pressFile, srgbFile, STATUS_OK, {&press, &srgb}, TYPE_CMYK_8, TYPE_RGB_8},
        {CS_CMYK, CS_RGB, pressBytes, srgbBytes, STATUS_OK, {&press, &srgb}, TYPE_CMYK_8, TYPE_RGB_8},
        {CS_RGB, CS_RGB, srgbFile, displayFile, STATUS_OK, {&srgb, &display}, TYPE_RGB_8, TYPE_RGB_8},
        // One profile that lcms2 takes: CMYK to its Lab connection space.
        {CS_CMYK, CS_LAB, pressFile, none, STATUS_OK, {&press}, TYPE_CMYK_8, TYPE_Lab_8},
        // One that lcms2 refuses (RGB to XYZ written as CMYK): the built-in
        // profile of the missing side's format stands in.
        {CS_RGB, CS_CMYK, srgbFile, none, STATUS_OK, {&srgb, &press}, TYPE_RGB_8, TYPE_CMYK_8},
        {CS_CMYK, CS_BGR, none, srgbFile, STATUS_OK, {&press, &srgb}, TYPE_CMYK_8, TYPE_BGR_8},
        // No profiles: a Lab side has no fallback; the display profile alone
        // cannot take CMYK pixels, nor the CMY profile alone make CMY.
        {CS_RGB, CS_LAB, none, none, ERR_PROFILE_COUNT}, {CS_RGB, CS_LAB, missing, missing, ERR_PROFILE_COUNT},
        {CS_CMYK, CS_RGB, none, none, ERR_BAD_COLOR_SPACE}, {CS_RGB, CS_CMY, none, none, ERR_BAD_COLOR_SPACE},
        {CS_HSV, CS_RGB, none, none, ERR_NO_ICC_FORMAT}, {CS_RGB, CS_YCBCR, none, none, ERR_NO_ICC_FORMAT},
        {CS_RGB, CS_CMYK, junkBytes, none, ERR_PROFILE_OPEN}, {CS_RGB, CS_CMYK, none, junkFile, ERR_PROFILE_OPEN},
        {CS_RGB, CS_CMYK, emptyBytes, none, ERR_INVALID_PARAMETER},
        {CS_RGB, CS_CMYK, badPointer, none, ERR_INVALID_PARAMETER},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.src << "->" << c.dst << " " << c.from << " " << c.to);
        ConversionParams p = Params(METHOD_CUSTOM_ICC);
        Bytes copies[2];
        ProfileMemory memory[2];
        auto set = [&](Source s, KtChar16* path, ProfileMemory** slot, int i) {
            const auto& [bytes, file] = sources[s];
            SetPath(path, bytes ? displayPath : file);  // with bytes, the path is not used
            if (!bytes) return;
            copies[i] = *bytes;
            memory[i] = {KTCLR_SIZEOF_PROFILE_MEMORY, copies[i].data(), s == emptyBytes ? 0u : std::uint32_t(bytes->size())};
            if (s == badPointer) memory[i].data = reinterpret_cast<void*>(16);
            *slot = &memory[i];
        };
        set(c.from, p.srcProfilePath, &p.srcProfileMemory, 0);
        set(c.to, p.dstProfilePath, &p.dstProfileMemory, 1);
        Handle h;
        ASSERT_EQ(h.Init(c.src, c.dst, &p), c.status);
        if (c.status != STATUS_OK) continue;
        EXPECT_EQ(h.h->iccTransform, nullptr);
        for (Bytes& b : copies) std::fill(b.begin(), b.end(), 0);
        ExpectSameAsLcms(h.h, c.witness, c.in, c.out);
        // Rebuilding uses what the handle kept.
        ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
        if (c.from != pressBytes) continue;
        ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
        ExpectSameAsLcms(h.h, c.witness, c.in, c.out);
    }
}

TEST_F(CustomIcc, SetParamsRebuilds) {
    ConversionParams p = Params(METHOD_CUSTOM_ICC, METHOD_CUSTOM_ICC | METHOD_ICC);
    SetPath(p.srcProfilePath, pressFile_);
    Handle h(CS_CMYK, CS_RGB, &p);
    ASSERT_NE(h.h, nullptr);
    const auto withDisplay = [&] { ExpectSameAsLcms(h.h, {&press, &display}, TYPE_CMYK_8, TYPE_RGB_8); };
    withDisplay();

    // Bit 2: new paths, rebuilt with the caller's flags.
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    SetPath(change.srcProfilePath, pressFile_);
    SetPath(change.dstProfilePath, srgbFile_);
    change.iccFlags = 1;
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    ExpectSameAsLcms(h.h, {&press, &srgb}, TYPE_CMYK_8, TYPE_RGB_8, cmsFLAGS_NOWHITEONWHITEFIXUP);

    // Bit 4 with bit 2 under the custom method: paths first, then rebuild.
    IccOptions options{{7, 8, 9, 10, 11}};
    change = Params(0, KTCLR_CHANGE_ICC_OPTIONS | KTCLR_CHANGE_CUSTOM_PROFILES);
    change.iccOptions = &options;
    SetPath(change.srcProfilePath, pressFile_);
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    withDisplay();
    EXPECT_EQ(h.h->iccOptions->values[0], 7u);

    // A file that went missing: the rebuild fails and leaves no transform;
    // the built-in transform is untouched.
    change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    SetPath(change.srcProfilePath, dir.path() + "/gone.icc");
    SetPath(change.dstProfilePath, srgbFile_);
    std::remove(srgbFile_.c_str());
    EXPECT_EQ(Vx_ClrSetConversionParams(h.h, &change), ERR_FILE_NOT_FOUND);
    EXPECT_EQ(h.h->customIccTransform, nullptr);
    change = Params(METHOD_ICC, KTCLR_CHANGE_METHOD);
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    withDisplay();
}

}  // namespace
}  // namespace kt
