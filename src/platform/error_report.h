// The error-report operation: a thread's last reported status, for writers
// that return no status of their own.
#pragma once

#include "ktclr/export.h"
#include "ktclr/status.h"

namespace kt::report {

// Records `code` as this thread's last reported status and returns it.
KtStatus Error(KtStatus code) noexcept;
// This thread's last reported status; STATUS_OK when none since Clear.
KtStatus Last() noexcept;
void Clear() noexcept;

}  // namespace kt::report
