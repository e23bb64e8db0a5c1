/* vprJP: JPEG MCU-level colour conversion and sampling. */
#ifndef VPRJP_JPEG_MCU_H
#define VPRJP_JPEG_MCU_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_MCU_H */
