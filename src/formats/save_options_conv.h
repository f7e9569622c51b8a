// Narrow save options in their wide form for the length of one save:
// construct from the caller's record, Begin, use ValueW, End (or let the
// destructor end it).
#pragma once

#include "ktclr/narrow.h"
#include "platform/alloc.h"

namespace kt::formats {

class SaveOptionsConv {
public:
    explicit SaveOptionsConv(const Vx_SaveFileOptionsA* narrow) noexcept : narrow_(narrow) {}
    SaveOptionsConv(const SaveOptionsConv&) = delete;
    SaveOptionsConv& operator=(const SaveOptionsConv&) = delete;
    ~SaveOptionsConv() { End(); }

    // STATUS_OK (also for a null record); ERR_BAD_POINTER for an unreadable
    // record; ERR_NO_MEMORY when the backup name does not convert.
    KtStatus Begin() noexcept;
    // The wide record, or null when the narrow one was null.
    const Vx_SaveFileOptions* ValueW() const noexcept { return narrow_ ? &wide_ : nullptr; }
    // Releases the converted name.
    void End() noexcept;

private:
    const Vx_SaveFileOptionsA* narrow_;
    Vx_SaveFileOptions wide_{};
    char16_t* backup_ = nullptr;
};

}  // namespace kt::formats
