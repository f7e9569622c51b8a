// One table over the public calls: each row's call runs once per allocation
// it makes, with that allocation failing. It must answer the row's status
// and, once the fixture is gone, leave every module's live-block count where
// it was. A new public call is one more row.
#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>

#include "icc/icc_test_support.h"
#include "ktclr/bitmap.h"
#include "ktclr/embedded.h"
#include "ktclr/icc_curves.h"
#include "ktclr/narrow.h"
#include "ktclr/storage.h"
#include "support/support.h"

namespace kt {
namespace {

using icctest::Sig;
using icctest::XyzOf;
using test::Params;
constexpr std::uint32_t kBitmapSize = KTCLR_SIZEOF_BITMAP_HANDLE;

// What a row's set-up makes and its call uses; all of it goes when the
// fixture does.
struct Fixture {
    ClrHandle* handle = nullptr;
    ICCProfileRecord profile{};
    test::ScratchDir dir;
    ICCXYZNumber xyz[3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    std::uint8_t raw[7] = {1, 2, 3, 4, 5, 6, 7};
    std::uint8_t pixels[4 * 64] = {}, out[4 * 64] = {};
    BitmapHandle bitmap{};
    CmykOptions cmyk = test::Cmyk(100);
    YuvOptions yuv = test::Yuv(raw, 4);
    LabOptions lab = test::Lab(1);
    IccOptions icc{{1, 2, 3, 4, 5}};

    Fixture() { Vx_InitICCProfile(&profile, KTCLR_SIZEOF_ICC_PROFILE_RECORD), Vx_BmpInit(&bitmap, kBitmapSize); }
    ~Fixture() { Vx_ClrFree(handle), Vx_FreeICCProfile(&profile), Vx_BmpFree(&bitmap); }  // null: refused
    KtStatus SetTag(void* t, std::uint32_t tag, std::uint32_t type) { return Vx_SetICCTagData(&profile, t, tag, type); }
    // Parameters pointing at every option record; a pair reads only its
    // own sides' records.
    ConversionParams WithRecords(std::uint32_t method, std::uint32_t prepare = 0) {
        ConversionParams p = Params(method, prepare);
        p.cmykOptions = &cmyk, p.yuvOptions = &yuv, p.labOptions = &lab, p.iccOptions = &icc;
        return p;
    }
    KtStatus Init(int src, int dst, std::optional<ConversionParams> p = {}) {
        return Vx_ClrInit(&handle, src, dst, p ? &*p : nullptr);
    }
    KtStatus Set(ConversionParams p) { return Vx_ClrSetConversionParams(handle, &p); }
    // A file of the scratch folder by its wide and its narrow name.
    std::u16string File(const char* name) { return test::Wide(dir.File(name)); }
};

// A profile with a header and three tags, one of them of an unknown type.
void Tagged(Fixture& f) {
    ICCXYZType t = XyzOf(f.xyz, 3);
    ICCRawTagType raw{0, 0, f.raw, 7};
    Vx_InitICCHeader(&f.profile);
    f.SetTag(&t, Sig("rXYZ"), Sig("XYZ ")), f.SetTag(&raw, Sig("desc"), Sig("desc"));
    f.SetTag(&t, Sig("gXYZ"), Sig("XYZ "));
    Vx_GenerateICCPointer(&f.profile);
}

// Bytes made once, outside the counts: the press profile (in memory too,
// for the custom ICC method) and the image of a tagged profile.
struct Samples {
    test::Bytes press = test::BuiltinProfile(KTCLR_PROFILE_CMYK_PRESS);
    ProfileMemory memory{KTCLR_SIZEOF_PROFILE_MEMORY, press.data(), static_cast<std::uint32_t>(press.size())};
    test::Bytes tagged;
    std::string jpeg;  // SOI, JFIF, the tagged profile in one APP2 segment, a scan, EOI
    Samples() {
        Fixture f;
        Tagged(f);
        tagged.assign(f.profile.profileData, f.profile.profileData + f.profile.profileSize);
        const std::size_t app2 = 2 + 12 + 2 + tagged.size();
        jpeg = std::string("\xFF\xD8\xFF\xE0\0\x10JFIF\0\1\1\0\0\1\0\1\0\0\xFF\xE2", 22) + char(app2 >> 8) + char(app2) +
               std::string("ICC_PROFILE\0\1\1", 14) + std::string(tagged.begin(), tagged.end()) +
               std::string("\xFF\xDA\0\x08\1\1\0\0\x3F\0\x12\x34\xFF\xD9", 14);
    }
};
Samples& TheSamples() { static Samples samples; return samples; }

// Set-ups: the press profile as a custom source by file; the JPEG file and
// the profile file; a 3 x 2 bitmap of 24-bit pixels.
ConversionParams CustomFromFile(Fixture& f, std::uint32_t method, std::uint32_t prepare = 0) {
    ConversionParams p = Params(method, prepare);
    test::SetPath(p.srcProfilePath, f.dir.Write("press.icc", TheSamples().press));
    return p;
}
void Jpeg(Fixture& f) { test::WriteFile(f.dir.File("in.jpg"), TheSamples().jpeg); }
void IccFile(Fixture& f) { f.dir.Write("in.icc", TheSamples().tagged); }
void HeaderOnly(Fixture& f) { Vx_InitICCHeader(&f.profile); }
// A saving row's set-up: a JPEG file to save into, and the tagged profile.
void JpegAndProfile(Fixture& f) { Jpeg(f), Tagged(f); }
// What a failed save must leave: the file byte for byte.
void SameJpeg(Fixture& f) { EXPECT_EQ(test::ReadFile(f.dir.File("in.jpg")), TheSamples().jpeg); }

struct Row {
    const char* name;
    KtStatus status;  // what the call answers when an allocation fails
    std::function<KtStatus(Fixture&)> call;
    std::function<void(Fixture&)> setup = [](Fixture&) {};
    // dropped: also accepted after a failure when not 0, the call answering
    // it over the status of a step it deliberately ignores.
    KtStatus success = STATUS_OK, dropped = KtStatus{};
    // Checks what the failed call left, before the fixture goes.
    std::function<void(Fixture&)> after = [](Fixture&) {};
};

// Vx_ClrInit of a pair with the option records, under a method.
Row Init(const char* name, int src, int dst, std::uint32_t method = METHOD_BUILTIN) {
    return {name, ERR_ALLOC, [=](Fixture& f) { return f.Init(src, dst, f.WithRecords(method)); }};
}

// Vx_ClrSetConversionParams with the option records on a handle made
// without parameters.
Row Set(const char* name, int src, int dst, std::uint32_t mask) {
    return {name, ERR_ALLOC, [=](Fixture& f) { return f.Set(f.WithRecords(0, mask)); },
            [=](Fixture& f) { f.Init(src, dst); }};
}

// A tag of the tagged profile handed out, read or taken away, then freed.
Row TagOut(const char* name, std::uint32_t tag, std::uint32_t type, bool remove, KtStatus success = STATUS_OK) {
    return {name, ERR_NO_MEMORY, [=](Fixture& f) {
                alignas(8) unsigned char t[64] = {};  // room for either tag type
                const KtStatus s = remove ? Vx_DeleteICCTag(&f.profile, tag, &t) : Vx_GetICCTagData(&f.profile, &t, tag);
                Vx_FreeICCTagType(&t, type);
                return s;
            }, Tagged, success};
}

// A curve flattened to its file form, read back by `get`, freed by `free`.
template <class Curve>
Row CurveBack(const char* name, Curve curve, KtStatus (*flatten)(unsigned char*, const Curve*),
              KtStatus (*get)(const unsigned char*, Curve*), void (*free)(Curve*)) {
    return {name, ERR_NO_MEMORY, [=](Fixture&) {
                unsigned char flat[32];
                Curve back{};
                flatten(flat, &curve);
                const KtStatus s = get(flat, &back);
                free(&back);
                return s;
            }};
}

KtStatus FillFromTagged(Fixture& f) {
    const test::Bytes& b = TheSamples().tagged;
    return Vx_FillICCProfileStructure(&f.profile, b.data(), static_cast<std::uint32_t>(b.size()));
}

std::uint16_t kEntries[2] = {1, 2};  // the curves' values
std::int32_t kParameters[4] = {1, 2, 3, 4};

const Row kRows[] = {
    // Conversion handles.
    {"InitIdentity", ERR_ALLOC, [](Fixture& f) { return f.Init(7, 7); }},
    {"InitWithoutParams", ERR_ALLOC, [](Fixture& f) { return f.Init(CS_YCCK, CS_BGR); }},
    Init("InitCmykOptions", CS_CMYK, CS_YCCK),
    Init("InitYuvOptions", CS_YUV, CS_BGR),
    Init("InitLabTables", CS_LAB, CS_RGB),
    Init("InitBuiltinIcc", CS_YCCK, CS_RGB, METHOD_ICC),
    {"InitCustomIccFromMemory", ERR_ALLOC, [](Fixture& f) {
         ConversionParams p = Params(METHOD_CUSTOM_ICC, METHOD_CUSTOM_ICC | METHOD_ICC);
         p.srcProfileMemory = &TheSamples().memory;
         return f.Init(CS_CMYK, CS_BGR, p);
     }},
    {"InitCustomIccFromFile", ERR_ALLOC,
     [](Fixture& f) { return f.Init(CS_CMYK, CS_RGB, CustomFromFile(f, METHOD_CUSTOM_ICC)); }},
    Set("SetParamsOptionsAndTables", CS_CMYK, CS_LAB, KTCLR_CHANGE_CMYK | KTCLR_CHANGE_LAB | KTCLR_CHANGE_ICC_OPTIONS),
    Set("SetParamsYuv", CS_CMYK, CS_YUV, KTCLR_CHANGE_CMYK | KTCLR_CHANGE_YUV),
    {"SetParamsCustomProfiles", ERR_ALLOC,
     [](Fixture& f) { return f.Set(CustomFromFile(f, 0, KTCLR_CHANGE_CUSTOM_PROFILES)); },
     [](Fixture& f) { f.Init(CS_CMYK, CS_RGB, CustomFromFile(f, METHOD_CUSTOM_ICC)); }},
    {"ConvertIccFromYcck", ERR_ALLOC, [](Fixture& f) { return Vx_ClrConvert(f.handle, f.pixels, f.out, 8, 8, 4, 4); },
     [](Fixture& f) { f.Init(CS_YCCK, CS_RGB, Params(METHOD_ICC)); }},
    {"ConvertDirectThroughRgb", ERR_ALLOC,
     [](Fixture& f) { return Vx_ClrConvertDirect(CS_HSV, CS_CMYK, f.pixels, f.out, 8, 8, 0, 0); }},
    {"ClrInitA", ERR_ALLOC, [](Fixture& f) {
         ConversionParamsA a{};
         a.method = METHOD_CUSTOM_ICC, a.prepareMethods = METHOD_CUSTOM_ICC | METHOD_ICC;
         a.srcProfileMemory = &TheSamples().memory, std::strcpy(a.dstProfilePath, "missing.icc");
         return Vx_ClrInitA(&f.handle, CS_CMYK, CS_RGB, &a);
     }},
    {"ClrSetConversionParamsA", ERR_ALLOC, [](Fixture& f) {
         ConversionParamsA a{};
         a.prepareMethods = KTCLR_CHANGE_CMYK, a.cmykOptions = &f.cmyk;
         return Vx_ClrSetConversionParamsA(f.handle, &a);
     }, [](Fixture& f) { f.Init(CS_CMYK, CS_RGB); }},

    // Bitmaps. The handle form of the conversion into a bitmap drops the
    // fill's status, so a failed fill may still answer STATUS_OK.
    {"BmpCreate", ERR_ALLOC, [](Fixture& f) { return Vx_BmpCreate(&f.bitmap, kBitmapSize, 2, 2, 24, 0); }},
    {"BmpFillFromDib", ERR_ALLOC, [](Fixture& f) {
         Vx_BmpInfoHeader h{};
         h.size = KTCLR_SIZEOF_BMP_INFO_HEADER, h.width = h.height = 2, h.planes = 1, h.bitsPerPixel = 24;
         return Vx_BmpFillFromDib(&f.bitmap, kBitmapSize, &h, f.pixels);
     }},
    {"ClrConvertToBitmap", ERR_ALLOC,
     [](Fixture& f) { return Vx_ClrConvertToBitmap(f.handle, f.pixels, &f.bitmap, kBitmapSize, 3, 2, 1, 3); },
     [](Fixture& f) { f.Init(CS_HSV, CS_RGB); }, STATUS_OK, STATUS_OK},
    {"ClrConvertDirectToBitmap", ERR_ALLOC, [](Fixture& f) {
         return Vx_ClrConvertDirectToBitmap(CS_HSV, CS_RGB, f.pixels, &f.bitmap, kBitmapSize, 3, 2, 0, 3);
     }},
    {"ClrConvertBitmap", ERR_ALLOC, [](Fixture& f) { return Vx_ClrConvertBitmap(f.handle, &f.bitmap, nullptr); },
     [](Fixture& f) { f.Init(CS_RGB, CS_HSV), Vx_BmpCreate(&f.bitmap, kBitmapSize, 3, 2, 24, VX_BMP_ORDER_BGR); }},

    // Profile records.
    {"InitICCHeader", ERR_NO_MEMORY, [](Fixture& f) { return Vx_InitICCHeader(&f.profile); }},
    {"SetICCCreator", ERR_NO_MEMORY, [](Fixture& f) { return Vx_SetICCCreator(&f.profile, 3); }, HeaderOnly},
    {"SetICCRenderingIntent", ERR_NO_MEMORY, [](Fixture& f) { return Vx_SetICCRenderingIntent(&f.profile, 2); }, Tagged},
    {"SetICCTagData", ERR_NO_MEMORY,
     [](Fixture& f) { ICCXYZType t = XyzOf(f.xyz, 2); return f.SetTag(&t, Sig("wtpt"), Sig("XYZ ")); }, HeaderOnly},
    {"SetICCTagDataUnknownType", ERR_NO_MEMORY,
     [](Fixture& f) { ICCRawTagType raw{0, 0, f.raw, 3}; return f.SetTag(&raw, Sig("cprt"), Sig("mmod")); },
     Tagged, WARN_UNKNOWN_TAG_TYPE},
    TagOut("GetICCTagData", Sig("gXYZ"), Sig("XYZ "), false),
    TagOut("GetICCTagDataRaw", Sig("desc"), Sig("desc"), false, WARN_UNKNOWN_TAG_TYPE),
    {"CreateICCTagData", ERR_NO_MEMORY, [](Fixture& f) {
         ICCXYZType host = XyzOf(f.xyz, 3), file{};
         const KtStatus s = Vx_CreateICCTagData(&file, &host, Sig("XYZ "));
         Vx_FreeICCTagType(&file, Sig("XYZ "));
         return s;
     }},
    {"DeleteICCTag", ERR_NO_MEMORY, [](Fixture& f) { return Vx_DeleteICCTag(&f.profile, Sig("desc"), nullptr); }, Tagged},
    TagOut("DeleteICCTagHandedOut", Sig("rXYZ"), Sig("XYZ "), true),
    {"DeleteICCTagLast", ERR_NO_MEMORY, [](Fixture& f) { return Vx_DeleteICCTag(&f.profile, Sig("wtpt"), nullptr); },
     [](Fixture& f) { ICCXYZType t = XyzOf(f.xyz, 1); HeaderOnly(f), f.SetTag(&t, Sig("wtpt"), Sig("XYZ ")); }},
    {"GenerateICCPointer", ERR_NO_MEMORY, [](Fixture& f) { return Vx_GenerateICCPointer(&f.profile); }, Tagged},
    {"FillICCProfileStructure", ERR_NO_MEMORY, FillFromTagged},
    {"FillICCProfileStructureOverAHeader", ERR_NO_MEMORY, FillFromTagged, HeaderOnly},
    {"GenerateICCFile", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_GenerateICCFile(&f.profile, f.File("out.icc").c_str()); }, Tagged},
    {"GenerateICCFileA", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_GenerateICCFileA(&f.profile, f.dir.File("out.icc").c_str()); }, Tagged},
    {"FillICCProfileFromICCFile", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_FillICCProfileFromICCFile(f.File("in.icc").c_str(), &f.profile); }, IccFile},
    {"FillICCProfileFromICCFileA", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_FillICCProfileFromICCFileA(f.dir.File("in.icc").c_str(), &f.profile); }, IccFile},

    // Profiles in image files. A failed save leaves the file as it was; a
    // JPEG save without its segment buffer answers the positive 8.
    // Vx_HasICCProfile answers 0 (no profile) for every failure.
    {"LoadICCProfile", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_LoadICCProfile(f.File("in.jpg").c_str(), &f.profile, nullptr); }, Jpeg},
    {"LoadICCProfileA", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_LoadICCProfileA(f.dir.File("in.jpg").c_str(), &f.profile, nullptr); }, Jpeg},
    {"HasICCProfile", KtStatus{}, [](Fixture& f) { return Vx_HasICCProfile(f.File("in.jpg").c_str(), nullptr); },
     Jpeg, 1},
    {"HasICCProfileA", KtStatus{}, [](Fixture& f) { return Vx_HasICCProfileA(f.dir.File("in.jpg").c_str(), nullptr); },
     Jpeg, 1, ERR_NO_MEMORY},  // the name's conversion
    {"SaveICCProfile", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_SaveICCProfile(f.File("in.jpg").c_str(), &f.profile, nullptr); }, JpegAndProfile,
     STATUS_OK, KtStatus{8}, SameJpeg},
    {"SaveICCProfileA", ERR_NO_MEMORY,
     [](Fixture& f) { return Vx_SaveICCProfileA(f.dir.File("in.jpg").c_str(), &f.profile, nullptr); }, JpegAndProfile,
     STATUS_OK, KtStatus{8}, SameJpeg},

    CurveBack<ICCCurveType>("ClrIntGetCurveTypeLittleIndian", {Sig("curv"), 0, 2, kEntries},
                            Vx_ConvertCurveTypeToBuffer, Vx_ClrIntGetCurveTypeLittleIndian, Vx_ClrIntIccFreeCurveType),
    CurveBack<ICCParametricCurveType>("ClrIntGetParametricCurveTypeLittleIndian", {Sig("para"), 0, 2, 0, kParameters},
                                      Vx_ConvertParametricCurveTypeToBuffer, Vx_ClrIntGetParametricCurveTypeLittleIndian,
                                      Vx_ClrIntIccFreeParametricCurveType),
};

void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

class AllocationFailure : public testing::TestWithParam<Row> {};

TEST_P(AllocationFailure, AnswersItsStatusAndLeavesNothing) {
    const Row& row = GetParam();
    TheSamples();
    for (int n = 1;; ++n) {
        const test::LiveCounts before = test::Live();
        KtStatus status = STATUS_OK;
        bool fired = false;
        {
            Fixture f;
            row.setup(f);
            mem::testing::FailNthAllocation(n);
            status = row.call(f);
            fired = mem::testing::FailureFired();
            mem::testing::FailNthAllocation(0);
            if (fired) row.after(f);
        }
        EXPECT_EQ(test::Live(), before) << "allocation " << n;
        if (!fired) {
            EXPECT_EQ(status, row.success);
            EXPECT_GT(n, 1) << "the call allocates nothing";
            return;
        }
        EXPECT_TRUE(status == row.status || (row.dropped && status == row.dropped)) << "allocation " << n << ": " << status;
    }
}

INSTANTIATE_TEST_SUITE_P(PublicCalls, AllocationFailure, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace kt
