// The survival row order and the forming of groups on larger random data:
// the radix sort against the comparison sort and a stable sort written out
// here, and group numbers in ascending order of value past the short list
// that is searched directly.
#include "survival/survival_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "frame/host_records.h"
#include "life2_fixture.h"
#include "survival/life2_state.h"

namespace zvtest {
namespace {

using zv::kExcludedRow;
using zv::kMissingValue;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Times from a short list (ties, -0 and +0, negatives, missing), about a
// third withdrawn, groups from `groups` values with some rows excluded.
TEST(SurvivalOrder, RadixSortGivesTheComparisonOrder) {
  const double kTimes[] = {3.5, -1.0, 0.0, -0.0, 2.25, 1e300, -1e-300, kMissingValue, 7.0};
  std::mt19937_64 random(11);
  for (const auto& [n, groups] : {std::pair{1, 1}, {2, 1}, {37, 3}, {5000, 2}, {20000, 700}}) {
    SCOPED_TRACE(n);
    std::vector<double> time(n), censor(n);
    std::vector<int32_t> group(n);
    for (int32_t row = 0; row < n; ++row) {
      time[row] = random() % 4 == 0 ? kTimes[random() % 9] : static_cast<double>(random() % 50);
      censor[row] = random() % 3 == 0 ? 1.0 : 0.0;
      group[row] = random() % 10 == 0 ? kExcludedRow : static_cast<int32_t>(random() % groups);
    }
    // By group (excluded last), time (missing last), failures first, row.
    auto key = [&](int32_t row) {
      const double t = time[row] == kMissingValue ? kInfinity : time[row];
      const int64_t g = group[row] == kExcludedRow ? INT64_MAX : group[row];
      return std::tuple(g, t, censor[row] > 0.0);
    };
    std::vector<int32_t> expected(n);
    std::iota(expected.begin(), expected.end(), 0);
    std::stable_sort(expected.begin(), expected.end(),
                     [&](int32_t a, int32_t b) { return key(a) < key(b); });

    std::vector<zv::SurvivalSortKey> keys(2 * static_cast<size_t>(n));
    std::vector<int32_t> radix(n), comparison(n);
    zv::OrderSurvivalRowsArrays(n, time.data(), censor.data(), group.data(), keys.data(),
                                radix.data(), keys.data() + n);
    zv::OrderSurvivalRowsArrays(n, time.data(), censor.data(), group.data(), keys.data(),
                                comparison.data());
    EXPECT_EQ(radix, expected);
    EXPECT_EQ(comparison, expected);
  }
}

class SurvivalGroups : public Life2Fixture {};

// 40 numeric values (with -0 and +0 as one) and 30 texts, each row in
// scrambled order: the groups ascend by value and every row keeps its own.
TEST_F(SurvivalGroups, ManyValuesNumberedInAscendingOrder) {
  std::mt19937 random(5);
  std::vector<int32_t> values(80);
  std::iota(values.begin(), values.end(), -40);
  std::shuffle(values.begin(), values.end(), random);
  std::string numeric = "T,G\n1,-0\n";
  std::string text = "T,G\n";
  for (int32_t v : values) {
    numeric += "1," + std::to_string(v / 2.0) + "\n";
    text += "1,k" + std::to_string(v % 30 + 30) + "\n";
  }
  {
    const zv::ProcedureState& state = Run(numeric, "T", "", "G");
    ASSERT_EQ(state.status, 0);
    ASSERT_EQ(Get(state, zv::kGroupCount), 80);
    const std::vector<int32_t> index = Block<int32_t>(state, zv::kGroupIndexBinding, 81);
    EXPECT_EQ(index[0], 40);  // -0 is the group of 0
    for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(index[i + 1], values[i] + 40);
    const std::vector<char> labels = Block<char>(state, zv::kGroupLabelsBinding, 80 * 20);
    EXPECT_EQ(std::string(labels.begin(), labels.begin() + 4), "-20 ");
    EXPECT_EQ(std::string(labels.begin() + 41 * 20, labels.begin() + 41 * 20 + 4), "0.5 ");
  }
  const zv::ProcedureState& state = Run(text, "T", "", "G");
  ASSERT_EQ(state.status, 0);
  ASSERT_EQ(Get(state, zv::kGroupCount), 59);
  const std::vector<int32_t> index = Block<int32_t>(state, zv::kGroupIndexBinding, 80);
  // "k1" < "k10" < ... < "k19" < "k2" < "k20": byte order of the texts.
  std::vector<std::string> names;
  for (int32_t v = 1; v < 60; ++v) names.push_back("k" + std::to_string(v));
  std::sort(names.begin(), names.end());
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string name = "k" + std::to_string(values[i] % 30 + 30);
    EXPECT_EQ(index[i], std::lower_bound(names.begin(), names.end(), name) - names.begin());
  }
}

}  // namespace
}  // namespace zvtest
