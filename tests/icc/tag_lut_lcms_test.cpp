// 'mft2', 'mAB ' and 'mBA ' with Little CMS on the other side, and the
// curve and LUT tags of the distribution's profiles against what Little CMS
// reads from them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "tag_lut_lcms.h"

namespace {

using namespace icctest;

std::vector<uint8_t> SaveToMemory(cmsHPROFILE h) {
    cmsUInt32Number bytes = 0;
    EXPECT_TRUE(cmsSaveProfileToMem(h, nullptr, &bytes));
    std::vector<uint8_t> image(bytes);
    EXPECT_TRUE(cmsSaveProfileToMem(h, image.data(), &bytes));
    return image;
}

cmsHPROFILE Witness(const ICCProfileRecord& p) { return cmsOpenProfileFromMem(p.profileData, p.profileSize); }

const cmsPipeline* ReadPipeline(cmsHPROFILE h, uint32_t tag) {
    return static_cast<const cmsPipeline*>(cmsReadTag(h, static_cast<cmsTagSignature>(tag)));
}

TEST(LutLittleCms, ReadsLutsWrittenHere) {
    // mft2 RGB -> Lab, mAB CMYK -> Lab, mBA Lab -> CMYK with one-byte CLUT.
    struct Lut16Sample {
        std::vector<uint16_t> in, clut, out;
        ICCLut16 lut{};
    } l16;
    l16.lut.inputChannels = 3;
    l16.lut.outputChannels = 3;
    l16.lut.gridPoints = 5;
    l16.lut.matrix[0] = l16.lut.matrix[4] = l16.lut.matrix[8] = 0x10000;
    l16.lut.inputEntries = 256;
    l16.lut.outputEntries = 4096;
    l16.in.resize(3 * 256);
    l16.clut.resize(125 * 3);
    l16.out.resize(3 * 4096);
    for (size_t i = 0; i < l16.in.size(); ++i) l16.in[i] = uint16_t(i % 256 * 257 - i / 256);
    for (size_t i = 0; i < l16.clut.size(); ++i) l16.clut[i] = uint16_t(i * 40503u);
    for (size_t i = 0; i < l16.out.size(); ++i) l16.out[i] = uint16_t(i % 4096 * 16 + i / 4096);
    l16.lut.inputTables = l16.in.data();
    l16.lut.clut = l16.clut.data();
    l16.lut.outputTables = l16.out.data();
    AbSample ab(true, 4, 3, 2), ba(false, 3, 4, 1);

    Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), int32_t(Sig("prtr"))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCColorSpace(p.get(), int32_t(Sig("CMYK"))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCConnectionSpace(p.get(), int32_t(Sig("Lab "))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &l16.lut, Sig("A2B1"), Sig("mft2")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &ab.lut, Sig("A2B0"), Sig("mAB ")), STATUS_OK);
    ASSERT_EQ(Vx_SetICCTagData(p.get(), &ba.lut, Sig("B2A0"), Sig("mBA ")), STATUS_OK);
    ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    ab.clut.Reset();
    ba.clut.Reset();

    cmsHPROFILE h = Witness(p.r);
    ASSERT_NE(h, nullptr);
    {
        SCOPED_TRACE("mft2");
        ExpectSameLut16(l16.lut, ReadPipeline(h, Sig("A2B1")));
    }
    for (AbSample* s : {&ab, &ba}) {
        SCOPED_TRACE(s->aToB ? "mAB " : "mBA ");
        const std::vector<const cmsStage*> stages = StagesOf(ReadPipeline(h, s->aToB ? Sig("A2B0") : Sig("B2A0")));
        ASSERT_EQ(stages.size(), 5u);
        const int a = s->aToB ? 0 : 4, clut = s->aToB ? 1 : 3, m = 2, matrix = s->aToB ? 3 : 1, b = s->aToB ? 4 : 0;
        ExpectSameCurveSet(ValuesOfRecords(s->a.data(), s->CountA()), stages[a]);
        ExpectSameCurveSet(ValuesOfRecords(s->m.data(), s->CountMB()), stages[m]);
        ExpectSameCurveSet(ValuesOfRecords(s->b.data(), s->CountMB()), stages[b]);
        ExpectSameMatrix(s->lut.matrix, true, stages[matrix]);
        ExpectSameClutValues(s->clut.bytes.data(), uint32_t(s->clut.entries.size()), s->clut.clut.precision,
                             stages[clut]);
    }
    cmsCloseProfile(h);
}

