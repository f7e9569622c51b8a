// Little CMS as the witness for the curve and LUT tags: what this library
// decodes is compared with what cmsReadTag makes of the same bytes.
#pragma once

#include <gtest/gtest.h>
#include <lcms2.h>
#include <lcms2_plugin.h>

#include <cstring>
#include <vector>

#include "tag_lut_samples.h"

namespace icctest {

// A decoded curve against Little CMS's tone curve: an empty curve is its
// identity (gamma 1), one entry a u8Fixed8 gamma, more a table; a 'para'
// function type n is its type n + 1 with the same s15Fixed16 parameters.
inline void ExpectSameCurve(const CurveValues& ours, const cmsToneCurve* theirs) {
    ASSERT_NE(theirs, nullptr);
    if (ours.parametric || ours.countOrType <= 1) {
        const int32_t type = ours.parametric ? int32_t(ours.countOrType) + 1 : 1;
        ASSERT_EQ(cmsGetToneCurveParametricType(theirs), type);
        const cmsFloat64Number* params = cmsGetToneCurveParams(theirs);
        if (!ours.parametric) {
            EXPECT_DOUBLE_EQ(params[0], ours.countOrType == 0 ? 1.0 : ours.values[0] / 256.0);
            return;
        }
        for (size_t i = 0; i < ours.values.size(); ++i) EXPECT_DOUBLE_EQ(params[i], ours.values[i] / 65536.0) << i;
        return;
    }
    ASSERT_EQ(cmsGetToneCurveEstimatedTableEntries(theirs), ours.countOrType);
    const cmsUInt16Number* table = cmsGetToneCurveEstimatedTable(theirs);
    for (uint32_t i = 0; i < ours.countOrType; ++i) ASSERT_EQ(table[i], ours.values[i]) << i;
}

inline void ExpectSameCurveSet(const std::vector<CurveValues>& ours, const cmsStage* stage) {
    ASSERT_NE(stage, nullptr);
    ASSERT_EQ(cmsStageType(stage), cmsSigCurveSetElemType);
    const auto* data = static_cast<const _cmsStageToneCurvesData*>(cmsStageData(stage));
    ASSERT_EQ(data->nCurves, ours.size());
    for (size_t i = 0; i < ours.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "curve " << i);
        ExpectSameCurve(ours[i], data->TheCurves[i]);
    }
}

// 16-bit table values as Little CMS keeps them: one-byte entries widened.
inline void ExpectSameClutValues(const uint8_t* entries, uint32_t count, uint32_t precision, const cmsStage* stage) {
    ASSERT_NE(stage, nullptr);
    ASSERT_EQ(cmsStageType(stage), cmsSigCLutElemType);
    const auto* data = static_cast<const _cmsStageCLutData*>(cmsStageData(stage));
    ASSERT_FALSE(data->HasFloatValues);
    ASSERT_EQ(data->nEntries, count);
    for (uint32_t i = 0; i < count; ++i) {
        uint16_t v = 0;
        if (precision == 1)
            v = uint16_t(entries[i] * 257);
        else
            std::memcpy(&v, entries + 2 * i, 2);
        ASSERT_EQ(data->Tab.T[i], v) << i;
    }
}

