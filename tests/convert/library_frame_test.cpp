// Library load and unload: the attach count, the global tables and the
// sweep that frees forgotten handles.
#include <gtest/gtest.h>

#include "colormodels/squared_ramp.h"
#include "colormodels/ycck_table.h"
#include "convert/library_frame.h"
#include "convert/registry.h"
#include "ktclr/convert.h"
#include "support/alloc_failures.h"
#include "support/params.h"

namespace kt {
namespace {

TEST(LibraryFrame, TablesAreFilledAtLoad) {
    EXPECT_GE(convert::AttachCount(), 1);
    const std::uint16_t* ramp = color::SquaredRamp();
    EXPECT_EQ(ramp[0], 0);
    EXPECT_EQ(ramp[255], 256);
    EXPECT_EQ(ramp[128], 64);  // (128/255)^2 * 256 = 64.5
    const YcckTable& t = color::GlobalYcbcrTables();
    EXPECT_EQ(t.rangeLimit[255], 0);
    EXPECT_EQ(t.rangeLimit[256 + 200], 200);
    EXPECT_EQ(t.rangeLimit[512 + 383], 255);
    EXPECT_EQ(t.rangeLimit[896], 0);
    EXPECT_EQ(t.crToR[128], 0);
    EXPECT_EQ(t.crToR[255], (91881 * 127 + 32768) >> 16);
    EXPECT_EQ(t.cbToB[0], (116130 * -128 + 32768) >> 16);
    EXPECT_EQ(t.rangeLimitBase, 256);
}

TEST(LibraryFrame, UnloadSweepFreesForgottenHandles) {
    const test::LiveCounts before = test::LiveCounts::Now();
    ASSERT_EQ(convert::registry::Count(), 0u) << "another test left handles behind";
    ClrHandle* h[3] = {};
    ASSERT_EQ(Vx_ClrInit(&h[0], CS_RGB, CS_HSV, nullptr), STATUS_OK);
    ConversionParams p = test::Params(METHOD_BUILTIN);
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
    EXPECT_TRUE(test::LiveCounts::Now() == before);
    convert::LibraryAttach();  // as the loader left it
    EXPECT_EQ(convert::AttachCount(), 1);
}

}  // namespace
}  // namespace kt
