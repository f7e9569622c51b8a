// Every allocation of the editing, parsing and writing calls is failed in
// turn: each call answers ERR_NO_MEMORY and nothing leaks once the record
// is freed.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "icc_test_support.h"
#include "support/alloc_failures.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

using Step = std::function<KtStatus(Profile&)>;

// Builds the fixture with failures off, then runs `op` with allocation n
// failing. Returns the number of allocations `op` makes.
int EachFailure(const std::function<void(Profile&)>& setup, const Step& op, KtStatus expected = ERR_NO_MEMORY) {
    int call = 0;
    const int clean = kt::test::ForEachAllocationFailure(
        [&] {
            ++call;
            memt::FailNthAllocation(0);
            Profile p;
            setup(p);
            memt::FailNthAllocation(call);
            return static_cast<int>(op(p));
        },
        [&](int n, int status) { EXPECT_EQ(status, expected) << "allocation " << n; });
    EXPECT_GT(clean, 0);
    return clean;
}

void WithHeader(Profile& p) { ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK); }

ICCXYZNumber g_xyz[3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
uint8_t g_bytes[7] = {1, 2, 3, 4, 5, 6, 7};

void WithTags(Profile& p) {
    WithHeader(p);
    ICCXYZType t = XyzOf(g_xyz, 3);
    ICCRawTagType raw = RawOf(g_bytes, 7, 0);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("rXYZ"), Sig("XYZ ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &raw, Sig("desc"), Sig("desc")), WARN_UNKNOWN_TAG_TYPE);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("gXYZ"), Sig("XYZ ")), STATUS_OK);
}

std::vector<uint8_t> TaggedImage() {
    Profile p;
    WithTags(p);
    Vx_GenerateICCPointer(p.get());
    return p.Image();
}

TEST(AllocationFailures, HeaderCalls) {
    EachFailure([](Profile&) {}, [](Profile& p) { return Vx_InitICCHeader(p.get()); });
    EachFailure(WithHeader, [](Profile& p) { return Vx_SetICCCreator(p.get(), 3); });
    EachFailure(WithTags, [](Profile& p) { return Vx_SetICCRenderingIntent(p.get(), 2); });
}

// Set, get and create of every type run in TagTypes.AllocationFailuresLeakNothing.
TEST(AllocationFailures, DeleteCalls) {
    // Deleting from the middle, with and without handing the tag out, and
    // deleting the last tag.
    EachFailure(WithTags, [](Profile& p) { return Vx_DeleteICCTag(p.get(), Sig("desc"), nullptr); });
    EachFailure(WithTags, [](Profile& p) {
        ICCXYZType t{};
        const KtStatus st = Vx_DeleteICCTag(p.get(), Sig("rXYZ"), &t);
        Vx_FreeICCTagType(&t, Sig("XYZ "));
        return st;
    });
    EachFailure(
        [](Profile& p) {
            WithHeader(p);
            ICCXYZType t = XyzOf(g_xyz, 1);
            ASSERT_EQ(Vx_SetICCTagData(p.get(), &t, Sig("wtpt"), Sig("XYZ ")), STATUS_OK);
        },
        [](Profile& p) { return Vx_DeleteICCTag(p.get(), Sig("wtpt"), nullptr); });
}

TEST(AllocationFailures, SerializationCalls) {
    EachFailure(WithTags, [](Profile& p) { return Vx_GenerateICCPointer(p.get()); });
    const std::vector<uint8_t> image = TaggedImage();
    EachFailure([](Profile&) {}, [&](Profile& p) {
        return Vx_FillICCProfileStructure(p.get(), image.data(), static_cast<uint32_t>(image.size()));
    });
    // Into a record that already has a header.
    EachFailure(WithHeader, [&](Profile& p) {
        return Vx_FillICCProfileStructure(p.get(), image.data(), static_cast<uint32_t>(image.size()));
    });

    const std::string path = ::testing::TempDir() + "ktclr_icc_alloc.icc";
    const std::u16string path16 = Utf16(path);
    EachFailure(
        [](Profile& p) {
            WithTags(p);
            ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
        },
        [&](Profile& p) { return Vx_GenerateICCFile(p.get(), path16.c_str()); });
    EachFailure([](Profile&) {}, [&](Profile& p) { return Vx_FillICCProfileFromICCFile(path16.c_str(), p.get()); });
    std::remove(path.c_str());
}

}  // namespace
