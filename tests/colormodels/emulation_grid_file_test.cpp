// Emulation grids: the TIFF reader's checks and statuses, the size bounds
// one pixel short, "II" and "MM" marks with little-endian fields, hostile
// offsets, the emulation branches of Vx_ClrInit and
// Vx_ClrSetConversionParams (bit 8), and the built-in grids' contents.
#include <gtest/gtest.h>
#include <tiffio.h>

#include <algorithm>
#include <cstring>

#include "colormodels/builtin_data.h"
#include "colormodels/emulation_grid_file.h"
#include "colormodels/emulation_lookup.h"
#include "colormodels/kernels.h"
#include "convert/emulation_setup.h"
#include "platform/alloc.h"
#include "support/support.h"

namespace kt {
namespace {

constexpr auto kModule = mem::Module::ktclr;
using test::Bytes;
using test::Handle;
using test::Params;
using test::SetPath;

constexpr std::uint32_t kGrid33 = 33 * 33 * 33 * 3;
constexpr std::uint32_t kGrid17 = 17 * 17 * 17 * 17 * 3;

// A hand-made grid TIFF: the pixels (a pattern of width x length x samples
// bytes unless given) after the 8-byte header, then one directory; every
// field the reader looks at can be set or broken. Fields are written
// little-endian whatever the mark says, as the reader takes them.
struct GridTiff {
    char mark[2] = {'I', 'I'};
    std::uint32_t width = 33, length = 1089, samples = 3;
    int entryCount = -1;                       // -1: the real count
    std::int64_t stripOffset = -1;             // -1: where the pixels are
    std::int64_t directoryOffset = -1;         // -1: where the directory is
    std::int64_t cut = 0;                      // > 0: keep so many bytes; < 0: drop so many
    Bytes pixels = {};
    bool pixelsAfterDirectory = false;

