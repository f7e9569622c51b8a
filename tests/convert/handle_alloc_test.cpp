// Failing each allocation of Vx_ClrInit and Vx_ClrSetConversionParams in
// turn: the specified status, and nothing left behind.
#include <gtest/gtest.h>

#include "convert/registry.h"
#include "ktclr/convert.h"
#include "support/alloc_failures.h"
#include "support/params.h"

namespace kt {
namespace {

using test::ForEachAllocationFailure;
using test::LiveCounts;
using test::Params;

void ExpectInitFailsCleanly(int src, int dst, ConversionParams* p, int minAllocations) {
    const std::size_t handles = convert::registry::Count();
    const int clean = ForEachAllocationFailure(
        [&] {
            ClrHandle* h = nullptr;
            const KtStatus s = Vx_ClrInit(&h, src, dst, p);
            if (s == STATUS_OK) Vx_ClrFree(h);
            else EXPECT_EQ(h, nullptr);
            return s;
        },
        [&](int n, int status) {
            EXPECT_EQ(status, ERR_ALLOC) << "allocation " << n;
            EXPECT_EQ(convert::registry::Count(), handles);
        });
    EXPECT_GE(clean, minAllocations) << src << "->" << dst;
}

TEST(HandleAllocation, InitFailsCleanlyAtEveryAllocation) {
    ExpectInitFailsCleanly(CS_RGB, CS_HSV, nullptr, 2);
    ExpectInitFailsCleanly(CS_YCCK, CS_BGR, nullptr, 3);
    ExpectInitFailsCleanly(7, 7, nullptr, 2);

    ConversionParams p = Params(METHOD_BUILTIN);
    CmykOptions cmyk = test::Cmyk(100);
    unsigned char buffer[4];
    YuvOptions yuv = test::Yuv(buffer, 4);
    LabOptions lab = test::Lab(1);
    p.cmykOptions = &cmyk;
    p.yuvOptions = &yuv;
    p.labOptions = &lab;
    ExpectInitFailsCleanly(CS_RGB, CS_CMYK, &p, 4);   // handle, node, icc options, cmyk
    ExpectInitFailsCleanly(CS_YUV, CS_BGR, &p, 4);
    ExpectInitFailsCleanly(CS_LAB, CS_RGB, &p, 5);    // both Lab tables
    ExpectInitFailsCleanly(CS_CMYK, CS_YCCK, &p, 5);  // cmyk copy and YCCK table

    // The automatic choice survives a failure after it was made.
    ConversionParams a = Params(METHOD_AUTO);
    mem::testing::FailNthAllocation(3);  // handle, node, then icc options
    ClrHandle* h = nullptr;
    EXPECT_EQ(Vx_ClrInit(&h, CS_LAB, CS_RGB, &a), ERR_ALLOC);
    mem::testing::FailNthAllocation(0);
    EXPECT_EQ(a.method, static_cast<std::uint32_t>(METHOD_AUTO));  // failed before the choice
}

TEST(HandleAllocation, SetParamsFailsCleanlyAtEveryAllocation) {
    // A fresh handle each round, then the n-th allocation of the call fails.
    CmykOptions cmyk = test::Cmyk(100);
    unsigned char buffer[4];
    YuvOptions yuv = test::Yuv(buffer, 4);
    LabOptions lab = test::Lab(1);
    IccOptions icc{{1, 2, 3, 4, 5}};
    ConversionParams p = Params(0, KTCLR_CHANGE_CMYK | KTCLR_CHANGE_LAB | KTCLR_CHANGE_ICC_OPTIONS);
    p.cmykOptions = &cmyk;
    p.yuvOptions = &yuv;
    p.labOptions = &lab;
    p.iccOptions = &icc;

    for (int n = 1;; ++n) {
        ClrHandle* h = nullptr;
        ASSERT_EQ(Vx_ClrInit(&h, CS_CMYK, CS_LAB, nullptr), STATUS_OK);
        const LiveCounts before = LiveCounts::Now();
        mem::testing::FailNthAllocation(n);
        const KtStatus s = Vx_ClrSetConversionParams(h, &p);
        const bool fired = mem::testing::FailureFired();
        mem::testing::FailNthAllocation(0);
        if (!fired) {
            EXPECT_EQ(s, STATUS_OK);
            EXPECT_EQ(n, 4) << "cmyk copy, Lab table, icc options";
            Vx_ClrFree(h);
            break;
        }
        EXPECT_EQ(s, ERR_ALLOC) << "allocation " << n;
        // The CMYK copy made by this call goes again when the Lab table
        // cannot be made; a failure in the ICC step keeps both (no step
        // undoes an earlier one).
        if (n <= 2) {
            EXPECT_EQ(h->labTable, nullptr);
            EXPECT_EQ(h->cmykOptions, nullptr);
            EXPECT_TRUE(LiveCounts::Now() == before) << "allocation " << n;
        } else {
            EXPECT_NE(h->labTable, nullptr);
        }
        Vx_ClrFree(h);
    }

    // The YUV copy: its failure frees the CMYK copy made in the same call.
    ConversionParams q = Params(0, KTCLR_CHANGE_CMYK | KTCLR_CHANGE_YUV);
    q.cmykOptions = &cmyk;
    q.yuvOptions = &yuv;
    ClrHandle* h = nullptr;
    ASSERT_EQ(Vx_ClrInit(&h, CS_CMYK, CS_YUV, nullptr), STATUS_OK);
    const LiveCounts before = LiveCounts::Now();
    mem::testing::FailNthAllocation(2);
    EXPECT_EQ(Vx_ClrSetConversionParams(h, &q), ERR_ALLOC);
    mem::testing::FailNthAllocation(0);
    EXPECT_EQ(h->cmykOptions, nullptr);
    EXPECT_TRUE(LiveCounts::Now() == before);
    Vx_ClrFree(h);
}

}  // namespace
}  // namespace kt
