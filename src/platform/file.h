// Files by UTF-16 name, the service the profile and table readers use.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/alloc.h"

namespace kt::file {

// True when something exists under that name (a stat of the path).
bool Exists(const char16_t* path) noexcept;

enum class Mode { read, write, readWrite };

class File {
public:
    File() = default;
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() { Close(); }

    // Opens (write: creates or truncates). Returns false and leaves errno.
    bool Open(const char16_t* path, Mode mode, mem::Module module) noexcept;
    bool OpenUtf8(const char* path, Mode mode) noexcept;
    bool IsOpen() const noexcept { return fd_ >= 0; }
    void Close() noexcept;
    // Takes ownership of an open descriptor.
    void Adopt(int fd) noexcept;

    // Reads exactly `size` bytes; false on a failure or a short read.
    bool ReadExact(void* buffer, std::size_t size) noexcept;
    // Reads up to `size` bytes; returns the count, or -1.
    std::int64_t Read(void* buffer, std::size_t size) noexcept;
    bool WriteAll(const void* buffer, std::size_t size) noexcept;
    bool Seek(std::int64_t offset) noexcept;
    // -1 when unknown.
    std::int64_t Size() const noexcept;
    // Flushes the file's data to the disk.
    bool Sync() noexcept;
    int fd() const noexcept { return fd_; }

private:
    int fd_ = -1;
};

}  // namespace kt::file