    Bytes File() const {
        Bytes b = {std::uint8_t(mark[0]), std::uint8_t(mark[1]), 42, 0, 0, 0, 0, 0};
        const auto put = [&](std::size_t at, std::uint32_t v, int n) {
            for (int i = 0; i < n; ++i) b[at + i] = std::uint8_t(v >> (8 * i));
        };
        Bytes data = pixels;
        if (data.empty()) {
            data.resize(std::size_t(width) * length * samples);
            for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i * 7 + i / 251);
        }
        if (!pixelsAfterDirectory) b.insert(b.end(), data.begin(), data.end());
        const std::uint32_t dirAt = std::uint32_t(b.size());
        const std::uint32_t entries[9][4] = {
            {256, 4, 1, width}, {257, 4, 1, length}, {258, 3, 1, 8},        {259, 3, 1, 1},
            {262, 3, 1, 2},     {273, 4, 1, 0},      {277, 3, 1, samples}, {278, 4, 1, length},
            {279, 4, 1, std::uint32_t(data.size())},
        };
        b.resize(b.size() + 2 + 9 * 12 + 4, 0);
        const std::uint32_t pixelsAt = pixelsAfterDirectory ? std::uint32_t(b.size()) : 8;
        if (pixelsAfterDirectory) b.insert(b.end(), data.begin(), data.end());
        put(dirAt, entryCount >= 0 ? std::uint32_t(entryCount) : 9, 2);
        for (std::size_t i = 0; i < 9; ++i) {
            const std::uint32_t* e = entries[i];
            put(dirAt + 2 + i * 12, e[0], 2);
            put(dirAt + 4 + i * 12, e[1], 2);
            put(dirAt + 6 + i * 12, e[2], 4);
            put(dirAt + 10 + i * 12, e[0] != 273 ? e[3] : stripOffset >= 0 ? std::uint32_t(stripOffset) : pixelsAt, 4);
        }
        put(4, directoryOffset >= 0 ? std::uint32_t(directoryOffset) : dirAt, 4);
        if (cut) b.resize(cut > 0 ? std::size_t(cut) : b.size() - std::size_t(-cut));
        return b;
    }
};

// Reads a grid file of so many samples; returns the status and, on
// success, the grid's bytes.
KtStatus Read(const std::string& path, std::uint32_t samples, Bytes* grid = nullptr) {
    const std::uint32_t bytes = samples == 4 ? kGrid17 : kGrid33;
    std::uint8_t* block = nullptr;
    const std::u16string name = test::Wide(path);
    const KtStatus status = color::ReadGridFile(name.c_str(), samples, bytes, &block);
    EXPECT_EQ(status == STATUS_OK, block != nullptr);
    if (block && grid) grid->assign(block, block + bytes);
    if (block) KT_FREE(block);
    return status;
}

class CustomGrid : public testing::Test {
protected:
    test::ScratchDir dir;
    std::string Write(const std::string& name, const GridTiff& t) { return dir.Write(name, t.File()); }
};

// Each file read with so many samples: its status.
TEST_F(CustomGrid, ReaderStatuses) {
    const std::int64_t size = std::int64_t(GridTiff{}.File().size());
    const struct {
        GridTiff file;
        std::uint32_t samples;
        KtStatus status;
    } cases[] = {
        // Size bounds one pixel short: 35,937 and 35,936 pixels load, 35,935 do not.
        {{.width = 33, .length = 1088}, 3, ERR_BAD_SIZE},
        {{.width = 33, .length = 1089}, 3, STATUS_OK},
        {{.width = 32, .length = 1123}, 3, STATUS_OK},
        {{.width = 35935, .length = 1}, 3, ERR_BAD_SIZE},
        {{.width = 16, .length = 5220, .samples = 4}, 4, STATUS_OK},
        {{.width = 83519, .length = 1, .samples = 4}, 4, ERR_BAD_SIZE},
        {{.width = 0, .length = 100000, .samples = 4}, 4, ERR_BAD_SIZE},
        // Marks, entry counts and sample counts.
        {{.mark = {'M', 'M'}}, 3, STATUS_OK},
        {{.mark = {'I', 'M'}}, 3, ERR_TIFF_NOT_TIFF},
        {{.entryCount = 0}, 3, ERR_TIFF_DIRECTORY_COUNT},
        {{.entryCount = 1000}, 3, ERR_TIFF_DIRECTORY_COUNT},
        {{.entryCount = 65535}, 3, ERR_TIFF_DIRECTORY_COUNT},
        {{.entryCount = 1}, 3, ERR_TIFF_SAMPLES},  // width only
        {{}, 4, ERR_TIFF_SAMPLES},
        {{.samples = 4}, 3, ERR_TIFF_SAMPLES},
        // Cut files: every cut before the directory's last four bytes (the
        // next directory's offset, never read) is a failed read.
        {{.cut = 1}, 3, ERR_FILE_READ},
        {{.cut = 3}, 3, ERR_FILE_READ},
        {{.cut = 7}, 3, ERR_FILE_READ},
        {{.cut = 9}, 3, ERR_FILE_READ},
        {{.cut = -100}, 3, ERR_FILE_READ},
        {{.cut = -5}, 3, ERR_FILE_READ},
        {{.cut = -4}, 3, STATUS_OK},
        // Hostile offsets and sizes.
        {{.stripOffset = 0x7FFFFFFF}, 3, ERR_FILE_READ},
        {{.stripOffset = 200, .pixelsAfterDirectory = true}, 3, ERR_FILE_READ},  // pixels run past the end
        {{.directoryOffset = 0xFFFFFFF0u}, 3, ERR_FILE_READ},
        {{.directoryOffset = size - 1}, 3, ERR_FILE_READ},
        {{.width = 0xFFFFFFFFu, .length = 0xFFFFFFFFu, .pixels = Bytes(16, 1)}, 3, ERR_FILE_READ},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(Read(Write("t.tif", cases[i].file), cases[i].samples), cases[i].status) << "case " << i;
    // An empty file, a folder, a missing file.
    for (const std::string& path : {dir.Write("empty.tif", {}), dir.path(), dir.File("none.tif")})
        EXPECT_EQ(Read(path, 3), ERR_FILE_READ) << path;
    // The grid is the file's pixels; a file one pixel short reads its
    // missing last entry as zero.
    Bytes grid;
    const GridTiff whole, shorter{.width = 32, .length = 1123};
    ASSERT_EQ(Read(Write("whole.tif", whole), 3, &grid), STATUS_OK);
    const Bytes file = whole.File();
    EXPECT_EQ(grid, Bytes(file.begin() + 8, file.begin() + 8 + kGrid33));
    ASSERT_EQ(Read(Write("short.tif", shorter), 3, &grid), STATUS_OK);
    EXPECT_EQ(Bytes(grid.end() - 4, grid.end()), (Bytes{shorter.File()[8 + kGrid33 - 4], 0, 0, 0}));
}

// Files libtiff writes: little-endian ones load; a big-endian one, read
// with little-endian fields, points its directory far past the end.
TEST_F(CustomGrid, FilesWrittenByLibtiff) {
    const auto write = [&](const std::string& name, const char* mode) {
        const std::string path = dir.File(name);
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
        Bytes row(width * 3);
        for (std::uint32_t y = 0; y < length; ++y) {
            for (std::uint32_t x = 0; x < row.size(); ++x) row[x] = static_cast<std::uint8_t>(x + y);
            TIFFWriteScanline(tif, row.data(), y, 0);
        }
        TIFFClose(tif);
        return path;
    };
    Bytes grid;
    ASSERT_EQ(Read(write("ii.tif", "wl"), 3, &grid), STATUS_OK);
    EXPECT_EQ(grid[0], 0);
    EXPECT_EQ(grid[99], 1);  // the second row starts one higher
    EXPECT_EQ(Read(write("mm.tif", "wb"), 3), ERR_FILE_READ);
}

TEST_F(CustomGrid, InitSelectsAndLoads) {
    const GridTiff cmyk{.width = 17 * 17, .length = 17 * 17, .samples = 4};
    const std::string cmykFile = Write("cmyk.tif", cmyk);
    ConversionParams p = Params(METHOD_CUSTOM_EMULATION);
    SetPath(p.emulationTablePath, cmykFile);
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_CMYK, CS_RGB, &p), STATUS_OK);
    ASSERT_NE(h.h->customEmulationTable, nullptr);
    EXPECT_EQ(std::u16string(h.h->emulationTablePath), test::Wide(cmykFile));
    EXPECT_EQ(0, std::memcmp(h.h->customEmulationTable, cmyk.File().data() + 8, kGrid17));
    const std::uint8_t px[8] = {0, 0, 0, 0, 100, 3, 250, 17};
    std::uint8_t got[6], want[6];
    ASSERT_EQ(Vx_ClrConvert(h.h, const_cast<std::uint8_t*>(px), got, 2, 1, 0, 0), STATUS_OK);
    ASSERT_EQ(color::EmulateCmykToRgb(h.h->customEmulationTable, px, want, 2, 1, 0, 0, 1), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(got, want, 6));

