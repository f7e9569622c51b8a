// METHOD_CUSTOM_ICC: the caller's profiles from files or memory, the
// one-profile first attempt, the built-in fallbacks, the path rules, and
// rebuilding through Vx_ClrSetConversionParams.
#include <gtest/gtest.h>
#include <lcms2.h>
#include <sys/stat.h>

#include "convert/icc_format.h"
#include "convert/icc_test_support.h"
#include "support/params.h"

namespace kt {
namespace {

using test::Bytes;
using test::BuiltinProfile;
using test::Direct;
using test::Handle;
using test::Params;
using test::SamplePixels;
using test::ScratchDir;
using test::SetPath;

constexpr std::size_t kPixels = 2000;

// lcms2's own sRGB, so a custom profile differs from the built-in one.
Bytes LcmsSrgb() {
    cmsHPROFILE p = cmsCreate_sRGBProfile();
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(p, nullptr, &size);
    Bytes b(size);
    cmsSaveProfileToMem(p, b.data(), &size);
    cmsCloseProfile(p);
    return b;
}

// Converts sample pixels through the handle's custom transform.
Bytes Convert(ClrHandle* h, int srcBytes, int dstBytes) {
    const Bytes in = SamplePixels(srcBytes, kPixels);
    Bytes out(kPixels * static_cast<std::size_t>(dstBytes));
    EXPECT_EQ(Vx_ClrConvert(h, const_cast<std::uint8_t*>(in.data()), out.data(), static_cast<int>(kPixels), 1, 0, 0),
              STATUS_OK);
    return out;
}

Bytes Expected(const Direct& d, int srcBytes, int dstBytes) {
    EXPECT_TRUE(d.ok());
    return d.Run(SamplePixels(srcBytes, kPixels), kPixels, static_cast<std::size_t>(dstBytes));
}

class CustomIcc : public testing::Test {
protected:
    ScratchDir dir;
    const Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS);
    const Bytes display = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    const Bytes srgb = LcmsSrgb();
};

TEST_F(CustomIcc, ProfilesFromFilesAndMemory) {
    const std::string pressFile = dir.Write("press.icc", press), srgbFile = dir.Write("srgb.icc", srgb);
    const Direct direct({&press, &srgb}, TYPE_CMYK_8, TYPE_RGB_8);
    const Bytes expect = Expected(direct, 4, 3);

    ConversionParams p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.srcProfilePath, pressFile);
    SetPath(p.dstProfilePath, srgbFile);
    Handle byFile;
    ASSERT_EQ(Vx_ClrInit(&byFile.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    EXPECT_EQ(byFile.h->iccTransform, nullptr);
    ASSERT_NE(byFile.h->customIccTransform, nullptr);
    EXPECT_EQ(byFile.h->srcFormat, TYPE_CMYK_8);
    EXPECT_EQ(std::u16string(byFile.h->dstProfilePath), std::u16string(srgbFile.begin(), srgbFile.end()));
    EXPECT_EQ(Convert(byFile.h, 4, 3), expect);

    // Memory wins over a path; the handle keeps its own copies.
    auto* srcCopy = new Bytes(press);
    auto* dstCopy = new Bytes(srgb);
    ProfileMemory src{KTCLR_SIZEOF_PROFILE_MEMORY, srcCopy->data(), static_cast<std::uint32_t>(srcCopy->size())};
    ProfileMemory dst{KTCLR_SIZEOF_PROFILE_MEMORY, dstCopy->data(), static_cast<std::uint32_t>(dstCopy->size())};
    p = Params(METHOD_CUSTOM_ICC);
    p.srcProfileMemory = &src;
    p.dstProfileMemory = &dst;
    SetPath(p.dstProfilePath, dir.path() + "/missing.icc");
    Handle byMemory;
    ASSERT_EQ(Vx_ClrInit(&byMemory.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    ASSERT_NE(byMemory.h->srcProfileMemory, nullptr);
    EXPECT_NE(byMemory.h->srcProfileMemory->data, srcCopy->data());
    EXPECT_EQ(byMemory.h->srcProfileMemory->length, press.size());
    EXPECT_EQ(byMemory.h->dstProfilePath[0], 0);
    delete srcCopy;
    delete dstCopy;
    EXPECT_EQ(Convert(byMemory.h, 4, 3), expect);
    // Rebuilding uses the copies.
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    ASSERT_EQ(Vx_ClrSetConversionParams(byMemory.h, &change), STATUS_OK);
    EXPECT_EQ(Convert(byMemory.h, 4, 3), expect);

    // The same space on both sides is not an identity under the custom method.
    p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.srcProfilePath, srgbFile);
    SetPath(p.dstProfilePath, dir.Write("display.icc", display));
    Handle same;
    ASSERT_EQ(Vx_ClrInit(&same.h, CS_RGB, CS_RGB, &p), STATUS_OK);
    EXPECT_EQ(Convert(same.h, 3, 3), Expected(Direct({&srgb, &display}, TYPE_RGB_8, TYPE_RGB_8), 3, 3));
}

TEST_F(CustomIcc, OneProfileAndFallbacks) {
    const std::string pressFile = dir.Write("press.icc", press), srgbFile = dir.Write("srgb.icc", srgb);

    // A source alone that lcms2 takes: CMYK to its Lab connection space.
    ConversionParams p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.srcProfilePath, pressFile);
    Handle toLab;
    ASSERT_EQ(Vx_ClrInit(&toLab.h, CS_CMYK, CS_LAB, &p), STATUS_OK);
    Bytes expect = Expected(Direct({&press}, TYPE_CMYK_8, TYPE_Lab_8), 4, 3);
    for (std::size_t i = 0; i < expect.size(); i += 3) expect[i + 1] += 128, expect[i + 2] += 128;
    EXPECT_EQ(Convert(toLab.h, 4, 3), expect);

    // A source alone that lcms2 refuses (RGB to its XYZ connection space
    // written as RGB): the built-in display profile stands in as destination.
    p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.srcProfilePath, srgbFile);
    Handle srcOnly;
    ASSERT_EQ(Vx_ClrInit(&srcOnly.h, CS_RGB, CS_CMYK, &p), STATUS_OK);
    EXPECT_EQ(Convert(srcOnly.h, 3, 4), Expected(Direct({&srgb, &press}, TYPE_RGB_8, TYPE_CMYK_8), 3, 4));

    // A destination alone: the built-in profile of the source format joins.
    p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.dstProfilePath, srgbFile);
    Handle dstOnly;
    ASSERT_EQ(Vx_ClrInit(&dstOnly.h, CS_CMYK, CS_BGR, &p), STATUS_OK);
    EXPECT_EQ(Convert(dstOnly.h, 4, 3), Expected(Direct({&press, &srgb}, TYPE_CMYK_8, TYPE_BGR_8), 4, 3));

