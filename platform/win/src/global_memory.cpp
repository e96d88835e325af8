// Movable global memory. Blocks really move when moving mode is on: every
// unlock that brings the lock count to 0 copies the block to a fresh
// allocation and poisons and frees the old one, so that a pointer kept past
// its unlock is reported by the address sanitizer (heap-use-after-free) or,
// without it, reads the poison pattern.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "win_internal.h"

namespace {

constexpr uint32_t kMaxBlockBytes = 1u << 30;  // requests above 1 GiB are refused
constexpr unsigned char kPoison = 0xDD;

struct Block {
  unsigned char* data;
  uint32_t size;
  int32_t locks;
};

bool MovingFromBuild() {
#ifdef ZV_MOVE_BLOCKS
  return true;
#else
  return false;
#endif
}

bool MovingFromEnvironment() {
  const char* value = std::getenv("ZIVARA_MOVE_BLOCKS");
  return value != nullptr && std::strcmp(value, "1") == 0;
}

struct Memory {
  std::unordered_map<Handle, Block> blocks;
  bool moving = MovingFromBuild() || MovingFromEnvironment();
  int32_t allocationsBeforeFailure = -1;  // -1: never fail
};

Memory& State() {
  static Memory memory;
  return memory;
}

Block* Find(Handle block) {
  auto it = State().blocks.find(block);
  return it == State().blocks.end() ? nullptr : &it->second;
}

// At least one byte, so that a zero-sized block still locks to a pointer.
unsigned char* Allocate(uint32_t bytes) {
  return static_cast<unsigned char*>(std::calloc(bytes == 0 ? 1 : bytes, 1));
}

void PoisonAndFree(unsigned char* data, uint32_t size) {
  std::memset(data, kPoison, size == 0 ? 1 : size);
  std::free(data);
}

}  // namespace

Handle WinGlobalAlloc(uint32_t bytes) {
  Memory& memory = State();
  // One injected failure, then allocations succeed again, so that a test can
  // walk the failure through every allocation of a run in turn.
  if (memory.allocationsBeforeFailure == 0) {
    memory.allocationsBeforeFailure = -1;
    return 0;
  }
  if (memory.allocationsBeforeFailure > 0) --memory.allocationsBeforeFailure;
  if (bytes > kMaxBlockBytes) return 0;
  unsigned char* data = Allocate(bytes);
  if (data == nullptr) return 0;
  Handle handle = zvwin_detail::NextReference();
  memory.blocks[handle] = Block{data, bytes, 0};
  return handle;
}

void* WinGlobalLock(Handle block) {
  Block* b = Find(block);
  if (b == nullptr) return nullptr;
  ++b->locks;
  return b->data;
}

void WinGlobalUnlock(Handle block) {
  Block* b = Find(block);
  if (b == nullptr || b->locks == 0) {
    std::fprintf(stderr, "WinGlobalUnlock: block %#x is not locked\n", block);
    return;
  }
  if (--b->locks > 0 || !State().moving) return;
  unsigned char* fresh = Allocate(b->size);
  if (fresh == nullptr) return;  // stays where it is
  std::memcpy(fresh, b->data, b->size);
  PoisonAndFree(b->data, b->size);
  b->data = fresh;
}

void WinGlobalFree(Handle block) {
  if (block == 0) return;
  auto it = State().blocks.find(block);
  if (it == State().blocks.end()) {
    std::fprintf(stderr, "WinGlobalFree: %#x is not a live block\n", block);
    return;
  }
  PoisonAndFree(it->second.data, it->second.size);
  State().blocks.erase(it);
}

uint32_t WinGlobalSize(Handle block) {
  const Block* b = Find(block);
  return b == nullptr ? 0 : b->size;
}

int32_t WinGlobalLockCount(Handle block) {
  const Block* b = Find(block);
  return b == nullptr ? 0 : b->locks;
}

void WinSetMovingBlocks(bool on) {
  State().moving = on;
}

void WinFailAllocationsAfter(int32_t n) {
  State().allocationsBeforeFailure = n < 0 ? -1 : n;
}

size_t WinLiveBlockCount() {
  return State().blocks.size();
}

size_t WinLockedBlockCount() {
  size_t count = 0;
  for (const auto& [handle, block] : State().blocks) count += block.locks > 0 ? 1 : 0;
  return count;
}
