// Custom emulation grids: the TIFF reader's checks and statuses, the size
// bounds one pixel short, "II" and "MM" marks with little-endian fields,
// hostile offsets, and the emulation branches of Vx_ClrInit and
// Vx_ClrSetConversionParams (bit 8).
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tiffio.h>

#include <cstring>

#include "colormodels/builtin_data.h"
#include "colormodels/emulation_lookup.h"
#include "convert/emulation_setup.h"
#include "colormodels/emulation_grid_file.h"
#include "colormodels/emulation_tiff.h"
#include "platform/alloc.h"
#include "support/support.h"

namespace kt {
namespace {

constexpr auto kModule = mem::Module::ktclr;
using test::GridTiff;
using test::Handle;
using test::Params;
using test::ScratchDir;
using test::SetPath;

constexpr std::uint32_t kGrid33 = 33 * 33 * 33 * 3;
constexpr std::uint32_t kGrid17 = 17 * 17 * 17 * 17 * 3;

std::u16string U16(const std::string& s) { return std::u16string(s.begin(), s.end()); }

// Reads a grid file; returns the status and, on success, the grid bytes.
KtStatus Read(const std::string& path, std::uint32_t samples, std::vector<std::uint8_t>* grid = nullptr,
              std::uint32_t minBytes = kGrid33) {
    std::uint8_t* block = nullptr;
    const std::u16string name = U16(path);
    const KtStatus status = color::ReadGridFile(name.c_str(), samples, minBytes, &block);
    if (status == STATUS_OK) {
        if (grid) grid->assign(block, block + minBytes);
        KT_FREE(block);
    } else {
        EXPECT_EQ(block, nullptr);
    }
    return status;
}

class CustomGrid : public testing::Test {
protected:
    ScratchDir dir;
    std::string Write(const std::string& name, const GridTiff& t) {
        const std::string path = dir.path() + "/" + name;
        t.Write(path);
        return path;
    }
};

TEST_F(CustomGrid, SizeBoundsArePixelShort) {
    GridTiff t;
    t.width = 33, t.length = 1088;  // 35,904 pixels
    EXPECT_EQ(Read(Write("a.tif", t), 3), ERR_BAD_SIZE);
    t.length = 1089;  // 35,937
    std::vector<std::uint8_t> grid;
    ASSERT_EQ(Read(Write("b.tif", t), 3, &grid), STATUS_OK);
    const std::vector<std::uint8_t> file = t.Bytes();
    EXPECT_EQ(grid, std::vector<std::uint8_t>(file.begin() + 8, file.begin() + 8 + kGrid33));
    // 35,936 pixels load too; the missing last entry reads as zero.
    t.width = 32, t.length = 1123;
    ASSERT_EQ(Read(Write("c.tif", t), 3, &grid), STATUS_OK);
    EXPECT_EQ(grid[kGrid33 - 1], 0);
    EXPECT_EQ(grid[kGrid33 - 4], t.Bytes()[8 + kGrid33 - 4]);
    EXPECT_EQ(grid[kGrid33 - 3], 0);
    t.width = 35935, t.length = 1;
    EXPECT_EQ(Read(Write("d.tif", t), 3), ERR_BAD_SIZE);

    // Four samples: 83,520 pixels and more.
    GridTiff c;
    c.samples = 4, c.width = 16, c.length = 5220;
    EXPECT_EQ(Read(Write("e.tif", c), 4, nullptr, kGrid17), STATUS_OK);
    c.width = 83519, c.length = 1;
    EXPECT_EQ(Read(Write("f.tif", c), 4, nullptr, kGrid17), ERR_BAD_SIZE);
    c.width = 0, c.length = 100000;
    EXPECT_EQ(Read(Write("g.tif", c), 4, nullptr, kGrid17), ERR_BAD_SIZE);
}

TEST_F(CustomGrid, MarksCountsAndSamples) {
    GridTiff t;
    t.mark[0] = t.mark[1] = 'M';  // accepted, fields still little-endian
    EXPECT_EQ(Read(Write("mm.tif", t), 3), STATUS_OK);
    t.mark[0] = 'I', t.mark[1] = 'M';
    EXPECT_EQ(Read(Write("im.tif", t), 3), ERR_TIFF_NOT_TIFF);
    t.mark[1] = 'I';
    for (int count : {0, 1000, 65535}) {
        t.entryCount = count;
        EXPECT_EQ(Read(Write("count.tif", t), 3), ERR_TIFF_DIRECTORY_COUNT) << count;
    }
    t.entryCount = 1;  // width only
    EXPECT_EQ(Read(Write("one.tif", t), 3), ERR_TIFF_SAMPLES);
    t.entryCount = -1;
    EXPECT_EQ(Read(Write("three.tif", t), 4), ERR_TIFF_SAMPLES);
    t.samples = 4;
    EXPECT_EQ(Read(Write("four.tif", t), 3), ERR_TIFF_SAMPLES);
}

TEST_F(CustomGrid, HostileFilesStayInsideTheirBytes) {
    GridTiff t;
    const std::size_t size = t.Bytes().size();
    // The directory is last; its final four bytes (the next directory's
    // offset) are never read, every earlier cut is.
    for (std::size_t cut : {std::size_t(1), std::size_t(3), std::size_t(7), size - 5, size - 100, std::size_t(9)}) {
        GridTiff s = t;
        s.truncateTo = cut;
        const KtStatus status = Read(Write("cut.tif", s), 3);
        EXPECT_TRUE(status == ERR_FILE_READ || status == ERR_TIFF_NOT_TIFF) << cut << " " << status;
    }
    GridTiff s = t;
    s.stripOffsetOverride = 0x7FFFFFFF;
    EXPECT_EQ(Read(Write("strip.tif", s), 3), ERR_FILE_READ);
    s.stripOffsetOverride = 200;  // in the file, but the pixels run past its end
    s.pixelsBeforeDirectory = false;
    EXPECT_EQ(Read(Write("strip2.tif", s), 3), ERR_FILE_READ);
    s = t;
    s.directoryOffsetOverride = 0xFFFFFFF0u;
    EXPECT_EQ(Read(Write("dir.tif", s), 3), ERR_FILE_READ);
    s.directoryOffsetOverride = static_cast<std::int64_t>(size - 1);
    EXPECT_EQ(Read(Write("dir2.tif", s), 3), ERR_FILE_READ);
    s = t;
    s.width = 0xFFFFFFFFu, s.length = 0xFFFFFFFFu;  // a product far beyond the file
    s.pixels.assign(16, 1);
    EXPECT_EQ(Read(Write("huge.tif", s), 3), ERR_FILE_READ);
    // An empty file, and a directory where a file was expected.
    std::ofstream(dir.path() + "/empty.tif").close();
    EXPECT_EQ(Read(dir.path() + "/empty.tif", 3), ERR_FILE_READ);
    EXPECT_EQ(Read(dir.path(), 3), ERR_FILE_READ);
    // A file that cannot be opened: the system's error number.
    EXPECT_EQ(Read(dir.path() + "/none.tif", 3), ERR_FILE_READ);
}

TEST_F(CustomGrid, FilesWrittenByLibtiff) {
    auto write = [&](const std::string& name, const char* mode) {
        const std::string path = dir.path() + "/" + name;
        TIFF* tif = TIFFOpen(path.c_str(), mode);
        EXPECT_NE(tif, nullptr);
        const std::uint32_t width = 33, length = 1089;
        TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(tif, TIFFTAG_IMAGELENGTH, length);
        TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, 3);
        TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tif, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, length);
        std::vector<std::uint8_t> row(width * 3);
        for (std::uint32_t y = 0; y < length; ++y) {
            for (std::uint32_t x = 0; x < row.size(); ++x) row[x] = static_cast<std::uint8_t>(x + y);
            TIFFWriteScanline(tif, row.data(), y, 0);
        }
        TIFFClose(tif);
        return path;
    };
    std::vector<std::uint8_t> grid;
    ASSERT_EQ(Read(write("ii.tif", "wl"), 3, &grid), STATUS_OK);
    EXPECT_EQ(grid[0], 0);
    EXPECT_EQ(grid[99], 1);  // second row starts one higher
    // A big-endian file read with little-endian fields: its directory
    // offset points far past the end.
    EXPECT_EQ(Read(write("mm.tif", "wb"), 3), ERR_FILE_READ);
}

