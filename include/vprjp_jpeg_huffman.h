/* vprJP: JPEG Huffman table specifications, bit-stream states and block coding. */
#ifndef VPRJP_JPEG_HUFFMAN_H
#define VPRJP_JPEG_HUFFMAN_H

#include "vprjp_types.h"

VPR_EXTERN_C_BEGIN

VPR_EXTERN_C_END

#endif /* VPRJP_JPEG_HUFFMAN_H */
