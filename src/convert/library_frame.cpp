#include "convert/library_frame.h"

#include <mutex>

#include "convert/registry.h"
#include "ktclr/convert.h"
#include "platform/lock.h"

namespace kt::convert {
namespace {
int g_attachCount = 0;  // guarded by the library lock
}

void LibraryAttach() noexcept {
    std::lock_guard<std::mutex> guard(platform::LibraryLock());
    ++g_attachCount;
}

void LibraryDetach() noexcept {
    std::lock_guard<std::mutex> guard(platform::LibraryLock());
    if (--g_attachCount >= 1) return;
    // Handles a client forgot are released, head first.
    while (ClrHandle* h = registry::Head()) {
        // A block the client overwrote cannot be freed; drop its node so the
        // sweep still ends.
        if (Vx_ClrFree(h) != STATUS_OK) registry::Remove(h);
    }
}

int AttachCount() noexcept {
    std::lock_guard<std::mutex> guard(platform::LibraryLock());
    return g_attachCount;
}

}  // namespace kt::convert

__attribute__((constructor)) static void KtclrOnLoad() { kt::convert::LibraryAttach(); }
__attribute__((destructor)) static void KtclrOnUnload() { kt::convert::LibraryDetach(); }
