// The library lock: guards the attach count and the unload sweep.
#pragma once

#include <mutex>

namespace kt::platform {
std::mutex& LibraryLock() noexcept;
}
