#include "platform/safe_replace.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ktclr/status.h"
#include "platform/file_faults.h"
#include "platform/utf16.h"

namespace kt::file {
namespace {

constexpr std::size_t kMaxPathUnits = 32768;
constexpr std::size_t kCopyBlock = 1u << 20;
constexpr char kTempSuffix[] = ".ktclr-XXXXXX";

// "DIR/.NAME.ktclr-XXXXXX" for `path`, or "DIR/.ktclr-XXXXXX" when NAME is
// too long to carry.
char* TempTemplate(const char* path, mem::Module module) {
    const char* slash = std::strrchr(path, '/');
    const std::size_t dirLength = slash ? static_cast<std::size_t>(slash - path) + 1 : 0;
    const char* base = path + dirLength;
    std::size_t baseLength = std::strlen(base);
    if (baseLength + sizeof kTempSuffix > NAME_MAX) baseLength = 0;
    const std::size_t total = dirLength + 1 + baseLength + sizeof kTempSuffix;
    auto* out = static_cast<char*>(mem::Alloc(total, module, __LINE__));
    if (!out) return nullptr;
    std::memcpy(out, path, dirLength);
    out[dirLength] = '.';
    std::memcpy(out + dirLength + 1, base, baseLength);
    std::memcpy(out + dirLength + 1 + baseLength, kTempSuffix, sizeof kTempSuffix);
    return out;
}

bool WriteFd(int fd, const unsigned char* data, std::size_t size) {
    if (faults::Fails(faults::Op::write)) return false;
    while (size > 0) {
        const ssize_t put = write(fd, data, size);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        data += put;
        size -= static_cast<std::size_t>(put);
    }
    return true;
}

// Copies through a bounce buffer where the kernel cannot copy between the two files.
KtStatus CopyThroughBuffer(int in, std::int64_t offset, int out, std::int64_t size, mem::Module module) {
    auto* buffer = static_cast<unsigned char*>(mem::Alloc(kCopyBlock, module, __LINE__));
    if (!buffer) return ERR_NO_MEMORY;
    KtStatus status = STATUS_OK;
    while (size > 0 && status == STATUS_OK) {
        const auto want = static_cast<std::size_t>(size < static_cast<std::int64_t>(kCopyBlock) ? size : kCopyBlock);
        ssize_t got = faults::Fails(faults::Op::read) ? -1 : pread(in, buffer, want, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            status = ERR_FILE_READ;
            break;
        }
        if (!WriteFd(out, buffer, static_cast<std::size_t>(got))) status = ERR_FILE_WRITE;
        offset += got;
        size -= got;
    }
    mem::Free(buffer, module, __LINE__);
    return status;
}

// The kernel copies between files without a trip through user space, but is
// only quick from and to the start of a page; otherwise a buffer is.
KtStatus CopyBytes(int in, std::int64_t offset, int out, std::int64_t size, mem::Module module) {
    off_t from = static_cast<off_t>(offset);
    const off_t to = lseek(out, 0, SEEK_CUR);
    if (to < 0 || to % 4096 != 0 || from % 4096 != 0) return CopyThroughBuffer(in, offset, out, size, module);
    while (size > 0) {
        if (faults::Fails(faults::Op::read)) return ERR_FILE_READ;
        if (faults::Fails(faults::Op::write)) return ERR_FILE_WRITE;
        const auto want = static_cast<std::size_t>(size < (1LL << 30) ? size : (1LL << 30));
        ssize_t done = copy_file_range(in, &from, out, nullptr, want, 0);
        if (done < 0 && errno == EINTR) continue;
        if (done < 0 && (errno == EXDEV || errno == ENOSYS || errno == EINVAL || errno == EOPNOTSUPP))
            return CopyThroughBuffer(in, from, out, size, module);
        if (done < 0) return errno == EIO ? ERR_FILE_READ : ERR_FILE_WRITE;
        if (done == 0) return ERR_FILE_READ;  // the original ended early
        size -= done;
    }
    return STATUS_OK;
}

// Keeps the bytes of `path` under `backup`: a hard link where possible, a
// flushed copy otherwise, put in place by a rename so an earlier backup is
// replaced whole or not at all.
KtStatus MakeBackup(const char* path, int originalFd, std::int64_t size, const char* backup, mem::Module module) {
    struct stat mine, theirs;
    if (fstat(originalFd, &mine) != 0) return ERR_FILE_READ;
    if (stat(backup, &theirs) == 0 && mine.st_dev == theirs.st_dev && mine.st_ino == theirs.st_ino)
        return ERR_INVALID_PARAMETER;
    char* name = TempTemplate(backup, module);
    if (!name) return ERR_NO_MEMORY;
    KtStatus status = ERR_FILE_CREATE;
    int fd = mkostemp(name, O_CLOEXEC);  // reserves a fresh name beside the backup
    if (fd >= 0) {
        close(fd);
        if (unlink(name) == 0 && link(path, name) == 0) {
            status = STATUS_OK;
        } else if ((fd = open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)) >= 0) {
            // No link across filesystems: a flushed copy instead.
            status = CopyBytes(originalFd, 0, fd, size, module);
            if (status == STATUS_OK && fchmod(fd, mine.st_mode & 07777) != 0) status = ERR_FILE_WRITE;
            if (status == STATUS_OK && (faults::Fails(faults::Op::sync) || fsync(fd) != 0)) status = ERR_FILE_WRITE;
            close(fd);
        }
        if (status == STATUS_OK && (faults::Fails(faults::Op::rename) || std::rename(name, backup) != 0))
            status = ERR_FILE_WRITE;
        if (status != STATUS_OK) {
            unlink(name);
            status = ERR_FILE_CREATE;
        }
    }
    mem::Free(name, module, __LINE__);
    return status;
}

}  // namespace

