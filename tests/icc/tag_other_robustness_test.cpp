// Damaged elements: every prefix of a valid element and inflated counts
// and offsets get a status and touch nothing outside the element (each
// parse reads a heap copy of exactly its size, so AddressSanitizer sees any
// overrun); allocation failures in create, set and get leak nothing.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "icc/big_endian.h"
#include "icc/tag_types.h"
#include "support/support.h"
#include "tag_other_samples.h"

namespace {

using namespace othertags;
namespace memt = kt::mem::testing;

uint32_t SigOf(const char* t) { return icctest::Be32(reinterpret_cast<const uint8_t*>(t)); }

KtStatus ParseCopy(uint32_t type, const std::vector<uint8_t>& element, size_t size) {
    const kt::icc::TagTypeCodec* codec = kt::icc::FindTagTypeCodec(type);
    EXPECT_NE(codec, nullptr);
    if (!codec) return ERR_INVALID_TAG;
    std::vector<uint8_t> copy(element.begin(), element.begin() + static_cast<std::ptrdiff_t>(size));
    copy.shrink_to_fit();
    AnyRecord record;
    const int64_t before = memt::LiveBlocksTotal();
    const KtStatus st = codec->parse(copy.data(), static_cast<uint32_t>(size), record.get());
    if (st != STATUS_OK) {
        EXPECT_EQ(memt::LiveBlocksTotal(), before) << "a failed parse keeps nothing";
    }
    Vx_FreeICCTagType(record.get(), type);
    EXPECT_EQ(memt::LiveBlocksTotal(), before);
    return st;
}

// Types whose element size follows from their contents: no shorter element
// parses. The others (number arrays, text, data) take what the size holds.
bool SizeFollowsContents(uint32_t type) {
    for (const char* t : {"sf32", "uf32", "ui08", "ui16", "ui32", "ui64", "text", "data"})
        if (type == SigOf(t) && std::strcmp(t, "data") != 0) return false;
    return true;
}

TEST(OtherTagDamage, EveryPrefix) {
    Samples s;
    for (const Samples::Entry& e : s.All()) {
        SCOPED_TRACE(e.type);
        const std::vector<uint8_t> element = ElementOf(e.record, e.type);
        ASSERT_GE(element.size(), 8u);
        EXPECT_EQ(ParseCopy(e.type, element, element.size()), STATUS_OK);
        for (size_t n = 8; n < element.size(); ++n) {
            const KtStatus st = ParseCopy(e.type, element, n);
            const bool data = e.type == Sig("data");
            if (SizeFollowsContents(e.type) && !(data && n >= 12))
                EXPECT_EQ(st, ERR_INVALID_TAG) << "prefix " << n;
            else
                EXPECT_EQ(st, STATUS_OK) << "prefix " << n;
        }
    }
    // Through the directory: a row shorter than the type head.
    icctest::Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &s.clrt, Sig("clrt"), Sig("clrt")), STATUS_OK);
    for (uint32_t size : {0u, 7u}) {
        p->tagList[0].size = size;
        AnyRecord r;
        EXPECT_EQ(Vx_GetICCTagData(p.get(), r.get(), Sig("clrt")), ERR_INVALID_TAG);
    }
}

struct Damage {
    const char* type;
    size_t at;       // byte to overwrite
    unsigned width;  // 2 or 4
    uint32_t value;
    bool beforeAllocating;  // the first check already refuses it
};

// Counts, offsets and lengths that claim more than the element holds. The
// first allocation is set to fail: a status other than ERR_INVALID_TAG
// would mean something was allocated before the check.
TEST(OtherTagDamage, InflatedCountsAndOffsets) {
    Samples s;
    const Damage cases[] = {
        {"clrt", 8, 4, 3, true},           {"clrt", 8, 4, 0xFFFFFFFF, true}, {"clro", 8, 4, 4, true},
        {"clro", 8, 4, 0x80000000, true},  {"chrm", 8, 2, 4, true},          {"chrm", 8, 2, 0xFFFF, true},
        {"mluc", 8, 4, 3, true},           {"mluc", 8, 4, 0xFFFFFFFF, true}, {"mluc", 12, 4, 24, true},
        {"mluc", 20, 4, 25, true},         {"mluc", 20, 4, 0xFFFFFFF0, true}, {"mluc", 24, 4, 0xFFFFFFF0, true},
        {"mluc", 24, 4, 41, true},         {"mluc", 24, 4, 16, true},        {"mluc", 36, 4, 22, true},
        {"ncl2", 12, 4, 3, true},          {"ncl2", 12, 4, 0xFFFFFFFF, true}, {"ncl2", 16, 4, 5, true},
        {"ncl2", 16, 4, 0x7FFFFFFF, true}, {"pseq", 8, 4, 3, false},         {"pseq", 8, 4, 0xFFFFFFFF, true},
        {"rcs2", 10, 2, 0xFFFF, true},     {"rcs2", 10, 2, 3, false},        {"rcs2", 8, 2, 3, false},
        {"rcs2", 8, 2, 0xFFFF, false},     {"rcs2", 12, 4, 0xFFFFFFFC, false}, {"rcs2", 16, 4, 140, false},
        {"rcs2", 24, 4, 0xFFFFFFFF, false},
    };
    for (const Damage& d : cases) {
        SCOPED_TRACE(testing::Message() << d.type << " byte " << d.at << " = " << d.value);
        void* record = nullptr;
        for (const Samples::Entry& e : s.All())
            if (e.type == SigOf(d.type)) record = e.record;
        std::vector<uint8_t> element = ElementOf(record, SigOf(d.type));
        ASSERT_LE(d.at + d.width, element.size());
        if (d.width == 2)
            kt::icc::Store16(element.data() + d.at, static_cast<uint16_t>(d.value));
        else
            kt::icc::Store32(element.data() + d.at, d.value);
        if (d.beforeAllocating) memt::FailNthAllocation(1);
        EXPECT_EQ(ParseCopy(SigOf(d.type), element, element.size()), ERR_INVALID_TAG);
        memt::FailNthAllocation(0);
    }
}

