// Hand-made TIFF files for the custom grid tests: every field the reader
// looks at can be set or broken on purpose.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

namespace kt::test {

struct GridTiff {
    char mark[2] = {'I', 'I'};
    std::uint32_t width = 33, length = 1089, samples = 3;
    int entryCount = -1;                  // -1: the real count
    std::int64_t stripOffsetOverride = -1;  // -1: where the pixels are
    std::int64_t directoryOffsetOverride = -1;
    std::size_t truncateTo = 0;           // 0: whole file
    std::vector<std::uint8_t> pixels;     // empty: a pattern of width x length x samples bytes
    bool pixelsBeforeDirectory = true;

    // Fields are written little-endian whatever the mark says, as the
    // reader takes them.
    std::vector<std::uint8_t> Bytes() const {
        std::vector<std::uint8_t> b = {std::uint8_t(mark[0]), std::uint8_t(mark[1]), 42, 0, 0, 0, 0, 0};
        auto put16 = [&](std::size_t at, std::uint32_t v) {
            b[at] = std::uint8_t(v), b[at + 1] = std::uint8_t(v >> 8);
        };
        auto put32 = [&](std::size_t at, std::uint32_t v) {
            put16(at, v & 0xFFFF);
            put16(at + 2, v >> 16);
        };
        std::vector<std::uint8_t> data = pixels;
        if (data.empty()) {
            data.resize(std::size_t(width) * length * samples);
            for (std::size_t i = 0; i < data.size(); ++i) data[i] = std::uint8_t(i * 7 + i / 251);
        }
        std::uint32_t pixelsAt = 0;
        if (pixelsBeforeDirectory) {
            pixelsAt = std::uint32_t(b.size());
            b.insert(b.end(), data.begin(), data.end());
        }
        const std::uint32_t dirAt = std::uint32_t(b.size());
        struct Entry {
            std::uint16_t tag, type;
            std::uint32_t count, value;
        };
        std::vector<Entry> entries = {
            {256, 4, 1, width}, {257, 4, 1, length}, {258, 3, 1, 8}, {259, 3, 1, 1}, {262, 3, 1, 2},
            {273, 4, 1, 0},     {277, 3, 1, samples}, {278, 4, 1, length},
            {279, 4, 1, std::uint32_t(data.size())},
        };
        b.resize(b.size() + 2 + entries.size() * 12 + 4, 0);
        put16(dirAt, entryCount >= 0 ? std::uint32_t(entryCount) : std::uint32_t(entries.size()));
        if (!pixelsBeforeDirectory) {
            pixelsAt = std::uint32_t(b.size());
            b.insert(b.end(), data.begin(), data.end());
        }
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const std::size_t at = dirAt + 2 + i * 12;
            Entry e = entries[i];
            if (e.tag == 273) e.value = stripOffsetOverride >= 0 ? std::uint32_t(stripOffsetOverride) : pixelsAt;
            put16(at, e.tag);
            put16(at + 2, e.type);
            put32(at + 4, e.count);
            put32(at + 8, e.value);
        }
        put32(4, directoryOffsetOverride >= 0 ? std::uint32_t(directoryOffsetOverride) : dirAt);
        if (truncateTo) b.resize(truncateTo);
        return b;
    }

    void Write(const std::string& path) const {
        const std::vector<std::uint8_t> b = Bytes();
        std::ofstream f(path, std::ios::binary);
        f.write(reinterpret_cast<const char*>(b.data()), std::streamsize(b.size()));
    }
};

}  // namespace kt::test
