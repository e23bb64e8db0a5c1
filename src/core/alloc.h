// The library's only way to obtain memory: thin wrappers over libvprcore.
#pragma once

#include <cstddef>

namespace vpr {

// Returns a block of at least `size` bytes aligned to 64, or nullptr.
void* ownMalloc(std::size_t size);
// Releases a block from ownMalloc; nullptr is ignored.
void ownFree(void* p);

}  // namespace vpr
