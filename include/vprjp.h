/* vprJP: image-coding primitives for JPEG, JPEG 2000, JPEG XR and DXT
 * texture codecs.  This umbrella header declares every exported function. */
#ifndef VPRJP_H
#define VPRJP_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

/* Returns the library's constant version record; never fails, never NULL,
 * the same pointer on every call.  The record is read-only. */
VPR_API const VprLibraryVersion* vprjGetLibVersion(void);

VPR_EXTERN_C_END

#include "vprjp_jpeg_transform.h"
#include "vprjp_jpeg_huffman.h"
#include "vprjp_jpeg_color.h"
#include "vprjp_jpeg_mcu.h"
#include "vprjp_jpeg2000.h"
#include "vprjp_jpegxr.h"
#include "vprjp_texture.h"

#endif /* VPRJP_H */