SafeReplace::~SafeReplace() {
    temp_.Close();
    if (tempPath_) {
        unlink(tempPath_);
        mem::Free(tempPath_, module_, __LINE__);
    }
    mem::Free(path_, module_, __LINE__);
}

KtStatus SafeReplace::Begin(const char16_t* path) noexcept {
    text::Utf8 name;
    if (!path || !name.Assign(path, text::Utf16Length(path, kMaxPathUnits), module_)) return ERR_NO_MEMORY;
    path_ = static_cast<char*>(mem::Alloc(PATH_MAX, module_, __LINE__));
    if (!path_) return ERR_NO_MEMORY;
    if (!realpath(name.c_str(), path_)) return ERR_FILE_READ;
    if (!original_.OpenUtf8(path_, Mode::read)) return ERR_FILE_READ;
    struct stat st;
    if (fstat(original_.fd(), &st) != 0 || !S_ISREG(st.st_mode)) return ERR_FILE_READ;
    if (faccessat(AT_FDCWD, path_, W_OK, AT_EACCESS) != 0 || !(st.st_mode & 0222)) return ERR_FILE_CREATE;
    size_ = st.st_size;
    mode_ = st.st_mode & 07777;
    uid_ = st.st_uid;
    gid_ = st.st_gid;
    tempPath_ = TempTemplate(path_, module_);
    if (!tempPath_) return ERR_NO_MEMORY;
    const int fd = mkostemp(tempPath_, O_CLOEXEC);
    if (fd < 0) {
        mem::Free(tempPath_, module_, __LINE__);
        tempPath_ = nullptr;
        return ERR_FILE_CREATE;
    }
    temp_.Adopt(fd);
    return STATUS_OK;
}

KtStatus SafeReplace::Copy(std::int64_t offset, std::int64_t size) noexcept {
    if (offset < 0 || size < 0 || offset > size_ || size > size_ - offset) return ERR_FILE_READ;
    return CopyBytes(original_.fd(), offset, temp_.fd(), size, module_);
}

KtStatus SafeReplace::Commit(const char16_t* backup) noexcept {
    if (!tempPath_) return ERR_FILE_WRITE;
    // Owner first: a change of owner clears the set-id bits that fchmod restores.
    if (fchown(temp_.fd(), uid_, gid_) != 0) mode_ &= ~static_cast<unsigned>(S_ISUID | S_ISGID);
    if (fchmod(temp_.fd(), static_cast<mode_t>(mode_)) != 0 || !temp_.Sync()) return ERR_FILE_WRITE;
    temp_.Close();
    if (backup) {
        text::Utf8 backupName;
        if (!backupName.Assign(backup, text::Utf16Length(backup, kMaxPathUnits), module_)) return ERR_NO_MEMORY;
        if (backupName.empty()) return ERR_INVALID_PARAMETER;
        const KtStatus status = MakeBackup(path_, original_.fd(), size_, backupName.c_str(), module_);
        if (status != STATUS_OK) return status;
    }
    if (faults::Fails(faults::Op::rename) || std::rename(tempPath_, path_) != 0) return ERR_FILE_WRITE;
    mem::Free(tempPath_, module_, __LINE__);
    tempPath_ = nullptr;
    return STATUS_OK;
}

}  // namespace kt::file
