// Vx_ClrInit, Vx_ClrIsValid and Vx_ClrFree: every check in order, the path
// rules, the automatic choice and what a handle owns.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "colormodels/lab_tables.h"
#include "colormodels/ycck_table.h"
#include "convert/icc_setup.h"
#include "convert/registry.h"
#include "ktclr/convert.h"
#include "platform/alloc_control.h"
#include "support/mapped_memory.h"
#include "support/params.h"

namespace kt {
namespace {

using test::MappedPages;
using test::Params;

struct Handle {
    ClrHandle* h = nullptr;
    ~Handle() {
        if (h) Vx_ClrFree(h);
    }
};

TEST(HandleInit, ArgumentChecksInOrder) {
    ConversionParams p = Params(METHOD_BUILTIN);
    p.structSize = 1625;
    EXPECT_EQ(Vx_ClrInit(nullptr, CS_RGB, CS_HSV, &p), ERR_INVALID_PARAMETER);

    // A bad size is refused before anything is allocated.
    mem::testing::ResetAllocationCount();
    Handle h;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(mem::testing::AllocationCount(), 0);
    EXPECT_EQ(h.h, nullptr);

    // The short form ends before iccFlags: a record whose iccFlags lies on
    // an inaccessible page is fine at 1624 and unreadable at 1628.
    MappedPages pages(2, MappedPages::Access::readWrite);
    pages.Protect(1, MappedPages::Access::none);
    const std::size_t shortBytes = offsetof(ConversionParams, iccFlags);
    auto* edge = reinterpret_cast<ConversionParams*>(pages.data() + pages.page() - shortBytes);
    std::memcpy(edge, &p, shortBytes);
    edge->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, edge), ERR_BAD_POINTER);
    edge->structSize = KTCLR_SIZEOF_CONVERSION_PARAMS;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, edge), STATUS_OK);
    // A record that is not readable at all.
    Handle other;
    EXPECT_EQ(Vx_ClrInit(&other.h, CS_RGB, CS_HSV, reinterpret_cast<ConversionParams*>(pages.data() + pages.page())),
              ERR_BAD_POINTER);
}