inline void ExpectSameMatrix(const int32_t* ours, bool offsets, const cmsStage* stage) {
    ASSERT_NE(stage, nullptr);
    ASSERT_EQ(cmsStageType(stage), cmsSigMatrixElemType);
    const auto* data = static_cast<const _cmsStageMatrixData*>(cmsStageData(stage));
    for (int i = 0; i < 9; ++i) EXPECT_DOUBLE_EQ(data->Double[i], ours[i] / 65536.0) << i;
    if (offsets) {
        ASSERT_NE(data->Offset, nullptr);
        for (int i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(data->Offset[i], ours[9 + i] / 65536.0) << i;
    }
}

inline std::vector<const cmsStage*> StagesOf(const cmsPipeline* lut) {
    std::vector<const cmsStage*> out;
    for (const cmsStage* s = cmsPipelineGetPtrToFirstStage(lut); s; s = cmsStageNext(s)) out.push_back(s);
    return out;
}

// A decoded 'mft2' against Little CMS's pipeline: input curves, CLUT,
// output curves, after a matrix stage that it adds for XYZ input only.
inline void ExpectSameLut16(const ICCLut16& ours, const cmsPipeline* lut) {
    ASSERT_NE(lut, nullptr);
    std::vector<const cmsStage*> stages = StagesOf(lut);
    if (!stages.empty() && cmsStageType(stages[0]) == cmsSigMatrixElemType) {
        ExpectSameMatrix(ours.matrix, false, stages[0]);
        stages.erase(stages.begin());
    }
    ASSERT_EQ(stages.size(), 3u);
    auto tables = [](const uint16_t* t, uint32_t channels, uint32_t entries) {
        std::vector<CurveValues> set;
        for (uint32_t c = 0; c < channels; ++c)
            set.push_back({false, entries, std::vector<int64_t>(t + c * entries, t + (c + 1) * entries)});
        return set;
    };
    ExpectSameCurveSet(tables(static_cast<const uint16_t*>(ours.inputTables), ours.inputChannels, ours.inputEntries),
                       stages[0]);
    uint32_t clutCount = ours.outputChannels;
    for (int i = 0; i < ours.inputChannels; ++i) clutCount *= ours.gridPoints;
    ExpectSameClutValues(static_cast<const uint8_t*>(ours.clut), clutCount, 2, stages[1]);
    ExpectSameCurveSet(tables(static_cast<const uint16_t*>(ours.outputTables), ours.outputChannels, ours.outputEntries),
                       stages[2]);
}

// A decoded 'mAB ' or 'mBA ' against Little CMS's pipeline, element by
// element in file order (A, CLUT, M, matrix, B for 'mAB '; the reverse for
// 'mBA '). Little CMS makes a stage of each offset it finds; this library
// reads A only behind a CLUT and M only behind a matrix, so a stage without
// a decoded counterpart is skipped.
inline void ExpectSameLutAB(const ICCLutAtoB& ours, bool aToB, const cmsPipeline* lut) {
    ASSERT_NE(lut, nullptr);
    const std::vector<const cmsStage*> stages = StagesOf(lut);
    const uint32_t countA = aToB ? ours.inputChannels : ours.outputChannels;
    const uint32_t countMB = aToB ? ours.outputChannels : ours.inputChannels;
    enum Part { A, Clut, M, Matrix, B };
    const Part atob[] = {A, Clut, M, Matrix, B}, btoa[] = {B, Matrix, M, Clut, A};
    size_t next = 0;
    for (Part part : aToB ? atob : btoa) {
        const uint32_t offset = part == A      ? ours.offsetA
                                : part == Clut ? ours.offsetCLUT
                                : part == M    ? ours.offsetM
                                : part == B    ? ours.offsetB
                                               : ours.offsetMatrix;
        if (offset == 0) continue;
        ASSERT_LT(next, stages.size());
        const cmsStage* stage = stages[next++];
        SCOPED_TRACE(testing::Message() << "element " << int(part));
        switch (part) {
            case A:
                if (ours.curvesA) ExpectSameCurveSet(ValuesOfFlatSet(ours.curvesA, countA), stage);
                break;
            case M:
                if (ours.curvesM) ExpectSameCurveSet(ValuesOfFlatSet(ours.curvesM, countMB), stage);
                break;
            case B:
                ExpectSameCurveSet(ValuesOfFlatSet(ours.curvesB, countMB), stage);
                break;
            case Matrix:
                ExpectSameMatrix(ours.matrix, true, stage);
                break;
            case Clut: {
                const auto* c = static_cast<const uint8_t*>(ours.clut);
                uint32_t count = ours.outputChannels;
                for (int i = 0; i < ours.inputChannels; ++i) count *= c[i];
                ExpectSameClutValues(c + 20, count, c[16], stage);
                break;
            }
        }
    }
    EXPECT_EQ(next, stages.size());
}

}  // namespace icctest
