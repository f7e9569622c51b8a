// ConversionParamsA: the wide record it becomes, the back-copy, and the two
// twins reaching profile files by UTF-8 names.
#include <gtest/gtest.h>

#include <string>

#include "convert/narrow_params.h"
#include "ktclr/embedded.h"
#include "support/support.h"

namespace kt {
namespace {

using test::MappedPages;
using test::ScopedLocale;

std::u16string Ascii16(const std::string& s) { return std::u16string(s.begin(), s.end()); }

void SetNarrow(char* field, const std::string& s) {
    std::memset(field, 0, KTCLR_PARAMS_PATH_BYTES);
    std::memcpy(field, s.data(), std::min<std::size_t>(s.size(), KTCLR_PARAMS_PATH_BYTES));
}

// Every field distinct, so a swap shows; without pointers, a record the
// wide functions can take.
ConversionParamsA Sample(bool pointers = true) {
    ConversionParamsA a;
    std::memset(&a, 0, sizeof a);
    a.structSize = 12345;  // neither checked nor copied
    a.method = 3;
    if (pointers) {
        a.iccOptions = reinterpret_cast<IccOptions*>(0x10);
        a.srcProfileMemory = reinterpret_cast<ProfileMemory*>(0x20);
        a.dstProfileMemory = reinterpret_cast<ProfileMemory*>(0x30);
        a.cmykOptions = reinterpret_cast<CmykOptions*>(0x40);
        a.yuvOptions = reinterpret_cast<YuvOptions*>(0x50);
        a.labOptions = reinterpret_cast<LabOptions*>(0x60);
    }
    a.prepareMethods = 7;
    a.emulationMethod = 9;
    return a;
}

TEST(NarrowParams, WideRecordAndBackCopy) {
    ScopedLocale locale("C.UTF-8");
    ConversionParamsA a = Sample();
    SetNarrow(a.srcProfilePath, "/p/caf\xC3\xA9.icc");
    SetNarrow(a.dstProfilePath, std::string(263, 'd'));
    SetNarrow(a.emulationTablePath, std::string(KTCLR_PARAMS_PATH_BYTES, 'e'));  // no terminator: arrives empty
    ConversionParams w, expected;
    std::memset(&w, 0xA5, sizeof w);
    std::memset(&expected, 0, sizeof expected);
    expected.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;  // iccFlags stays 0
    expected.method = a.method;
    expected.iccOptions = a.iccOptions;
    expected.srcProfileMemory = a.srcProfileMemory;
    expected.dstProfileMemory = a.dstProfileMemory;
    expected.cmykOptions = a.cmykOptions;
    expected.yuvOptions = a.yuvOptions;
    expected.labOptions = a.labOptions;
    expected.prepareMethods = a.prepareMethods;
    expected.emulationMethod = a.emulationMethod;
    std::u16string src = u"/p/café.icc", dst(263, u'd');
    std::copy(src.begin(), src.end(), expected.srcProfilePath);
    std::copy(dst.begin(), dst.end(), expected.dstProfilePath);
    kt::convert::ParamsFromNarrow(a, &w);
    EXPECT_EQ(std::memcmp(&w, &expected, sizeof w), 0);

    ConversionParamsA back;
    std::memset(&back, 0, sizeof back);
    kt::convert::ParamsToNarrow(w, &back);
    back.structSize = a.structSize;
    SetNarrow(back.emulationTablePath, std::string(KTCLR_PARAMS_PATH_BYTES, 'e'));
    EXPECT_EQ(std::memcmp(&back, &a, sizeof a), 0);

    ScopedLocale c("C");  // the back-copy substitutes what C cannot encode
    kt::convert::ParamsToNarrow(w, &back);
    EXPECT_EQ(std::string(back.srcProfilePath), "/p/caf?.icc");
}

TEST(NarrowParams, InitAndSetReachTheWideFunctions) {
    ClrHandle* h = nullptr;
    ASSERT_EQ(Vx_ClrInitA(&h, CS_RGB, CS_HSV, nullptr), STATUS_OK);
    EXPECT_EQ(h->method, static_cast<std::uint32_t>(METHOD_BUILTIN));
    EXPECT_EQ(Vx_ClrSetConversionParamsA(h, nullptr), ERR_INVALID_PARAMETER);
    MappedPages none(1, MappedPages::Access::none);
    EXPECT_EQ(Vx_ClrSetConversionParamsA(h, reinterpret_cast<ConversionParamsA*>(none.data())), ERR_BAD_POINTER);
    ConversionParamsA a = Sample(false);
    a.prepareMethods = KTCLR_CHANGE_METHOD;
    a.method = METHOD_ICC;  // not prepared
    EXPECT_EQ(Vx_ClrSetConversionParamsA(h, &a), ERR_BAD_METHOD);
    EXPECT_EQ(Vx_ClrFree(h), STATUS_OK);

    a.method = a.prepareMethods = METHOD_BUILTIN_EMULATION;
    a.emulationMethod = 7;
    EXPECT_EQ(Vx_ClrInitA(&h, CS_CMYK, CS_RGB, &a), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_ClrInitA(&h, CS_CMYK, CS_RGB, reinterpret_cast<ConversionParamsA*>(none.data())), ERR_BAD_POINTER);
}

// Custom profiles named in UTF-8 reach the same files as their UTF-16
// names; in the C locale the names cannot be decoded and arrive empty.
TEST(NarrowParams, CustomProfilesByUtf8Names) {
    test::ScratchDir dir;
    const std::string src = dir.Write("r\xC3\xA9sum\xC3\xA9.icc", test::BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS));
    const std::string dst = dir.Write("\xE8\x89\xB2\xE5\xBD\xA9.icc", test::BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY));
    ConversionParamsA a = Sample(false);
    a.method = a.prepareMethods = METHOD_CUSTOM_ICC;
    SetNarrow(a.srcProfilePath, src);
    SetNarrow(a.dstProfilePath, dst);
    {
        ScopedLocale c("C");
        ClrHandle* h = nullptr;
        ConversionParams unnamed = test::Params(METHOD_CUSTOM_ICC);
        const KtStatus status = Vx_ClrInit(&h, CS_CMYK, CS_RGB, &unnamed);
        EXPECT_NE(status, STATUS_OK);
        EXPECT_EQ(Vx_ClrInitA(&h, CS_CMYK, CS_RGB, &a), status);
    }
    ScopedLocale utf8("C.UTF-8");
    ClrHandle* h = nullptr;
    ASSERT_EQ(Vx_ClrInitA(&h, CS_CMYK, CS_RGB, &a), STATUS_OK);
    EXPECT_EQ(std::u16string(h->srcProfilePath), Ascii16(dir.path()) + u"/résumé.icc");
    EXPECT_EQ(std::u16string(h->dstProfilePath), Ascii16(dir.path()) + u"/色彩.icc");
    EXPECT_EQ(Vx_ClrFree(h), STATUS_OK);
}

}  // namespace
}  // namespace kt
