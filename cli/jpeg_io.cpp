// JPEG through libjpeg-turbo: RGB (grey expanded) or CMYK out (Adobe's
// inverted CMYK put right; YCCK decoded to CMYK); RGB in, with the profile
// in APP2 segments.
#include <unistd.h>

#include <csetjmp>
#include <cstdio>

#include <jpeglib.h>
#include <ktclr.h>

#include "image.h"

namespace ktcli {
namespace {

struct ErrorManager {
    jpeg_error_mgr base;
    jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
};

void OnError(j_common_ptr cinfo) {
    auto* e = reinterpret_cast<ErrorManager*>(cinfo->err);
    cinfo->err->format_message(cinfo, e->message);
    longjmp(e->jump, 1);
}

// libjpeg's errors jump back to the caller's setjmp; its warnings are quiet.
jpeg_error_mgr* InitErrors(ErrorManager* e) {
    jpeg_std_error(&e->base);
    e->base.error_exit = OnError;
    e->base.output_message = [](j_common_ptr) {};
    return &e->base;
}

class JpegReader : public Reader {
public:
    void Open(const std::string& path) {
        file_ = fopen(path.c_str(), "rb");
        if (!file_) throw Failure("cannot open the file");
        cinfo_.err = InitErrors(&err_);
        if (setjmp(err_.jump)) throw Failure(std::string("not a readable JPEG: ") + err_.message);
        jpeg_create_decompress(&cinfo_);
        jpeg_stdio_src(&cinfo_, file_);
        jpeg_read_header(&cinfo_, TRUE);
        const bool four = cinfo_.num_components == 4;
        cinfo_.out_color_space = four ? JCS_CMYK : JCS_RGB;
        jpeg_start_decompress(&cinfo_);
        invert_ = four && cinfo_.saw_Adobe_marker;
        info_.width = static_cast<int>(cinfo_.output_width);
        info_.height = static_cast<int>(cinfo_.output_height);
        info_.space = four ? CS_CMYK : CS_RGB;
        info_.spaceKnown = true;
    }
    ~JpegReader() override {
        jpeg_destroy_decompress(&cinfo_);
        if (file_) fclose(file_);
    }
    void read(uint8_t* out, int rows) override {
        if (setjmp(err_.jump)) throw Failure(std::string("JPEG data broken: ") + err_.message);
        const size_t stride = static_cast<size_t>(info_.width) * cinfo_.output_components;
        for (int y = 0; y < rows; ++y) {
            JSAMPROW row = out + y * stride;
            jpeg_read_scanlines(&cinfo_, &row, 1);
            if (invert_)
                for (size_t i = 0; i < stride; ++i) row[i] = static_cast<uint8_t>(255 - row[i]);
        }
    }

private:
    FILE* file_ = nullptr;
    ErrorManager err_{};
    jpeg_decompress_struct cinfo_{};
    bool invert_ = false;
};

class JpegWriter : public Writer {
public:
    void Open(const WriteSpec& spec, int fd) {
        file_ = fdopen(dup(fd), "wb");
        if (!file_) throw Failure("cannot open the output");
        cinfo_.err = InitErrors(&err_);
        if (setjmp(err_.jump)) throw Failure(std::string("JPEG writing failed: ") + err_.message);
        jpeg_create_compress(&cinfo_);
        jpeg_stdio_dest(&cinfo_, file_);
        cinfo_.image_width = static_cast<JDIMENSION>(spec.width);
        cinfo_.image_height = static_cast<JDIMENSION>(spec.height);
        cinfo_.input_components = 3;
        cinfo_.in_color_space = JCS_RGB;
        jpeg_set_defaults(&cinfo_);
        jpeg_set_quality(&cinfo_, spec.quality, TRUE);
        jpeg_start_compress(&cinfo_, TRUE);
        if (!spec.icc.empty())
            jpeg_write_icc_profile(&cinfo_, spec.icc.data(), static_cast<unsigned>(spec.icc.size()));
    }
    ~JpegWriter() override {
        jpeg_destroy_compress(&cinfo_);
        if (file_) fclose(file_);
    }
    void write(const uint8_t* rows, int count) override {
        if (setjmp(err_.jump)) throw Failure(std::string("JPEG writing failed: ") + err_.message);
        for (int y = 0; y < count; ++y) {
            JSAMPROW row = const_cast<uint8_t*>(rows) + static_cast<size_t>(y) * cinfo_.image_width * 3;
            jpeg_write_scanlines(&cinfo_, &row, 1);
        }
    }
    void finish() override {
        if (setjmp(err_.jump)) throw Failure(std::string("JPEG writing failed: ") + err_.message);
        jpeg_finish_compress(&cinfo_);
        FILE* f = file_;
        file_ = nullptr;
        if (fclose(f) != 0) throw Failure("writing the output failed");
    }

private:
    FILE* file_ = nullptr;
    ErrorManager err_{};
    jpeg_compress_struct cinfo_{};
};

}  // namespace

std::unique_ptr<Reader> OpenJpegReader(const std::string& path) { return Opened<JpegReader>(path); }
std::unique_ptr<Writer> OpenJpegWriter(const WriteSpec& spec, int fd) { return Opened<JpegWriter>(spec, fd); }

}  // namespace ktcli