TEST(HandleInit, IdentityShortcutComesBeforeTheRangeCheck) {
    Handle a, b;
    ASSERT_EQ(Vx_ClrInit(&a.h, 200, 200, nullptr), STATUS_OK);
    EXPECT_EQ(a.h->structSize, KTCLR_SIZEOF_CLR_HANDLE);
    EXPECT_EQ(a.h->srcSpace, 200);
    EXPECT_EQ(a.h->method, 0u);
    EXPECT_EQ(a.h->iccOptions, nullptr);
    EXPECT_EQ(Vx_ClrIsValid(a.h), STATUS_OK);
    EXPECT_EQ(Vx_ClrInit(&b.h, 200, CS_RGB, nullptr), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(Vx_ClrInit(&b.h, CS_RGB, 16, nullptr), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(Vx_ClrInit(&b.h, 129, CS_RGB, nullptr), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(Vx_ClrInit(&b.h, CS_RGB, 145, nullptr), ERR_UNSUPPORTED_SPACE);
    EXPECT_EQ(Vx_ClrInit(&b.h, -1, CS_RGB, nullptr), ERR_UNSUPPORTED_SPACE);

    // With the custom-ICC bit prepared the shortcut is not taken.
    ConversionParams p = Params(METHOD_BUILTIN, METHOD_BUILTIN | METHOD_CUSTOM_ICC);
    EXPECT_EQ(Vx_ClrInit(&b.h, 200, 200, &p), ERR_UNSUPPORTED_SPACE);
    p.prepareMethods = METHOD_BUILTIN;
    ASSERT_EQ(Vx_ClrInit(&b.h, CS_LAB, CS_LAB, &p), STATUS_OK);
    EXPECT_EQ(b.h->method, 0u);
}

TEST(HandleInit, WithoutParameters) {
    struct Case {
        int src, dst, pathKind;
        bool ycck;
    } cases[] = {{CS_RGB, CS_HSV, 1, false},  {CS_HSV, CS_BGR, 1, false}, {CS_XYZ, CS_HSV, 2, false},
                 {CS_LAB, CS_HSV, 2, false},  {CS_YCCK, CS_RGB, 1, true}, {CS_HSI, CS_YCCK, 2, true},
                 {CS_RGB444, CS_RGB, 1, false}};
    for (const Case& c : cases) {
        Handle h;
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, nullptr), STATUS_OK) << c.src << "->" << c.dst;
        EXPECT_EQ(h.h->method, static_cast<std::uint32_t>(METHOD_BUILTIN));
        EXPECT_EQ(h.h->preparedMethods, static_cast<std::uint32_t>(METHOD_BUILTIN));
        EXPECT_EQ(h.h->PathKind, c.pathKind) << c.src << "->" << c.dst;
        EXPECT_EQ(h.h->gammaPercent, 45);
        EXPECT_EQ(h.h->srcSpace, c.src);
        EXPECT_EQ(h.h->dstSpace, c.dst);
        EXPECT_EQ(h.h->iccOptions, nullptr);
        EXPECT_EQ(h.h->ycckTable != nullptr, c.ycck);
        EXPECT_EQ(h.h->labTable, nullptr);
    }
}

TEST(HandleInit, MethodChecks) {
    Handle h;
    ConversionParams p = Params(METHOD_BUILTIN_EMULATION);
    p.emulationMethod = 1;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), ERR_INVALID_PARAMETER);
    p = Params(METHOD_BUILTIN, 64);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), ERR_BAD_METHOD);
    p = Params(METHOD_ICC, METHOD_BUILTIN);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), ERR_BAD_METHOD);
    p = Params(0, METHOD_BUILTIN);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), ERR_BAD_METHOD);
    // The method in force need only share a bit with the prepared set.
    p = Params(METHOD_BUILTIN | 64, METHOD_BUILTIN);
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    EXPECT_EQ(h.h->method, static_cast<std::uint32_t>(METHOD_BUILTIN | 64));
    // An ICC path needs an ICC format on both sides.
    Handle g;
    p = Params(METHOD_BUILTIN, METHOD_BUILTIN | METHOD_ICC);
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_HSV, &p), ERR_BAD_COLOR_SPACE);
    // A two-step pair builds no transform: its formats are the ids.
    ASSERT_EQ(Vx_ClrInit(&g.h, CS_HSV, CS_YIQ, &p), STATUS_OK);
    EXPECT_EQ(g.h->PathKind, 2);
    EXPECT_EQ(g.h->srcFormat, static_cast<std::uint32_t>(CS_HSV));
    EXPECT_EQ(g.h->dstFormat, static_cast<std::uint32_t>(CS_YIQ));
    EXPECT_EQ(g.h->iccTransform, nullptr);
}

TEST(HandleInit, PathKindWithParameters) {
    struct Case {
        int src, dst, pathKind;
    } cases[] = {{CS_XYZ, CS_HSV, 1}, {CS_HSV, CS_XYZ, 2}, {CS_LAB, CS_HSV, 1}, {CS_HSV, CS_LAB, 1},
                 {CS_YIQ, CS_BGR, 1}, {CS_CMYK, CS_YCCK, 2}, {CS_HSI, CS_RGB444, 2}};
    for (const Case& c : cases) {
        Handle h;
        ConversionParams p = Params(METHOD_BUILTIN);
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, &p), STATUS_OK);
        EXPECT_EQ(h.h->PathKind, c.pathKind) << c.src << "->" << c.dst;
        if (c.pathKind == 2) {
            EXPECT_EQ(h.h->srcFormat, static_cast<std::uint32_t>(c.src));
        } else {
            EXPECT_EQ(h.h->srcFormat, 0u);
        }
    }
}