// Little CMS writes a v2 lut16 and v4 lutAtoB / lutBtoA; they decode here to
// the values it reads back.
TEST(LutLittleCms, ReadsLutsLittleCmsWrote) {
    std::vector<cmsUInt16Number> ramp(256);
    for (uint32_t i = 0; i < 256; ++i) ramp[i] = cmsUInt16Number(i * 257 ^ (i & 3));
    auto curves = [&](uint32_t n, bool parametric) {
        std::vector<cmsToneCurve*> c(n);
        const cmsFloat64Number g[1] = {2.2};
        for (uint32_t i = 0; i < n; ++i)
            c[i] = parametric ? cmsBuildParametricToneCurve(nullptr, 1, g)
                              : cmsBuildTabulatedToneCurve16(nullptr, 256, ramp.data());
        cmsStage* s = cmsStageAllocToneCurves(nullptr, n, c.data());
        for (cmsToneCurve* t : c) cmsFreeToneCurve(t);
        return s;
    };
    auto clut = [](uint32_t grid, uint32_t in, uint32_t out) {
        cmsUInt32Number n = out;
        for (uint32_t i = 0; i < in; ++i) n *= grid;
        std::vector<cmsUInt16Number> t(n);
        for (cmsUInt32Number i = 0; i < n; ++i) t[i] = cmsUInt16Number(i * 2654435761u >> 16);
        return cmsStageAllocCLut16bit(nullptr, grid, in, out, t.data());
    };
    const cmsFloat64Number mat[9] = {0.5, 0.25, 0.125, -0.5, 1, 0, 0.75, 0.1, 0.2};
    const cmsFloat64Number off[3] = {0.1, -0.2, 0.3};

    for (double version : {2.1, 4.3}) {
        SCOPED_TRACE(version);
        cmsHPROFILE h = cmsCreateProfilePlaceholder(nullptr);
        cmsSetProfileVersion(h, version);
        cmsSetDeviceClass(h, cmsSigOutputClass);
        cmsSetColorSpace(h, cmsSigCmykData);
        cmsSetPCS(h, cmsSigLabData);
        cmsPipeline* a2b = cmsPipelineAlloc(nullptr, 4, 3);
        cmsPipeline* b2a = cmsPipelineAlloc(nullptr, 3, 4);
        if (version < 4) {
            cmsPipelineInsertStage(a2b, cmsAT_END, curves(4, false));
            cmsPipelineInsertStage(a2b, cmsAT_END, clut(3, 4, 3));
            cmsPipelineInsertStage(a2b, cmsAT_END, curves(3, false));
        } else {
            cmsPipelineInsertStage(a2b, cmsAT_END, curves(4, false));
            cmsPipelineInsertStage(a2b, cmsAT_END, clut(3, 4, 3));
            cmsPipelineInsertStage(a2b, cmsAT_END, curves(3, true));
            cmsPipelineInsertStage(a2b, cmsAT_END, cmsStageAllocMatrix(nullptr, 3, 3, mat, off));
            cmsPipelineInsertStage(a2b, cmsAT_END, curves(3, false));
            cmsPipelineInsertStage(b2a, cmsAT_END, curves(3, true));
            cmsPipelineInsertStage(b2a, cmsAT_END, cmsStageAllocMatrix(nullptr, 3, 3, mat, off));
            cmsPipelineInsertStage(b2a, cmsAT_END, curves(3, false));
            cmsPipelineInsertStage(b2a, cmsAT_END, clut(5, 3, 4));
            cmsPipelineInsertStage(b2a, cmsAT_END, curves(4, false));
            ASSERT_TRUE(cmsWriteTag(h, cmsSigBToA0Tag, b2a));
        }
        ASSERT_TRUE(cmsWriteTag(h, cmsSigAToB0Tag, a2b));
        cmsPipelineFree(a2b);
        cmsPipelineFree(b2a);
        const std::vector<uint8_t> image = SaveToMemory(h);
        cmsCloseProfile(h);

        Profile p;
        ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), image.data(), uint32_t(image.size())), STATUS_OK);
        cmsHPROFILE witness = cmsOpenProfileFromMem(image.data(), cmsUInt32Number(image.size()));
        ASSERT_NE(witness, nullptr);
        if (version < 4) {
            ASSERT_EQ(Vx_GetICCTagTypeSig(p.get(), Sig("A2B0")), Sig("mft2"));
            ICCLut16 ours{};
            ASSERT_EQ(Vx_GetICCTagData(p.get(), &ours, Sig("A2B0")), STATUS_OK);
            EXPECT_EQ(ours.inputEntries, 256);
            ExpectSameLut16(ours, ReadPipeline(witness, Sig("A2B0")));
            Vx_FreeICCTagType(&ours, Sig("mft2"));
        } else {
            for (auto [tag, type] : {std::pair{Sig("A2B0"), Sig("mAB ")}, std::pair{Sig("B2A0"), Sig("mBA ")}}) {
                SCOPED_TRACE(type);
                ASSERT_EQ(Vx_GetICCTagTypeSig(p.get(), tag), type);
                ICCLutAtoB ours{};
                ASSERT_EQ(Vx_GetICCTagData(p.get(), &ours, tag), STATUS_OK);
                ExpectSameLutAB(ours, type == Sig("mAB "), ReadPipeline(witness, tag));
                Vx_FreeICCTagType(&ours, type);
            }
        }
        cmsCloseProfile(witness);
    }
}

