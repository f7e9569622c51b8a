// Every status of Vx_LoadICCProfile and Vx_HasICCProfile, the record's
// earlier bytes, the PNG codec module present and absent, and allocation
// failures at every step.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "storage_support.h"
#include "platform/error_report.h"
#include "storage/png_codec.h"
#include "support/support.h"

namespace kt::test {
namespace {

const Bytes kProfile = Profile(300, 0x11);
const std::string kProfileDir = std::string(KTCLR_TEST_SOURCE_DIR) + "/data/builtin/";


class LoadStatus : public ::testing::Test {
protected:
    void SetUp() override { storage::testing::ResetPngCodec(KTCLR_TEST_MODULE_DIR); }
    void TearDown() override { storage::testing::ResetPngCodec(nullptr); }
    std::string Make(const std::string& name, const Bytes& bytes) {
        WriteAll(dir_.File(name), bytes);
        return dir_.File(name);
    }
    // A PNG with the small built-in profile, made by exiftool.
    std::string PngWithProfile() {
        const std::string png = dir_.File("with.png");
        const std::string command = "convert -size 8x8 xc:red " + dir_.File("plain.png") + " && exiftool -q -q -o " + png +
                                    " '-icc_profile<=" + kProfileDir + "rgb_display.icc' " + dir_.File("plain.png");
        EXPECT_EQ(std::system(command.c_str()), 0);
        return png;
    }
    ScratchDir dir_;
};

TEST_F(LoadStatus, Arguments) {
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    const std::u16string jpeg = Wide(Make("p.jpg", Jpeg({IccPiece(1, 1, kProfile)})));
    EXPECT_EQ(Vx_LoadICCProfile(nullptr, &record, nullptr), ERR_INVALID_PARAMETER);
    EXPECT_EQ(Vx_LoadICCProfile(jpeg.c_str(), nullptr, nullptr), ERR_INVALID_PARAMETER);
    record.structSize = 28;
    EXPECT_EQ(Vx_LoadICCProfile(jpeg.c_str(), &record, nullptr), ERR_BAD_STRUCT_SIZE);
    EXPECT_EQ(Vx_HasICCProfile(nullptr, nullptr), 0);
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    Vx_LoadFileOptions options{KTCLR_SIZEOF_LOAD_FILE_OPTIONS + 4, 0};
    EXPECT_EQ(Vx_LoadICCProfile(jpeg.c_str(), &record, &options), ERR_BAD_STRUCT_SIZE);
    options = {KTCLR_SIZEOF_LOAD_FILE_OPTIONS, 1};
    EXPECT_EQ(Vx_LoadICCProfile(jpeg.c_str(), &record, &options), ERR_INVALID_PARAMETER);
    options.flags = 0;
    EXPECT_EQ(Vx_LoadICCProfile(jpeg.c_str(), &record, &options), STATUS_OK);
    Vx_FreeICCProfile(&record);
}

// Files of every kind through the loader and the saver; a failing save
// leaves the file as it was; GIF and WebP report the failure and answer
// STATUS_OK.
TEST_F(LoadStatus, FilesLoadedAndSaved) {
    mkdir(dir_.File("folder").c_str(), 0755);
    const std::string locked = Make("locked.gif", Cat({Text("GIF89a"), Counting(20, 0)}));
    chmod(locked.c_str(), 0444);
    const struct {
        std::string path;
        KtStatus load, save, reported;
    } files[] = {
        {dir_.File("missing.jpg"), ERR_FILE_NOT_FOUND, ERR_FILE_NOT_FOUND, STATUS_OK},
        {dir_.File("missing/inside.jpg"), ERR_FILE_NOT_FOUND, ERR_FILE_NOT_FOUND, STATUS_OK},
        {dir_.File("folder"), ERR_FILE_READ, ERR_FILE_READ, STATUS_OK},
        {Make("empty", {}), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK},
        {Make("text.jpg", Text("plain text, named like a JPEG\n")), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK},
        {Make("image.bmp", Cat({Text("BM"), Counting(60, 0)})), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK},
        {Make("image.ppm", Text("P6\n1 1\n255\nabc")), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK},
        {locked, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK, ERR_FILE_CREATE},  // read-only
        {Make("image.png", Cat({{0x89}, Text("PNG\r\n\x1a\n"), Counting(30, 0)})), ERR_FILE_READ,
         ERR_FORMAT_NOT_SUPPORTED, STATUS_OK},
        // The first segment runs past the end of the file.
        {Make("cut.jpg", Cat({{0xFF, 0xD8, 0xFF, 0xE0}, Be16(16), Text("JFIF")})), ERR_FILE_READ, ERR_FILE_READ, STATUS_OK},
        {Make("cut.webp", Webp({Cat({Text("VP8 "), Le32(88), Counting(10, 0)})}, 100)), ERR_CHUNK_TOO_LARGE,
         STATUS_OK, ERR_CHUNK_TOO_LARGE},
        {Make("ok.webp", Webp({Chunk("VP8 ", Counting(6, 1)), Chunk("ICCP", kProfile)})), STATUS_OK, STATUS_OK, STATUS_OK},
    };
    for (const auto& f : files) {
        SCOPED_TRACE(f.path);
        EXPECT_EQ(Load(f.path).status, f.load);
        EXPECT_EQ(Vx_HasICCProfile(Wide(f.path).c_str(), nullptr), f.load == STATUS_OK ? 1 : 0);
        const std::string before = ReadFile(f.path);
        report::Clear();
        EXPECT_EQ(Save(f.path, std::string(kProfile.begin(), kProfile.end())), f.save);
        EXPECT_TRUE((f.save == STATUS_OK && f.reported == STATUS_OK) || ReadFile(f.path) == before);
        EXPECT_EQ(report::Last(), f.reported);
    }
}

TEST_F(LoadStatus, EarlierBytesComeBackOnlyWhenNoProfileIsFound) {
    uint8_t earlier[4] = {1, 2, 3, 4};
    ICCProfileRecord record{};
    record.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    record.profileData = earlier;
    record.profileSize = sizeof earlier;
    const std::u16string none = Wide(Make("none.jpg", Jpeg({})));
    EXPECT_EQ(Vx_LoadICCProfile(none.c_str(), &record, nullptr), ERR_NO_ICC_PROFILE);
    EXPECT_EQ(record.profileData, earlier);
    EXPECT_EQ(record.profileSize, sizeof earlier);
    EXPECT_EQ(Vx_HasICCProfile(none.c_str(), nullptr), 0);

    const std::u16string broken = Wide(Make("broken.webp", Webp({Chunk("VP8 ", Counting(6, 1)), Cat({Text("ICCP"), Le32(999), Counting(20, 0)})})));
    EXPECT_EQ(Vx_LoadICCProfile(broken.c_str(), &record, nullptr), ERR_CHUNK_TOO_LARGE);
    EXPECT_EQ(record.profileData, nullptr);
    EXPECT_EQ(record.profileSize, 0u);

    record.profileData = earlier;
    record.profileSize = sizeof earlier;
    const std::u16string some = Wide(Make("some.jpg", Jpeg({IccPiece(1, 1, kProfile)})));
    ASSERT_EQ(Vx_LoadICCProfile(some.c_str(), &record, nullptr), STATUS_OK);
    EXPECT_NE(record.profileData, earlier);  // the earlier block stays the caller's
    EXPECT_EQ(Bytes(record.profileData, record.profileData + record.profileSize), kProfile);
    Vx_FreeICCProfile(&record);
}

TEST_F(LoadStatus, PngCodecModulePresentAndAbsent) {
    const std::string png = PngWithProfile();
    EXPECT_EQ(Load(png).bytes, ReadAll(kProfileDir + "rgb_display.icc"));
    EXPECT_EQ(Load(dir_.File("plain.png")).status, ERR_NO_ICC_PROFILE);

    storage::testing::ResetPngCodec(dir_.path().c_str());  // no module there
    EXPECT_EQ(Load(png).status, ERR_CODEC_FUNCTION_MISSING);
    storage::testing::ResetPngCodec(KTCLR_TEST_EMPTY_MODULE_DIR);  // a module without the function
    EXPECT_EQ(Load(png).status, ERR_CODEC_FUNCTION_MISSING);
    storage::testing::ResetPngCodec(KTCLR_TEST_MODULE_DIR);
    EXPECT_EQ(Load(png).status, STATUS_OK);
}

TEST_F(LoadStatus, EveryAllocationFailureIsReportedWithoutLeaks) {
    const std::string files[] = {
        Make("a.jpg", Jpeg({IccPiece(1, 2, kProfile), IccPiece(2, 2, kProfile)})),
        Make("a.tif", Tiff(300, Le32(26), kProfile)),
        Make("a.ps", Text("%!PS\n%%BeginICCProfile:\n% " + std::string(3000, 'a') + "\n")),
        Make("a.56", Cat({{0xE0}, Be16(304), Be32(0), kProfile, {0xE0}, Be16(4), Be32(2)})),
        Make("a.psd", Psd({Resource("8BIM", 1039, kProfile)})),
        Make("a.webp", Webp({Chunk("VP8X", Counting(10, 0)), Chunk("ICCP", kProfile)})),
        PngWithProfile(),
    };
    Load(files[6]);  // the module stays loaded: its loading is no allocation of a load
    for (const std::string& f : files) {
        SCOPED_TRACE(f);
        const int allocations = ForEachAllocationFailure([&] { return Load(f).status; },
                                                         [](int, int status) { EXPECT_EQ(status, ERR_NO_MEMORY); });
        EXPECT_GT(allocations, 1);
    }
}

}  // namespace
}  // namespace kt::test
