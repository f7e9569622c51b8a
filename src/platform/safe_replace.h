// Rewrites a user's file without ever losing it. The new content is built in
// a temporary file beside the original (same folder, so the final rename
// stays on one filesystem), flushed to disk, given the original's owner and
// permissions, and renamed over the original only when everything
// succeeded. Until then, and after any failure, the original is untouched;
// a killed process leaves at most a stray ".NAME.ktclr-XXXXXX" beside it.
// The rename is atomic: after a crash the folder holds the old file or the
// new one, each complete.
#pragma once

#include <cstdint>

#include "ktclr/export.h"
#include "platform/file.h"

namespace kt::file {

class SafeReplace {
public:
    explicit SafeReplace(mem::Module module) noexcept : module_(module) {}
    SafeReplace(const SafeReplace&) = delete;
    SafeReplace& operator=(const SafeReplace&) = delete;
    // Removes the temporary unless it was committed.
    ~SafeReplace();

    // Opens the file `path` names (symbolic links followed) for reading and
    // creates an empty temporary beside it. ERR_FILE_CREATE when the original
    // is not writable or no temporary can be made there, ERR_FILE_READ when
    // the original cannot be opened or is not a regular file, ERR_NO_MEMORY.
    KtStatus Begin(const char16_t* path) noexcept;

    File& Original() noexcept { return original_; }
    File& Temp() noexcept { return temp_; }
    std::int64_t OriginalSize() const noexcept { return size_; }

    // Appends `size` bytes of the original, from `offset`, at the
    // temporary's current position. ERR_FILE_READ when the original ends
    // early or cannot be read, ERR_FILE_WRITE when the temporary cannot be
    // written.
    KtStatus Copy(std::int64_t offset, std::int64_t size) noexcept;

    // Flushes the temporary and puts it in place of the original. With a
    // backup name, the original's bytes are first kept under that name (a
    // hard link where the filesystem allows, a flushed copy otherwise);
    // ERR_FILE_CREATE when that fails, ERR_INVALID_PARAMETER when the backup
    // would be the file itself. ERR_FILE_WRITE when flushing or renaming
    // fails. The original is unchanged after every failure.
    KtStatus Commit(const char16_t* backup) noexcept;

private:
    mem::Module module_;
    File original_;
    File temp_;
    char* path_ = nullptr;      // resolved path of the original
    char* tempPath_ = nullptr;  // null once committed
    std::int64_t size_ = 0;
    unsigned mode_ = 0;
    unsigned uid_ = 0;
    unsigned gid_ = 0;
};

}  // namespace kt::file