// The distribution's profiles (icc-profiles-free, colord-data, argyll).
std::vector<std::string> DistributionProfiles() {
    std::set<std::string> paths;
    for (const char* package : {"icc-profiles-free", "colord-data", "argyll-ref"}) {
        FILE* pipe = popen((std::string("dpkg -L ") + package + " 2>/dev/null").c_str(), "r");
        if (!pipe) continue;
        char line[4096];
        while (std::fgets(line, sizeof line, pipe)) {
            std::string path(line);
            while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) path.pop_back();
            std::string ext = path.size() > 4 ? path.substr(path.size() - 4) : "";
            std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
            if ((ext == ".icc" || ext == ".icm") && std::ifstream(path).good()) paths.insert(path);
        }
        pclose(pipe);
    }
    return std::vector<std::string>(paths.begin(), paths.end());
}

TEST(LutLittleCms, DistributionProfilesDecodeAsLittleCmsReadsThem) {
    const std::vector<std::string> paths = DistributionProfiles();
    if (paths.empty()) GTEST_SKIP() << "no distribution ICC profiles installed";
    int compared = 0;
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        std::ifstream f(path, std::ios::binary);
        const std::vector<uint8_t> file((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
        Profile p;
        if (Vx_FillICCProfileStructure(p.get(), file.data(), uint32_t(file.size())) != STATUS_OK) continue;
        cmsHPROFILE witness = cmsOpenProfileFromMem(file.data(), cmsUInt32Number(file.size()));
        ASSERT_NE(witness, nullptr);
        std::set<uint32_t> seen;
        for (int32_t i = 0; i < p->tagCount; ++i) {
            const uint32_t tag = p->tagList[i].signature;
            if (!seen.insert(tag).second) continue;
            const uint32_t type = Vx_GetICCTagTypeSig(p.get(), tag);
            const bool curve = type == Sig("curv") || type == Sig("para");
            const bool lut = type == Sig("mft2") || type == Sig("mAB ") || type == Sig("mBA ") || type == Sig("mft1");
            if (!curve && !lut) continue;
            SCOPED_TRACE(testing::Message() << "tag " << std::string(reinterpret_cast<const char*>(&tag), 4));
            AnyRecord ours{};
            const KtStatus st = Vx_GetICCTagData(p.get(), &ours, tag);
            const void* theirs = cmsReadTag(witness, static_cast<cmsTagSignature>(tag));
            // Little CMS reads lut8 with its fixed 256-entry tables; this
            // library keeps its own lut8 layout, so those only must not fail
            // badly.
            if (type == Sig("mft1")) {
                EXPECT_TRUE(st == STATUS_OK || st == WARN_UNKNOWN_TAG || st == ERR_INVALID_TAG);
            } else if (theirs) {
                EXPECT_TRUE(st == STATUS_OK || st == WARN_UNKNOWN_TAG) << st;
                if (curve) {
                    ExpectSameCurve(ValuesOfRecord(&ours), static_cast<const cmsToneCurve*>(theirs));
                } else if (type == Sig("mft2")) {
                    ExpectSameLut16(*reinterpret_cast<const ICCLut16*>(&ours), static_cast<const cmsPipeline*>(theirs));
                } else {
                    ExpectSameLutAB(*reinterpret_cast<const ICCLutAtoB*>(&ours), type == Sig("mAB "),
                                    static_cast<const cmsPipeline*>(theirs));
                }
                ++compared;
            }
            Vx_FreeICCTagType(&ours, type);
        }
        cmsCloseProfile(witness);
    }
    std::printf("%d curve and LUT tags compared with Little CMS\n", compared);
    EXPECT_GT(compared, 0);
}

}  // namespace
