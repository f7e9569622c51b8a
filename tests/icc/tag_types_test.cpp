// Every tag type through one harness: create, the element a profile holds
// against hand-computed bytes, set and get through a written and parsed
// profile, re-encoding of the parsed record, every prefix, damaged bytes,
// inflated counts and every allocation failing in turn. Each bare parse
// reads a heap copy of exactly the element, so the sanitizers see any read
// past it.
#include <gtest/gtest.h>

#include "support/support.h"
#include "tag_samples.h"

namespace {

using namespace icctest;
namespace memt = kt::mem::testing;

// Only the opaque block's type has no codec.
KtStatus DoneStatus(const Sample& t) { return t.type == Sig("abcd") ? WARN_UNKNOWN_TAG_TYPE : STATUS_OK; }

TEST(TagTypes, EverySampleThroughOneHarness) {
    Samples s;
    for (const Sample& t : s.All()) {
        SCOPED_TRACE(t.name);
        AnyRecord created;
        EXPECT_EQ(Vx_CreateICCTagData(created.get(), t.record, t.type), DoneStatus(t));
        EXPECT_EQ(Of(created.get(), 4), Of(t.element.data(), 4));  // the signature's file bytes
        Vx_FreeICCTagType(created.get(), t.type);

        AnyRecord got;
        Bytes element;
        ASSERT_EQ(RoundTrip(t.record, t.type, Sig("targ"), got.get(), &element), DoneStatus(t));
        EXPECT_EQ(element, t.element);
        const bool ab = t.type == Sig("mAB ") || t.type == Sig("mBA ");
        EXPECT_EQ(ab ? AbElement(*static_cast<const ICCLutAtoB*>(got.get()), t.type == Sig("mAB ")) : ElementOf(got.get(), t.type),
                  t.reencoded.empty() ? t.element : t.reencoded)
            << "encoded back";
        Vx_FreeICCTagType(got.get(), t.type);

        const auto size = static_cast<uint32_t>(t.element.size());
        const uint32_t shortest = t.shortest ? t.shortest : size;
        for (uint32_t n = 8; n <= size; ++n)
            EXPECT_EQ(ParseBare(t.element.data(), n, t.type), n >= shortest ? STATUS_OK : ERR_INVALID_TAG) << n;
        for (uint32_t at = 8; at < size; ++at) {
            for (uint8_t value : {uint8_t{0}, uint8_t{1}, uint8_t{0x7F}, uint8_t{0xFF}}) {
                Bytes damaged = t.element;
                damaged[at] = value;
                const KtStatus st = ParseBare(damaged.data(), size, t.type);
                EXPECT_TRUE(st == STATUS_OK || st == ERR_INVALID_TAG) << at << " " << int(value) << " " << st;
            }
        }
        for (uint32_t at : t.countsAt) {
            Bytes inflated = t.element;
            inflated[at] = 0x7F;
            memt::ResetAllocationCount();
            EXPECT_EQ(ParseBare(inflated.data(), size, t.type), ERR_INVALID_TAG) << at;
            EXPECT_EQ(memt::AllocationCount(), 0) << "nothing is allocated for a count that does not fit, " << at;
        }
    }
}

// Create and get answer ERR_NO_MEMORY and leak nothing, whichever
// allocation fails (set adds no allocation of its own per type: the
// allocation table in tests/alloc sweeps it).
TEST(TagTypes, AllocationFailuresLeakNothing) {
    Samples s;
    auto check = [](int n, int status) { EXPECT_EQ(status, ERR_NO_MEMORY) << "allocation " << n; };
    for (const Sample& t : s.All()) {
        SCOPED_TRACE(t.name);
        kt::test::ForEachAllocationFailure(
            [&] {
                AnyRecord out;
                const KtStatus st = Vx_CreateICCTagData(out.get(), t.record, t.type);
                Vx_FreeICCTagType(out.get(), t.type);
                return static_cast<int>(st);
            },
            check);
        Profile written;
        ASSERT_EQ(Vx_InitICCHeader(written.get()), STATUS_OK);
        ASSERT_EQ(Vx_SetICCTagData(written.get(), t.record, Sig("targ"), t.type), DoneStatus(t));
        ASSERT_EQ(Vx_GenerateICCPointer(written.get()), STATUS_OK);
        Profile parsed;
        ASSERT_EQ(Vx_FillICCProfileStructure(parsed.get(), written->profileData, written->profileSize), STATUS_OK);
        kt::test::ForEachAllocationFailure(
            [&] {
                AnyRecord out;
                const KtStatus st = Vx_GetICCTagData(parsed.get(), out.get(), Sig("targ"));
                Vx_FreeICCTagType(out.get(), t.type);
                return static_cast<int>(st);
            },
            check);
    }
}

}  // namespace
