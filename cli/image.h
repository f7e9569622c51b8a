// Image readers and writers of the tool: rows in, rows out, one band at a
// time, so memory follows the band and not the image.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace ktcli {

// A failure the tool reports: what went wrong in words, and the library's
// status when the library said so (0 when it did not).
struct Failure : std::runtime_error {
    int32_t status;
    explicit Failure(const std::string& what, int32_t s = 0) : std::runtime_error(what), status(s) {}
};

enum class FileFormat { Unknown, Png, Jpeg, Tiff, Webp, Raw };

struct ImageInfo {
    int width = 0;
    int height = 0;
    int space = -1;        // ktclr color-space id of the rows the reader hands out
    bool spaceKnown = false;  // false: 3 bytes a pixel taken as RGB for want of better
};

class Reader {
public:
    virtual ~Reader() = default;
    const ImageInfo& info() const { return info_; }
    // Reads the next `rows` rows into `out`, packed ((bits x width + 7) / 8
    // bytes a row; planar spaces as one planar image of `rows` rows).
    virtual void read(uint8_t* out, int rows) = 0;

protected:
    ImageInfo info_;
};

struct WriteSpec {
    std::string path;     // where the finished file goes ("-": standard output)
    FileFormat format = FileFormat::Tiff;
    int width = 0, height = 0, space = 0;
    std::vector<uint8_t> icc;  // profile to embed (empty: none)
    int quality = 90;          // JPEG and lossy WebP
};

class Writer {
public:
    virtual ~Writer() = default;
    virtual void write(const uint8_t* rows, int count) = 0;  // packed rows, as Reader::read
    virtual void finish() = 0;
};

// Format by the file's first bytes (RAW by name only).
FileFormat DetectFormat(const std::string& path);
// Format by an output name's extension; Unknown when it has none known.
FileFormat FormatFromName(const std::string& path);
const char* FormatName(FileFormat f);
const char* FormatExtension(FileFormat f);

// from: a space id the caller says the samples are in, or -1. rawWidth and
// rawHeight size a .raw input.
std::unique_ptr<Reader> OpenReader(const std::string& path, FileFormat f, int from, int rawWidth, int rawHeight);
// Writes to a temporary file beside spec.path; finish() renames it over.
std::unique_ptr<Writer> OpenWriter(const WriteSpec& spec);
// A stdio stream on a copy of a writer's descriptor `fd`, which stays open.
FILE* OutputStream(int fd);

// True for an existing target that is not a regular file (a device, a pipe):
// outputs are written into it, never renamed over it.
bool IsSpecialFile(const std::string& path);
// Which formats can hold a space (message for the caller when not).
bool FormatHolds(FileFormat f, int space);

// Makes a reader or writer and opens it; a failed Open still runs the
// destructor, which releases what Open had taken.
template <typename T, typename... Args>
std::unique_ptr<T> Opened(Args&&... args) {
    auto made = std::make_unique<T>();
    made->Open(std::forward<Args>(args)...);
    return made;
}

// Per-format entry points.
std::unique_ptr<Reader> OpenPngReader(const std::string& path);
std::unique_ptr<Reader> OpenJpegReader(const std::string& path);
std::unique_ptr<Reader> OpenTiffReader(const std::string& path);
std::unique_ptr<Reader> OpenWebpReader(const std::string& path);
std::unique_ptr<Reader> OpenRawReader(const std::string& path, int space, int width, int height);
std::unique_ptr<Writer> OpenPngWriter(const WriteSpec& spec, int fd);
std::unique_ptr<Writer> OpenJpegWriter(const WriteSpec& spec, int fd);
std::unique_ptr<Writer> OpenTiffWriter(const WriteSpec& spec, int fd);
std::unique_ptr<Writer> OpenWebpWriter(const WriteSpec& spec, int fd);
std::unique_ptr<Writer> OpenRawWriter(const WriteSpec& spec, int fd);

}  // namespace ktcli
