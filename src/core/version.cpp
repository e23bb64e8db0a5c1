// The library's version record.
#include "vprjp.h"

namespace {
const VprLibraryVersion s_libVer = {
    7,      // versionMajor
    1,      // versionMinor
    1,      // versionUpdate
    37466,  // revision
    {'m', '7', '\0', '\0'},
    "vprJP SSE3 (m7)",
    "7.1.1 (r37466)",
    "Sep 24 2012",
};
}  // namespace

extern "C" VPR_API const VprLibraryVersion* vprjGetLibVersion(void) { return &s_libVer; }
