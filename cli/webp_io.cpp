// WebP through libwebp. WebP has no row interface: an image is decoded
// and encoded whole (at most 16383 x 16383 pixels). The profile goes in
// an ICCP chunk through libwebpmux.
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include <ktclr.h>
#include <webp/decode.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include "image.h"

namespace ktcli {
namespace {

std::vector<uint8_t> ReadAll(const std::string& path) {
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) throw Failure("cannot open the file");
    std::vector<uint8_t> bytes;
    uint8_t buf[1 << 16];
    for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;) bytes.insert(bytes.end(), buf, buf + n);
    const bool bad = ferror(f);
    fclose(f);
    if (bad) throw Failure("reading the file failed");
    return bytes;
}

class WebpReader : public Reader {
public:
    explicit WebpReader(const std::string& path) {
        const std::vector<uint8_t> bytes = ReadAll(path);
        int w = 0, h = 0;
        uint8_t* rgb = WebPDecodeRGB(bytes.data(), bytes.size(), &w, &h);
        if (!rgb) throw Failure("not a readable WebP");
        pixels_.assign(rgb, rgb + static_cast<size_t>(w) * h * 3);
        WebPFree(rgb);
        info_.width = w;
        info_.height = h;
        info_.space = CS_RGB;
        info_.spaceKnown = true;
    }
    void read(uint8_t* out, int rows) override {
        const size_t stride = static_cast<size_t>(info_.width) * 3;
        memcpy(out, pixels_.data() + next_ * stride, rows * stride);
        next_ += static_cast<size_t>(rows);
    }

private:
    std::vector<uint8_t> pixels_;
    size_t next_ = 0;
};

class WebpWriter : public Writer {
public:
    WebpWriter(const WriteSpec& spec, int fd) : spec_(spec), fd_(fd) {
        if (spec.width > WEBP_MAX_DIMENSION || spec.height > WEBP_MAX_DIMENSION)
            throw Failure("WebP holds at most 16383 x 16383 pixels");
        pixels_.reserve(static_cast<size_t>(spec.width) * spec.height * 3);
    }
    void write(const uint8_t* rows, int count) override {
        pixels_.insert(pixels_.end(), rows, rows + static_cast<size_t>(count) * spec_.width * 3);
    }
    void finish() override {
        uint8_t* encoded = nullptr;
        const size_t size = WebPEncodeRGB(pixels_.data(), spec_.width, spec_.height, spec_.width * 3,
                                          static_cast<float>(spec_.quality), &encoded);
        if (size == 0) throw Failure("WebP encoding failed");
        WebPData image = {encoded, size}, out = {nullptr, 0};
        WebPMux* mux = WebPMuxCreate(&image, 1);
        WebPData icc = {spec_.icc.data(), spec_.icc.size()};
        const bool ok = mux && (spec_.icc.empty() || WebPMuxSetChunk(mux, "ICCP", &icc, 1) == WEBP_MUX_OK) &&
                        WebPMuxAssemble(mux, &out) == WEBP_MUX_OK;
        WebPMuxDelete(mux);
        WebPFree(encoded);
        if (!ok) throw Failure("WebP assembly failed");
        const bool written = ::write(fd_, out.bytes, out.size) == static_cast<ssize_t>(out.size);
        WebPDataClear(&out);
        if (!written) throw Failure("writing the output failed");
    }

private:
    WriteSpec spec_;
    int fd_;
    std::vector<uint8_t> pixels_;
};

}  // namespace

std::unique_ptr<Reader> OpenWebpReader(const std::string& path) { return std::make_unique<WebpReader>(path); }
std::unique_ptr<Writer> OpenWebpWriter(const WriteSpec& spec, int fd) { return std::make_unique<WebpWriter>(spec, fd); }

}  // namespace ktcli
