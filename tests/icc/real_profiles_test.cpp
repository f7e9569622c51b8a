// Profiles that ship with the distribution (icc-profiles-free, colord-data,
// argyll): each is parsed, every tag walked, and the regenerated image
// compared with the file; Little CMS reads the same file as a witness.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

#include "icc/signature_sets.h"
#include "icc/tag_types.h"
#include "icc_fixtures.h"

namespace {

using namespace icctest;

// argyll's reference profiles come in argyll-ref, which argyll pulls in.
const char* const kPackages[] = {"icc-profiles-free", "colord-data", "argyll-ref"};

bool IsProfileName(const std::string& path) {
    if (path.size() < 4) return false;
    std::string ext = path.substr(path.size() - 4);
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return std::tolower(c); });
    return ext == ".icc" || ext == ".icm";
}

std::vector<std::string> PackageProfiles(const char* package) {
    std::vector<std::string> out;
    const std::string command = std::string("dpkg -L ") + package + " 2>/dev/null";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return out;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe)) {
        std::string path(line);
        while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) path.pop_back();
        if (IsProfileName(path) && std::ifstream(path).good()) out.push_back(path);
    }
    pclose(pipe);
    return out;
}

std::vector<uint8_t> ReadAll(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

KtStatus ExpectedTagStatus(uint32_t tag, uint32_t type) {
    const bool unknownTag = kt::icc::IsUnknownTagSignature(tag);
    const bool raw = kt::icc::FindTagTypeCodec(type) == nullptr;
    if (unknownTag) return raw ? WARN_UNKNOWN_TAG_AND_TYPE : WARN_UNKNOWN_TAG;
    return raw ? WARN_UNKNOWN_TAG_TYPE : STATUS_OK;
}

// Walks every row: type query, decode, release; XYZ and raw contents are
// checked against the file and XYZ values against Little CMS.
void WalkTags(Profile& p, const std::vector<uint8_t>& file, cmsHPROFILE lcms) {
    const uint32_t dataStart = 132 + 12 * static_cast<uint32_t>(p->tagCount);
    const uint32_t size = p->header->size;
    for (int32_t i = 0; i < p->tagCount; ++i) {
        const ICCTagEntry row = p->tagList[i];
        SCOPED_TRACE(testing::Message() << "tag " << i << " at " << row.offset);
        const bool inside = row.offset >= dataStart && uint64_t{row.offset} + row.size <= size && row.size >= 8;
        // The first row with a signature is the one every call finds.
        bool first = true;
        for (int32_t j = 0; j < i; ++j) first = first && p->tagList[j].signature != row.signature;
        if (!first) continue;

        const uint32_t type = inside ? Be32(file.data() + row.offset) : 0;
        if (inside) {
            EXPECT_EQ(Vx_GetICCTagTypeSig(p.get(), row.signature), type);
        }
        union {
            ICCRawTagType raw;
            ICCXYZType xyz;
            unsigned char room[kt::icc::kMaxTagRecordBytes];  // room for every codec's record
        } typed{};
        const ICCRawTagType& any = typed.raw;
        const KtStatus st = Vx_GetICCTagData(p.get(), &typed, row.signature);
        if (!inside) {
            EXPECT_EQ(st, ERR_INVALID_TAG);
            continue;
        }
        EXPECT_EQ(st, ExpectedTagStatus(row.signature, type));
        const uint8_t* element = file.data() + row.offset;
        if (type == Sig("XYZ ")) {
            const ICCXYZType& xyz = typed.xyz;
            ASSERT_EQ(xyz.count, (row.size - 8) / 12);
            for (uint32_t k = 0; k < xyz.count; ++k)
                EXPECT_EQ(static_cast<uint32_t>(xyz.values[k].Y), Be32(element + 8 + 12 * k + 4));
            const auto* witness =
                static_cast<const cmsCIEXYZ*>(cmsReadTag(lcms, static_cast<cmsTagSignature>(row.signature)));
            if (witness && xyz.count == 1 && cmsTagLinkedTo(lcms, static_cast<cmsTagSignature>(row.signature)) == 0) {
                EXPECT_DOUBLE_EQ(witness->X, xyz.values[0].X / 65536.0);
                EXPECT_DOUBLE_EQ(witness->Y, xyz.values[0].Y / 65536.0);
                EXPECT_DOUBLE_EQ(witness->Z, xyz.values[0].Z / 65536.0);
            }
        } else if (kt::icc::FindTagTypeCodec(type) == nullptr) {
            EXPECT_EQ(any.typeSignature, type);
            ASSERT_EQ(any.byteCount, row.size - 8);
            EXPECT_TRUE(std::equal(any.bytes, any.bytes + any.byteCount, element + 8));
        }
        Vx_FreeICCTagType(&typed, type);
    }
}

TEST(RealProfiles, ParseWalkAndRegenerate) {
    std::set<std::string> paths;
    std::string missing;
    for (const char* package : kPackages) {
        const std::vector<std::string> found = PackageProfiles(package);
        if (found.empty()) missing += std::string(" ") + package;
        paths.insert(found.begin(), found.end());
    }
    if (!missing.empty()) std::printf("no ICC profiles from:%s (scripts/install-deps.sh --tests installs them)\n", missing.c_str());
    if (paths.empty()) GTEST_SKIP() << "no distribution ICC profiles installed";

    int identical = 0;
    for (const std::string& path : paths) {
        SCOPED_TRACE(path);
        const std::vector<uint8_t> file = ReadAll(path);
        ASSERT_GE(file.size(), 132u);
        const std::u16string name = Utf16(path);
        Profile p;
        ASSERT_EQ(Vx_FillICCProfileFromICCFile(name.c_str(), p.get()), STATUS_OK);
        const uint32_t size = Be32(file.data());
        ASSERT_EQ(p->header->size, size);
        ASSERT_EQ(p->tagCount, static_cast<int32_t>(Be32(file.data() + 128)));

        cmsHPROFILE lcms = cmsOpenProfileFromMem(file.data(), static_cast<cmsUInt32Number>(file.size()));
        ASSERT_NE(lcms, nullptr);
        EXPECT_EQ(p->header->deviceClass, static_cast<uint32_t>(cmsGetDeviceClass(lcms)));
        EXPECT_EQ(p->header->colorSpace, static_cast<uint32_t>(cmsGetColorSpace(lcms)));
        EXPECT_EQ(p->header->connectionSpace, static_cast<uint32_t>(cmsGetPCS(lcms)));
        EXPECT_EQ(p->header->renderingIntent, cmsGetHeaderRenderingIntent(lcms));
        EXPECT_EQ(p->tagCount, cmsGetTagCount(lcms));
        WalkTags(p, file, lcms);
        cmsCloseProfile(lcms);

        ASSERT_EQ(Vx_GenerateICCPointer(p.get()), STATUS_OK);
        const std::vector<uint8_t> image = p.Image();
        ASSERT_EQ(image.size(), size);
        // The header drops the high half of the attributes and the reserved
        // bytes; everything else, directory and tag bytes included, is the
        // file's own.
        std::vector<uint8_t> expected(file.begin(), file.begin() + size);
        std::fill(expected.begin() + 56, expected.begin() + 60, 0);
        std::fill(expected.begin() + 100, expected.begin() + 128, 0);
        EXPECT_TRUE(image == expected);
        if (image.size() == file.size() && std::equal(image.begin(), image.end(), file.begin())) ++identical;
    }
    std::printf("%zu distribution profiles regenerated, %d byte-identical to their files\n", paths.size(), identical);
}

}  // namespace
