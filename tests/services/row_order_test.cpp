// Row order: the heap sort over an index table, the ties pass, and text cells.
#include "services/row_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "services/movable_block.h"
#include "support/module_fixture.h"

namespace {

using zv::kMissingValue;

class RowOrder : public zvtest::ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    state_ = &NewState(0);
  }
  std::vector<int32_t> Order() {
    zv::LockedBlock<int32_t> block(state_->order);
    return std::vector<int32_t>(block.get(), block.get() + block.size());
  }
  std::vector<int32_t> Numeric(const std::vector<double>& values, int32_t ties) {
    EXPECT_EQ(zv::SortOrderNumeric(values.data(), 0, static_cast<int32_t>(values.size()), ties), 1);
    EXPECT_EQ(state_->orderReady, 1);
    return Order();
  }
  zv::ProcedureState* state_ = nullptr;
};

using Rows = std::vector<int32_t>;

TEST_F(RowOrder, NumericOrderByTable) {
  struct Row {
    int line;
    std::vector<double> values;
    int32_t ties;
    Rows order;
  };
  const double m = kMissingValue;
  const Row kRows[] = {
      {__LINE__, {3.0, m, 1.0}, 0, {2, 0, 1}},
      {__LINE__, {5.0}, 0, {0}},
      {__LINE__, {m, -1.0, m, -40000.0}, 1, {3, 1, 0, 2}},  // missing after all, below -32768 too
      {__LINE__, {m, m}, 1, {0, 1}},
      // Equal values without the ties pass stand as the heap sort leaves
      // them. Traced by hand through the textbook routine for three equal
      // keys: the heap phase keeps 1,2,3; the selection phase gives 3,2,1,
      // then 2,3,1 (1-based).
      {__LINE__, {7.0, 7.0, 7.0}, 0, {1, 2, 0}},
      {__LINE__, {7.0, 7.0, 7.0}, 1, {0, 1, 2}},
      // From the textbook routine run on its own (a separate transcription).
      {__LINE__, {2.0, 1.0, 2.0, 1.0, 2.0, 1.0}, 0, {5, 1, 3, 2, 4, 0}},
      {__LINE__, {2.0, 1.0, 2.0, 1.0, 2.0, 1.0}, 1, {1, 3, 5, 0, 2, 4}},
      {__LINE__, {3.0, 4.0, 1.0}, 0, {2, 0, 1}},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(Numeric(r.values, r.ties), r.order);
  }
}

// Against a stable sort of (missing, value): sorted with missing last, and
// with ties in row order exactly the stable order.
TEST_F(RowOrder, RandomColumnsAgainstStableSort) {
  std::mt19937 random(7);
  for (int32_t n : {2, 3, 10, 101, 1000, 20000}) {
    SCOPED_TRACE(n);
    std::vector<double> values(static_cast<size_t>(n));
    for (double& v : values) {
      const int draw = static_cast<int>(random() % 12);
      // Many ties, -0 with +0, and fractions and magnitudes of every size.
      v = draw == 0 ? kMissingValue : draw == 1 ? -0.0 : (draw - 5.0) * std::pow(7.5, draw - 6);
    }
    auto key = [&](int32_t row) {
      const double v = values[static_cast<size_t>(row)];
      return std::pair<bool, double>(v == kMissingValue, v == kMissingValue ? 0.0 : v);
    };
    Rows expected(static_cast<size_t>(n));
    std::iota(expected.begin(), expected.end(), 0);
    std::stable_sort(expected.begin(), expected.end(),
                     [&](int32_t a, int32_t b) { return key(a) < key(b); });
    EXPECT_EQ(Numeric(values, 1), expected);

    Rows heap = Numeric(values, 0);
    Rows rows = heap;
    std::sort(rows.begin(), rows.end());
    for (int32_t i = 0; i < n; ++i) ASSERT_EQ(rows[i], i);  // each row once
    EXPECT_TRUE(std::is_sorted(heap.begin(), heap.end(),
                               [&](int32_t a, int32_t b) { return key(a) < key(b); }));
  }
}

TEST_F(RowOrder, AllocationFailureShowsTheMemoryMessage) {
  const std::vector<double> values{2.0, 1.0};
  ASSERT_EQ(zv::SortOrderNumeric(values.data(), 0, 2, 0), 1);
  WinFailAllocationsAfter(0);
  EXPECT_EQ(zv::SortOrderNumeric(values.data(), 0, 2, 0), 0);
  EXPECT_EQ(LastMessage(), zv::LoadText(1001));
  EXPECT_FALSE(LastMessage().empty());
  EXPECT_EQ(state_->orderReady, 0);
  EXPECT_EQ(state_->order, 0u);
  // The order block comes, its scratch does not: no order is left either.
  const size_t live = WinLiveBlockCount();
  WinFailAllocationsAfter(1);
  EXPECT_EQ(zv::SortOrderNumeric(values.data(), 0, 2, 0), 0);
  EXPECT_EQ(state_->order, 0u);
  EXPECT_EQ(WinLiveBlockCount(), live);
}

TEST_F(RowOrder, CompareCellsPutsBlanksLast) {
  struct Row {
    int line;
    const char* a;
    const char* b;
    int32_t result;
  };
  constexpr Row kRows[] = {
      {__LINE__, "", "", 0},      {__LINE__, "   ", "", 0},    {__LINE__, "", "a", 1},
      {__LINE__, "a", "  ", -1},  {__LINE__, "a", "b", -1},    {__LINE__, "b", "a", 1},
      {__LINE__, "B", "a", -1},   {__LINE__, "abc", "abc", 0}, {__LINE__, "ab", "abc", -1},
      {__LINE__, "\xE9", "z", 1},  // bytes compare unsigned
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::CompareCells(r.a, r.b), r.result);
  }
}

TEST_F(RowOrder, TextRowsSortByteWiseWithBlanksLast) {
  // Four rows of width 3, blank padded and not terminated.
  const std::string block =
      "b  "
      "   "
      "a  "
      "B  "
      "a  ";
  ASSERT_EQ(zv::SortOrderText(block.data(), 0, 5, 3, 1), 1);
  EXPECT_EQ(Order(), (Rows{3, 2, 4, 0, 1}));
  EXPECT_EQ(zv::TextCell(block.data(), 3, 3), "B  ");
  const char withEnd[] = "ab\0cd";
  EXPECT_EQ(zv::TextCell(withEnd, 3, 0), "ab");
  EXPECT_EQ(zv::TextCell(withEnd, 3, 1), "cd");
}

}  // namespace
