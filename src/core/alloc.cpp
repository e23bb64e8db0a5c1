#include "core/alloc.h"

#include "vprcore.h"

namespace vpr {

void* ownMalloc(std::size_t size) { return vprMalloc(size); }
void ownFree(void* p) { vprFree(p); }

}  // namespace vpr
