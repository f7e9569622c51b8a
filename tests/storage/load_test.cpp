// The statuses of Vx_LoadICCProfile, Vx_HasICCProfile and Vx_SaveICCProfile:
// argument checks in their order, every kind of file, the PNG codec module
// present and absent. (A record's earlier bytes: tests/storage/load_handmade_test.cpp.)
#include <sys/stat.h>


#include "platform/error_report.h"
#include "storage_support.h"

namespace kt::test {
namespace {

const Bytes kProfile = Profile(300, 0x11);
const std::string kProfileString = Str(kProfile);

using Statuses = WithPngCodec;

// The earlier check wins where two apply (a missing file shows which).
TEST_F(Statuses, ArgumentsInTheirOrder) {
    const std::u16string jpg = Wide(dir_.Write("p.jpg", Jpeg({IccPiece(1, 1, kProfile)}))),
                         missing = Wide(dir_.File("missing.jpg"));
    const char16_t *j = jpg.c_str(), *m = missing.c_str();
    uint8_t data[4] = {0, 0, 0, 4};
    const ICCProfileRecord good{32, 4, 0, nullptr, 0, nullptr, nullptr, data}, small{28, 4, 0, nullptr, 0, nullptr, nullptr, data},
        nullData{32, 4, 0, nullptr, 0, nullptr, nullptr, nullptr};
    ICCProfileRecord record{};
    auto load = [&](const char16_t* name, uint32_t size, const Vx_LoadFileOptions* options = nullptr) {
        record = ICCProfileRecord{size, 0, 0, nullptr, 0, nullptr, nullptr, nullptr};
        const KtStatus s = Vx_LoadICCProfile(name, &record, options);
        Vx_FreeICCProfile(&record);
        return s;
    };
    const uint32_t kRecord = KTCLR_SIZEOF_ICC_PROFILE_RECORD, kOptions = KTCLR_SIZEOF_LOAD_FILE_OPTIONS;
    const Vx_LoadFileOptions longer{kOptions + 4, 0}, flagged{kOptions, 1}, plain{kOptions, 0};
    const Vx_SaveFileOptions badSize{8, 0, nullptr}, badFlags{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 2, nullptr};
    const KtStatus rows[][2] = {
        {load(nullptr, kRecord), ERR_INVALID_PARAMETER},
        {Vx_LoadICCProfile(j, nullptr, nullptr), ERR_INVALID_PARAMETER},
        {load(j, 28), ERR_BAD_STRUCT_SIZE},                {load(j, kRecord, &longer), ERR_BAD_STRUCT_SIZE},
        {load(j, kRecord, &flagged), ERR_INVALID_PARAMETER}, {load(j, kRecord, &plain), STATUS_OK},
        {Vx_HasICCProfile(nullptr, nullptr), 0},
        {Vx_SaveICCProfile(nullptr, &good, nullptr), ERR_INVALID_PARAMETER},
        {Vx_SaveICCProfile(m, nullptr, nullptr), ERR_INVALID_PARAMETER},
        {Vx_SaveICCProfile(m, &small, nullptr), ERR_BAD_STRUCT_SIZE},
        {Vx_SaveICCProfile(m, &good, &badSize), ERR_BAD_STRUCT_SIZE},
        {Vx_SaveICCProfile(j, &good, &badFlags), ERR_INVALID_PARAMETER},
        {Vx_SaveICCProfile(m, &nullData, nullptr), ERR_INVALID_PARAMETER},
        {Vx_SaveICCProfile(m, &good, nullptr), ERR_FILE_NOT_FOUND},
    };
    for (const auto& r : rows) EXPECT_EQ(r[0], r[1]) << "row " << &r - rows;
}

// Files of every kind through the loader and the saver; a failing save
// leaves the file as it was; GIF and WebP report the failure and answer
// STATUS_OK.
TEST_F(Statuses, FilesLoadedAndSaved) {
    mkdir(dir_.File("folder").c_str(), 0755);
    const std::string locked = dir_.Write("locked.gif", Cat({Text("GIF89a"), Counting(20, 0)}));
    chmod(locked.c_str(), 0444);
    const struct {
        std::string path;
        KtStatus load, save, reported = STATUS_OK;  // reported: through the error report
    } files[] = {
        {dir_.File("missing.jpg"), ERR_FILE_NOT_FOUND, ERR_FILE_NOT_FOUND},
        {dir_.File("missing/inside.jpg"), ERR_FILE_NOT_FOUND, ERR_FILE_NOT_FOUND},
        {dir_.File("folder"), ERR_FILE_READ, ERR_FILE_READ},
        {dir_.Write("empty", {}), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED},
        {dir_.Write("text.jpg", Text("plain text, named like a JPEG\n")), ERR_FORMAT_NOT_SUPPORTED, ERR_FORMAT_NOT_SUPPORTED},
        {locked, ERR_FORMAT_NOT_SUPPORTED, STATUS_OK, ERR_FILE_CREATE},  // read-only
        {dir_.Write("image.png", Cat({{0x89}, Text("PNG\r\n\x1a\n"), Counting(30, 0)})), ERR_FILE_READ, ERR_FORMAT_NOT_SUPPORTED},
        // The first segment runs past the end of the file.
        {dir_.Write("cut.jpg", Cat({{0xFF, 0xD8, 0xFF, 0xE0}, Be16(16), Text("JFIF")})), ERR_FILE_READ, ERR_FILE_READ},
        // TIFF headers or first directories pointing outside the file.
        {dir_.Write("dir.tif", Cat({Text("II*"), {0, 0x40, 0, 0, 0}, Bytes(8)})), ERR_FILE_READ, ERR_FILE_READ},
        {dir_.Write("entries.tif", Cat({Text("MM"), {0, '*', 0, 0, 0, 8, 0x7F, 0xFF}, Bytes(30)})), ERR_FILE_READ, ERR_FILE_READ},
        {dir_.Write("big.tif", Cat({Text("II+"), {0, 8, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0}})), ERR_FILE_READ, ERR_FILE_READ},
        {dir_.Write("cut.webp", Webp({Cat({Text("VP8 "), Le32(88), Counting(10, 0)})}, 100)), ERR_CHUNK_TOO_LARGE,
         STATUS_OK, ERR_CHUNK_TOO_LARGE},
        {dir_.Write("ok.webp", Webp({Chunk("VP8 ", Counting(6, 1)), Chunk("ICCP", kProfile)})), STATUS_OK, STATUS_OK},
    };
    for (const auto& f : files) {
        SCOPED_TRACE(f.path);
        EXPECT_EQ(Load(f.path).status, f.load);
        EXPECT_EQ(Vx_HasICCProfile(Wide(f.path).c_str(), nullptr), f.load == STATUS_OK ? 1 : 0);
        const std::string before = ReadFile(f.path);
        report::Clear();
        EXPECT_EQ(Save(f.path, kProfileString), f.save);
        EXPECT_TRUE((f.save == STATUS_OK && f.reported == STATUS_OK) || ReadFile(f.path) == before);
        EXPECT_EQ(report::Last(), f.reported);
    }
}

TEST_F(Statuses, PngCodecModulePresentAndAbsent) {
    const std::string png = dir_.File("with.png"), plain = dir_.File("plain.png");
    Sh("convert -size 8x8 xc:red " + plain + " && exiftool -q -q -o " + png + " '-icc_profile<=" + kBuiltinDir +
       "rgb_display.icc' " + plain);
    EXPECT_EQ(Load(png).bytes, Text(ReadFile(kBuiltinDir + "rgb_display.icc")));
    EXPECT_EQ(Load(plain).status, ERR_NO_ICC_PROFILE);
    storage::testing::ResetPngCodec(dir_.path().c_str());  // no module there
    EXPECT_EQ(Load(png).status, ERR_CODEC_FUNCTION_MISSING);
    storage::testing::ResetPngCodec(KTCLR_TEST_EMPTY_MODULE_DIR);  // a module without the function
    EXPECT_EQ(Load(png).status, ERR_CODEC_FUNCTION_MISSING);
    storage::testing::ResetPngCodec(KTCLR_TEST_MODULE_DIR);
    EXPECT_EQ(Load(png).status, STATUS_OK);
}

}  // namespace
}  // namespace kt::test
