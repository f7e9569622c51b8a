// Failures injected at every step. Load and Save of a one-segment JPEG are
// rows of the allocation table in tests/alloc; here are the other readers,
// the other writers, and every failing file operation of every writer.
#include <unistd.h>

#include "platform/error_report.h"
#include "storage_support.h"

namespace kt::test {
namespace {

using Faults = WithPngCodec;

// A load answers ERR_NO_MEMORY for any failing allocation; a save that
// fails anywhere (allocation, read, write, flush, rename) leaves the original
// byte for byte and no temporary behind, and answers a negative status, or
// STATUS_OK with the failure reported (GIF, WebP). Nothing leaks.
TEST_F(Faults, EveryFailureIsAnsweredAndLeavesTheFile) {
    const Bytes profile = Profile(300, 0x11);
    const std::string d = dir_.path();
    Sh("cd " + d + " && convert -size 16x12 gradient:red-blue s.png && convert s.png -profile " + kSrgb +
       " a.jpg && convert s.png s.png a.tif && convert s.png a.gif && cwebp -quiet s.png -o plain.webp"
       " && webpmux -set icc " + kSrgb + " plain.webp -o icc.webp && convert s.png -profile " + kSrgb +
       " icc.tif && convert s.png -profile " + kSrgb + " icc.psd && convert s.png -profile " + kSrgb + " icc.png");
    dir_.Write("two.jpg", Jpeg({IccPiece(1, 2, profile), IccPiece(2, 2, profile)}));
    dir_.Write("a.ps", Text("%!PS\n%%BeginICCProfile:\n% " + std::string(3000, 'a') + "\n"));
    dir_.Write("a.56", Cat({{0xE0}, Be16(304), Be32(0), profile, {0xE0}, Be16(4), Be32(2)}));
    Load(dir_.File("icc.png"));  // the module stays loaded: its loading is no allocation of a load
    const Vx_SaveFileOptions rules{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, VX_SAVE_WEBP_CONTAINER_RULES, nullptr};
    const std::string bak = dir_.File("a.bak");
    const std::u16string wideBak = Wide(bak);
    const Vx_SaveFileOptions backup{KTCLR_SIZEOF_SAVE_FILE_OPTIONS, 0, wideBak.c_str()};
    enum Kind { load, save, saveFileFaultsOnly };
    const struct {
        const char* name;
        Kind kind;
        const Vx_SaveFileOptions* options;
    } rows[] = {
        {"two.jpg", load, nullptr},   {"icc.tif", load, nullptr},    {"a.ps", load, nullptr},
        {"a.56", load, nullptr},      {"icc.psd", load, nullptr},    {"icc.webp", load, nullptr},
        {"icc.png", load, nullptr},   {"a.jpg", saveFileFaultsOnly, nullptr}, {"a.tif", save, nullptr},
        {"a.gif", save, nullptr},     {"plain.webp", save, nullptr}, {"icc.webp", save, nullptr},
        {"plain.webp", save, &rules}, {"a.tif", save, &backup},
    };
    const std::string saved = Pattern(70000);
    for (const auto& r : rows) {
        SCOPED_TRACE(std::string(r.name) + (r.options ? " (container rules)" : ""));
        const std::string path = dir_.File(r.name), before = ReadFile(path);
        if (r.kind == load) {
            const int allocations = ForEachAllocationFailure([&] { return Load(path).status; },
                                                             [](int, int status) { EXPECT_EQ(status, ERR_NO_MEMORY); });
            EXPECT_GT(allocations, 1);
            continue;
        }
        const auto entries = dir_.Entries();
        auto run = [&] {
            WriteFile(path, before);
            unlink(bak.c_str());
            report::Clear();
            return Save(path, saved, r.options);
        };
        auto unchanged = [&](int n, int status) {
            EXPECT_TRUE(status < 0 || (status == STATUS_OK && report::Last() < 0)) << n << ": " << status;
            EXPECT_TRUE(ReadFile(path) == before) << n;
            // A backup may be left, holding the original.
            EXPECT_TRUE(access(bak.c_str(), F_OK) != 0 || ReadFile(bak) == before) << n;
            unlink(bak.c_str());
            EXPECT_EQ(dir_.Entries(), entries) << n;
        };
        ForEachFileFault(run, [&](file::faults::Op, int n, int status) { unchanged(n, status); });
        if (r.kind == save) ForEachAllocationFailure(run, unchanged);
    }
}

}  // namespace
}  // namespace kt::test
