/* libvprcore: the platform services vprJP relies on (allocation, thread count).
 *
 * libvprjp never allocates or picks a thread count by itself: it asks this
 * library.  An application links it implicitly through libvprjp and may use
 * vprSetNumThreads() to bound the threads the whole-image functions use. */
#ifndef VPRCORE_H
#define VPRCORE_H

#include <stddef.h>

#if defined(__GNUC__)
#define VPRCORE_API __attribute__((visibility("default")))
#else
#define VPRCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Alignment of every block vprMalloc returns. */
#define VPRCORE_ALIGNMENT 64

/* Allocates size bytes aligned to VPRCORE_ALIGNMENT; returns NULL when
 * size is 0 or the memory cannot be had. */
VPRCORE_API void* vprMalloc(size_t size);

/* Releases a block from vprMalloc; NULL is ignored. */
VPRCORE_API void vprFree(void* p);

/* The number of threads the library may use for one whole-image call.
 * Default: omp_get_max_threads() of the calling thread (OMP_NUM_THREADS
 * therefore applies); after vprSetNumThreads(n) with n >= 1, n. */
VPRCORE_API int ownGetNumThreads(void);

/* Sets the thread count for all later calls from any thread.  n >= 1 sets
 * it; n <= 0 returns to the default.  Returns the count now in force. */
VPRCORE_API int vprSetNumThreads(int n);

/* The thread count now in force (same value as ownGetNumThreads). */
VPRCORE_API int vprGetNumThreads(void);

#ifdef __cplusplus
}
#endif

#endif /* VPRCORE_H */