TEST_F(CustomGrid, InitSelectsAndLoads) {
    GridTiff cmyk;
    cmyk.samples = 4, cmyk.width = 17 * 17, cmyk.length = 17 * 17;
    const std::string cmykFile = Write("cmyk.tif", cmyk);
    ConversionParams p = Params(METHOD_CUSTOM_EMULATION);
    SetPath(p.emulationTablePath, cmykFile);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    ASSERT_NE(h.h->customEmulationTable, nullptr);
    EXPECT_EQ(std::u16string(h.h->emulationTablePath), U16(cmykFile));
    EXPECT_EQ(0, std::memcmp(h.h->customEmulationTable, cmyk.Bytes().data() + 8, kGrid17));
    const std::uint8_t px[8] = {0, 0, 0, 0, 100, 3, 250, 17};
    std::uint8_t got[6], want[6];
    ASSERT_EQ(Vx_ClrConvert(h.h, const_cast<std::uint8_t*>(px), got, 2, 1, 0, 0), STATUS_OK);
    ASSERT_EQ(color::EmulateCmykToRgb(h.h->customEmulationTable, px, want, 2, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(got, want, 6));

    // Statuses: a wrong sample count, a missing file, a name too long, and
    // a loader failure above 1 mapped to ERR_FILE_READ.
    Handle g;
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_LAB, &p), ERR_TIFF_SAMPLES);
    SetPath(p.emulationTablePath, dir.path() + "/missing.tif");
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_CMYK, CS_RGB, &p), ERR_FILE_NOT_FOUND);
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_HSV, &p), ERR_FILE_NOT_FOUND);  // checked for every pair
    SetPath(p.emulationTablePath, dir.path());
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_CMYK, CS_BGR, &p), ERR_FILE_READ);
    std::string longName = dir.path() + "/";
    longName += std::string(260 - longName.size(), 'n');
    cmyk.Write(longName);
    SetPath(p.emulationTablePath, longName);
    EXPECT_EQ(Vx_ClrInit(&g.h, CS_CMYK, CS_RGB, &p), ERR_FILE_NOT_FOUND);
    EXPECT_EQ(g.h, nullptr);
    // Another pair keeps the name and reads nothing.
    SetPath(p.emulationTablePath, cmykFile);
    ASSERT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    EXPECT_EQ(g.h->customEmulationTable, nullptr);
    EXPECT_EQ(std::u16string(g.h->emulationTablePath), U16(cmykFile));
}

