// Library load and unload. The shared library's constructor and destructor
// call these; tests call them to exercise the unload sweep.
#pragma once

namespace kt::convert {

// Takes the library lock, counts the attach and fills the global tables.
void LibraryAttach() noexcept;

// Counts the detach; at the last one frees every handle still live.
void LibraryDetach() noexcept;

int AttachCount() noexcept;

}  // namespace kt::convert
