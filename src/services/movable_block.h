// Scoped access to a movable global block: locked for the life of the guard
// and unlocked on every path out, an exception included. No pointer from a
// guard may outlive the entry point that made it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "zvwin/zvwin.h"

namespace zv {

template <class T>
class LockedBlock {
 public:
  LockedBlock() = default;
  explicit LockedBlock(Handle block)
      : block_(block), data_(block ? static_cast<T*>(WinGlobalLock(block)) : nullptr) {}
  ~LockedBlock() { Release(); }
  LockedBlock(const LockedBlock&) = delete;
  LockedBlock& operator=(const LockedBlock&) = delete;
  LockedBlock(LockedBlock&& other) noexcept
      : block_(std::exchange(other.block_, 0)), data_(std::exchange(other.data_, nullptr)) {}
  LockedBlock& operator=(LockedBlock&& other) noexcept {
    if (this != &other) {
      Release();
      block_ = std::exchange(other.block_, 0);
      data_ = std::exchange(other.data_, nullptr);
    }
    return *this;
  }

  // Unlocks early, before advice is written or a block is handed on.
  void Release() {
    if (data_ != nullptr) WinGlobalUnlock(block_);
    data_ = nullptr;
    block_ = 0;
  }

  T* get() const { return data_; }
  T& operator[](size_t i) const { return data_[i]; }
  explicit operator bool() const { return data_ != nullptr; }
  size_t size() const { return data_ ? WinGlobalSize(block_) / sizeof(T) : 0; }

 private:
  Handle block_ = 0;
  T* data_ = nullptr;
};

}  // namespace zv
