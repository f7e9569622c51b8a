// Megapixels per second of every built-in pair to and from RGB on one
// 1920x1080 image, single thread, through Vx_ClrConvertDirect. With OpenCV
// the same image goes through cv::cvtColor for the pairs it has, and the
// ratios ours / OpenCV's are printed at the end.
#include <benchmark/benchmark.h>
#include <array>

#include <cstdio>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "colormodels/space_table.h"
#include "ktclr.h"

#ifdef KTCLR_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int kWidth = 1920, kHeight = 1080;
constexpr double kPixels = double(kWidth) * kHeight;

struct Space {
    int id;
    const char* name;
    int bits;
};
// Every space of the library's table but RGB itself, read at compile time.
constexpr auto kSpaces = [] {
    std::array<Space, std::size(kt::color::kSpaces) - 1> all{};
    std::size_t n = 0;
    for (const kt::color::SpaceInfo& s : kt::color::kSpaces)
        if (s.id != CS_RGB) all[n++] = {s.id, s.name, s.bitsPerPixel};
    return all;
}();

std::size_t Bytes(int bits) { return (static_cast<std::size_t>(bits) * kWidth + 7) / 8 * kHeight; }

// A photograph-like image: smooth gradients with noise, so that branches
// behave as on real pictures.
const std::vector<std::uint8_t>& Image() {
    static const std::vector<std::uint8_t> rgb = [] {
        std::vector<std::uint8_t> v(3 * static_cast<std::size_t>(kWidth) * kHeight);
        std::mt19937 rng(1);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                std::uint8_t* p = &v[3 * (static_cast<std::size_t>(y) * kWidth + x)];
                const int n = static_cast<int>(rng() % 24) - 12;
                auto clamp = [](int c) { return static_cast<std::uint8_t>(c < 0 ? 0 : c > 255 ? 255 : c); };
                p[0] = clamp(x * 255 / kWidth + n);
                p[1] = clamp(y * 255 / kHeight - n);
                p[2] = clamp((x + y) * 255 / (kWidth + kHeight) + n / 2);
            }
        return v;
    }();
    return rgb;
}

void SetRate(benchmark::State& state) {
    state.counters["Mpix/s"] = benchmark::Counter(kPixels * static_cast<double>(state.iterations()) / 1e6,
                                                  benchmark::Counter::kIsRate);
}

void FromRgb(benchmark::State& state, int dst, int bits) {
    std::vector<std::uint8_t> out(Bytes(bits));
    auto* src = const_cast<std::uint8_t*>(Image().data());
    for (auto _ : state) {
        const int status = Vx_ClrConvertDirect(CS_RGB, dst, src, out.data(), kWidth, kHeight, 0, 0);
        if (status != STATUS_OK) state.SkipWithError("conversion failed");
        benchmark::DoNotOptimize(out.data());
    }
    SetRate(state);
}

void ToRgb(benchmark::State& state, int src, int bits) {
    std::vector<std::uint8_t> in(Bytes(bits)), out(Image().size());
    Vx_ClrConvertDirect(CS_RGB, src, const_cast<std::uint8_t*>(Image().data()), in.data(), kWidth, kHeight, 0, 0);
    for (auto _ : state) {
        const int status = Vx_ClrConvertDirect(src, CS_RGB, in.data(), out.data(), kWidth, kHeight, 0, 0);
        if (status != STATUS_OK) state.SkipWithError("conversion failed");
        benchmark::DoNotOptimize(out.data());
    }
    SetRate(state);
}

void Memcpy(benchmark::State& state) {
    std::vector<std::uint8_t> out(Image().size());
    for (auto _ : state) {
        std::memcpy(out.data(), Image().data(), out.size());
        benchmark::DoNotOptimize(out.data());
    }
    SetRate(state);
}