    // A wrong sample count, a missing file (checked for every pair), a
    // folder, and a name too long.
    const std::string longName = dir.Write(std::string(259 - dir.path().size(), 'n'), cmyk.File());
    const struct {
        std::string path;
        int src, dst;
        KtStatus status;
    } cases[] = {
        {cmykFile, CS_RGB, CS_LAB, ERR_TIFF_SAMPLES},         {dir.File("missing.tif"), CS_CMYK, CS_RGB, ERR_FILE_NOT_FOUND},
        {dir.File("missing.tif"), CS_RGB, CS_HSV, ERR_FILE_NOT_FOUND}, {dir.path(), CS_CMYK, CS_BGR, ERR_FILE_READ},
        {longName, CS_CMYK, CS_RGB, ERR_FILE_NOT_FOUND},
    };
    for (const auto& c : cases) {
        SetPath(p.emulationTablePath, c.path);
        Handle g;
        EXPECT_EQ(Vx_ClrInit(&g.h, c.src, c.dst, &p), c.status) << c.path;
        EXPECT_EQ(g.h, nullptr);
    }
    // Another pair keeps the name and reads nothing.
    SetPath(p.emulationTablePath, cmykFile);
    Handle g;
    ASSERT_EQ(Vx_ClrInit(&g.h, CS_RGB, CS_HSV, &p), STATUS_OK);
    EXPECT_EQ(g.h->customEmulationTable, nullptr);
    EXPECT_EQ(std::u16string(g.h->emulationTablePath), test::Wide(cmykFile));
}