    // No profiles: a Lab destination has no fallback.
    p = Params(METHOD_CUSTOM_ICC);
    Handle none;
    EXPECT_EQ(Vx_ClrInit(&none.h, CS_RGB, CS_LAB, &p), ERR_PROFILE_COUNT);
    EXPECT_EQ(none.h, nullptr);
    // No profiles, RGB destination: the display profile alone cannot take
    // CMYK pixels.
    EXPECT_EQ(Vx_ClrInit(&none.h, CS_CMYK, CS_RGB, &p), ERR_BAD_COLOR_SPACE);
    // No profiles, CMY destination: the CMY profile alone takes CMY to Lab,
    // which is not what a CMY destination needs either.
    EXPECT_EQ(Vx_ClrInit(&none.h, CS_RGB, CS_CMY, &p), ERR_BAD_COLOR_SPACE);
    // Names that do not exist are ignored like empty ones.
    SetPath(p.srcProfilePath, dir.path() + "/nothing.icc");
    SetPath(p.dstProfilePath, dir.path() + "/nothing.icc");
    EXPECT_EQ(Vx_ClrInit(&none.h, CS_RGB, CS_LAB, &p), ERR_PROFILE_COUNT);
}

TEST_F(CustomIcc, RefusedInputs) {
    ConversionParams p = Params(METHOD_CUSTOM_ICC);
    Handle h;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_HSV, CS_RGB, &p), ERR_NO_ICC_FORMAT);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_YCBCR, &p), ERR_NO_ICC_FORMAT);

    Bytes bytes = srgb;
    ProfileMemory empty{KTCLR_SIZEOF_PROFILE_MEMORY, bytes.data(), 0};
    p.srcProfileMemory = &empty;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_CMYK, &p), ERR_INVALID_PARAMETER);
    ProfileMemory unreadable{KTCLR_SIZEOF_PROFILE_MEMORY, reinterpret_cast<void*>(16), 100};
    p.srcProfileMemory = &unreadable;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_CMYK, &p), ERR_INVALID_PARAMETER);
    Bytes junk(300, 0x5A);
    ProfileMemory garbage{KTCLR_SIZEOF_PROFILE_MEMORY, junk.data(), static_cast<std::uint32_t>(junk.size())};
    p.srcProfileMemory = &garbage;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_CMYK, &p), ERR_PROFILE_OPEN);
    p.srcProfileMemory = nullptr;
    SetPath(p.dstProfilePath, dir.Write("junk.icc", junk));
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_CMYK, &p), ERR_PROFILE_OPEN);
    EXPECT_EQ(h.h, nullptr);
}

