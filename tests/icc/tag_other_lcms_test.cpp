// Little CMS as the independent witness for the standard-encoded types of
// this family: profiles written here are read by cmsReadTag, profiles
// written by Little CMS are read here, and the distribution's profiles
// decode here to what Little CMS reads. (Little CMS reads no standard tag of
// the types ui08..ui64 and uf32, nor 'rcs2'.)
#include <gtest/gtest.h>
#include <lcms2.h>

#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tag_other_samples.h"

namespace {

using namespace othertags;
using icctest::Be32;

double S15(int32_t v) { return v / 65536.0; }
double U16(uint32_t v) { return v / 65536.0; }

std::wstring Wide(const std::u16string& s) { return std::wstring(s.begin(), s.end()); }

std::wstring LcmsWide(const cmsMLU* mlu, const char lang[3], const char country[3]) {
    const cmsUInt32Number bytes = cmsMLUgetWide(mlu, lang, country, nullptr, 0);
    if (bytes == 0) return {};
    std::vector<wchar_t> buf(bytes / sizeof(wchar_t) + 1);
    cmsMLUgetWide(mlu, lang, country, buf.data(), bytes);
    return std::wstring(buf.data());
}

void Codes(uint16_t language, uint16_t country, char lang[3], char ctry[3]) {
    lang[0] = char(language >> 8), lang[1] = char(language), lang[2] = 0;
    ctry[0] = char(country >> 8), ctry[1] = char(country), ctry[2] = 0;
}

void CompareMluc(const ICCMultiLocalizedUnicodeType& m, const cmsMLU* mlu) {
    ASSERT_NE(mlu, nullptr);
    ASSERT_EQ(cmsMLUtranslationsCount(mlu), m.count);
    for (uint32_t i = 0; i < m.count; ++i) {
        char lang[3], ctry[3], lcmsLang[3], lcmsCtry[3];
        Codes(m.records[i].language, m.records[i].country, lang, ctry);
        ASSERT_TRUE(cmsMLUtranslationsCodes(mlu, i, lcmsLang, lcmsCtry));
        EXPECT_EQ(std::string(lcmsLang, 2), std::string(lang, 2));
        EXPECT_EQ(std::string(lcmsCtry, 2), std::string(ctry, 2));
        // Strings are looked up by their codes; a repeated pair finds the first.
        bool repeated = false;
        for (uint32_t k = 0; k < i; ++k)
            repeated |= m.records[k].language == m.records[i].language && m.records[k].country == m.records[i].country;
        if (!repeated) {
            EXPECT_EQ(LcmsWide(mlu, lang, ctry), Wide(MlucString(m, i)));
        }
    }
}

void CompareNamedList(const cmsNAMEDCOLORLIST* list, uint32_t count, uint32_t coordinates,
                      const std::function<const uint8_t*(uint32_t)>& name, const std::function<const uint16_t*(uint32_t)>& pcs,
                      const std::function<const uint16_t*(uint32_t)>& device) {
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(cmsNamedColorCount(list), count);
    for (uint32_t i = 0; i < count; ++i) {
        char lcmsName[cmsMAX_PATH] = {}, prefix[33] = {}, suffix[33] = {};
        cmsUInt16Number lcmsPcs[3] = {}, colorant[cmsMAXCHANNELS] = {};
        ASSERT_TRUE(cmsNamedColorInfo(list, i, lcmsName, prefix, suffix, lcmsPcs, colorant));
        EXPECT_EQ(std::string(lcmsName), std::string(reinterpret_cast<const char*>(name(i)), strnlen(reinterpret_cast<const char*>(name(i)), 32)));
        for (int k = 0; k < 3; ++k) EXPECT_EQ(lcmsPcs[k], pcs(i)[k]);
        for (uint32_t k = 0; k < coordinates && device; ++k) EXPECT_EQ(colorant[k], device(i)[k]);
    }
}

// Compares a record decoded here with what cmsReadTag gives for the tag.
void Compare(uint32_t type, const void* record, const void* witness) {
    switch (type) {
        case Sig("mluc"):
            CompareMluc(*static_cast<const ICCMultiLocalizedUnicodeType*>(record), static_cast<const cmsMLU*>(witness));
            break;
        case Sig("text"): {
            const auto& t = *static_cast<const ICCTextType*>(record);
            const std::u16string here(static_cast<const char16_t*>(t.text), t.count);
            char ascii[4096] = {};
            cmsMLUgetASCII(static_cast<const cmsMLU*>(witness), cmsNoLanguage, cmsNoCountry, ascii, sizeof ascii);
            if (here.size() < sizeof ascii - 1) {
                EXPECT_EQ(here, std::u16string(ascii, ascii + std::strlen(ascii)));
            }
            break;
        }
        case Sig("sf32"): {
            const auto& a = *static_cast<const ICCS15Fixed16ArrayType*>(record);
            ASSERT_EQ(a.count, 9u);  // 'chad', the one sf32 tag Little CMS reads
            for (int i = 0; i < 9; ++i) EXPECT_DOUBLE_EQ(static_cast<const double*>(witness)[i], S15(a.values[i]));
            break;
        }
        case Sig("sig "):
            EXPECT_EQ(static_cast<const ICCSignatureType*>(record)->value, *static_cast<const cmsUInt32Number*>(witness));
            break;
        case Sig("dtim"): {
            const auto& d = *static_cast<const ICCDateTimeType*>(record);
            const auto& tm = *static_cast<const struct tm*>(witness);
            EXPECT_EQ(tm.tm_year + 1900, d.year);
            EXPECT_EQ(tm.tm_mon + 1, d.month);
            EXPECT_EQ(tm.tm_mday, d.day);
            EXPECT_EQ(tm.tm_hour, d.hours);
            EXPECT_EQ(tm.tm_min, d.minutes);
            EXPECT_EQ(tm.tm_sec, d.seconds);
            break;
        }
        case Sig("meas"): {
            const auto& m = *static_cast<const ICCMeasurementType*>(record);
            const auto& w = *static_cast<const cmsICCMeasurementConditions*>(witness);
            EXPECT_EQ(w.Observer, m.observer);
            EXPECT_DOUBLE_EQ(w.Backing.X, S15(m.backing.X));
            EXPECT_DOUBLE_EQ(w.Backing.Y, S15(m.backing.Y));
            EXPECT_DOUBLE_EQ(w.Backing.Z, S15(m.backing.Z));
            EXPECT_EQ(w.Geometry, m.geometry);
            EXPECT_DOUBLE_EQ(w.Flare, U16(m.flare));
            EXPECT_EQ(w.IlluminantType, m.illuminant);
            break;
        }
        case Sig("view"): {
            const auto& v = *static_cast<const ICCViewingConditionsType*>(record);
            const auto& w = *static_cast<const cmsICCViewingConditions*>(witness);
            EXPECT_DOUBLE_EQ(w.IlluminantXYZ.X, S15(v.illuminant.X));
            EXPECT_DOUBLE_EQ(w.IlluminantXYZ.Y, S15(v.illuminant.Y));
            EXPECT_DOUBLE_EQ(w.IlluminantXYZ.Z, S15(v.illuminant.Z));
            EXPECT_DOUBLE_EQ(w.SurroundXYZ.X, S15(v.surround.X));
            EXPECT_DOUBLE_EQ(w.SurroundXYZ.Y, S15(v.surround.Y));
            EXPECT_DOUBLE_EQ(w.SurroundXYZ.Z, S15(v.surround.Z));
            EXPECT_EQ(w.IlluminantType, v.illuminantType);
            break;
        }
        case Sig("chrm"): {
            const auto& c = *static_cast<const ICCChromaticityType*>(record);
            const auto& w = *static_cast<const cmsCIExyYTRIPLE*>(witness);
            ASSERT_EQ(c.channels, 3);
            const cmsCIExyY* xyY[3] = {&w.Red, &w.Green, &w.Blue};
            for (int i = 0; i < 3; ++i) {
                EXPECT_DOUBLE_EQ(xyY[i]->x, U16(c.coordinates[i].x));
                EXPECT_DOUBLE_EQ(xyY[i]->y, U16(c.coordinates[i].y));
            }
            break;
        }
        case Sig("clrt"): {
            const auto& t = *static_cast<const ICCColorantTableType*>(record);
            CompareNamedList(
                static_cast<const cmsNAMEDCOLORLIST*>(witness), t.count, 0, [&](uint32_t i) { return t.entries[i].name; },
                [&](uint32_t i) { return t.entries[i].pcs; }, nullptr);
            break;
        }
        case Sig("clro"): {
            const auto& o = *static_cast<const ICCColorantOrderType*>(record);
            const auto* w = static_cast<const cmsUInt8Number*>(witness);
            for (uint32_t i = 0; i < o.count; ++i) EXPECT_EQ(w[i], o.indices[i]);
            break;
        }
        case Sig("ncl2"): {
            const auto& n = *static_cast<const ICCNamedColor2Type*>(record);
            CompareNamedList(
                static_cast<const cmsNAMEDCOLORLIST*>(witness), n.count, n.deviceCoordinates,
                [&](uint32_t i) { return n.entries[i].rootName; }, [&](uint32_t i) { return n.entries[i].pcs; },
                [&](uint32_t i) { return static_cast<const uint16_t*>(n.entries[i].device); });
            break;
        }
        case Sig("pseq"): {
            const auto& p = *static_cast<const ICCProfileSequenceDescType*>(record);
            const auto& w = *static_cast<const cmsSEQ*>(witness);
            ASSERT_EQ(w.n, p.count);
            for (uint32_t i = 0; i < p.count; ++i) {
                const ICCProfileDescription& d = p.descriptions[i];
                EXPECT_EQ(w.seq[i].deviceMfg, d.deviceManufacturer);
                EXPECT_EQ(w.seq[i].deviceModel, d.deviceModel);
                EXPECT_EQ(w.seq[i].attributes, d.deviceAttributes);
                EXPECT_EQ(static_cast<uint32_t>(w.seq[i].technology), d.technology);
                CompareMluc(d.manufacturer, w.seq[i].Manufacturer);
                CompareMluc(d.model, w.seq[i].Model);
            }
            break;
        }
        case Sig("data"): {
            const auto& d = *static_cast<const ICCDataType*>(record);
            const auto& w = *static_cast<const cmsICCData*>(witness);
            EXPECT_EQ(w.flag, d.flag);
            // Little CMS counts an ASCII block's terminator.
            const uint32_t stored = w.len;
            ASSERT_GE(stored, d.size);
            EXPECT_EQ(std::vector<uint8_t>(w.data, w.data + d.size), std::vector<uint8_t>(d.data, d.data + d.size));
            break;
        }
        default:
            ADD_FAILURE() << "no comparison for type " << type;
    }
}

const std::set<uint32_t> kWitnessed = {Sig("mluc"), Sig("text"), Sig("sf32"), Sig("sig "), Sig("dtim"),
                                       Sig("meas"), Sig("view"), Sig("chrm"), Sig("clrt"), Sig("clro"),
                                       Sig("ncl2"), Sig("pseq"), Sig("data")};

// Decodes every tag of the family in `bytes` here and through Little CMS
// and compares; returns the types compared, tag by tag.
std::map<uint32_t, uint32_t> CompareProfile(const std::vector<uint8_t>& bytes) {
    std::map<uint32_t, uint32_t> compared;
    icctest::Profile p;
    EXPECT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), static_cast<uint32_t>(bytes.size())), STATUS_OK);
    cmsHPROFILE lcms = cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size()));
    EXPECT_NE(lcms, nullptr);
    if (!lcms) return compared;
    for (int32_t i = 0; i < p->tagCount; ++i) {
        const uint32_t tag = p->tagList[i].signature;
        const uint32_t type = Vx_GetICCTagTypeSig(p.get(), tag);
        if (!kWitnessed.count(type) || cmsTagLinkedTo(lcms, static_cast<cmsTagSignature>(tag)) != 0) continue;
        SCOPED_TRACE(testing::Message() << "tag " << std::string(reinterpret_cast<const char*>(&tag), 4) << " type "
                                        << type);
        AnyRecord record;
        const KtStatus st = Vx_GetICCTagData(p.get(), record.get(), tag);
        const bool decoded = st == STATUS_OK || st == WARN_UNKNOWN_TAG;
        EXPECT_TRUE(decoded) << st;
        const void* witness = cmsReadTag(lcms, static_cast<cmsTagSignature>(tag));
        if (witness && decoded) {
            Compare(type, record.get(), witness);
            compared[tag] = type;
        }
        Vx_FreeICCTagType(record.get(), type);
    }
    cmsCloseProfile(lcms);
    return compared;
}

