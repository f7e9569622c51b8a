// Vx_ClrInit, Vx_ClrIsValid and Vx_ClrFree: the checks in order (the
// parameter record's with Vx_ClrSetConversionParams'), the automatic choice, the bad option records, the list of live handles and
// the unload sweep. What each pair's handle holds, the copied option
// records included, shows in how it converts: convert_test.cpp.
#include <gtest/gtest.h>

#include "convert/library_frame.h"
#include "convert/registry.h"
#include "ktclr/narrow.h"
#include "support/support.h"

namespace kt {
namespace {

using test::Handle;
using test::MappedPages;
using test::Params;

// The parameter record's checks in order, at creation and by
// Vx_ClrSetConversionParams, and the narrow twins reaching both. The short
// form ends before iccFlags: a record whose iccFlags lies on an unreadable
// page is fine at the short size and unreadable at the long one. A bad
// size is refused before any allocation.
TEST(ParamsRecord, ChecksInOrder) {
    Handle live(CS_RGB, CS_HSV);
    ClrHandle copy = *live.h;  // readable, but no live handle
    MappedPages pages(2, MappedPages::Access::readWrite);
    pages.Protect(1, MappedPages::Access::none);
    std::uint8_t* guard = pages.data() + pages.page();
    const std::size_t shortBytes = offsetof(ConversionParams, iccFlags);
    auto* edge = reinterpret_cast<ConversionParams*>(guard - shortBytes);
    ConversionParams init = Params(METHOD_BUILTIN), badSize = init, set = Params(0, 0);
    badSize.structSize = 1625, set.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    ConversionParamsA unprepared, emulation;  // ICC not prepared; an emulation method out of range
    std::memset(&unprepared, 0, sizeof unprepared), std::memset(&emulation, 0, sizeof emulation);
    unprepared.prepareMethods = KTCLR_CHANGE_METHOD, unprepared.method = METHOD_ICC;
    emulation.method = emulation.prepareMethods = METHOD_BUILTIN_EMULATION, emulation.emulationMethod = 7;
    constexpr std::uint32_t kShort = KTCLR_SIZEOF_CONVERSION_PARAMS, kLong = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    enum Call { init_, set_, initA, setA };
    const struct {
        Call call;
        ClrHandle* h;  // at creation: whether there is somewhere to put one
        void* p;
        std::uint32_t edgeSize;  // nonzero: *p copied to the edge with this size
        KtStatus status;
    } rows[] = {
        {init_, nullptr, &badSize, 0, ERR_INVALID_PARAMETER}, {init_, live.h, &badSize, 0, ERR_BAD_STRUCT_SIZE},
        {init_, live.h, &init, kLong, ERR_BAD_POINTER}, {init_, live.h, &init, kShort, STATUS_OK},
        {init_, live.h, guard, 0, ERR_BAD_POINTER}, {initA, live.h, nullptr, 0, STATUS_OK},
        {initA, live.h, &emulation, 0, ERR_INVALID_PARAMETER}, {initA, live.h, guard, 0, ERR_BAD_POINTER},
        {set_, live.h, nullptr, 0, ERR_INVALID_PARAMETER}, {set_, nullptr, &badSize, 0, ERR_BAD_STRUCT_SIZE},
        {set_, nullptr, &set, 0, ERR_INVALID_PARAMETER}, {set_, live.h, &set, kShort, STATUS_OK},
        {set_, live.h, &set, kLong, ERR_BAD_POINTER}, {set_, reinterpret_cast<ClrHandle*>(guard), &set, 0, ERR_BAD_POINTER},
        {set_, &copy, &set, 0, ERR_INVALID_COLOR_HANDLE}, {setA, live.h, nullptr, 0, ERR_INVALID_PARAMETER},
        {setA, live.h, guard, 0, ERR_BAD_POINTER}, {setA, live.h, &unprepared, 0, ERR_BAD_METHOD},
    };
    for (const auto& r : rows) {
        void* p = r.p;
        if (r.edgeSize) std::memcpy(edge, r.p, shortBytes), edge->structSize = r.edgeSize, p = edge;
        mem::testing::ResetAllocationCount();
        ClrHandle* made = nullptr;
        EXPECT_EQ(r.call == init_ ? Vx_ClrInit(r.h ? &made : nullptr, CS_RGB, CS_HSV, static_cast<ConversionParams*>(p))
                  : r.call == initA ? Vx_ClrInitA(&made, CS_CMYK, CS_RGB, static_cast<ConversionParamsA*>(p))
                  : r.call == set_  ? Vx_ClrSetConversionParams(r.h, static_cast<ConversionParams*>(p))
                                    : Vx_ClrSetConversionParamsA(r.h, static_cast<ConversionParamsA*>(p)),
                  r.status)
            << &r - rows;
        EXPECT_TRUE(r.status != ERR_BAD_STRUCT_SIZE || mem::testing::AllocationCount() == 0) << &r - rows;
        EXPECT_EQ(made != nullptr, (r.call == init_ || r.call == initA) && r.status == STATUS_OK) << &r - rows;
        EXPECT_TRUE(!made || made->method == METHOD_BUILTIN) << &r - rows;
        EXPECT_TRUE(!made || Vx_ClrFree(made) == STATUS_OK);
    }
    // An empty mask changes nothing.
    const ClrHandle before = *live.h;
    EXPECT_EQ(Vx_ClrSetConversionParams(live.h, &set), STATUS_OK);
    EXPECT_EQ(std::memcmp(&before, live.h, sizeof before), 0);
}

// Which statuses the spaces and methods give, and the method a handle then
// holds.
TEST(HandleInit, SpacesAndMethods) {
    constexpr std::uint32_t kAuto = METHOD_AUTO, kIcc = METHOD_ICC, kBuiltin = METHOD_BUILTIN;
    const struct {
        int src, dst;
        bool params;
        std::uint32_t method, prepare;
        KtStatus status;
        std::uint32_t held = 0;
    } rows[] = {
        // The identity shortcut comes before the range check, unless the
        // custom-ICC bit is prepared.
        {200, 200, false, 0, 0, STATUS_OK}, {200, 0, false, 0, 0, ERR_UNSUPPORTED_SPACE},
        {0, 16, false, 0, 0, ERR_UNSUPPORTED_SPACE}, {129, 0, false, 0, 0, ERR_UNSUPPORTED_SPACE},
        {0, 145, false, 0, 0, ERR_UNSUPPORTED_SPACE}, {-1, 0, false, 0, 0, ERR_UNSUPPORTED_SPACE},
        {200, 200, true, kBuiltin, kBuiltin | METHOD_CUSTOM_ICC, ERR_UNSUPPORTED_SPACE},
        {CS_LAB, CS_LAB, true, kBuiltin, kBuiltin, STATUS_OK}, {CS_RGB, CS_HSV, false, 0, 0, STATUS_OK, kBuiltin},
        // Builtin, ICC, none prepared; the method in force need only share
        // a bit with the prepared set.
        {CS_RGB, CS_HSV, true, 1, 64, ERR_BAD_METHOD}, {CS_RGB, CS_HSV, true, 2, 1, ERR_BAD_METHOD},
        {CS_RGB, CS_HSV, true, 0, 1, ERR_BAD_METHOD},
        {CS_RGB, CS_HSV, true, kBuiltin | 64, kBuiltin, STATUS_OK, kBuiltin | 64},
        // An ICC path needs an ICC format on both sides; a two-step pair
        // needs none.
        {CS_RGB, CS_HSV, true, kBuiltin, kBuiltin | kIcc, ERR_BAD_COLOR_SPACE},
        {CS_HSV, CS_YIQ, true, kBuiltin, kBuiltin | kIcc, STATUS_OK, kBuiltin},
        // The automatic choice; only both fields at 32 ask for it, 32 beside
        // a real bit is taken as the method in force.
        {CS_RGB, CS_HSV, true, kAuto, kAuto, ERR_BAD_METHOD}, {CS_LAB, CS_BGR, true, kAuto, kAuto, STATUS_OK, kBuiltin},
        {CS_HSV, CS_YIQ, true, kAuto, kAuto, STATUS_OK, kBuiltin},
        {CS_RGB, CS_CMYK, true, kAuto, kAuto, STATUS_OK, kIcc}, {CS_YCCK, CS_RGB, true, kAuto, kAuto, STATUS_OK, kIcc},
        {CS_LAB, CS_RGB, true, kAuto, kBuiltin, ERR_BAD_METHOD},
        {CS_LAB, CS_RGB, true, kAuto, kAuto | kBuiltin, STATUS_OK, kAuto},
    };
    for (const auto& r : rows) {
        ConversionParams p = Params(r.method, r.prepare);
        Handle h;
        EXPECT_EQ(h.Init(r.src, r.dst, r.params ? &p : nullptr), r.status) << &r - rows;
        EXPECT_TRUE(!h.h || h.h->method == r.held) << &r - rows;
        // 32 is back in the caller's record whether or not a choice was made.
        EXPECT_TRUE(r.method != kAuto || r.prepare != kAuto || (p.method == kAuto && p.prepareMethods == kAuto));
    }
    // A failure after the choice leaves the chosen bit in both fields: the
    // fourth allocation (after handle, node and ICC options) is the YCCK table.
    ConversionParams p = Params(METHOD_AUTO);
    Handle h;
    mem::testing::FailNthAllocation(4);
    EXPECT_EQ(h.Init(CS_YCCK, CS_RGB, &p), ERR_ALLOC);
    mem::testing::FailNthAllocation(0);
    EXPECT_TRUE(p.method == kIcc && p.prepareMethods == kIcc);
    // Without an ICC record the handle's holds the default values.
    EXPECT_EQ(Handle(CS_RGB, CS_HSV, METHOD_BUILTIN).h->iccOptions->values[0], 50u);
}

TEST(HandleInit, BadOptionRecordsAbandonOrRelease) {
    const std::size_t before = convert::registry::Count();
    MappedPages none(1, MappedPages::Access::none);
    ConversionParams unreadable = Params(METHOD_BUILTIN), wrongSize = Params(METHOD_BUILTIN);
    unreadable.cmykOptions = reinterpret_cast<CmykOptions*>(none.data());
    unreadable.yuvOptions = reinterpret_cast<YuvOptions*>(none.data());
    unreadable.labOptions = reinterpret_cast<LabOptions*>(none.data());
    unsigned char buf[4];
    CmykOptions cmyk = test::Cmyk(1);
    YuvOptions yuv = test::Yuv(buf, 4);
    LabOptions lab = test::Lab(0);
    cmyk.structSize = 13, yuv.structSize = 41, lab.structSize = 31;
    wrongSize.cmykOptions = &cmyk, wrongSize.yuvOptions = &yuv, wrongSize.labOptions = &lab;
    // Records of spaces the pair does not use are never looked at.
    EXPECT_NE(Handle(CS_RGB, CS_HSV, &unreadable).h, nullptr);
    // Unreadable records, and a CMYK record of the wrong size, return at
    // once: the half-built handle stays on the list, live but never handed
    // out. YUV and Lab records of the wrong size are released.
    const struct {
        int src, dst;
        ConversionParams* p;
        KtStatus status;
        bool abandoned;
    } rows[] = {{CS_RGB, CS_CMYK, &unreadable, ERR_BAD_POINTER, true},
                {CS_YUV, CS_RGB, &unreadable, ERR_BAD_POINTER, true},
                {CS_RGB, CS_LAB, &unreadable, ERR_BAD_POINTER, true},
                {CS_RGB, CS_CMYK, &wrongSize, ERR_BAD_STRUCT_SIZE, true},
                {CS_YUV, CS_RGB, &wrongSize, ERR_BAD_STRUCT_SIZE, false},
                {CS_LAB, CS_RGB, &wrongSize, ERR_BAD_STRUCT_SIZE, false}};
    for (const auto& r : rows) {
        Handle h;
        EXPECT_EQ(h.Init(r.src, r.dst, r.p), r.status) << &r - rows;
        EXPECT_EQ(h.h, nullptr);
        ASSERT_EQ(convert::registry::Count(), before + r.abandoned) << &r - rows;
        if (!r.abandoned) continue;
        // The newest node; free it as the unload sweep would.
        ClrHandle* stray = convert::registry::Tail();
        EXPECT_EQ(stray->srcSpace, 0);  // never finished
        EXPECT_EQ(Vx_ClrFree(stray), STATUS_OK);
    }
}

// Null, unreadable, a readable copy that is not on the list, a live handle
// whose size field was overwritten.
TEST(HandleLifecycle, ValidityAndFree) {
    MappedPages none(1, MappedPages::Access::none);
    Handle h(CS_RGB, CS_HLS);
    ClrHandle copy = *h.h;
    const struct {
        ClrHandle* h;
        KtStatus valid, free;
    } rows[] = {{nullptr, ERR_INVALID_COLOR_HANDLE, ERR_INVALID_PARAMETER},
                {reinterpret_cast<ClrHandle*>(none.data()), ERR_INVALID_COLOR_HANDLE, ERR_INVALID_PARAMETER},
                {&copy, ERR_INVALID_COLOR_HANDLE, ERR_INVALID_COLOR_HANDLE}};
    for (const auto& r : rows) {
        EXPECT_EQ(Vx_ClrIsValid(r.h), r.valid) << &r - rows;
        EXPECT_EQ(Vx_ClrFree(r.h), r.free) << &r - rows;
    }
    EXPECT_EQ(Vx_ClrIsValid(h.h), STATUS_OK);
    h.h->structSize = 1651;
    EXPECT_EQ(Vx_ClrIsValid(h.h), ERR_INVALID_COLOR_HANDLE);
    h.h->structSize = KTCLR_SIZEOF_CLR_HANDLE;
}

TEST(HandleLifecycle, IndexGrowthKeepsEveryHandleReachable) {
    // Every handle must stay findable across each growth of the index,
    // whichever bucket the newest one lands in, and after half are freed.
    constexpr int kCount = 600;
    static ClrHandle* h[kCount];
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(Vx_ClrInit(&h[i], CS_RGB, CS_YIQ, nullptr), STATUS_OK);
        for (int j = 0; j <= i; ++j) ASSERT_EQ(Vx_ClrIsValid(h[j]), STATUS_OK) << j << " after " << i;
    }
    for (int i = 0; i < kCount; i += 2) ASSERT_EQ(Vx_ClrFree(h[i]), STATUS_OK);
    for (int i = 1; i < kCount; i += 2) ASSERT_EQ(Vx_ClrIsValid(h[i]), STATUS_OK);
    for (int i = 1; i < kCount; i += 2) ASSERT_EQ(Vx_ClrFree(h[i]), STATUS_OK);
}

TEST(LibraryFrame, UnloadSweepFreesForgottenHandles) {
    const test::LiveCounts before = test::Live();
    ASSERT_EQ(convert::registry::Count(), 0u) << "another test left handles behind";
    ASSERT_EQ(convert::AttachCount(), 1);
    ClrHandle* h[3] = {};
    ASSERT_EQ(Vx_ClrInit(&h[0], CS_RGB, CS_HSV, nullptr), STATUS_OK);
    ConversionParams p = Params(METHOD_BUILTIN);
    LabOptions lab = test::Lab(0);
    p.labOptions = &lab;
    ASSERT_EQ(Vx_ClrInit(&h[1], CS_LAB, CS_YCCK, &p), STATUS_OK);
    // A half-built handle abandoned by a bad option record is swept too.
    CmykOptions bad = test::Cmyk(0);
    bad.structSize = 11;
    p.cmykOptions = &bad;
    EXPECT_EQ(Vx_ClrInit(&h[2], CS_RGB, CS_CMYK, &p), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(convert::registry::Count(), 3u);
    // A second attach keeps the handles; the last detach sweeps them.
    convert::LibraryAttach();
    convert::LibraryDetach();
    EXPECT_EQ(convert::registry::Count(), 3u);
    convert::LibraryDetach();
    EXPECT_EQ(convert::registry::Count(), 0u);
    EXPECT_EQ(test::Live(), before);
    convert::LibraryAttach();  // as the loader left it
}

}  // namespace
}  // namespace kt