TEST_F(CustomIcc, PathLengthRule) {
    // Nested directories make names of exactly 259 and 260 characters.
    std::string base = dir.path();
    while (base.size() < 259 - 20) {
        base += "/dddddddddddddddddddddddddddddddddddddddd";
        mkdir(base.c_str(), 0700);
    }
    base = base.substr(0, base.rfind('/'));
    auto nameOf = [&](std::size_t length) {
        std::string name = base + "/";
        name += std::string(length - name.size(), 'p');
        return name;
    };
    const std::string ok = nameOf(259), tooLong = nameOf(260);
    ASSERT_EQ(ok.size(), 259u);
    {
        std::FILE* f = std::fopen(ok.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(srgb.data(), 1, srgb.size(), f);
        std::fclose(f);
        f = std::fopen(tooLong.c_str(), "wb");
        ASSERT_NE(f, nullptr);
        std::fwrite(srgb.data(), 1, srgb.size(), f);
        std::fclose(f);
    }
    ConversionParams p = Params(METHOD_CUSTOM_ICC);
    SetPath(p.dstProfilePath, ok);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    EXPECT_EQ(std::u16string(h.h->dstProfilePath).size(), 259u);
    SetPath(p.dstProfilePath, tooLong);
    Handle g;
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_CMYK, CS_RGB, &p), ERR_FILE_NOT_FOUND);
    // A long name that does not exist is simply no profile.
    SetPath(p.dstProfilePath, tooLong + "x");
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_LAB, &p), ERR_PROFILE_COUNT);
}

TEST_F(CustomIcc, SetParamsRebuilds) {
    const std::string pressFile = dir.Write("press.icc", press), srgbFile = dir.Write("srgb.icc", srgb);
    ConversionParams p = Params(METHOD_CUSTOM_ICC, METHOD_CUSTOM_ICC | METHOD_ICC);
    SetPath(p.srcProfilePath, pressFile);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    ASSERT_NE(h.h->iccTransform, nullptr);
    const Bytes withDisplay = Expected(Direct({&press, &display}, TYPE_CMYK_8, TYPE_RGB_8), 4, 3);
    EXPECT_EQ(Convert(h.h, 4, 3), withDisplay);

    // Bit 2: new paths, rebuilt with the caller's flags.
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    SetPath(change.srcProfilePath, pressFile);
    SetPath(change.dstProfilePath, srgbFile);
    change.iccFlags = 1;
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    EXPECT_EQ(Convert(h.h, 4, 3),
              Expected(Direct({&press, &srgb}, TYPE_CMYK_8, TYPE_RGB_8, cmsFLAGS_NOWHITEONWHITEFIXUP), 4, 3));

    // Bit 4 with bit 2 under the custom method: paths first, then rebuild.
    IccOptions options{{7, 8, 9, 10, 11}};
    change = Params(0, KTCLR_CHANGE_ICC_OPTIONS | KTCLR_CHANGE_CUSTOM_PROFILES);
    change.iccOptions = &options;
    SetPath(change.srcProfilePath, pressFile);
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    EXPECT_EQ(Convert(h.h, 4, 3), withDisplay);
    EXPECT_EQ(h.h->iccOptions->values[0], 7u);

    // A path that went missing: the rebuild fails and leaves no transform.
    change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    SetPath(change.srcProfilePath, dir.path() + "/gone.icc");
    SetPath(change.dstProfilePath, srgbFile);
    std::remove(srgbFile.c_str());
    EXPECT_EQ(Vx_ClrSetConversionParams(h.h, &change), ERR_FILE_NOT_FOUND);
    EXPECT_EQ(h.h->customIccTransform, nullptr);
    std::uint8_t px[4] = {}, out[3] = {};
    EXPECT_EQ(Vx_ClrConvert(h.h, px, out, 1, 1, 0, 0), ERR_NULL_ARGUMENT);
    // The built-in transform is untouched.
    change = Params(METHOD_ICC, KTCLR_CHANGE_METHOD);
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
    EXPECT_EQ(Convert(h.h, 4, 3), withDisplay);
}

}  // namespace
}  // namespace kt