TEST(HandleInit, AutomaticChoice) {
    Handle h;
    ConversionParams p = Params(METHOD_AUTO);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HSV, &p), ERR_BAD_METHOD);
    EXPECT_EQ(p.method, static_cast<std::uint32_t>(METHOD_AUTO));
    EXPECT_EQ(p.prepareMethods, static_cast<std::uint32_t>(METHOD_AUTO));

    ASSERT_EQ(Vx_ClrInit(&h.h, CS_LAB, CS_BGR, &p), STATUS_OK);
    EXPECT_EQ(h.h->method, static_cast<std::uint32_t>(METHOD_BUILTIN));
    EXPECT_EQ(p.method, static_cast<std::uint32_t>(METHOD_AUTO));
    EXPECT_EQ(p.prepareMethods, static_cast<std::uint32_t>(METHOD_AUTO));

    Handle g;
    ASSERT_EQ(Vx_ClrInit(&g.h, CS_HSV, CS_YIQ, &p), STATUS_OK);
    EXPECT_EQ(g.h->method, static_cast<std::uint32_t>(METHOD_BUILTIN));

    // CMYK picks the ICC method; when the transform cannot be made the
    // choice stays in the caller's record.
    Handle c;
    const KtStatus s = Vx_ClrInit(&c.h, CS_RGB, CS_CMYK, &p);
    EXPECT_EQ(s, STATUS_OK);
    EXPECT_EQ(p.method, static_cast<std::uint32_t>(METHOD_AUTO));
    EXPECT_EQ(c.h->method, static_cast<std::uint32_t>(METHOD_ICC));
    // Only both fields at 32 ask for a choice.
    p = Params(METHOD_AUTO, METHOD_BUILTIN);
    Handle d;
    EXPECT_EQ(Vx_ClrInit(&d.h, CS_LAB, CS_RGB, &p), ERR_BAD_METHOD);
    EXPECT_EQ(p.method, static_cast<std::uint32_t>(METHOD_AUTO));
    // 32 beside a real bit is taken as the method in force, unchosen.
    p = Params(METHOD_AUTO, METHOD_AUTO | METHOD_BUILTIN);
    ASSERT_EQ(Vx_ClrInit(&d.h, CS_LAB, CS_RGB, &p), STATUS_OK);
    EXPECT_EQ(d.h->method, static_cast<std::uint32_t>(METHOD_AUTO));
}

