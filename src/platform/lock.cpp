#include "platform/lock.h"

#include <new>

namespace kt::platform {
// Never destroyed: the detach hook takes it after static destructors ran.
std::mutex& LibraryLock() noexcept {
    alignas(std::mutex) static unsigned char storage[sizeof(std::mutex)];
    static std::mutex* lock = new (storage) std::mutex();
    return *lock;
}
}  // namespace kt::platform
