#include "platform/file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_faults.h"
#include "platform/utf16.h"

namespace kt::file {
namespace {
constexpr std::size_t kMaxPathUnits = 32768;
}

bool Exists(const char16_t* path) noexcept {
    if (!path) return false;
    text::Utf8 name;
    if (!name.Assign(path, text::Utf16Length(path, kMaxPathUnits), mem::Module::ktclr)) return false;
    if (name.empty()) return false;
    struct stat st;
    return stat(name.c_str(), &st) == 0;
}

bool File::Open(const char16_t* path, Mode mode, mem::Module module) noexcept {
    if (!path) {
        errno = EINVAL;
        return false;
    }
    text::Utf8 name;
    if (!name.Assign(path, text::Utf16Length(path, kMaxPathUnits), module)) {
        errno = ENOMEM;
        return false;
    }
    return OpenUtf8(name.c_str(), mode);
}

bool File::OpenUtf8(const char* path, Mode mode) noexcept {
    Close();
    int flags = O_CLOEXEC;
    switch (mode) {
        case Mode::read: flags |= O_RDONLY; break;
        case Mode::write: flags |= O_WRONLY | O_CREAT | O_TRUNC; break;
        case Mode::readWrite: flags |= O_RDWR; break;
    }
    do {
        fd_ = open(path, flags, 0666);
    } while (fd_ < 0 && errno == EINTR);
    return fd_ >= 0;
}

void File::Close() noexcept {
    if (fd_ >= 0) close(fd_);
    fd_ = -1;
}

std::int64_t File::Read(void* buffer, std::size_t size) noexcept {
    if (faults::Fails(faults::Op::read)) return -1;
    auto* out = static_cast<unsigned char*>(buffer);
    std::size_t done = 0;
    while (done < size) {
        ssize_t got = read(fd_, out + done, size - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<std::int64_t>(done);
}

bool File::ReadExact(void* buffer, std::size_t size) noexcept {
    return Read(buffer, size) == static_cast<std::int64_t>(size);
}

bool File::WriteAll(const void* buffer, std::size_t size) noexcept {
    if (faults::Fails(faults::Op::write)) return false;
    const auto* in = static_cast<const unsigned char*>(buffer);
    std::size_t done = 0;
    while (done < size) {
        ssize_t put = write(fd_, in + done, size - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

bool File::Seek(std::int64_t offset) noexcept {
    return offset >= 0 && lseek(fd_, static_cast<off_t>(offset), SEEK_SET) == static_cast<off_t>(offset);
}

std::int64_t File::Size() const noexcept {
    struct stat st;
    if (fd_ < 0 || fstat(fd_, &st) != 0) return -1;
    return static_cast<std::int64_t>(st.st_size);
}

bool File::Sync() noexcept { return fd_ >= 0 && !faults::Fails(faults::Op::sync) && fsync(fd_) == 0; }

void File::Adopt(int fd) noexcept {
    Close();
    fd_ = fd;
}

}  // namespace kt::file
