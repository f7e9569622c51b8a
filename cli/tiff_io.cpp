// TIFF through libtiff, strip by strip. Out: 8-bit contiguous RGB, grey
// (expanded), CMYK (separated), CIELab, or any 3/4-sample image whose
// description names a ktclr space. In: every 3- and 4-byte space; CMYK as
// separated, Lab as CIELab, the rest with the space in ImageDescription.
#include <tiffio.h>

#include <cstring>

#include <ktclr.h>

#include "image.h"
#include "spaces.h"

namespace ktcli {
namespace {

constexpr char kDescriptionPrefix[] = "ktclr color space: ";

void Quiet(const char*, const char*, va_list) {}

int SpaceFromDescription(TIFF* tif) {
    char* text = nullptr;
    if (!TIFFGetField(tif, TIFFTAG_IMAGEDESCRIPTION, &text) || !text) return -1;
    if (strncmp(text, kDescriptionPrefix, sizeof kDescriptionPrefix - 1) != 0) return -1;
    const SpaceInfo* s = SpaceByName(text + sizeof kDescriptionPrefix - 1);
    return s ? s->id : -1;
}

class TiffReader : public Reader {
public:
    void Open(const std::string& path) {
        TIFFSetErrorHandler(Quiet);
        TIFFSetWarningHandler(Quiet);
        tif_ = TIFFOpen(path.c_str(), "r");
        if (!tif_) throw Failure("not a readable TIFF");
        uint32_t w = 0, h = 0;
        uint16_t bits = 8, samples = 1, photometric = 0, planar = PLANARCONFIG_CONTIG;
        TIFFGetField(tif_, TIFFTAG_IMAGEWIDTH, &w);
        TIFFGetField(tif_, TIFFTAG_IMAGELENGTH, &h);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_BITSPERSAMPLE, &bits);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_SAMPLESPERPIXEL, &samples);
        TIFFGetFieldDefaulted(tif_, TIFFTAG_PLANARCONFIG, &planar);
        TIFFGetField(tif_, TIFFTAG_PHOTOMETRIC, &photometric);
        if (bits != 8) throw Failure("only 8-bit TIFF samples are read");
        if (planar != PLANARCONFIG_CONTIG || TIFFIsTiled(tif_))
            throw Failure("only TIFF images in strips with interleaved samples are read");
        if (w < 1 || h < 1 || w > 0x7fffffff / 4 || h > 0x7fffffff) throw Failure("TIFF image size out of range");
        if (photometric == PHOTOMETRIC_YCBCR) {  // JPEG-compressed: let libjpeg give RGB
            uint16_t compression = 0;
            TIFFGetField(tif_, TIFFTAG_COMPRESSION, &compression);
            if (compression != COMPRESSION_JPEG) throw Failure("YCbCr TIFF without JPEG compression is not read");
            TIFFSetField(tif_, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        }
        const int described = SpaceFromDescription(tif_);
        int space = -1;
        if (samples >= 3 && described >= 0 && SpaceById(described)->bits == 24) space = described;
        else if (samples >= 4 && described >= 0 && SpaceById(described)->bits == 32) space = described;
        else if (photometric == PHOTOMETRIC_SEPARATED && samples >= 4) space = CS_CMYK;
        else if (photometric == PHOTOMETRIC_SEPARATED && samples == 3) space = CS_CMY;
        else if (photometric == PHOTOMETRIC_CIELAB && samples >= 3) space = CS_LAB;
        else if ((photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_YCBCR) && samples >= 3) space = CS_RGB;
        else if ((photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE) && samples >= 1) {
            space = CS_RGB;
            grey_ = true;
            whiteZero_ = photometric == PHOTOMETRIC_MINISWHITE;
        }
        if (space < 0) throw Failure("TIFF photometric interpretation " + std::to_string(photometric) + " with " +
                                     std::to_string(samples) + " samples is not read");
        info_.width = static_cast<int>(w);
        info_.height = static_cast<int>(h);
        info_.space = space;
        info_.spaceKnown = described >= 0 || photometric != PHOTOMETRIC_RGB;
        samples_ = photometric == PHOTOMETRIC_YCBCR ? 3 : samples;
        line_.resize(static_cast<size_t>(TIFFScanlineSize(tif_)));
        if (line_.size() < static_cast<size_t>(w) * samples_) line_.resize(static_cast<size_t>(w) * samples_);
    }
    ~TiffReader() override {
        if (tif_) TIFFClose(tif_);
    }
    void read(uint8_t* out, int rows) override {
        const int channels = grey_ ? 3 : SpaceById(info_.space)->bits / 8;
        const bool direct = !grey_ && samples_ == channels;
        for (int y = 0; y < rows; ++y, ++row_) {
            uint8_t* o = out + static_cast<size_t>(y) * info_.width * channels;
            if (TIFFReadScanline(tif_, direct ? o : line_.data(), row_, 0) < 0)
                throw Failure("TIFF data broken at row " + std::to_string(row_));
            if (direct) continue;
            for (int x = 0; x < info_.width; ++x) {
                const uint8_t* p = line_.data() + static_cast<size_t>(x) * samples_;
                for (int c = 0; c < channels; ++c) {
                    const uint8_t v = p[grey_ ? 0 : c];
                    o[x * channels + c] = whiteZero_ ? static_cast<uint8_t>(255 - v) : v;
                }
            }
        }
    }

private:
    TIFF* tif_ = nullptr;
    std::vector<uint8_t> line_;
    uint32_t row_ = 0;
    int samples_ = 0;
    bool grey_ = false, whiteZero_ = false;
};

class TiffWriter : public Writer {
public:
    void Open(const WriteSpec& spec, int fd) {
        spec_ = spec;
        TIFFSetErrorHandler(Quiet);
        TIFFSetWarningHandler(Quiet);
        tif_ = TIFFFdOpen(fd, spec.path.c_str(), "w");
        if (!tif_) throw Failure("cannot open the output as TIFF");
        const int s = spec.space;
        channels_ = SpaceById(s)->bits / 8;
        TIFFSetField(tif_, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(spec.width));
        TIFFSetField(tif_, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(spec.height));
        TIFFSetField(tif_, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tif_, TIFFTAG_SAMPLESPERPIXEL, channels_);
        TIFFSetField(tif_, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tif_, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        TIFFSetField(tif_, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tif_, 0));
        if (s == CS_CMYK) {
            TIFFSetField(tif_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_SEPARATED);
            TIFFSetField(tif_, TIFFTAG_INKSET, INKSET_CMYK);
        } else if (s == CS_LAB) {
            TIFFSetField(tif_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_CIELAB);
        } else if (s == CS_RGB) {
            TIFFSetField(tif_, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        } else {
            // Plain samples: a photometric readers accept for the sample
            // count, the space itself in the description.
            TIFFSetField(tif_, TIFFTAG_PHOTOMETRIC, channels_ == 4 ? PHOTOMETRIC_SEPARATED : PHOTOMETRIC_RGB);
            if (channels_ == 4) TIFFSetField(tif_, TIFFTAG_INKSET, INKSET_MULTIINK);
            const std::string d = kDescriptionPrefix + std::string(SpaceById(s)->name);
            TIFFSetField(tif_, TIFFTAG_IMAGEDESCRIPTION, d.c_str());
        }
        TIFFSetField(tif_, TIFFTAG_SOFTWARE, "ktclr");
        if (!spec.icc.empty())
            TIFFSetField(tif_, TIFFTAG_ICCPROFILE, static_cast<uint32_t>(spec.icc.size()), spec.icc.data());
    }
    ~TiffWriter() override {
        if (tif_) TIFFCleanup(tif_);
    }
    void write(const uint8_t* rows, int count) override {
        const size_t stride = static_cast<size_t>(spec_.width) * channels_;
        for (int y = 0; y < count; ++y, ++row_)
            if (TIFFWriteScanline(tif_, const_cast<uint8_t*>(rows) + y * stride, row_, 0) < 0)
                throw Failure("writing the TIFF failed");
    }
    void finish() override {
        const int ok = TIFFFlush(tif_);
        TIFFCleanup(tif_);  // leaves the descriptor to its owner
        tif_ = nullptr;
        if (ok != 1) throw Failure("writing the TIFF failed");
    }

private:
    WriteSpec spec_;
    TIFF* tif_ = nullptr;
    int channels_ = 3;
    uint32_t row_ = 0;
};

}  // namespace

std::unique_ptr<Reader> OpenTiffReader(const std::string& path) { return Opened<TiffReader>(path); }
std::unique_ptr<Writer> OpenTiffWriter(const WriteSpec& spec, int fd) { return Opened<TiffWriter>(spec, fd); }

}  // namespace ktcli
