#include "convert/caller_path.h"

#include <sys/stat.h>

#include "platform/utf16.h"

namespace kt::convert {

PathState LookUpPath(const char16_t* path, std::size_t units, std::size_t* length) noexcept {
    *length = path ? text::Utf16Length(path, units) : 0;
    if (*length == 0) return PathState::missing;
    text::Utf8 name;
    if (!name.Assign(path, *length, mem::Module::ktclr)) return PathState::noMemory;
    struct stat st;
    return stat(name.c_str(), &st) == 0 ? PathState::exists : PathState::missing;
}

KtStatus TakeExistingPath(const char16_t* path, KtChar16* kept, bool* found) noexcept {
    std::size_t length = 0;
    const PathState state = LookUpPath(path, kCallerPathUnits, &length);
    *found = state == PathState::exists;
    if (state == PathState::noMemory) return ERR_ALLOC;
    if (!*found) return STATUS_OK;
    if (length > kMaxPathChars) return ERR_FILE_NOT_FOUND;
    text::Utf16Copy(kept, KTCLR_HANDLE_PATH_UNITS, path);
    return STATUS_OK;
}

}  // namespace kt::convert
