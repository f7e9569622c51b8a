#include <gtest/gtest.h>

#include <cstring>

#include "icc_test_support.h"
#include "platform/alloc_control.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

ICCProfileRecord Filled() {
    ICCProfileRecord r;
    std::memset(&r, 0xAB, sizeof r);
    return r;
}

TEST(ProfileRecord, InitZeroesOnlyTheNamedPrefix) {
    EXPECT_EQ(Vx_InitICCProfile(nullptr, 32), ERR_INVALID_PARAMETER);

    ICCProfileRecord r = Filled();
    const ICCProfileRecord before = r;
    EXPECT_EQ(Vx_InitICCProfile(&r, 33), ERR_INVALID_PARAMETER);
    EXPECT_EQ(std::memcmp(&r, &before, sizeof r), 0);

    EXPECT_EQ(Vx_InitICCProfile(&r, 32), STATUS_OK);
    EXPECT_EQ(r.structSize, 32u);
    EXPECT_EQ(r.profileSize, 0u);
    EXPECT_EQ(r.tagDataSize, 0u);
    EXPECT_EQ(r.header, nullptr);
    EXPECT_EQ(r.tagCount, 0);
    EXPECT_EQ(r.tagList, nullptr);
    EXPECT_EQ(r.tagData, nullptr);
    EXPECT_EQ(r.profileData, nullptr);

    r = Filled();
    EXPECT_EQ(Vx_InitICCProfile(&r, 0), STATUS_OK);
    EXPECT_EQ(r.structSize, 32u);
    EXPECT_EQ(r.profileSize, 0xABABABABu);
    EXPECT_EQ(std::memcmp(&r.header, &before.header, sizeof r.header), 0);

    // Sixteen bytes cover the first four fields of the narrow layout.
    r = Filled();
    EXPECT_EQ(Vx_InitICCProfile(&r, 16), STATUS_OK);
    EXPECT_EQ(r.profileSize, 0u);
    EXPECT_EQ(r.tagDataSize, 0u);
    EXPECT_EQ(r.header, nullptr);
    EXPECT_EQ(r.tagCount, static_cast<int32_t>(0xABABABABu));
    EXPECT_EQ(std::memcmp(&r.tagList, &before.tagList, sizeof r.tagList), 0);
}

TEST(ProfileRecord, FreeKeepsTheTagCountGate) {
    const auto live = memt::LiveBlocks(kt::mem::Module::iccprofile);
    ICCTagEntry rows[1] = {};
    uint8_t data[4] = {};
    {
        ICCProfileRecord r;
        ASSERT_EQ(Vx_InitICCProfile(&r, 32), STATUS_OK);
        ASSERT_EQ(Vx_InitICCHeader(&r), STATUS_OK);
        ASSERT_EQ(Vx_SetICCCreator(&r, 1), STATUS_OK);
        r.tagList = rows;  // not the library's: the gate must keep it
        r.tagData = data;
        r.tagDataSize = 4;
        EXPECT_EQ(Vx_FreeICCProfile(&r), 0);  // 0, not STATUS_OK
        EXPECT_EQ(r.tagList, rows);
        EXPECT_EQ(r.tagData, data);
        EXPECT_EQ(r.header, nullptr);
        EXPECT_EQ(r.profileData, nullptr);
        EXPECT_EQ(r.profileSize, 132u);
        EXPECT_EQ(r.tagDataSize, 4u);
    }
    {
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        ICCXYZNumber v{1, 2, 3};
        ICCXYZType t = XyzOf(&v, 1);
        ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
        Vx_FreeICCProfile(p.get());
        EXPECT_EQ(p->tagList, nullptr);
        EXPECT_EQ(p->tagData, nullptr);
        EXPECT_EQ(p->tagCount, 1);
        EXPECT_EQ(Vx_FreeICCProfile(p.get()), 0);  // the second call finds nothing to release
        EXPECT_EQ(Vx_FreeICCProfile(nullptr), 0);
    }
    {
        Profile p;
        ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
        ASSERT_EQ(Vx_SetICCCreator(p.get(), 1), STATUS_OK);
        Vx_ClrIntFreeICCData(p.get());
        EXPECT_EQ(p->profileData, nullptr);
        EXPECT_EQ(p->profileSize, 132u);
        Vx_ClrIntFreeICCData(p.get());
        Vx_ClrIntFreeTagList(nullptr);
        Vx_ClrIntFreeICCData(nullptr);
    }
    EXPECT_EQ(memt::LiveBlocks(kt::mem::Module::iccprofile), live);
}

}  // namespace
