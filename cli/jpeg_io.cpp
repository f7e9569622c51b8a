// JPEG through libjpeg-turbo: RGB (grey expanded) or CMYK out (Adobe's
// inverted CMYK put right; YCCK decoded to CMYK); RGB in, with the profile
// in APP2 segments.
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

// The file and the codec object of a reader or a writer. Guarded runs
// libjpeg calls with the error jump set in its own frame, which stays alive
// while they run: an error, running out of memory in jpeg_create_* too,
// leaves as a Failure. Warnings are quiet.
template <class Codec>
class JpegFile {
protected:
    void Attach(FILE* file, const char* failure) {
        file_ = file;
        if (!file_) throw Failure(failure);
        jpeg_std_error(&err_.base);
        err_.base.error_exit = OnError;
        err_.base.output_message = [](j_common_ptr) {};
        codec_.err = &err_.base;
    }
    template <class F>
    void Guarded(const char* failure, F&& calls) {
        if (setjmp(err_.jump)) throw Failure(failure + std::string(err_.message));
        calls();
    }
    ~JpegFile() {
        jpeg_destroy(reinterpret_cast<j_common_ptr>(&codec_));  // safe on a half-made object
        if (file_) fclose(file_);
    }

    FILE* file_ = nullptr;
    ErrorManager err_{};
    Codec codec_{};
};

class JpegReader : public Reader, JpegFile<jpeg_decompress_struct> {
public:
    void Open(const std::string& path) {
        Attach(fopen(path.c_str(), "rb"), "cannot open the file");
        Guarded("not a readable JPEG: ", [this] {
            jpeg_create_decompress(&codec_);
            jpeg_stdio_src(&codec_, file_);
            jpeg_read_header(&codec_, TRUE);
            codec_.out_color_space = codec_.num_components == 4 ? JCS_CMYK : JCS_RGB;
            jpeg_start_decompress(&codec_);
        });
        const bool four = codec_.num_components == 4;
        invert_ = four && codec_.saw_Adobe_marker;
        info_.width = static_cast<int>(codec_.output_width);
        info_.height = static_cast<int>(codec_.output_height);
        info_.space = four ? CS_CMYK : CS_RGB;
        info_.spaceKnown = true;
    }
    void read(uint8_t* out, int rows) override {
        Guarded("JPEG data broken: ", [&] {
            const size_t stride = static_cast<size_t>(info_.width) * codec_.output_components;
            for (int y = 0; y < rows; ++y) {
                JSAMPROW row = out + y * stride;
                jpeg_read_scanlines(&codec_, &row, 1);
                if (invert_)
                    for (size_t i = 0; i < stride; ++i) row[i] = static_cast<uint8_t>(255 - row[i]);
            }
        });
    }

private:
    bool invert_ = false;
};

class JpegWriter : public Writer, JpegFile<jpeg_compress_struct> {
public:
    void Open(const WriteSpec& spec, int fd) {
        Attach(OutputStream(fd), "cannot open the output");
        Guarded(kFailed, [&] {
            jpeg_create_compress(&codec_);
            jpeg_stdio_dest(&codec_, file_);
            codec_.image_width = static_cast<JDIMENSION>(spec.width);
            codec_.image_height = static_cast<JDIMENSION>(spec.height);
            codec_.input_components = 3;
            codec_.in_color_space = JCS_RGB;
            jpeg_set_defaults(&codec_);
            jpeg_set_quality(&codec_, spec.quality, TRUE);
            jpeg_start_compress(&codec_, TRUE);
            if (!spec.icc.empty())
                jpeg_write_icc_profile(&codec_, spec.icc.data(), static_cast<unsigned>(spec.icc.size()));
        });
    }
    void write(const uint8_t* rows, int count) override {
        Guarded(kFailed, [&] {
            for (int y = 0; y < count; ++y) {
                JSAMPROW row = const_cast<uint8_t*>(rows) + static_cast<size_t>(y) * codec_.image_width * 3;
                jpeg_write_scanlines(&codec_, &row, 1);
            }
        });
    }
    void finish() override {
        Guarded(kFailed, [this] { jpeg_finish_compress(&codec_); });
        FILE* f = file_;
        file_ = nullptr;
        if (fclose(f) != 0) throw Failure("writing the output failed");
    }

private:
    static constexpr char kFailed[] = "JPEG writing failed: ";
};

}  // namespace

std::unique_ptr<Reader> OpenJpegReader(const std::string& path) { return Opened<JpegReader>(path); }
std::unique_ptr<Writer> OpenJpegWriter(const WriteSpec& spec, int fd) { return Opened<JpegWriter>(spec, fd); }

}  // namespace ktcli
