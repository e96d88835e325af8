// Movable blocks of the survival computations: result columns hung in spare
// bindings, and work arrays that live for one computation.
#pragma once

#include <cstdint>

#include "frame/host_records.h"
#include "services/movable_block.h"
#include "zvwin/zvwin.h"

namespace zv {

// Frees the data block of bindings[binding] and allocates `count` elements of
// `size` bytes anew (zero-filled). False after the message of string 1001,
// and the binding then holds no block.
bool ReallocateBindingBlock(ProcedureState& state, int binding, uint64_t count, uint32_t size);

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

// Allocates `bytes` (at least 1) with AllocGlobal; 0 after the message of
// string 1001, also when the size is beyond what a block can hold.
Handle AllocSurvivalBlock(uint64_t bytes);

template <class T>
WorkArray<T>::WorkArray(uint64_t count)
    : block_(AllocSurvivalBlock(count * sizeof(T))), lock_(block_) {}

template <class T>
WorkArray<T>::~WorkArray() {
  lock_.Release();
  WinGlobalFree(block_);
}

}  // namespace zv
