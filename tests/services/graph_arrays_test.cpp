// The work blocks of a plot writer: all or nothing.
#include "services/graph_arrays.h"

#include <gtest/gtest.h>

#include <array>

#include "frame/messages.h"
#include "support/module_fixture.h"

namespace {

class GraphArrays : public zvtest::ModuleFixture {
 protected:
  void FreeAll() {
    for (Handle* h : {&a, &b, &c, &d, &e}) {
      if (*h != 0 && *h != kUntouched) WinGlobalFree(*h);
      *h = kUntouched;
    }
  }
  static constexpr Handle kUntouched = 0xFFFFFFFF;
  Handle a = kUntouched, b = kUntouched, c = kUntouched, d = kUntouched, e = kUntouched;
};

TEST_F(GraphArrays, SizesByKind) {
  ASSERT_EQ(zv::AllocGraphArrays(2, 5, 3, &a, &b, &c, &d, &e), 1);
  EXPECT_EQ(WinGlobalSize(a), 24u);
  EXPECT_EQ(WinGlobalSize(b), 40u);
  EXPECT_EQ(WinGlobalSize(c), 40u);
  EXPECT_EQ(WinGlobalSize(d), 20u);
  EXPECT_EQ(WinGlobalSize(e), 40u);
  FreeAll();
  ASSERT_EQ(zv::AllocGraphArrays(2, 5, 0, &a, &b, &c, &d, &e), 1);
  EXPECT_EQ(WinGlobalSize(d), 20u);
  EXPECT_EQ(e, kUntouched);
  FreeAll();
  EXPECT_EQ(zv::AllocGraphArrays(1, 3, 1, &a, &b, &c, &d, nullptr), 1);
  FreeAll();
}

TEST_F(GraphArrays, AnyFailureLeavesNothingAllocated) {
  const size_t live = WinLiveBlockCount();
  for (int32_t k = 0; k < 5; ++k) {
    SCOPED_TRACE(k);
    WinClearMessageBoxLog();
    WinFailAllocationsAfter(k);
    EXPECT_EQ(zv::AllocGraphArrays(2, 5, 3, &a, &b, &c, &d, &e), 0);
    EXPECT_EQ(LastMessage(), zv::LoadText(1001));
    EXPECT_EQ(WinLiveBlockCount(), live);
    const std::array<Handle, 5> handles{a, b, c, d, e};
    for (int i = 0; i <= k; ++i) EXPECT_EQ(handles[static_cast<size_t>(i)], 0u) << i;
    FreeAll();
  }
  WinFailAllocationsAfter(-1);
  // A size past what a block may hold is refused like a failure.
  EXPECT_EQ(zv::AllocGraphArrays(1, 0x7FFFFFFF, 3, &a, &b, &c, &d, &e), 0);
  EXPECT_EQ(WinLiveBlockCount(), live);
}

}  // namespace
