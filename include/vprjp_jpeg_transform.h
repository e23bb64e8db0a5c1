/* vprJP: JPEG level shift, quantisation tables and the fused 8x8 DCT. */
#ifndef VPRJP_JPEG_TRANSFORM_H
#define VPRJP_JPEG_TRANSFORM_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_TRANSFORM_H */
