// Profile extraction and embedding on 1 MB and 100 MB JPEG, TIFF and WebP
// files, with `exiftool -icc_profile -b` on the same files beside the
// extraction and a plain copy of each file (copied, flushed, renamed: what a
// save that never loses the file must do at least) beside the embedding.
// Files are made in a temporary folder at start; TIFF through libtiff, JPEG
// and WebP as marker and chunk streams around filler image data (neither
// reader decodes the image). Not part of the test command.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "ktclr.h"

namespace {

const char* const kFormats[] = {"jpg", "tif", "webp"};
constexpr long kSizes[] = {1L << 20, 100L << 20};

std::string g_dir;
std::string g_profile;

std::u16string Wide(const std::string& s) { return std::u16string(s.begin(), s.end()); }  // ASCII paths only
std::string Name(int format, int size) {
    return g_dir + "/image" + std::to_string(size) + "." + kFormats[format];
}

std::string Filler(long size) {
    std::string s(static_cast<std::size_t>(size), '\0');
    std::uint32_t x = 7;
    for (auto& c : s) {
        x = x * 1664525u + 1013904223u;
        c = static_cast<char>((x >> 24) % 0xFF);  // never 0xFF: no marker inside JPEG data
    }
    return s;
}
std::string Be16(unsigned v) { return {char(v >> 8), char(v)}; }
std::string Le32(std::uint32_t v) { return {char(v), char(v >> 8), char(v >> 16), char(v >> 24)}; }

void MakeJpeg(const std::string& path, long size) {
    std::string f = "\xff\xd8\xff\xe0" + Be16(16) + std::string("JFIF\0\1\1\0\0\1\0\1\0\0", 14);
    f += "\xff\xe2" + Be16(16 + static_cast<unsigned>(g_profile.size())) + std::string("ICC_PROFILE\0\1\1", 14) + g_profile;
    f += "\xff\xc0" + Be16(17) + std::string("\x08\x10\x00\x10\x00\x03\x01\x11\x00\x02\x11\x00\x03\x11\x00", 15);
    f += "\xff\xda" + Be16(12) + std::string("\x03\x01\x00\x02\x11\x03\x11\x00\x3f\x00", 10);
    f += Filler(size - static_cast<long>(f.size()) - 2) + "\xff\xd9";
    std::ofstream(path, std::ios::binary) << f;
}

void MakeWebp(const std::string& path, long size) {
    const std::string image = Filler(size - 12 - 18 - 8 - static_cast<long>(g_profile.size()) - 8);
    std::string body = "WEBPVP8X" + Le32(10) + std::string("\x20\0\0\0\x0f\0\0\x0f\0\0", 10);
    body += "ICCP" + Le32(static_cast<std::uint32_t>(g_profile.size())) + g_profile;
    body += "VP8 " + Le32(static_cast<std::uint32_t>(image.size())) + image;
    std::ofstream(path, std::ios::binary) << "RIFF" << Le32(static_cast<std::uint32_t>(body.size())) << body;
}

void MakeTiff(const std::string& path, long size) {
    const std::uint32_t width = 1024, height = static_cast<std::uint32_t>(size / (3 * width));
    TIFF* t = TIFFOpen(path.c_str(), "w");
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, 64);
    TIFFSetField(t, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(g_profile.size()), g_profile.data());
    const std::string row = Filler(3 * width);
    for (std::uint32_t y = 0; y < height; ++y) TIFFWriteScanline(t, const_cast<char*>(row.data()), y, 0);
    TIFFClose(t);
}

void Setup() {
    char tmpl[] = "/tmp/ktclr-bench-XXXXXX";
    g_dir = mkdtemp(tmpl);
    std::ifstream in("/usr/share/color/icc/sRGB.icc", std::ios::binary);
    g_profile.assign(std::istreambuf_iterator<char>(in), {});
    if (g_profile.empty()) g_profile = Filler(6922);
    for (int s = 0; s < 2; ++s) {
        MakeJpeg(Name(0, s), kSizes[s]);
        MakeTiff(Name(1, s), kSizes[s]);
        MakeWebp(Name(2, s), kSizes[s]);
    }
}

void BM_Extract(benchmark::State& state) {
    const std::u16string name = Wide(Name(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
    for (auto _ : state) {
        ICCProfileRecord r{};
        r.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
        if (Vx_LoadICCProfile(name.c_str(), &r, nullptr) != STATUS_OK || r.profileSize != g_profile.size())
            state.SkipWithError("load failed");
        Vx_FreeICCProfile(&r);
    }
}

void BM_Exiftool(benchmark::State& state) {
    const std::string command = "exiftool -icc_profile -b " + Name(static_cast<int>(state.range(0)),
                                                                     static_cast<int>(state.range(1))) + " >/dev/null";
    for (auto _ : state)
        if (std::system(command.c_str()) != 0) state.SkipWithError("exiftool failed");
}

void BM_Embed(benchmark::State& state) {
    const std::u16string name = Wide(Name(static_cast<int>(state.range(0)), static_cast<int>(state.range(1))));
    ICCProfileRecord r{};
    r.structSize = KTCLR_SIZEOF_ICC_PROFILE_RECORD;
    r.profileSize = static_cast<std::uint32_t>(g_profile.size());
    r.profileData = reinterpret_cast<std::uint8_t*>(g_profile.data());
    for (auto _ : state)
        if (Vx_SaveICCProfile(name.c_str(), &r, nullptr) != STATUS_OK) state.SkipWithError("save failed");
}

void BM_PlainCopy(benchmark::State& state) {
    const std::string name = Name(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    const std::string temp = name + ".copy";
    for (auto _ : state) {
        const int in = open(name.c_str(), O_RDONLY), out = open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        struct stat st;
        fstat(in, &st);
        for (off_t left = st.st_size; left > 0;) {
            const ssize_t n = copy_file_range(in, nullptr, out, nullptr, static_cast<std::size_t>(left), 0);
            if (n <= 0) break;
            left -= n;
        }
        fsync(out);
        close(out);
        close(in);
        std::rename(temp.c_str(), (name + ".copied").c_str());
    }
}

void Args(benchmark::internal::Benchmark* b) {
    b->ArgNames({"format", "size"})->Unit(benchmark::kMillisecond)->UseRealTime();
    for (int f = 0; f < 3; ++f)
        for (int s = 0; s < 2; ++s) b->Args({f, s});
}

BENCHMARK(BM_Extract)->Apply(Args);
BENCHMARK(BM_Exiftool)->Apply(Args)->Iterations(3);
BENCHMARK(BM_Embed)->Apply(Args);
BENCHMARK(BM_PlainCopy)->Apply(Args);

}  // namespace

int main(int argc, char** argv) {
    Setup();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    std::system(("rm -rf " + g_dir).c_str());
    return 0;
}
