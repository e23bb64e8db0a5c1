/* vprJP: JPEG XR photo core transform and VLC state. */
#ifndef VPRJP_JPEGXR_H
#define VPRJP_JPEGXR_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEGXR_H */
