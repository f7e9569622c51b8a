#include <gtest/gtest.h>

#include "storage_support.h"
#include "platform/error_report.h"
#include "support/support.h"

namespace kt::test {
namespace {

// The argument checks of Vx_SaveICCProfile, the earlier check winning where
// two apply (the statuses of the files: load_status_test).
TEST(SaveStatus, EveryStatusInItsOrder) {
    test::ScratchDir dir;
    const std::string jpg = dir.File("a.jpg"), missing = dir.File("missing.jpg");
    Sh("convert -size 8x8 gradient: " + jpg);
    const std::u16string wJpg = test::Wide(jpg), wMissing = test::Wide(missing);
    uint8_t data[4] = {0, 0, 0, 4};
    const ICCProfileRecord good{32, 4, 0, nullptr, 0, nullptr, nullptr, data};
    ICCProfileRecord small = good, nullData = good;
    small.structSize = 28;
    nullData.profileData = nullptr;
    const Vx_SaveFileOptions badSize{8, 0, nullptr}, badFlags{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 2, nullptr};
    const struct {
        const char* what;
        const char16_t* name;
        const ICCProfileRecord* profile;
        const Vx_SaveFileOptions* options;
        KtStatus status;
    } cases[] = {
        {"null name", nullptr, &good, nullptr, ERR_INVALID_PARAMETER},
        {"null profile, missing file", wMissing.c_str(), nullptr, nullptr, ERR_INVALID_PARAMETER},
        {"record size 28, missing file", wMissing.c_str(), &small, nullptr, ERR_BAD_STRUCT_SIZE},
        {"options size 8, missing file", wMissing.c_str(), &good, &badSize, ERR_BAD_STRUCT_SIZE},
        {"unknown flag", wJpg.c_str(), &good, &badFlags, ERR_INVALID_PARAMETER},
        {"size without data, missing file", wMissing.c_str(), &nullData, nullptr, ERR_INVALID_PARAMETER},
        {"missing file", wMissing.c_str(), &good, nullptr, ERR_FILE_NOT_FOUND},
    };
    for (const auto& c : cases) EXPECT_EQ(Vx_SaveICCProfile(c.name, c.profile, c.options), c.status) << c.what;
}

// A failing read, write, flush, rename or allocation at any point leaves the
// original byte for byte and no temporary behind; only the JPEG segment
// buffer answers with the positive 8, and GIF and WebP answer STATUS_OK with
// the failure in the error report.
TEST(SaveStatus, AnyFailureLeavesTheOriginal) {
    test::ScratchDir dir;
    const std::string png = dir.File("source.png");
    Sh("convert -size 16x12 gradient:red-blue " + png);
    Sh("convert " + png + " -profile /usr/share/color/icc/sRGB.icc " + dir.File("a.jpg"));
    Sh("convert " + png + " " + png + " " + dir.File("a.tif"));
    Sh("convert " + png + " " + dir.File("a.gif"));
    Sh("cwebp -quiet " + png + " -o " + dir.File("plain.webp"));
    Sh("webpmux -set icc /usr/share/color/icc/sRGB.icc " + dir.File("plain.webp") + " -o " + dir.File("icc.webp"));
    const Vx_SaveFileOptions rules{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, VX_SAVE_WEBP_CONTAINER_RULES, nullptr};
    const struct {
        const char* name;
        const Vx_SaveFileOptions* options;
    } cases[] = {{"a.jpg", nullptr},   {"a.tif", nullptr},  {"a.gif", nullptr},
                 {"plain.webp", nullptr}, {"icc.webp", nullptr}, {"plain.webp", &rules}};
    const std::string profile = Pattern(70000);
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + (c.options ? " (container rules)" : ""));
        const std::string path = dir.File(c.name), before = ReadFile(path);
        const auto entries = dir.Entries();
        auto run = [&] {
            WriteFile(path, before);
            report::Clear();
            return Save(path, profile, c.options);
        };
        auto unchanged = [&](int n, int status) {
            EXPECT_TRUE(status < 0 || status == 8 || (status == STATUS_OK && report::Last() < 0)) << n << ": " << status;
            EXPECT_TRUE(ReadFile(path) == before) << n;
            EXPECT_EQ(dir.Entries(), entries) << n;
        };
        int eights = 0;
        test::ForEachFileFault(run, [&](file::faults::Op, int n, int status) { unchanged(n, status); });
        test::ForEachAllocationFailure(run, [&](int n, int status) {
            unchanged(n, status);
            eights += status == 8;
        });
        EXPECT_EQ(eights, std::string(c.name) == "a.jpg" ? 1 : 0);
    }
}

}  // namespace
}  // namespace kt::test