// Inside 'pseq': an embedded description that is not an mluc, or whose
// strings leave the element.
TEST(OtherTagDamage, EmbeddedDescriptions) {
    Samples s;
    const std::vector<uint8_t> element = ElementOf(&s.pseq, Sig("pseq"));
    std::vector<uint8_t> notMluc = element;
    notMluc[32] = 'd';  // the first embedded type: "dluc"
    EXPECT_EQ(ParseCopy(Sig("pseq"), notMluc, notMluc.size()), ERR_INVALID_TAG);
    std::vector<uint8_t> longString = element;
    kt::icc::Store32(longString.data() + 32 + 20, 0x1000);  // the maker's string length
    EXPECT_EQ(ParseCopy(Sig("pseq"), longString, longString.size()), ERR_INVALID_TAG);
}

// The types that own no arrays allocate nothing.
bool Allocates(uint32_t type) {
    return type != Sig("sig ") && type != Sig("dtim") && type != Sig("meas") && type != Sig("view");
}

void EachFailure(const std::function<KtStatus()>& op) {
    const int clean = kt::test::ForEachAllocationFailure([&] { return static_cast<int>(op()); },
                                                         [](int n, int status) {
                                                             EXPECT_EQ(status, ERR_NO_MEMORY) << "allocation " << n;
                                                         });
    EXPECT_GT(clean, 0);
}

void EachOnProfile(const std::function<void(icctest::Profile&)>& setup,
                   const std::function<KtStatus(icctest::Profile&)>& op) {
    int call = 0;
    const int clean = kt::test::ForEachAllocationFailure(
        [&] {
            ++call;
            memt::FailNthAllocation(0);
            icctest::Profile p;
            Vx_InitICCHeader(p.get());
            setup(p);
            memt::FailNthAllocation(call);
            return static_cast<int>(op(p));
        },
        [](int n, int status) { EXPECT_EQ(status, ERR_NO_MEMORY) << "allocation " << n; });
    EXPECT_GT(clean, 0);
}

TEST(OtherTagDamage, AllocationFailuresLeakNothing) {
    Samples s;
    for (const Samples::Entry& e : s.All()) {
        SCOPED_TRACE(e.type);
        if (!Allocates(e.type)) continue;
        EachFailure([&] {
            AnyRecord out;
            const KtStatus st = Vx_CreateICCTagData(out.get(), e.record, e.type);
            Vx_FreeICCTagType(out.get(), e.type);
            return st;
        });
        // Set and get through a profile built with failures off.
        EachOnProfile([&](icctest::Profile&) {}, [&](icctest::Profile& p) {
            return Vx_SetICCTagData(p.get(), e.record, Sig("targ"), e.type);
        });
        EachOnProfile([&](icctest::Profile& p) { Vx_SetICCTagData(p.get(), e.record, Sig("targ"), e.type); },
                      [&](icctest::Profile& p) {
                          AnyRecord out;
                          const KtStatus st = Vx_GetICCTagData(p.get(), out.get(), Sig("targ"));
                          Vx_FreeICCTagType(out.get(), e.type);
                          return st;
                      });
        const std::vector<uint8_t> element = ElementOf(e.record, e.type);
        const kt::icc::TagTypeCodec* codec = kt::icc::FindTagTypeCodec(e.type);
        ASSERT_NE(codec, nullptr);
        EachFailure([&] {
            AnyRecord out;
            const KtStatus st = codec->parse(element.data(), static_cast<uint32_t>(element.size()), out.get());
            Vx_FreeICCTagType(out.get(), e.type);
            return st;
        });
        EachFailure([&] {
            AnyRecord out;
            const KtStatus st = codec->create(e.record, e.type, out.get());
            if (codec->release) codec->release(out.get());
            return st;
        });
    }
}

}  // namespace