#ifdef KTCLR_BENCH_OPENCV
struct CvPair {
    const char* ours;  // name of our benchmark with the same pair
    int code;
    int srcType;       // CV_8UC3 or CV_8UC2
};
const CvPair kCvPairs[] = {
    {"RGB->HSV", cv::COLOR_RGB2HSV_FULL, CV_8UC3},    {"HSV->RGB", cv::COLOR_HSV2RGB_FULL, CV_8UC3},
    {"RGB->HLS", cv::COLOR_RGB2HLS_FULL, CV_8UC3},    {"HLS->RGB", cv::COLOR_HLS2RGB_FULL, CV_8UC3},
    {"RGB->YCbCr", cv::COLOR_RGB2YCrCb, CV_8UC3},     {"YCbCr->RGB", cv::COLOR_YCrCb2RGB, CV_8UC3},
    {"RGB->YUV", cv::COLOR_RGB2YUV, CV_8UC3},         {"YUV->RGB", cv::COLOR_YUV2RGB, CV_8UC3},
    {"RGB->Lab", cv::COLOR_RGB2Lab, CV_8UC3},         {"Lab->RGB", cv::COLOR_Lab2RGB, CV_8UC3},
    {"RGB->XYZ", cv::COLOR_RGB2XYZ, CV_8UC3},         {"XYZ->RGB", cv::COLOR_XYZ2RGB, CV_8UC3},
    {"YUYV->RGB", cv::COLOR_YUV2RGB_YUYV, CV_8UC2},   {"UYVY->RGB", cv::COLOR_YUV2RGB_UYVY, CV_8UC2},
    {"RGB->BGR", cv::COLOR_RGB2BGR, CV_8UC3}};

void OpenCv(benchmark::State& state, const CvPair* pair) {
    cv::setNumThreads(1);
    cv::Mat rgb(kHeight, kWidth, CV_8UC3, const_cast<std::uint8_t*>(Image().data()));
    cv::Mat src = rgb, dst;
    if (pair->srcType == CV_8UC2) {
        src = cv::Mat(kHeight, kWidth, CV_8UC2);
        rgb.forEach<cv::Vec3b>([&](const cv::Vec3b& p, const int* pos) {
            src.at<cv::Vec2b>(pos[0], pos[1]) = cv::Vec2b(p[1], p[0]);
        });
    }
    cv::cvtColor(src, dst, pair->code);
    for (auto _ : state) {
        cv::cvtColor(src, dst, pair->code);
        benchmark::DoNotOptimize(dst.data);
    }
    SetRate(state);
}
#endif

// Keeps each run's rate so that the ratios can be printed afterwards.
class RateReporter : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> rates;
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            const auto it = r.counters.find("Mpix/s");
            if (it == r.counters.end()) continue;
            rates[r.benchmark_name()] = it->second.value;  // already per second
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char** argv) {
    for (const Space& s : kSpaces) {
        benchmark::RegisterBenchmark((std::string("RGB->") + s.name).c_str(), FromRgb, s.id, s.bits)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((std::string(s.name) + "->RGB").c_str(), ToRgb, s.id, s.bits)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RegisterBenchmark("memcpy", Memcpy)->Unit(benchmark::kMillisecond);
#ifdef KTCLR_BENCH_OPENCV
    for (const CvPair& p : kCvPairs)
        benchmark::RegisterBenchmark((std::string("OpenCV ") + p.ours).c_str(), OpenCv, &p)
            ->Unit(benchmark::kMillisecond);
#endif
    benchmark::Initialize(&argc, argv);
    RateReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
#ifdef KTCLR_BENCH_OPENCV
    std::printf("\n%-12s %10s %10s %7s\n", "pair", "ours", "OpenCV", "ratio");
    for (const CvPair& p : kCvPairs) {
        const auto ours = reporter.rates.find(p.ours);
        const auto theirs = reporter.rates.find(std::string("OpenCV ") + p.ours);
        if (ours == reporter.rates.end() || theirs == reporter.rates.end() || theirs->second <= 0) continue;
        std::printf("%-12s %10.0f %10.0f %7.2f\n", p.ours, ours->second, theirs->second,
                    ours->second / theirs->second);
    }
#endif
    benchmark::Shutdown();
    return 0;
}
