// The profile record's init (zeroes only the prefix it is told) and free
// (keeps tag arrays whose count says there are none to release).
#include <gtest/gtest.h>

#include <cstring>

#include "icc_test_support.h"
#include "platform/alloc_control.h"

namespace {

using namespace icctest;

// The record's fields after structSize, in order.
std::vector<uint64_t> Fields(const ICCProfileRecord& r) {
    return {r.structSize, r.profileSize, r.tagDataSize, uintptr_t(r.header), uint32_t(r.tagCount), uintptr_t(r.tagList),
            uintptr_t(r.tagData), uintptr_t(r.profileData)};
}

// A size names a prefix of the 32-byte narrow layout: 16 bytes cover
// structSize and the next three fields, 0 sets structSize only, 33 is
// refused with the record untouched.
TEST(ProfileRecord, InitZeroesOnlyTheNamedPrefix) {
    EXPECT_EQ(Vx_InitICCProfile(nullptr, 32), ERR_INVALID_PARAMETER);
    for (const auto& [size, status, zeroed] : {std::tuple{33u, ERR_INVALID_PARAMETER, 0}, {32u, STATUS_OK, 7},
                                               {0u, STATUS_OK, 0}, {16u, STATUS_OK, 3}}) {
        ICCProfileRecord r;
        std::memset(&r, 0xAB, sizeof r);
        std::vector<uint64_t> expected = Fields(r);
        if (status == STATUS_OK) expected[0] = 32;
        std::fill(expected.begin() + 1, expected.begin() + 1 + zeroed, 0);
        EXPECT_EQ(Vx_InitICCProfile(&r, size), status) << size;
        EXPECT_EQ(Fields(r), expected) << size;
    }
}

TEST(ProfileRecord, FreeKeepsTheTagCountGate) {
    const auto live = kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile);
    ICCTagEntry rows[1] = {};
    uint8_t data[4] = {};
    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCCreator(p.get(), 1), STATUS_OK);
    p->tagList = rows;  // not the library's: a count of 0 keeps them
    p->tagData = data;
    EXPECT_EQ(Vx_FreeICCProfile(p.get()), 0);  // 0, not STATUS_OK
    EXPECT_EQ(p->tagList, rows);
    EXPECT_EQ(p->tagData, data);
    EXPECT_EQ(p->header, nullptr);
    EXPECT_EQ(p->profileData, nullptr);
    EXPECT_EQ(p->profileSize, 132u);
    p->tagList = nullptr, p->tagData = nullptr;

    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ICCXYZNumber v{1, 2, 3};
    ICCXYZType t = XyzOf(&v, 1);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
    Vx_ClrIntFreeICCData(p.get());
    EXPECT_EQ(p->profileData, nullptr);
    Vx_FreeICCProfile(p.get());
    EXPECT_EQ(p->tagList, nullptr);
    EXPECT_EQ(p->tagData, nullptr);
    EXPECT_EQ(p->tagCount, 1);
    EXPECT_EQ(Vx_FreeICCProfile(p.get()), 0);
    Vx_FreeICCProfile(nullptr);
    Vx_ClrIntFreeTagList(nullptr);
    Vx_ClrIntFreeICCData(nullptr);
    EXPECT_EQ(kt::mem::testing::LiveBlocks(kt::mem::Module::iccprofile), live);
}

}  // namespace
