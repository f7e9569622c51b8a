#include "platform/error_report.h"

#include "ktclr/status.h"

namespace kt::report {
namespace {
thread_local KtStatus t_last = STATUS_OK;
}

KtStatus Error(KtStatus code) noexcept {
    t_last = code;
    return code;
}
KtStatus Last() noexcept { return t_last; }
void Clear() noexcept { t_last = STATUS_OK; }

}  // namespace kt::report