TEST_F(CustomGrid, BuiltinSelectionByPair) {
    const std::uint8_t* grids = color::data::EmulationGrids();
    const std::uint8_t *cmyk = grids + 2 * color::data::kGridSlot33, *toLab = grids + color::data::kGridSlot33;
    const struct {
        int src, dst;
        const std::uint8_t* grid;
    } cases[] = {
        {CS_CMYK, CS_RGB, cmyk}, {CS_CMYK, CS_BGR, cmyk},  {CS_RGB, CS_LAB, toLab},    {CS_BGR, CS_LAB, toLab},
        {CS_LAB, CS_RGB, grids}, {CS_LAB, CS_BGR, grids}, {CS_RGB, CS_CMYK, nullptr}, {CS_HSV, CS_RGB, nullptr},
    };
    for (const auto& c : cases) {
        ConversionParams p = Params(METHOD_BUILTIN_EMULATION);
        p.emulationMethod = METHOD_BUILTIN_EMULATION;
        Handle h;
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, &p), STATUS_OK);
        EXPECT_EQ(h.h->builtinEmulationTable, c.grid) << c.src << " " << c.dst;
        EXPECT_EQ(h.h->customEmulationTable, nullptr);
    }
    EXPECT_EQ(convert::SelectEmulationTable(nullptr, CS_CMYK, CS_RGB, nullptr, false), ERR_INVALID_PARAMETER);
}

