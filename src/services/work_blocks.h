// Movable blocks of a family's computation: result columns hung in spare
// bindings, and work arrays that live for one computation. Both go through
// the one size guard, AllocItems.
#pragma once

#include <cstdint>

#include "frame/host_records.h"
#include "services/movable_block.h"
#include "services/variables.h"
#include "zvwin/zvwin.h"

namespace zv {

// Frees the data block of bindings[binding] and allocates `count` elements of
// `size` bytes anew (zero-filled). False after the message of string 1001,
// and the binding then holds no block.
inline bool ReallocateBindingBlock(ProcedureState& state, int binding, uint64_t count,
                                   uint32_t size) {
  FreeGlobal(&state.bindings[binding].data);
  state.bindings[binding].data = AllocItems(count, size);
  return state.bindings[binding].data != 0;
}

// A work array of `count` elements of T, allocated as a movable block, locked
// while the object lives and freed with it. Empty (false) after the message
// of string 1001.
template <class T>
class WorkArray {
 public:
  explicit WorkArray(uint64_t count);
  ~WorkArray();
  WorkArray(const WorkArray&) = delete;
  WorkArray& operator=(const WorkArray&) = delete;

  explicit operator bool() const { return static_cast<bool>(lock_); }
  T* get() const { return lock_.get(); }

 private:
  Handle block_ = 0;
  LockedBlock<T> lock_;
};

template <class T>
WorkArray<T>::WorkArray(uint64_t count) : block_(AllocItems(count, sizeof(T))), lock_(block_) {}

template <class T>
WorkArray<T>::~WorkArray() {
  lock_.Release();
  WinGlobalFree(block_);
}

}  // namespace zv