TEST(HandleInit, IccOptionsAreCopied) {
    Handle a, b;
    ConversionParams p = Params(METHOD_BUILTIN);
    ASSERT_EQ(Vx_ClrInit(&a.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    ASSERT_NE(a.h->iccOptions, nullptr);
    EXPECT_EQ(a.h->iccOptions->values[0], 50u);
    IccOptions icc{{1, 2, 3, 4, 5}};
    p.iccOptions = &icc;
    ASSERT_EQ(Vx_ClrInit(&b.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    icc.values[0] = 99;
    EXPECT_NE(b.h->iccOptions, &icc);
    EXPECT_EQ(b.h->iccOptions->values[0], 1u);
    EXPECT_EQ(b.h->iccOptions->values[4], 5u);
}

TEST(HandleInit, OptionRecords) {
    ConversionParams p = Params(METHOD_BUILTIN);
    CmykOptions cmyk = test::Cmyk(200);
    unsigned char shared[8] = {};
    YuvOptions yuv = test::Yuv(shared, sizeof shared);
    LabOptions lab = test::Lab(10);
    p.cmykOptions = &cmyk;
    p.yuvOptions = &yuv;
    p.labOptions = &lab;

    Handle a;
    ASSERT_EQ(Vx_ClrInit(&a.h, CS_RGB, CS_CMYK, &p), STATUS_OK);
    ASSERT_NE(a.h->cmykOptions, nullptr);
    EXPECT_NE(a.h->cmykOptions, &cmyk);
    EXPECT_EQ(a.h->cmykOptions->value, 200u);
    EXPECT_EQ(a.h->yuvOptions, nullptr);  // only the sides' own records
    EXPECT_EQ(a.h->labTable, nullptr);

    Handle b;
    ASSERT_EQ(Vx_ClrInit(&b.h, CS_YUV, CS_BGR, &p), STATUS_OK);
    ASSERT_NE(b.h->yuvOptions, nullptr);
    EXPECT_EQ(b.h->yuvOptions->buffer, shared);  // the caller's buffer is shared
    EXPECT_EQ(b.h->cmykOptions, nullptr);

    Handle c;
    ASSERT_EQ(Vx_ClrInit(&c.h, CS_LAB, CS_RGB, &p), STATUS_OK);
    ASSERT_NE(c.h->labTable, nullptr);
    ASSERT_NE(c.h->rgbToLabTable, nullptr);
    const LabTable& t = *c.h->labTable;
    EXPECT_EQ(t.whitePoint[0], 95.0166015625);
    EXPECT_EQ(t.whitePoint[1], 100.0);
    EXPECT_EQ(t.whitePoint[2], 108.76499938964844);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(t.ranges[i], 10 + i);
    EXPECT_EQ(t.matrix[0], 3.240478992462158);
    EXPECT_EQ(t.matrix[8], 1.0573110580444336);
    EXPECT_EQ(t.matrixFixed[0], 212368);  // 3.2404... in Q16, rounded
    EXPECT_EQ(t.matrixFixed[1], -100739);
    EXPECT_EQ(t.gammaThresholds[254], std::llround(std::pow(254.5 / 255, 100.0 / 45) * (1 << 28)));
    EXPECT_EQ(t.gammaThresholds[0], std::llround(std::pow(0.5 / 255, 100.0 / 45) * (1 << 28)));
    const RgbToLabTable& r = *c.h->rgbToLabTable;
    EXPECT_EQ(r.whitePoint[2], 108.76499938964844);
    EXPECT_EQ(r.ranges[5], 15);
    EXPECT_EQ(r.matrix[0], 0.4124529957771301);
    EXPECT_EQ(r.matrix[8], 0.9502270221710205);
}

TEST(HandleInit, BadOptionRecords) {
    const std::size_t before = convert::registry::Count();
    MappedPages none(1, MappedPages::Access::none);
    ConversionParams p = Params(METHOD_BUILTIN);
    p.cmykOptions = reinterpret_cast<CmykOptions*>(none.data());
    p.yuvOptions = reinterpret_cast<YuvOptions*>(none.data());
    p.labOptions = reinterpret_cast<LabOptions*>(none.data());

    // Records of spaces the pair does not use are never looked at.
    Handle ok;
    ASSERT_EQ(Vx_ClrInit(&ok.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    Vx_ClrFree(ok.h);
    ok.h = nullptr;

    // Unreadable records, and a CMYK record of the wrong size, return at
    // once: the half-built handle stays on the list, live but never handed
    // out. It is the newest node; free it as the unload sweep would.
    auto expectAbandoned = [&](int src, int dst, KtStatus status) {
        Handle h;
        EXPECT_EQ(Vx_ClrInit(&h.h, src, dst, &p), status);
        EXPECT_EQ(h.h, nullptr);
        ASSERT_EQ(convert::registry::Count(), before + 1);
        ClrHandle* stray = convert::registry::Tail();
        EXPECT_EQ(Vx_ClrIsValid(stray), STATUS_OK);
        EXPECT_EQ(stray->srcSpace, 0);  // never finished
        EXPECT_EQ(Vx_ClrFree(stray), STATUS_OK);
    };
    expectAbandoned(CS_RGB, CS_CMYK, ERR_BAD_POINTER);
    expectAbandoned(CS_YUV, CS_RGB, ERR_BAD_POINTER);
    expectAbandoned(CS_RGB, CS_LAB, ERR_BAD_POINTER);
    CmykOptions cmyk = test::Cmyk(1);
    cmyk.structSize = 13;
    p.cmykOptions = &cmyk;
    expectAbandoned(CS_RGB, CS_CMYK, ERR_BAD_STRUCT_SIZE);

    // The YUV and Lab records of the wrong size are cleaned up.
    unsigned char buf[4];
    YuvOptions yuv = test::Yuv(buf, 4);
    yuv.structSize = 41;
    LabOptions lab = test::Lab(0);
    lab.structSize = 31;
    p.yuvOptions = &yuv;
    p.labOptions = &lab;
    Handle h;
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_YUV, CS_RGB, &p), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(Vx_ClrInit(&h.h, CS_LAB, CS_RGB, &p), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(convert::registry::Count(), before);
}

TEST(HandleLifecycle, ValidityAndFree) {
    EXPECT_EQ(Vx_ClrIsValid(nullptr), ERR_INVALID_COLOR_HANDLE);
    EXPECT_EQ(Vx_ClrFree(nullptr), ERR_INVALID_PARAMETER);
    MappedPages none(1, MappedPages::Access::none);
    auto* unreadable = reinterpret_cast<ClrHandle*>(none.data());
    EXPECT_EQ(Vx_ClrIsValid(unreadable), ERR_INVALID_COLOR_HANDLE);
    EXPECT_EQ(Vx_ClrFree(unreadable), ERR_INVALID_PARAMETER);

    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_HLS, nullptr), STATUS_OK);
    // A readable copy with the right size is not on the list.
    ClrHandle copy = *h.h;
    EXPECT_EQ(Vx_ClrIsValid(&copy), ERR_INVALID_COLOR_HANDLE);
    EXPECT_EQ(Vx_ClrFree(&copy), ERR_INVALID_COLOR_HANDLE);
    copy.structSize = 1651;
    EXPECT_EQ(Vx_ClrIsValid(&copy), ERR_INVALID_COLOR_HANDLE);
    EXPECT_EQ(Vx_ClrIsValid(h.h), STATUS_OK);
    EXPECT_EQ(Vx_ClrFree(h.h), STATUS_OK);
    h.h = nullptr;
}

TEST(HandleLifecycle, FreeingOutOfOrderKeepsTheListConsistent) {
    const std::size_t before = convert::registry::Count();
    ClrHandle* h[4] = {};
    for (auto*& x : h) ASSERT_EQ(Vx_ClrInit(&x, CS_RGB, CS_YIQ, nullptr), STATUS_OK);
    EXPECT_EQ(convert::registry::Count(), before + 4);
    EXPECT_EQ(Vx_ClrFree(h[1]), STATUS_OK);  // middle
    EXPECT_EQ(Vx_ClrFree(h[3]), STATUS_OK);  // last
    EXPECT_EQ(Vx_ClrIsValid(h[0]), STATUS_OK);
    EXPECT_EQ(Vx_ClrIsValid(h[2]), STATUS_OK);
    EXPECT_EQ(Vx_ClrFree(h[0]), STATUS_OK);  // first
    ClrHandle* fresh = nullptr;
    ASSERT_EQ(Vx_ClrInit(&fresh, CS_BGR, CS_HSV, nullptr), STATUS_OK);
    EXPECT_EQ(Vx_ClrIsValid(fresh), STATUS_OK);
    EXPECT_EQ(Vx_ClrFree(h[2]), STATUS_OK);
    EXPECT_EQ(Vx_ClrFree(fresh), STATUS_OK);
    EXPECT_EQ(convert::registry::Count(), before);
}

TEST(HandleLifecycle, ManyHandlesStayValid) {
    // Enough handles to grow the validation index several times.
    constexpr int kCount = 1000;
    static ClrHandle* h[kCount];
    for (auto*& x : h) ASSERT_EQ(Vx_ClrInit(&x, CS_RGB, CS_CMY, nullptr), STATUS_OK);
    for (int i = 0; i < kCount; i += 2) ASSERT_EQ(Vx_ClrFree(h[i]), STATUS_OK);
    for (int i = 1; i < kCount; i += 2) ASSERT_EQ(Vx_ClrIsValid(h[i]), STATUS_OK);
    for (int i = 1; i < kCount; i += 2) ASSERT_EQ(Vx_ClrFree(h[i]), STATUS_OK);
}

}  // namespace
}  // namespace kt

namespace kt {
namespace {

TEST(HandleLifecycle, IndexGrowthKeepsEveryHandleReachable) {
    // Every handle must stay findable across each growth of the index,
    // whichever bucket the newest one lands in.
    constexpr int kCount = 600;
    static ClrHandle* h[kCount];
    for (int i = 0; i < kCount; ++i) {
        ASSERT_EQ(Vx_ClrInit(&h[i], CS_RGB, CS_YIQ, nullptr), STATUS_OK);
        for (int j = 0; j <= i; ++j) ASSERT_EQ(Vx_ClrIsValid(h[j]), STATUS_OK) << j << " after " << i;
    }
    for (int i = kCount - 1; i >= 0; --i) ASSERT_EQ(Vx_ClrFree(h[i]), STATUS_OK);
}

}  // namespace
}  // namespace kt
