/* vprJP: block texture compression (DXT1). */
#ifndef VPRJP_TEXTURE_H
#define VPRJP_TEXTURE_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_TEXTURE_H */
