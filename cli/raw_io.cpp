// Raw pixels in the library's own layout: packed rows one after the other;
// for the planar 4:1:0 layout the whole Y plane, then V, then U, so a band
// of rows lands in three places of the file.
#include <fcntl.h>
#include <unistd.h>

#include <ktclr.h>

#include "image.h"
#include "spaces.h"

namespace ktcli {
namespace {

// Byte ranges of a band of `rows` rows starting at `row0` in the file, and
// of the same band in a packed buffer: {file offset, buffer offset, length}.
struct Piece {
    off_t file;
    size_t buffer, length;
};

std::vector<Piece> Pieces(int space, int width, int height, int row0, int rows) {
    const size_t w = static_cast<size_t>(width);
    if (space != CS_YUV410_PLANAR)
        return {{static_cast<off_t>(RowBytes(space, width) * row0), 0, RowBytes(space, width) * rows}};
    const size_t plane = w * height, chroma = plane / 16, y = w * rows, c = y / 16;
    const size_t at = w * row0;
    return {{static_cast<off_t>(at), 0, y},
            {static_cast<off_t>(plane + at / 16), y, c},
            {static_cast<off_t>(plane + chroma + at / 16), y + c, c}};
}

class RawReader : public Reader {
public:
    void Open(const std::string& path, int space, int width, int height) {
        info_ = {width, height, space, true};
        fd_ = open(path.c_str(), O_RDONLY);
        if (fd_ < 0) throw Failure("cannot open the file");
        const off_t need = static_cast<off_t>(RowBytes(space, width) * height);
        if (lseek(fd_, 0, SEEK_END) < need)
            throw Failure("the file is shorter than " + std::to_string(need) + " bytes of " + SpaceById(space)->name);
    }
    ~RawReader() override {
        if (fd_ >= 0) close(fd_);
    }
    void read(uint8_t* out, int rows) override {
        for (const Piece& p : Pieces(info_.space, info_.width, info_.height, next_, rows))
            if (pread(fd_, out + p.buffer, p.length, p.file) != static_cast<ssize_t>(p.length))
                throw Failure("reading the file failed");
        next_ += rows;
    }

private:
    int fd_ = -1;
    int next_ = 0;
};

class RawWriter : public Writer {
public:
    RawWriter(const WriteSpec& spec, int fd) : spec_(spec), fd_(fd) {}
    void write(const uint8_t* rows, int count) override {
        for (const Piece& p : Pieces(spec_.space, spec_.width, spec_.height, next_, count))
            if (pwrite(fd_, rows + p.buffer, p.length, p.file) != static_cast<ssize_t>(p.length))
                throw Failure("writing the output failed");
        next_ += count;
    }
    void finish() override {}

private:
    WriteSpec spec_;
    int fd_;
    int next_ = 0;
};

}  // namespace

std::unique_ptr<Reader> OpenRawReader(const std::string& path, int space, int width, int height) {
    return Opened<RawReader>(path, space, width, height);
}
std::unique_ptr<Writer> OpenRawWriter(const WriteSpec& spec, int fd) { return std::make_unique<RawWriter>(spec, fd); }

}  // namespace ktcli