// The built-in grids hold the Lab kernels' values at the nodes and the ICC
// method's between the built-in press and display profiles.
TEST(BuiltinGrids, HoldTheReferenceConversions) {
    const std::uint8_t* grids = color::data::EmulationGrids();
    const auto node = [](int i, int step) { return static_cast<std::uint8_t>(std::min(i * step, 255)); };
    Bytes rgb, lab, cmyk;
    for (int i = 0; i < 33 * 33 * 33; ++i) {
        rgb.insert(rgb.end(), {node(i / 1089, 8), node(i / 33 % 33, 8), node(i % 33, 8)});
        lab.insert(lab.end(), {rgb[3 * i], std::uint8_t(rgb[3 * i + 1] - 128), std::uint8_t(rgb[3 * i + 2] - 128)});
    }
    for (int i = 0; i < 17 * 17 * 17 * 17; ++i)
        cmyk.insert(cmyk.end(), {node(i / 4913, 16), node(i / 289 % 17, 16), node(i / 17 % 17, 16), node(i % 17, 16)});
    Bytes toLab(rgb.size()), toRgb(lab.size()), viaIcc(cmyk.size() / 4 * 3);
    ConversionParams p = Params(METHOD_ICC);
    Handle h(CS_CMYK, CS_RGB, &p);
    ASSERT_EQ(color::RgbToLab(rgb.data(), toLab.data(), 33 * 33 * 33, 1, 0, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(color::LabToRgb(lab.data(), toRgb.data(), 33 * 33 * 33, 1, 0, 0, 0, 1), STATUS_OK);
    ASSERT_EQ(Vx_ClrConvert(h.h, cmyk.data(), viaIcc.data(), 17 * 17 * 17 * 17, 1, 0, 0), STATUS_OK);
    EXPECT_EQ(0, std::memcmp(grids + color::data::kGridSlot33, toLab.data(), toLab.size()));
    EXPECT_EQ(0, std::memcmp(grids, toRgb.data(), toRgb.size()));
    EXPECT_EQ(0, std::memcmp(grids + 2 * color::data::kGridSlot33, viaIcc.data(), viaIcc.size()));
}

// Only RGB to Lab reloads; the other pairs drop the grid and convert
// nothing; a CMYK source reloads with four samples and a failed load is
// not reported.
TEST_F(CustomGrid, SetParamsReloadsForOnePairOnly) {
    const std::string first = Write("first.tif", {});
    const std::string second = Write("second.tif", {.pixels = Bytes(33 * 1089 * 3, 0x42)});
    const std::string cmyk = Write("cmyk.tif", {.width = 289, .length = 289, .samples = 4});
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_EMULATION);
    SetPath(change.emulationTablePath, second);
    const struct {
        int src, dst;
        const std::string& path;
        bool reloads;
    } cases[] = {{CS_RGB, CS_LAB, first, true}, {CS_BGR, CS_LAB, first, false}, {CS_LAB, CS_RGB, first, false},
                 {CS_CMYK, CS_BGR, cmyk, false}};
    for (const auto& c : cases) {
        ConversionParams p = Params(METHOD_CUSTOM_EMULATION);
        SetPath(p.emulationTablePath, c.path);
        Handle h;
        ASSERT_EQ(Vx_ClrInit(&h.h, c.src, c.dst, &p), STATUS_OK);
        ASSERT_NE(h.h->customEmulationTable, nullptr);
        ASSERT_EQ(Vx_ClrSetConversionParams(h.h, &change), STATUS_OK);
        EXPECT_EQ(std::u16string(h.h->emulationTablePath), test::Wide(second));
        ASSERT_EQ(h.h->customEmulationTable != nullptr, c.reloads) << c.src << " " << c.dst;
        std::uint8_t px[4] = {1, 2, 3, 4}, out[3] = {9, 9, 9};
        EXPECT_TRUE(c.reloads ? h.h->customEmulationTable[0] == 0x42
                              : Vx_ClrConvert(h.h, px, out, 1, 1, 0, 0) == STATUS_OK && out[0] == 9);
    }
}

TEST_F(CustomGrid, AllocationFailuresLeakNothing) {
    ConversionParams p = Params(METHOD_CUSTOM_EMULATION, METHOD_CUSTOM_EMULATION | METHOD_BUILTIN_EMULATION);
    SetPath(p.emulationTablePath, Write("t.tif", {}));
    // A failed name conversion inside the file layer reads as a failed
    // read; every other failure is ERR_ALLOC.
    EXPECT_GT(test::ForEachAllocationFailure(
                  [&] {
                      ClrHandle* h = nullptr;
                      const int status = Vx_ClrInit(&h, CS_RGB, CS_LAB, &p);
                      if (status == STATUS_OK) Vx_ClrFree(h);
                      return status;
                  },
                  [](int n, int s) { EXPECT_TRUE(s == ERR_ALLOC || s == ERR_FILE_READ) << n << " " << s; }),
              3);
    // Set-params: a failed reload leaves no grid; each run drops what it
    // loaded so the counts compare.
    Handle h;
    ASSERT_EQ(Vx_ClrInit(&h.h, CS_RGB, CS_LAB, &p), STATUS_OK);
    convert::FreeCustomEmulationTable(h.h);
    ConversionParams change = Params(0, KTCLR_CHANGE_CUSTOM_EMULATION);
    SetPath(change.emulationTablePath, dir.File("t.tif"));
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
