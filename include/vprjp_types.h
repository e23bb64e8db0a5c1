/* vprJP: basic types, status codes and conventions shared by every family.
 *
 * Naming of exported functions
 * ----------------------------
 *   vpri | vprj  +  Operation[Qualifiers]  +  _Standard  +  _Types  +  _Layout[R][I]
 *   e.g. vpriDCTQuantFwd8x8LS_JPEG_8u16s_C1R, vpriWTFwd_B53_JPEG2K_16s_C1IR.
 *   vpri: image primitives; vprj: library information (vprjGetLibVersion).
 *   Types: 8u 16s 16u 32s 32f, 1u = bit stream; a pair names source then
 *   destination.  Layout: C1/C2/C3/C4 interleaved, P3/P4 planar, a pair names
 *   source then destination; R = region with row steps, I = in place.
 *
 * Regions
 * -------
 *   A region is a pointer to its first sample plus a row step in BYTES (a
 *   signed 32-bit value, >= 1; rows may be padded; negative steps are
 *   rejected) and a VprRoiSize in samples.  8-bit rows may start at any
 *   address; rows of 16- and 32-bit samples start at addresses aligned to
 *   the sample size (and their steps are multiples of it), as C requires of
 *   any array of such values; beyond that any alignment is accepted.
 *
 * Argument checks
 * ---------------
 *   Every exported function checks its arguments in the order they appear
 *   in its argument list and returns the status of the first failing check
 *   without writing any output:
 *     - a pointer argument that is NULL gives vprStatusNullPointer (-8),
 *     - a step, checked right after the pointer it belongs to, below 1 gives
 *       vprStatusBadStep (-14),
 *     - the VprRoiSize, after all pointers and steps, with width or height
 *       below 1 gives vprStatusBadSize (-6),
 *     - scalar parameters last: vprStatusBadArg (-5) or the family's code.
 *   So a NULL destination after a bad source step reports -14.  Families that
 *   deviate (e.g. colour conversion checks all pointers first) say so next to
 *   their declarations.  Only entropy coders can fail after the checks
 *   (-62, -63, -64); nothing logs, throws or aborts.
 *
 * Threads
 * -------
 *   Nineteen whole-image functions (marked "row-parallel" in their headers)
 *   run serially when width x height <= 8192 samples, serially when called
 *   where OpenMP may not open a parallel region (inside an active parallel
 *   region), and otherwise split their rows into contiguous equal blocks over
 *   ownGetNumThreads() threads (see vprcore.h: vprSetNumThreads).  The result
 *   never depends on the thread count.  All other functions run on the
 *   calling thread.  State objects are not locked: one thread at a time. */
#ifndef VPRJP_TYPES_H
#define VPRJP_TYPES_H

#include <stdint.h>

#if defined(__GNUC__)
#define VPR_API __attribute__((visibility("default")))
#else
#define VPR_API
#endif

#ifdef __cplusplus
#define VPR_EXTERN_C_BEGIN extern "C" {
#define VPR_EXTERN_C_END }
#else
#define VPR_EXTERN_C_BEGIN
#define VPR_EXTERN_C_END
#endif

VPR_EXTERN_C_BEGIN

typedef uint8_t Vpr8u;
typedef int8_t Vpr8s;
typedef uint16_t Vpr16u;
typedef int16_t Vpr16s;
typedef uint32_t Vpr32u;
typedef int32_t Vpr32s;
typedef float Vpr32f;
typedef double Vpr64f;

/* Result of every exported function except vprjGetLibVersion. */
typedef int32_t VprStatus;

/* Status codes.  0 success, negative errors, positive warnings. */
enum {
  vprStatusOk = 0,
  vprStatusError = -2,          /* coded data inconsistent (run past coefficient 63) */
  vprStatusBadArg = -5,         /* scalar argument outside its set (quality < 1, ...) */
  vprStatusBadSize = -6,        /* width/height/length/count out of range */
  vprStatusOutOfRange = -7,     /* value outside what the code can carry */
  vprStatusNullPointer = -8,    /* NULL pointer; also Huffman InitAlloc out of memory */
  vprStatusNoMemory = -9,       /* JPEG 2000 InitAlloc could not allocate */
  vprStatusBadStep = -14,       /* row step below 1 (or below the row's width) */
  vprStatusBadContext = -17,    /* state object lacks its family's tag */
  vprStatusOutOfBuffer = -62,   /* bit stream input exhausted or output full */
  vprStatusCodeRange = -63,     /* value/code mismatch, no code matches, bits beyond a marker */
  vprStatusBadHuffTable = -64,  /* malformed Huffman table or symbol without code */
  vprStatusCodeBlockError = -112, /* JPEG 2000 code-block pass error */
  vprStatusBadPassNumber = -113,  /* JPEG 2000 coding-pass index out of range */
  vprStatusRunOverflow = -124,    /* TIFF PackBits run past a buffer end */
  vprStatusNotAttached = -180,    /* JPEG 2000 progressive step with no code block */
  vprStatusDivByZeroWarning = 6,  /* warning: a divisor table held a zero entry */
  vprStatusOddSizeWarning = 35    /* warning: odd size, only the even part converted */
};

/* Size of a region of interest, in samples (width) and rows (height). */
typedef struct {
  int32_t width;
  int32_t height;
} VprRoiSize;

/* A rectangle: top-left corner and size. */
typedef struct {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
} VprRect;

/* The version record returned by vprjGetLibVersion. */
typedef struct {
  int32_t versionMajor;
  int32_t versionMinor;
  int32_t versionUpdate;
  int32_t revision;
  char cpuTag[4];            /* two characters, then two zero bytes */
  const char* libraryName;   /* "vprJP SSE3 (m7)" */
  const char* versionText;   /* "7.1.1 (r37466)" */
  const char* buildDateText; /* "Sep 24 2012" */
} VprLibraryVersion;

VPR_EXTERN_C_END

#endif /* VPRJP_TYPES_H */
