// Who owns a handle's parts. A handle under construction is a HandleDraft:
// it owns the block and, once registered, its list node. Unless published or
// deliberately abandoned, the draft takes the node off the list first and
// only then releases the parts and the block, so a validation on another
// thread never reads a freed block. ReleaseHandle is the one routine that
// frees a handle's parts: Vx_ClrFree (and through it the unload sweep) and
// every failed construction use it.
#pragma once

#include "ktclr/convert.h"

namespace kt::convert {

// Frees everything h owns and the block itself. h must be off the list. A
// transform is deleted only under its method bit in preparedMethods.
void ReleaseHandle(ClrHandle* h) noexcept;

class HandleDraft {
public:
    HandleDraft() = default;
    HandleDraft(const HandleDraft&) = delete;
    HandleDraft& operator=(const HandleDraft&) = delete;
    ~HandleDraft();

    // Takes the zero-filled block and sets its size field. False when the
    // allocation fails.
    bool Allocate() noexcept;
    // Appends the block to the live list. False when the node cannot be had.
    bool Register() noexcept;

    ClrHandle* operator->() const noexcept { return h_; }
    ClrHandle* get() const noexcept { return h_; }

    // Hands the finished handle to the caller: *out = handle, STATUS_OK.
    KtStatus Publish(ClrHandle** out) noexcept;
    // Returns `status` and leaves the half-built handle allocated and on the
    // list, live for Vx_ClrIsValid but never handed out; Vx_ClrFree or the
    // unload sweep releases it. Only the bad option records of Vx_ClrInit's
    // last steps do this.
    KtStatus Abandon(KtStatus status) noexcept;

private:
    ClrHandle* h_ = nullptr;
    bool registered_ = false;
};

}  // namespace kt::convert
