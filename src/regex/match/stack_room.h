// How much of the calling thread's machine stack is left.
#pragma once

#include <cstddef>

namespace tav::regex {

/// Bytes between the current stack position and the end of the thread's stack; 0 when that cannot be told.
std::size_t stackRoom();

} // namespace tav::regex
