// Shared pieces of the RGB-family kernel tests: big inputs, a two-thread
// split, and the comparison of a kernel's output with a reference.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "colormodels/cpu.h"
#include "colormodels/kernels.h"

namespace kt::test {

constexpr int kAllSide = 4096;  // 4096 x 4096 pixels = every 24-bit value once

// Every 24-bit value once, pixel i holding bytes (i >> 16, i >> 8, i).
inline std::vector<std::uint8_t> AllTriples() {
    std::vector<std::uint8_t> v(3u << 24);
    for (std::uint32_t i = 0; i < (1u << 24); ++i) {
        v[3 * i] = static_cast<std::uint8_t>(i >> 16);
        v[3 * i + 1] = static_cast<std::uint8_t>(i >> 8);
        v[3 * i + 2] = static_cast<std::uint8_t>(i);
    }
    return v;
}

inline const char* Name(color::Isa isa) {
    static const char* const names[] = {"plain", "avx2", "avx512"};
    return names[static_cast<int>(isa)];
}

// Caps the kernels' instruction set while it lives.
class IsaCap {
public:
    explicit IsaCap(color::Isa level) : previous_(color::SetIsaCap(level)) {}
    ~IsaCap() { color::SetIsaCap(previous_); }
    IsaCap(const IsaCap&) = delete;
    IsaCap& operator=(const IsaCap&) = delete;

private:
    color::Isa previous_;
};

// The levels this processor runs, plain first.
inline std::vector<color::Isa> Levels() {
    std::vector<color::Isa> all;
    const color::Isa best = color::CpuIsa();
    for (int l = 0; l <= static_cast<int>(best); ++l) all.push_back(static_cast<color::Isa>(l));
    return all;
}

// Tests run once per level (TEST_P), the kernels capped to it; every plain
// row is thereby proven on any processor. KT_AT_EVERY_LEVEL(Suite) below the
// tests instantiates them.
class AtEveryLevel : public ::testing::TestWithParam<color::Isa> {
protected:
    void SetUp() override { previous_ = color::SetIsaCap(GetParam()); }
    void TearDown() override { color::SetIsaCap(previous_); }

private:
    color::Isa previous_ = color::Isa::avx512;
};
#define KT_AT_EVERY_LEVEL(Suite)                                                       \
    INSTANTIATE_TEST_SUITE_P(Isa, Suite, ::testing::ValuesIn(::kt::test::Levels()),   \
                             [](const auto& info) { return std::string(::kt::test::Name(info.param)); })

// Runs body(first, last) over [0, n) on two threads.
inline void Split2(std::int64_t n, const std::function<void(std::int64_t, std::int64_t)>& body) {
    const std::int64_t mid = n / 2;
    std::thread t([&] { body(0, mid); });
    body(mid, n);
    t.join();
}

// Runs a kernel over an unpadded image of 3-byte pixels, the rows shared by
// two threads, and expects STATUS_OK.
inline void RunSplit(color::Kernel k, const std::uint8_t* src, std::uint8_t* dst, int width, int height,
                     int srcPixel, int dstPixel, int black, int order) {
    KtStatus a = 0, b = 0;
    const int mid = height / 2;
    const std::size_t srcRow = static_cast<std::size_t>(width) * srcPixel;
    const std::size_t dstRow = static_cast<std::size_t>(width) * dstPixel;
    std::thread t([&] { a = k(src, dst, width, mid, 0, 0, black, order); });
    b = k(src + srcRow * mid, dst + dstRow * mid, width, height - mid, 0, 0, black, order);
    t.join();
    EXPECT_EQ(a, STATUS_OK);
    EXPECT_EQ(b, STATUS_OK);
}

// Collects mismatches, reports the count and the first few.
class Mismatches {
public:
    explicit Mismatches(std::string what) : what_(std::move(what)) {}
    // Appended piece by piece: GCC 12 warns falsely on chains of string +.
    template <class... Parts>
    void Add(std::int64_t at, const Parts&... parts) {
        if (count_++ >= kShown) return;
        first_ += "\n  #";
        first_ += std::to_string(at);
        first_ += ": ";
        ((first_ += parts), ...);
    }
    void Merge(const Mismatches& o) {
        if (count_ < kShown) first_ += o.first_;
        count_ += o.count_;
    }
    void Expect() const { EXPECT_EQ(count_, 0) << what_ << first_; }
    std::int64_t count() const { return count_; }

private:
    static constexpr int kShown = 8;
    std::string what_;
    std::string first_;
    std::int64_t count_ = 0;
};

// Calls check(i, mismatches) for every i in [0, n) on two threads and
// expects no mismatch.
inline void CheckAll(const std::string& what, std::int64_t n,
                     const std::function<void(std::int64_t, Mismatches&)>& check) {
    Mismatches part[2] = {Mismatches(""), Mismatches("")};
    Split2(n, [&](std::int64_t a, std::int64_t b) {
        Mismatches& m = part[a == 0 ? 0 : 1];
        for (std::int64_t i = a; i < b; ++i) check(i, m);
    });
    Mismatches all(what);
    all.Merge(part[0]);
    all.Merge(part[1]);
    all.Expect();
}

template <std::size_t N>
std::string Bytes(const std::array<std::uint8_t, N>& a) {
    std::string s = "(";
    for (std::size_t i = 0; i < N; ++i) {
        if (i) s += ',';
        s += std::to_string(a[i]);
    }
    s += ')';
    return s;
}

}  // namespace kt::test
