// ICC conversion through a handle against cmsDoTransform on the same
// transform, and the emulation grid lookups, on one packed 1920x1080 buffer.
// Prints the handle/direct time ratio per pair after the benchmarks.
#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <vector>

#include "ktclr.h"

namespace {

constexpr int kWidth = 1920, kHeight = 1080;
constexpr int kPixels = kWidth * kHeight;

int BytesOf(int space) { return space == CS_CMYK ? 4 : 3; }

std::vector<std::uint8_t> Image(int bytesPerPixel) {
    std::vector<std::uint8_t> b(static_cast<std::size_t>(kPixels) * static_cast<std::size_t>(bytesPerPixel));
    std::uint32_t x = 1;
    for (auto& v : b) {
        x = x * 1664525u + 1013904223u;
        v = static_cast<std::uint8_t>(x >> 24);
    }
    return b;
}

ClrHandle* MakeHandle(int src, int dst, std::uint32_t method) {
    ConversionParams p;
    std::memset(&p, 0, sizeof p);
    p.structSize = KTCLR_SIZEOF_CONVERSION_PARAMS_EX;
    p.method = p.prepareMethods = method;
    p.emulationMethod = method;
    ClrHandle* h = nullptr;
    return Vx_ClrInit(&h, src, dst, &p) == STATUS_OK ? h : nullptr;
}

struct Case {
    int src, dst;
    const char* name;
};
constexpr Case kIccCases[] = {
    {CS_RGB, CS_CMYK, "RGB to CMYK"}, {CS_CMYK, CS_RGB, "CMYK to RGB"}, {CS_RGB, CS_LAB, "RGB to Lab"}};

void BM_IccHandle(benchmark::State& state) {
    const Case& c = kIccCases[state.range(0)];
    ClrHandle* h = MakeHandle(c.src, c.dst, METHOD_ICC);
    auto in = Image(BytesOf(c.src));
    std::vector<std::uint8_t> out(static_cast<std::size_t>(kPixels) * static_cast<std::size_t>(BytesOf(c.dst)));
    for (auto _ : state) Vx_ClrConvert(h, in.data(), out.data(), kWidth, kHeight, 0, 0);
    state.SetLabel(c.name);
    state.SetItemsProcessed(state.iterations() * kPixels);
    Vx_ClrFree(h);
}

void BM_IccDirect(benchmark::State& state) {
    const Case& c = kIccCases[state.range(0)];
    ClrHandle* h = MakeHandle(c.src, c.dst, METHOD_ICC);
    auto in = Image(BytesOf(c.src));
    std::vector<std::uint8_t> out(static_cast<std::size_t>(kPixels) * static_cast<std::size_t>(BytesOf(c.dst)));
    for (auto _ : state) cmsDoTransform(h->iccTransform, in.data(), out.data(), kPixels);
    state.SetLabel(c.name);
    state.SetItemsProcessed(state.iterations() * kPixels);
    Vx_ClrFree(h);
}

constexpr Case kGridCases[] = {
    {CS_CMYK, CS_RGB, "CMYK to RGB"}, {CS_RGB, CS_LAB, "RGB to Lab"}, {CS_LAB, CS_RGB, "Lab to RGB"}};

void BM_GridLookup(benchmark::State& state) {
    const Case& c = kGridCases[state.range(0)];
    ClrHandle* h = MakeHandle(c.src, c.dst, METHOD_BUILTIN_EMULATION);
    auto in = Image(BytesOf(c.src));
    std::vector<std::uint8_t> out(static_cast<std::size_t>(kPixels) * 3);
    for (auto _ : state) Vx_ClrConvert(h, in.data(), out.data(), kWidth, kHeight, 0, 0);
    state.SetLabel(c.name);
    state.SetItemsProcessed(state.iterations() * kPixels);
    Vx_ClrFree(h);
}

BENCHMARK(BM_IccHandle)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_IccDirect)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridLookup)->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

// Best of several runs each, alternating, so both see the same machine.
template <class F>
double Best(F&& f, int runs) {
    double best = 1e30;
    for (int i = 0; i < runs; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        f();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count());
    }
    return best;
}

void PrintRatios() {
    std::printf("\nhandle / direct cmsDoTransform, packed %dx%d (target: at most 1.03)\n", kWidth, kHeight);
    for (const Case& c : kIccCases) {
        ClrHandle* h = MakeHandle(c.src, c.dst, METHOD_ICC);
        auto in = Image(BytesOf(c.src));
        std::vector<std::uint8_t> out(static_cast<std::size_t>(kPixels) * static_cast<std::size_t>(BytesOf(c.dst)));
        double handle = 1e30, direct = 1e30;
        for (int round = 0; round < 5; ++round) {
            handle = std::min(handle, Best([&] { Vx_ClrConvert(h, in.data(), out.data(), kWidth, kHeight, 0, 0); }, 2));
            direct = std::min(direct, Best([&] { cmsDoTransform(h->iccTransform, in.data(), out.data(), kPixels); }, 2));
        }
        std::printf("  %-12s %7.2f ms vs %7.2f ms  ratio %.3f\n", c.name, handle * 1e3, direct * 1e3, handle / direct);
        Vx_ClrFree(h);
    }
}

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    PrintRatios();
    return 0;
}
