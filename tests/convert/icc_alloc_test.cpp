// Allocation failures while a handle builds or rebuilds its ICC machinery:
// every one is reported and nothing leaks.
#include <gtest/gtest.h>

#include "convert/icc_test_support.h"
#include "support/alloc_failures.h"
#include "support/params.h"

namespace kt {
namespace {

using test::Bytes;
using test::BuiltinProfile;
using test::Params;
using test::ScratchDir;
using test::SetPath;

int InitAndFree(int src, int dst, ConversionParams* p) {
    ClrHandle* h = nullptr;
    const int status = Vx_ClrInit(&h, src, dst, p);
    if (status == STATUS_OK) Vx_ClrFree(h);
    return status;
}

void ExpectAllocFailure(int n, int status) { EXPECT_EQ(status, ERR_ALLOC) << "allocation " << n; }

TEST(IccAllocation, InitWithEachIccMethod) {
    ConversionParams builtin = Params(METHOD_ICC);
    EXPECT_GT(test::ForEachAllocationFailure([&] { return InitAndFree(CS_CMYK, CS_RGB, &builtin); },
                                             ExpectAllocFailure),
              0);

    Bytes press = BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS), display = BuiltinProfile(KTCLR_PROFILE_RGB_DISPLAY);
    ProfileMemory src{KTCLR_SIZEOF_PROFILE_MEMORY, press.data(), static_cast<std::uint32_t>(press.size())};
    ProfileMemory dst{KTCLR_SIZEOF_PROFILE_MEMORY, display.data(), static_cast<std::uint32_t>(display.size())};
    ConversionParams memory = Params(METHOD_CUSTOM_ICC, METHOD_CUSTOM_ICC | METHOD_ICC);
    memory.srcProfileMemory = &src;
    memory.dstProfileMemory = &dst;
    EXPECT_GT(test::ForEachAllocationFailure([&] { return InitAndFree(CS_CMYK, CS_BGR, &memory); },
                                             ExpectAllocFailure),
              4);

    ScratchDir dir;
    ConversionParams files = Params(METHOD_CUSTOM_ICC);
    SetPath(files.srcProfilePath, dir.Write("press.icc", press));
    SetPath(files.dstProfilePath, dir.Write("display.icc", display));
    EXPECT_GT(test::ForEachAllocationFailure([&] { return InitAndFree(CS_CMYK, CS_RGB, &files); },
                                             ExpectAllocFailure),
              4);
}

TEST(IccAllocation, SetParamsRebuilds) {
    ScratchDir dir;
    const std::string pressFile = dir.Write("press.icc", BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS));
    ConversionParams p = Params(METHOD_CUSTOM_ICC, METHOD_CUSTOM_ICC | METHOD_ICC);
    SetPath(p.srcProfilePath, pressFile);
    test::Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);

    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_PROFILES);
    SetPath(change.srcProfilePath, pressFile);
    EXPECT_GT(test::ForEachAllocationFailure([&] { return Vx_ClrSetConversionParams(h.h, &change); },
                                             ExpectAllocFailure),
              0);
    EXPECT_NE(h.h->customIccTransform, nullptr);

    IccOptions options{{1, 2, 3, 4, 5}};
    change = Params(METHOD_ICC, KTCLR_CHANGE_METHOD | KTCLR_CHANGE_ICC_OPTIONS);
    change.iccOptions = &options;
    test::ForEachAllocationFailure([&] { return Vx_ClrSetConversionParams(h.h, &change); }, ExpectAllocFailure);
    EXPECT_NE(h.h->iccTransform, nullptr);
}

}  // namespace
}  // namespace kt
