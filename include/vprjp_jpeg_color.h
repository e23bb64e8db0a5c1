/* vprJP: JPEG colour conversion and chroma sampling of whole images and rows. */
#ifndef VPRJP_JPEG_COLOR_H
#define VPRJP_JPEG_COLOR_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_COLOR_H */
