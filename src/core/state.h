// The state-object pattern: every kind of caller-owned state has a
// GetBufSize / Init / InitAlloc / Free quartet.  These helpers give each
// quartet member its statuses so the families only supply sizes and Init.
#pragma once

#include <cstdint>
#include <cstring>
#include <utility>

#include "core/alloc.h"
#include "vprjp_types.h"

namespace vpr {

// Fixed sizes of the JPEG Huffman objects (part of the ABI: callers may
// inspect the layouts).
inline constexpr int32_t kDecodeHuffmanSpecSize = 1644;
inline constexpr int32_t kDecodeHuffmanStateSize = 24;
inline constexpr int32_t kEncodeHuffmanSpecSize = 1024;
inline constexpr int32_t kEncodeHuffmanStateSize = 1048;

// What an InitAlloc reports when the allocation fails.
enum class AllocFailure {
  // JPEG Huffman kinds: -8, and the caller's pointer is left unchanged.
  kNullPointerKeep,
  // JPEG 2000 kinds: -9, and a null pointer is stored.
  kNoMemoryStoreNull,
};

// GetBufSize: pSize null -8, else *pSize = size, 0.
inline VprStatus state_get_buf_size(int32_t size, int32_t* pSize) {
  if (!pSize) return vprStatusNullPointer;
  *pSize = size;
  return vprStatusOk;
}

// Init of a plain state (the object is its only argument): clear it.
inline VprStatus state_init_clear(void* p, int32_t size) {
  if (!p) return vprStatusNullPointer;
  std::memset(p, 0, static_cast<std::size_t>(size));
  return vprStatusOk;
}

// InitAlloc: ppObj null -8; allocate `size` bytes; on failure report as
// `mode` says; otherwise run init(obj) (the kind's Init on the new memory).
// A failing Init releases the memory, leaves *ppObj untouched and returns
// the Init's status; a successful (or warning) Init stores the pointer.
template <class T, class InitFn>
VprStatus state_init_alloc(T** ppObj, int32_t size, AllocFailure mode, InitFn&& init) {
  if (!ppObj) return vprStatusNullPointer;
  void* mem = ownMalloc(static_cast<std::size_t>(size));
  if (!mem) {
    if (mode == AllocFailure::kNullPointerKeep) return vprStatusNullPointer;
    *ppObj = nullptr;
    return vprStatusNoMemory;
  }
  T* obj = static_cast<T*>(mem);
  const VprStatus st = std::forward<InitFn>(init)(obj);
  if (st < 0) {
    ownFree(mem);
    return st;
  }
  *ppObj = obj;
  return st;
}

// Free: null -8, else release memory from state_init_alloc.
inline VprStatus state_free(void* p) {
  if (!p) return vprStatusNullPointer;
  ownFree(p);
  return vprStatusOk;
}

// Tagged states (JPEG 2000): the first 32-bit word identifies the kind.
inline bool state_has_tag(const void* p, uint32_t tag) {
  uint32_t t;
  std::memcpy(&t, p, sizeof t);
  return t == tag;
}

}  // namespace vpr