std::vector<uint8_t> ImageOf(icctest::Profile& p) {
    EXPECT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
    return p.Image();
}

TEST(OtherTagLittleCms, ReadsTagsWrittenHere) {
    Samples s;
    icctest::Profile p;
    ASSERT_EQ(Vx_InitICCHeader(p.get()), STATUS_OK);
    ASSERT_EQ(Vx_SetICCDeviceClass(p.get(), static_cast<int32_t>(Sig("mntr"))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCColorSpace(p.get(), static_cast<int32_t>(Sig("RGB "))), STATUS_OK);
    ASSERT_EQ(Vx_SetICCConnectionSpace(p.get(), static_cast<int32_t>(Sig("XYZ "))), STATUS_OK);
    int32_t chad[9] = {0x10C44, 0x5E3, -0xCC6, 0x7A0, 0xFD89, 0x2C3, -0x5E2, 0x9BA, 0xC0C0};
    ICCS15Fixed16ArrayType sf32{0, 0, chad, 9};
    std::u16string copyright = u"C";
    ICCTextType text{0, 0, copyright.data(), 0};
    uint8_t ps[4] = {'%', '!', 'P', 'S'};
    ICCDataType data{0, 0, 1, ps, 4};
    s.sig.value = 0x41;  // written as "A   "
    const struct {
        uint32_t tag, type;
        void* record;
    } tags[] = {
        {Sig("chad"), Sig("sf32"), &sf32},        {Sig("desc"), Sig("mluc"), &s.description.record},
        {Sig("cprt"), Sig("text"), &text},        {Sig("tech"), Sig("sig "), &s.sig},
        {Sig("calt"), Sig("dtim"), &s.dtim},      {Sig("meas"), Sig("meas"), &s.meas},
        {Sig("view"), Sig("view"), &s.view},      {Sig("chrm"), Sig("chrm"), &s.chrm},
        {Sig("clrt"), Sig("clrt"), &s.clrt},      {Sig("clro"), Sig("clro"), &s.clro},
        {Sig("ncl2"), Sig("ncl2"), &s.ncl2},      {Sig("pseq"), Sig("pseq"), &s.pseq},
        {Sig("psd0"), Sig("data"), &data},
    };
    for (const auto& t : tags) {
        const KtStatus st = Vx_SetICCTagData(p.get(), t.record, t.tag, t.type);
        ASSERT_TRUE(st == STATUS_OK || st == WARN_UNKNOWN_TAG) << t.tag;
    }
    const std::vector<uint8_t> image = ImageOf(p);
    const std::map<uint32_t, uint32_t> compared = CompareProfile(image);
    EXPECT_EQ(compared.size(), std::size(tags));

    // And against the values given, where the kept quirks show.
    cmsHPROFILE lcms = cmsOpenProfileFromMem(image.data(), static_cast<cmsUInt32Number>(image.size()));
    ASSERT_NE(lcms, nullptr);
    EXPECT_EQ(*static_cast<const cmsUInt32Number*>(cmsReadTag(lcms, cmsSigTechnologyTag)), 0x41202020u);
    EXPECT_EQ(LcmsWide(static_cast<const cmsMLU*>(cmsReadTag(lcms, cmsSigProfileDescriptionTag)), "de", "DE"),
              L"Beispiel \u00e4");
    const auto* named = static_cast<const cmsNAMEDCOLORLIST*>(cmsReadTag(lcms, cmsSigNamedColor2Tag));
    ASSERT_NE(named, nullptr);
    cmsUInt16Number pcs[3], colorant[cmsMAXCHANNELS];
    char name[cmsMAX_PATH], prefix[33], suffix[33];
    ASSERT_TRUE(cmsNamedColorInfo(named, 0, name, prefix, suffix, pcs, colorant));
    EXPECT_STREQ(name, "Red");
    EXPECT_STREQ(prefix, "Pre ");
    EXPECT_EQ(pcs[0], 0x0201);  // given 0x0102, stored as it stands in memory
    EXPECT_EQ(colorant[3], 0xFFFF);
    const auto* seq = static_cast<const cmsSEQ*>(cmsReadTag(lcms, cmsSigProfileSequenceDescTag));
    ASSERT_NE(seq, nullptr);
    EXPECT_EQ(seq->seq[0].attributes, 0x0200000001000000ull);  // given 0x0000000100000002
    const auto* when = static_cast<const struct tm*>(cmsReadTag(lcms, cmsSigCalibrationDateTimeTag));
    ASSERT_NE(when, nullptr);
    EXPECT_EQ(when->tm_year, 124);
    const auto* m = static_cast<const cmsICCMeasurementConditions*>(cmsReadTag(lcms, cmsSigMeasurementTag));
    ASSERT_NE(m, nullptr);
    EXPECT_EQ(m->IlluminantType, 8u);
    EXPECT_DOUBLE_EQ(m->Flare, 1.0);
    cmsCloseProfile(lcms);
}

TEST(OtherTagLittleCms, ReadsTagsWrittenByLittleCms) {
    cmsHPROFILE h = cmsCreateProfilePlaceholder(nullptr);
    ASSERT_NE(h, nullptr);
    cmsSetProfileVersion(h, 4.3);
    cmsSetDeviceClass(h, cmsSigDisplayClass);
    cmsSetColorSpace(h, cmsSigRgbData);
    cmsSetPCS(h, cmsSigXYZData);

    cmsMLU* desc = cmsMLUalloc(nullptr, 2);
    cmsMLUsetWide(desc, "en", "US", L"Written by Little CMS");
    cmsMLUsetWide(desc, "ja", "JP", L"\u30ea\u30c8\u30eb");
    ASSERT_TRUE(cmsWriteTag(h, cmsSigProfileDescriptionTag, desc));
    const double chad[9] = {1.0479, 0.0229, -0.0502, 0.0296, 0.9904, -0.0171, -0.0092, 0.0151, 0.7519};
    ASSERT_TRUE(cmsWriteTag(h, cmsSigChromaticAdaptationTag, chad));
    cmsTechnologySignature tech = cmsSigFilmScanner;
    ASSERT_TRUE(cmsWriteTag(h, cmsSigTechnologyTag, &tech));
    struct tm when = {};
    when.tm_year = 99, when.tm_mon = 11, when.tm_mday = 31, when.tm_hour = 23, when.tm_min = 59, when.tm_sec = 59;
    ASSERT_TRUE(cmsWriteTag(h, cmsSigCalibrationDateTimeTag, &when));
    cmsICCMeasurementConditions meas = {2, {0.1, 0.2, 0.3}, 1, 0.0, 3};
    ASSERT_TRUE(cmsWriteTag(h, cmsSigMeasurementTag, &meas));
    cmsICCViewingConditions view = {{95.05, 100.0, 108.9}, {19.0, 20.0, 21.8}, 1};
    ASSERT_TRUE(cmsWriteTag(h, cmsSigViewingConditionsTag, &view));
    cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    ASSERT_TRUE(cmsWriteTag(h, cmsSigChromaticityTag, &primaries));
    cmsUInt8Number order[cmsMAXCHANNELS];
    std::memset(order, 0xFF, sizeof order);
    order[0] = 1, order[1] = 0, order[2] = 2;
    ASSERT_TRUE(cmsWriteTag(h, cmsSigColorantOrderTag, order));
    cmsNAMEDCOLORLIST* colorants = cmsAllocNamedColorList(nullptr, 3, 0, "", "");
    const cmsUInt16Number pcsR[3] = {0x1111, 0x2222, 0x3333}, pcsG[3] = {0xFFFF, 0, 0x8000};
    cmsAppendNamedColor(colorants, "Red ink", const_cast<cmsUInt16Number*>(pcsR), nullptr);
    cmsAppendNamedColor(colorants, "Green ink", const_cast<cmsUInt16Number*>(pcsG), nullptr);
    ASSERT_TRUE(cmsWriteTag(h, cmsSigColorantTableTag, colorants));
    cmsNAMEDCOLORLIST* named = cmsAllocNamedColorList(nullptr, 2, 3, "Pantone ", " C");
    cmsUInt16Number device1[cmsMAXCHANNELS] = {1, 2, 3}, device2[cmsMAXCHANNELS] = {0xFFFF, 0x8000, 0};
    cmsAppendNamedColor(named, "185", const_cast<cmsUInt16Number*>(pcsR), device1);
    cmsAppendNamedColor(named, "286", const_cast<cmsUInt16Number*>(pcsG), device2);
    ASSERT_TRUE(cmsWriteTag(h, cmsSigNamedColor2Tag, named));
    cmsSEQ* seq = cmsAllocProfileSequenceDescription(nullptr, 2);
    for (cmsUInt32Number i = 0; i < 2; ++i) {
        seq->seq[i].deviceMfg = Sig("ACME") + i;
        seq->seq[i].deviceModel = Sig("M100") + i;
        seq->seq[i].attributes = 0x0102030405060708ull << i;
        seq->seq[i].technology = cmsSigCRTDisplay;
        cmsMLUsetWide(seq->seq[i].Manufacturer, "en", "US", i ? L"Acme two" : L"Acme");
        cmsMLUsetWide(seq->seq[i].Model, "en", "US", L"Model");
    }
    ASSERT_TRUE(cmsWriteTag(h, cmsSigProfileSequenceDescTag, seq));
    std::vector<uint8_t> dataBlock(sizeof(cmsICCData) + 8);
    auto* data = reinterpret_cast<cmsICCData*>(dataBlock.data());
    data->len = 6, data->flag = 0;
    std::memcpy(data->data, "ascii", 6);
    ASSERT_TRUE(cmsWriteTag(h, cmsSigPs2CRD0Tag, data));

    cmsUInt32Number size = 0;
    ASSERT_TRUE(cmsSaveProfileToMem(h, nullptr, &size));
    std::vector<uint8_t> bytes(size);
    ASSERT_TRUE(cmsSaveProfileToMem(h, bytes.data(), &size));
    cmsMLUfree(desc);
    cmsFreeNamedColorList(colorants);
    cmsFreeNamedColorList(named);
    cmsFreeProfileSequenceDescription(seq);
    cmsCloseProfile(h);

    const std::map<uint32_t, uint32_t> compared = CompareProfile(bytes);
    std::set<uint32_t> types;
    for (const auto& [tag, type] : compared) types.insert(type);
    EXPECT_EQ(types, (std::set<uint32_t>{Sig("mluc"), Sig("sf32"), Sig("sig "), Sig("dtim"), Sig("meas"), Sig("view"),
                                         Sig("chrm"), Sig("clro"), Sig("clrt"), Sig("ncl2"), Sig("pseq"), Sig("data")}));

    // A few values against what was given, not only against the reader.
    icctest::Profile p;
    ASSERT_EQ(Vx_FillICCProfileStructure(p.get(), bytes.data(), size), STATUS_OK);
    ICCDateTimeType d{};
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &d, Sig("calt")), STATUS_OK);
    EXPECT_EQ(d.year, 1999);
    EXPECT_EQ(d.month, 12);
    ICCSignatureType t{};
    ASSERT_EQ(Vx_GetICCTagData(p.get(), &t, Sig("tech")), STATUS_OK);
    EXPECT_EQ(t.value, Sig("fscn"));
}