TEST_F(CustomGrid, BuiltinSelectionByPair) {
    const std::uint8_t* grids = color::data::EmulationGrids();
    struct Case {
        int src, dst;
        const std::uint8_t* grid;
    };
    const Case cases[] = {
        {CS_CMYK, CS_RGB, grids + 2 * color::data::kGridSlot33}, {CS_CMYK, CS_BGR, grids + 2 * color::data::kGridSlot33},
        {CS_RGB, CS_LAB, grids + color::data::kGridSlot33},      {CS_BGR, CS_LAB, grids + color::data::kGridSlot33},
        {CS_LAB, CS_RGB, grids},                                 {CS_LAB, CS_BGR, grids},
        {CS_RGB, CS_CMYK, nullptr},                              {CS_HSV, CS_RGB, nullptr},
    };
    for (const Case& c : cases) {
        ConversionParams p = Params(METHOD_BUILTIN_EMULATION);
        p.emulationMethod = METHOD_BUILTIN_EMULATION;
        Handle h;
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, &p), STATUS_OK);
        EXPECT_EQ(h.h->builtinEmulationTable, c.grid) << c.src << " " << c.dst;
        EXPECT_EQ(h.h->customEmulationTable, nullptr);
    }
    EXPECT_EQ(convert::SelectEmulationTable(nullptr, CS_CMYK, CS_RGB, nullptr, false), ERR_INVALID_PARAMETER);
}

