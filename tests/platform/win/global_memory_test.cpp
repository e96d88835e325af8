#include <gtest/gtest.h>

#include <cstring>

#include "zvwin/zvwin.h"

namespace {

class GlobalMemoryTest : public testing::Test {
 protected:
  void SetUp() override {
    WinSetMovingBlocks(true);
    WinFailAllocationsAfter(-1);
    liveBefore_ = WinLiveBlockCount();
  }
  void TearDown() override {
    WinFailAllocationsAfter(-1);
    EXPECT_EQ(WinLiveBlockCount(), liveBefore_) << "a test leaked a block";
    EXPECT_EQ(WinLockedBlockCount(), 0u);
  }
  size_t liveBefore_ = 0;
};

TEST_F(GlobalMemoryTest, BlockIsZeroFilledAndItsContentSurvivesEveryMove) {
  Handle block = WinGlobalAlloc(64);
  ASSERT_NE(block, 0u);
  EXPECT_EQ(WinGlobalSize(block), 64u);

  auto* first = static_cast<unsigned char*>(WinGlobalLock(block));
  ASSERT_NE(first, nullptr);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(first[i], 0) << i;
  for (int i = 0; i < 64; ++i) first[i] = static_cast<unsigned char>(i * 3);
  const void* oldAddress = first;
  WinGlobalUnlock(block);

  auto* second = static_cast<unsigned char*>(WinGlobalLock(block));
  ASSERT_NE(second, nullptr);
  EXPECT_NE(static_cast<const void*>(second), oldAddress) << "the block did not move";
  for (int i = 0; i < 64; ++i) EXPECT_EQ(second[i], static_cast<unsigned char>(i * 3)) << i;
  WinGlobalUnlock(block);
  WinGlobalFree(block);
}

TEST_F(GlobalMemoryTest, LockedOrNotMovingTheAddressStays) {
  Handle block = WinGlobalAlloc(16);
  void* outer = WinGlobalLock(block);
  void* inner = WinGlobalLock(block);
  EXPECT_EQ(outer, inner);
  EXPECT_EQ(WinGlobalLockCount(block), 2);
  EXPECT_EQ(WinLockedBlockCount(), 1u);
  WinGlobalUnlock(block);
  EXPECT_EQ(WinGlobalLockCount(block), 1);
  EXPECT_EQ(WinGlobalLock(block), outer) << "moved while still locked";
  WinGlobalUnlock(block);
  WinGlobalUnlock(block);
  EXPECT_EQ(WinGlobalLockCount(block), 0);
  EXPECT_EQ(WinLockedBlockCount(), 0u);
  WinGlobalFree(block);

  WinSetMovingBlocks(false);  // then a block stays where it is between locks
  block = WinGlobalAlloc(8);
  void* first = WinGlobalLock(block);
  WinGlobalUnlock(block);
  EXPECT_EQ(WinGlobalLock(block), first);
  WinGlobalUnlock(block);
  WinGlobalFree(block);
}

// A freed handle is never handed out again, so a stale one stays dead.
TEST_F(GlobalMemoryTest, FreedUnknownAndZeroHandlesAreHarmless) {
  Handle block = WinGlobalAlloc(8);
  WinGlobalFree(block);
  Handle next = WinGlobalAlloc(8);
  EXPECT_NE(next, block);
  for (Handle h : {block, Handle{0}, Handle{12345}}) {
    SCOPED_TRACE(h);
    EXPECT_EQ(WinGlobalLock(h), nullptr);
    EXPECT_EQ(WinGlobalSize(h), 0u);
    EXPECT_EQ(WinGlobalLockCount(h), 0);
  }
  WinGlobalFree(0);
  testing::internal::CaptureStderr();
  WinGlobalFree(block);
  WinGlobalUnlock(block);
  std::string said = testing::internal::GetCapturedStderr();
  EXPECT_NE(said.find("not a live block"), std::string::npos) << said;
  EXPECT_NE(said.find("not locked"), std::string::npos) << said;
  WinGlobalFree(next);
}

TEST_F(GlobalMemoryTest, SizeLimitIsOneGibibyte) {
  EXPECT_EQ(WinGlobalAlloc((1u << 30) + 1), 0u);
  EXPECT_EQ(WinGlobalAlloc(0xFFFFFFFFu), 0u);
  Handle empty = WinGlobalAlloc(0);
  ASSERT_NE(empty, 0u);
  EXPECT_EQ(WinGlobalSize(empty), 0u);
  EXPECT_NE(WinGlobalLock(empty), nullptr);
  WinGlobalUnlock(empty);
  WinGlobalFree(empty);
}

TEST_F(GlobalMemoryTest, InjectedFailureHitsExactlyTheChosenAllocation) {
  WinFailAllocationsAfter(2);
  Handle a = WinGlobalAlloc(4);
  Handle b = WinGlobalAlloc(4);
  Handle c = WinGlobalAlloc(4);  // the third from now
  Handle d = WinGlobalAlloc(4);
  EXPECT_NE(a, 0u);
  EXPECT_NE(b, 0u);
  EXPECT_EQ(c, 0u);
  EXPECT_NE(d, 0u) << "only one allocation fails";
  WinFailAllocationsAfter(0);
  EXPECT_EQ(WinGlobalAlloc(4), 0u);
  for (Handle h : {a, b, d}) WinGlobalFree(h);
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(GlobalMemoryTest, PointerKeptPastItsUnlockIsCaught) {
  Handle block = WinGlobalAlloc(32);
  auto* stale = static_cast<volatile char*>(WinGlobalLock(block));
  WinGlobalUnlock(block);
  EXPECT_DEATH((void)stale[0], "heap-use-after-free");
  WinGlobalFree(block);
}
#endif

}  // namespace
