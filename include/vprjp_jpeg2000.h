/* vprJP: JPEG 2000 wavelet and component transforms. */
#ifndef VPRJP_JPEG2000_H
#define VPRJP_JPEG2000_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG2000_H */