TEST_F(CustomGrid, SetParamsReloadsForTwoPairsOnly) {
    GridTiff rgb;
    const std::string first = Write("first.tif", rgb);
    rgb.pixels.assign(33 * 1089 * 3, 0x42);
    const std::string second = Write("second.tif", rgb);
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_EMULATION);
    SetPath(change.emulationTablePath, second);

    struct Case {
        int src, dst;
        bool reloads;
    };
    for (const Case& c : {Case{CS_RGB, CS_LAB, true}, Case{CS_BGR, CS_LAB, false}, Case{CS_LAB, CS_RGB, false}}) {
        ConversionParams p = Params(METHOD_CUSTOM_EMULATION);
        SetPath(p.emulationTablePath, first);
        Handle h;
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, &p), STATUS_OK);
        ASSERT_NE(h.h->customEmulationTable, nullptr);
        ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
        EXPECT_EQ(std::u16string(h.h->emulationTablePath), U16(second));
        if (c.reloads) {
            ASSERT_NE(h.h->customEmulationTable, nullptr);
            EXPECT_EQ(h.h->customEmulationTable[0], 0x42);
        } else {
            EXPECT_EQ(h.h->customEmulationTable, nullptr);
            // Converting with no grid writes nothing and still succeeds.
            std::uint8_t px[3] = {1, 2, 3}, out[3] = {9, 9, 9};
            EXPECT_EQ(Vx_ClrConvert(h.h, px, out, 1, 1, 0, 0), STATUS_OK);
            EXPECT_EQ(out[0], 9);
        }
    }
    // A CMYK source reloads with four samples; a failed load is not reported.
    GridTiff cmyk;
    cmyk.samples = 4, cmyk.width = 289, cmyk.length = 289;
    ConversionParams p = Params(METHOD_CUSTOM_EMULATION);
    SetPath(p.emulationTablePath, Write("cmyk.tif", cmyk));
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_BGR, &p), STATUS_OK);
    ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);  // three samples: refused quietly
    EXPECT_EQ(h.h->customEmulationTable, nullptr);
}

TEST_F(CustomGrid, AllocationFailuresLeakNothing) {
    GridTiff t;
    ConversionParams p = Params(METHOD_CUSTOM_EMULATION, METHOD_CUSTOM_EMULATION | METHOD_BUILTIN_EMULATION);
    SetPath(p.emulationTablePath, Write("t.tif", t));
    auto init = [&] {
        ClrHandle* h = nullptr;
        const int status = Vx_ClrInit(&h, CS_RGB, CS_LAB, &p);
        if (status == STATUS_OK) Vx_ClrFree(h);
        return status;
    };
    // A failed name conversion inside the file layer reads as a failed
    // read; every other failure is ERR_ALLOC.
    EXPECT_GT(test::ForEachAllocationFailure(
                  init, [](int n, int s) { EXPECT_TRUE(s == ERR_ALLOC || s == ERR_FILE_READ) << n << " " << s; }),
              3);

    // Set-params: a failed reload leaves no grid; each run drops what it
    // loaded so the counts compare.
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_LAB, &p), STATUS_OK);
    convert::FreeCustomEmulationTable(h.h);
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_EMULATION);
    SetPath(change.emulationTablePath, dir.path() + "/t.tif");
    bool loaded = false;
    test::ForEachAllocationFailure(
        [&] {
            const int status = Vx_ClrSetConversionParams(h.h, &change);
            loaded = h.h->customEmulationTable != nullptr;
            convert::FreeCustomEmulationTable(h.h);
            return status;
        },
        [&](int n, int s) {
            EXPECT_EQ(s, STATUS_OK) << n;
            EXPECT_FALSE(loaded) << n;
        });
    EXPECT_TRUE(loaded);
}

}  // namespace
}  // namespace kt
