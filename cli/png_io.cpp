// PNG through libpng: 8-bit RGB out of every colour type (palette, grey and
// 16-bit samples expanded, alpha dropped); RGB rows in, with an iCCP chunk.
#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstdio>

#include <ktclr.h>

#include "image.h"

namespace ktcli {
namespace {

[[noreturn]] void PngError(png_structp png, png_const_charp message) {
    *static_cast<std::string*>(png_get_error_ptr(png)) = message;
    png_longjmp(png, 1);
}
void PngWarning(png_structp, png_const_charp) {}

class PngReader : public Reader {
public:
    void Open(const std::string& path) {
        file_ = fopen(path.c_str(), "rb");
        if (!file_) throw Failure("cannot open the file");
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, &error_, PngError, PngWarning);
        info_ptr_ = png_create_info_struct(png_);
        if (setjmp(png_jmpbuf(png_))) throw Failure("not a readable PNG: " + error_);
        png_init_io(png_, file_);
        png_read_info(png_, info_ptr_);
        png_set_expand(png_);
        png_set_strip_16(png_);
        png_set_strip_alpha(png_);
        png_set_gray_to_rgb(png_);
        const bool interlaced = png_get_interlace_type(png_, info_ptr_) != PNG_INTERLACE_NONE;
        if (interlaced) png_set_interlace_handling(png_);
        png_read_update_info(png_, info_ptr_);
        info_.width = static_cast<int>(png_get_image_width(png_, info_ptr_));
        info_.height = static_cast<int>(png_get_image_height(png_, info_ptr_));
        info_.space = CS_RGB;
        info_.spaceKnown = true;
        if (interlaced) {  // passes cover the whole image: read it at once
            whole_.resize(static_cast<size_t>(info_.width) * 3 * static_cast<size_t>(info_.height));
            std::vector<png_bytep> rows(static_cast<size_t>(info_.height));
            for (int y = 0; y < info_.height; ++y) rows[y] = whole_.data() + static_cast<size_t>(y) * info_.width * 3;
            png_read_image(png_, rows.data());
        }
    }
    ~PngReader() override {
        png_destroy_read_struct(&png_, &info_ptr_, nullptr);
        if (file_) fclose(file_);
    }

    void read(uint8_t* out, int rows) override {
        const size_t stride = static_cast<size_t>(info_.width) * 3;
        if (!whole_.empty()) {
            std::copy_n(whole_.data() + static_cast<size_t>(next_) * stride, stride * rows, out);
        } else {
            if (setjmp(png_jmpbuf(png_))) throw Failure("PNG data broken: " + error_);
            for (int y = 0; y < rows; ++y) png_read_row(png_, out + y * stride, nullptr);
        }
        next_ += rows;
    }

private:
    FILE* file_ = nullptr;
    png_structp png_ = nullptr;
    png_infop info_ptr_ = nullptr;
    std::string error_;
    std::vector<uint8_t> whole_;
    int next_ = 0;
};

class PngWriter : public Writer {
public:
    void Open(const WriteSpec& spec, int fd) {
        width_ = spec.width;
        file_ = OutputStream(fd);
        png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, &error_, PngError, PngWarning);
        info_ = png_create_info_struct(png_);
        if (setjmp(png_jmpbuf(png_))) throw Failure("PNG writing failed: " + error_);
        png_init_io(png_, file_);
        png_set_IHDR(png_, info_, spec.width, spec.height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (!spec.icc.empty())
            png_set_iCCP(png_, info_, "ICC profile", PNG_COMPRESSION_TYPE_BASE, spec.icc.data(),
                         static_cast<png_uint_32>(spec.icc.size()));
        png_write_info(png_, info_);
    }
    ~PngWriter() override {
        png_destroy_write_struct(&png_, &info_);
        if (file_) fclose(file_);
    }
    void write(const uint8_t* rows, int count) override {
        if (setjmp(png_jmpbuf(png_))) throw Failure("PNG writing failed: " + error_);
        for (int y = 0; y < count; ++y) png_write_row(png_, rows + static_cast<size_t>(y) * width_ * 3);
    }
    void finish() override {
        if (setjmp(png_jmpbuf(png_))) throw Failure("PNG writing failed: " + error_);
        png_write_end(png_, nullptr);
        FILE* f = file_;
        file_ = nullptr;
        if (fclose(f) != 0) throw Failure("writing the output failed");
    }

private:
    int width_ = 0;
    FILE* file_ = nullptr;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::string error_;
};

}  // namespace

std::unique_ptr<Reader> OpenPngReader(const std::string& path) { return Opened<PngReader>(path); }
std::unique_ptr<Writer> OpenPngWriter(const WriteSpec& spec, int fd) { return Opened<PngWriter>(spec, fd); }

}  // namespace ktcli