TEST(OtherTagLittleCms, DistributionProfilesDecodeAlike) {
    std::set<std::string> paths;
    for (const char* package : {"icc-profiles-free", "colord-data", "argyll-ref"}) {
        FILE* pipe = popen((std::string("dpkg -L ") + package + " 2>/dev/null").c_str(), "r");
        if (!pipe) continue;
        char line[4096];
        while (std::fgets(line, sizeof line, pipe)) {
            std::string path(line);
            while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) path.pop_back();
            if (path.size() > 4 && (path.ends_with(".icc") || path.ends_with(".icm") || path.ends_with(".ICC") ||
                                    path.ends_with(".ICM")))
                paths.insert(path);
        }
        pclose(pipe);
    }
    if (paths.empty()) GTEST_SKIP() << "no distribution ICC profiles installed";
    std::map<uint32_t, int> perType;
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        std::ifstream f(path, std::ios::binary);
        const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
        if (bytes.size() < 132 || Be32(bytes.data()) > bytes.size()) continue;
        for (const auto& [tag, type] : CompareProfile(bytes)) ++perType[type];
    }
    std::string summary;
    for (const auto& [type, n] : perType) {
        summary += ' ';
        for (int shift = 24; shift >= 0; shift -= 8) summary += char(type >> shift);
        summary += '=' + std::to_string(n);
    }
    std::printf("tags compared with Little CMS:%s\n", summary.c_str());
    EXPECT_GT(perType[Sig("mluc")], 0);
}

}  // namespace
