// Format detection and the output file's life: rows go to a temporary file
// beside the target, renamed over it only when the image is complete. Standard
// output and targets that are not regular files (a device, a pipe) are not
// replaced: the finished image is copied into them.
#include "image.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <ktclr.h>

#include "spaces.h"

namespace ktcli {
namespace {

std::string Lower(std::string s) {
    for (char& c : s) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string Extension(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
    return Lower(path.substr(dot + 1));
}

// Owns the temporary file; the format's writer writes into its descriptor.
class SafeOutput : public Writer {
public:
    explicit SafeOutput(const WriteSpec& spec) : target_(spec.path), copy_(target_ == "-" || IsSpecialFile(target_)) {
        if (copy_) {
            const char* dir = getenv("TMPDIR");
            temp_ = std::string(dir && *dir ? dir : "/tmp") + "/ktclr-XXXXXX";
        } else {
            temp_ = target_ + ".ktclr-XXXXXX";
        }
        fd_ = mkstemp(temp_.data());
        if (fd_ < 0) throw Failure("cannot create a file beside it: " + std::string(strerror(errno)));
        try {
            inner_ = Open(spec, fd_);
        } catch (...) {
            Discard();
            throw;
        }
    }
    ~SafeOutput() override { Discard(); }

    void write(const uint8_t* rows, int count) override { inner_->write(rows, count); }

    void finish() override {
        inner_->finish();
        inner_.reset();
        if (copy_) {
            CopyOut();
        } else {
            fchmod(fd_, 0644 & ~CurrentUmask());
            // A file being replaced is flushed first, so a crash leaves the
            // old one or the new one; a new file needs no such wait.
            const bool replacing = access(target_.c_str(), F_OK) == 0;
            if ((replacing && fsync(fd_) != 0) || rename(temp_.c_str(), target_.c_str()) != 0)
                throw Failure("cannot write the file: " + std::string(strerror(errno)));
            temp_.clear();
        }
        close(fd_);
        fd_ = -1;
    }

private:
    static mode_t CurrentUmask() {
        const mode_t m = umask(0);
        umask(m);
        return m;
    }

    static std::unique_ptr<Writer> Open(const WriteSpec& spec, int fd) {
        switch (spec.format) {
        case FileFormat::Png: return OpenPngWriter(spec, fd);
        case FileFormat::Jpeg: return OpenJpegWriter(spec, fd);
        case FileFormat::Tiff: return OpenTiffWriter(spec, fd);
        case FileFormat::Webp: return OpenWebpWriter(spec, fd);
        case FileFormat::Raw: return OpenRawWriter(spec, fd);
        case FileFormat::Unknown: break;
        }
        throw Failure("no output format");
    }

    void CopyOut() {
        const int out = target_ == "-" ? STDOUT_FILENO : open(target_.c_str(), O_WRONLY | O_CLOEXEC);
        if (out < 0) throw Failure("cannot write the file: " + std::string(strerror(errno)));
        const struct Closer {
            int fd;
            ~Closer() { if (fd != STDOUT_FILENO) close(fd); }
        } closer{out};
        if (lseek(fd_, 0, SEEK_SET) != 0) throw Failure("cannot rewind the temporary file");
        char buf[1 << 16];
        for (;;) {
            const ssize_t n = read(fd_, buf, sizeof buf);
            if (n < 0) throw Failure("cannot read the temporary file");
            if (n == 0) break;
            for (ssize_t done = 0; done < n;) {
                const ssize_t w = ::write(out, buf + done, static_cast<size_t>(n - done));
                if (w < 0)
                    throw Failure((target_ == "-" ? "cannot write to standard output: " : "cannot write the file: ") +
                                  std::string(strerror(errno)));
                done += w;
            }
        }
    }

    void Discard() {
        inner_.reset();
        if (fd_ >= 0) close(fd_);
        fd_ = -1;
        if (!temp_.empty()) unlink(temp_.c_str());
        temp_.clear();
    }

    std::string target_, temp_;
    bool copy_;
    int fd_ = -1;
    std::unique_ptr<Writer> inner_;
};

}  // namespace

FileFormat DetectFormat(const std::string& path) {
    unsigned char head[12] = {};
    FILE* f = fopen(path.c_str(), "rb");
    if (!f) throw Failure(std::string("cannot open: ") + strerror(errno));
    const size_t n = fread(head, 1, sizeof head, f);
    fclose(f);
    if (n >= 8 && memcmp(head, "\x89PNG\r\n\x1a\n", 8) == 0) return FileFormat::Png;
    if (n >= 3 && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF) return FileFormat::Jpeg;
    if (n >= 4 && (memcmp(head, "II*\0", 4) == 0 || memcmp(head, "MM\0*", 4) == 0)) return FileFormat::Tiff;
    if (n >= 12 && memcmp(head, "RIFF", 4) == 0 && memcmp(head + 8, "WEBP", 4) == 0) return FileFormat::Webp;
    return Extension(path) == "raw" ? FileFormat::Raw : FileFormat::Unknown;
}

FileFormat FormatFromName(const std::string& path) {
    const std::string e = Extension(path);
    if (e == "png") return FileFormat::Png;
    if (e == "jpg" || e == "jpeg") return FileFormat::Jpeg;
    if (e == "tif" || e == "tiff") return FileFormat::Tiff;
    if (e == "webp") return FileFormat::Webp;
    if (e == "raw") return FileFormat::Raw;
    return FileFormat::Unknown;
}

const char* FormatName(FileFormat f) {
    switch (f) {
    case FileFormat::Png: return "png";
    case FileFormat::Jpeg: return "jpeg";
    case FileFormat::Tiff: return "tiff";
    case FileFormat::Webp: return "webp";
    case FileFormat::Raw: return "raw";
    case FileFormat::Unknown: break;
    }
    return "unknown";
}

const char* FormatExtension(FileFormat f) {
    switch (f) {
    case FileFormat::Jpeg: return "jpg";
    case FileFormat::Tiff: return "tif";
    default: return FormatName(f);
    }
}

bool FormatHolds(FileFormat f, int space) {
    switch (f) {
    case FileFormat::Raw: return true;
    case FileFormat::Tiff: return SpaceById(space)->bits == 24 || SpaceById(space)->bits == 32;
    case FileFormat::Png:
    case FileFormat::Jpeg:
    case FileFormat::Webp: return space == CS_RGB;
    case FileFormat::Unknown: break;
    }
    return false;
}

std::unique_ptr<Reader> OpenReader(const std::string& path, FileFormat f, int from, int rawWidth, int rawHeight) {
    switch (f) {
    case FileFormat::Png: return OpenPngReader(path);
    case FileFormat::Jpeg: return OpenJpegReader(path);
    case FileFormat::Tiff: return OpenTiffReader(path);
    case FileFormat::Webp: return OpenWebpReader(path);
    case FileFormat::Raw:
        if (from < 0 || rawWidth < 1 || rawHeight < 1)
            throw Failure("a .raw input needs --from and --size WIDTHxHEIGHT");
        return OpenRawReader(path, from, rawWidth, rawHeight);
    case FileFormat::Unknown: break;
    }
    throw Failure("not a PNG, JPEG, TIFF or WebP image (a .raw name is read as raw pixels)");
}

std::unique_ptr<Writer> OpenWriter(const WriteSpec& spec) { return std::make_unique<SafeOutput>(spec); }

bool IsSpecialFile(const std::string& path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && !S_ISREG(st.st_mode);
}

FILE* OutputStream(int fd) {
    const int copy = dup(fd);
    FILE* f = copy < 0 ? nullptr : fdopen(copy, "wb");
    if (f) return f;
    if (copy >= 0) close(copy);
    throw Failure("cannot open the output");
}

}  // namespace ktcli
