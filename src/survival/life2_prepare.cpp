// The computation of the product-limit procedure over the state of a Slot:
// the result blocks in spare bindings, the groups, the row order, the
// estimates per group and the comparison of the groups.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <numeric>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "frame/messages.h"
#include "frame/string_ids.h"
#include "protocol/families.h"
#include "services/movable_block.h"
#include "services/number_format.h"
#include "services/report_text.h"
#include "services/row_order.h"
#include "services/variables.h"
#include "services/work_blocks.h"
#include "stats/special_functions.h"
#include "survival/group_tests.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "survival/product_limit.h"
#include "survival/survival_order.h"
#include "survival/survival_strings.h"

namespace zv {
namespace {

void WriteLabel(char* label, std::string_view text) {
  const size_t length = std::min<size_t>(text.size(), kGroupLabelWidth);
  std::memcpy(label, text.data(), length);
  std::memset(label + length, ' ', kGroupLabelWidth - length);
}

// A whole value by "%d", any other by the general format at width 16. A whole
// value beyond the range of an int32 takes the general format as well.
std::string NumericLabel(double value) {
  if (value == std::trunc(value) && std::fabs(value) < 2147483648.0) {
    return std::to_string(static_cast<int32_t>(value));
  }
  return NumberText(value);
}

// The distinct values of a column in one pass: each row gets the number of
// its value in the order of first appearance, and each number its first row.
// A short list is searched directly; past kDirectValues values a hash table
// takes over, so that a column of identifiers stays linear.
template <class Key, class Hash>
class DistinctValues {
 public:
  int32_t Find(const Key& key, int32_t row) {
    if (table_.empty()) {
      for (size_t i = 0; i < keys_.size(); ++i) {
        if (keys_[i] == key) return static_cast<int32_t>(i);
      }
      if (keys_.size() == kDirectValues) {
        for (size_t i = 0; i < keys_.size(); ++i) table_.emplace(keys_[i], i);
      }
    } else {
      const auto found = table_.find(key);
      if (found != table_.end()) return static_cast<int32_t>(found->second);
    }
    if (!table_.empty()) table_.emplace(key, keys_.size());
    keys_.push_back(key);
    firstRows_.push_back(row);
    return static_cast<int32_t>(keys_.size() - 1);
  }
  const std::vector<Key>& keys() const { return keys_; }
  const std::vector<int32_t>& firstRows() const { return firstRows_; }

 private:
  static constexpr size_t kDirectValues = 16;
  std::vector<Key> keys_;
  std::vector<int32_t> firstRows_;
  std::unordered_map<Key, size_t, Hash> table_;
};

// A group value as the groups compare it: -0 is +0.
struct NumericGroup {
  double value;
  bool operator==(const NumericGroup& other) const {
    return std::memcmp(&value, &other.value, sizeof value) == 0;
  }
};
struct NumericGroupHash {
  size_t operator()(const NumericGroup& key) const {
    uint64_t bits = 0;
    std::memcpy(&bits, &key.value, sizeof bits);
    return std::hash<uint64_t>()(bits);
  }
};

// Numbers the groups of a group column in ascending order of the group
// value (text by CompareCells); rows without a time or without a group
// value are excluded, and the latter lose their time.
int32_t GroupRows(ProcedureState& state, double* time, int32_t* index, char* labels) {
  const VariableBinding& column = state.bindings[kGroupBinding];
  const int32_t n = state.rowCount;
  const bool isText = column.type == 'C';
  const int32_t width = column.width;
  LockedBlock<const char> cells(isText ? column.data : 0);
  LockedBlock<const double> values(isText ? 0 : column.data);
  DistinctValues<std::string_view, std::hash<std::string_view>> texts;
  DistinctValues<NumericGroup, NumericGroupHash> numbers;
  for (int32_t row = 0; row < n; ++row) {
    index[row] = kExcludedRow;
    if (time[row] == kMissingValue) continue;
    if (isText) {
      const std::string_view cell = TextCellView(cells.get(), width, row);
      if (IsBlankText(cell) != 0) {
        time[row] = kMissingValue;
      } else {
        index[row] = texts.Find(cell, row);
      }
    } else if (values[row] == kMissingValue) {
      time[row] = kMissingValue;
    } else {
      index[row] = numbers.Find({values[row] == 0.0 ? 0.0 : values[row]}, row);
    }
  }
  // The values in ascending order (a value that is not a number last), then
  // each row's number replaced by its value's rank.
  const std::vector<int32_t>& firstRows = isText ? texts.firstRows() : numbers.firstRows();
  const int32_t groups = static_cast<int32_t>(firstRows.size());
  std::vector<int32_t> byValue(firstRows.size());
  std::iota(byValue.begin(), byValue.end(), 0);
  if (isText) {
    const auto& keys = texts.keys();
    std::sort(byValue.begin(), byValue.end(),
              [&keys](int32_t a, int32_t b) { return CompareCells(keys[a], keys[b]) < 0; });
  } else {
    const auto& keys = numbers.keys();
    std::sort(byValue.begin(), byValue.end(), [&keys](int32_t a, int32_t b) {
      const double x = keys[a].value, y = keys[b].value;
      return std::isnan(y) ? !std::isnan(x) : x < y;
    });
  }
  std::vector<int32_t> rank(firstRows.size());
  for (int32_t g = 0; g < groups; ++g) {
    rank[byValue[g]] = g;
    const int32_t row = firstRows[byValue[g]];
    char* label = labels + static_cast<size_t>(g) * kGroupLabelWidth;
    WriteLabel(label, isText ? TextCell(cells.get(), width, row) : NumericLabel(values[row]));
  }
  for (int32_t row = 0; row < n; ++row) {
    if (index[row] != kExcludedRow) index[row] = rank[index[row]];
  }
  return groups;
}

}  // namespace

int32_t FormSurvivalGroups(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const int32_t n = state.rowCount;
  const VariableBinding& column = state.bindings[kGroupBinding];
  LockedBlock<double> time(state.bindings[kTimeBinding].data);
  LockedBlock<int32_t> index(state.bindings[kGroupIndexBinding].data);
  LockedBlock<char> labels(state.bindings[kGroupLabelsBinding].data);
  Set(state, kGroupCount, 0);
  if (ExpressionOf(column).empty()) {
    for (int32_t row = 0; row < n; ++row)
      index[row] = time[row] == kMissingValue ? kExcludedRow : 0;
    WriteLabel(labels.get(), "1");
    Set(state, kGroupCount, 1);
    return 1;
  }
  if (column.data == 0) return 0;
  try {
    Set(state, kGroupCount, GroupRows(state, time.get(), index.get(), labels.get()));
  } catch (const std::bad_alloc&) {
    ShowError(kNoMemoryText);
    return 0;
  }
  return 1;
}

int32_t Life2Estimate(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const int32_t groups = Get(state, kGroupCount);
  const bool censored = Get(state, kHasCensoring) != 0;
  LockedBlock<const int32_t> order(state.bindings[kSortOrderBinding].data);
  LockedBlock<const double> time(state.bindings[kTimeBinding].data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> counts(state.bindings[kGroupCountsBinding].data);
  LockedBlock<int32_t> atRisk(state.bindings[kAtRiskBinding].data);
  LockedBlock<double> survival(state.bindings[kSurvivalBinding].data);
  LockedBlock<double> error(state.bindings[kSurvivalErrorBinding].data);
  LockedBlock<double> hazard(state.bindings[kCumulativeHazardBinding].data);
  LockedBlock<double> means(state.bindings[kMeanSurvivalBinding].data);
  // The sort keys are spent once the order stands: they hold the suffix
  // sums of the error pass.
  LockedBlock<double> scratch(state.bindings[kSortKeysBinding].data);
  int32_t start = 0;
  for (int32_t g = 0; g < groups; ++g) {
    const SurvivalGroup group{order.get() + start, counts[g], time.get(), censor.get()};
    const ProductLimitColumns columns{atRisk.get() + start, survival.get() + start,
                                      error.get() + start, hazard.get() + start};
    means[2 * g] = EstimateProductLimit(group, columns);
    means[2 * g + 1] = MeanSurvivalErrorSweep(group, survival.get() + start, scratch.get() + start);
    start += counts[g];
  }
  return 1;
}

int32_t Life2CompareGroups(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  Set(state, kLogrankChiSquare, kMissingValue);
  Set(state, kLogrankPValue, kMissingValue);
  Set(state, kWilcoxonChiSquare, kMissingValue);
  Set(state, kWilcoxonPValue, kMissingValue);
  const int32_t groups = Get(state, kGroupCount);
  // Too many groups to compare: the fields stay missing, the comparison pane
  // says why, and the estimates stand.
  if (groups > kMaxComparedGroups) return 1;
  const uint64_t g = static_cast<uint64_t>(groups);
  const uint64_t m = g - 1;
  // One block each for the doubles, the sweep's records and its lists, taken
  // in turn, so that a shortage shows one message.
  WorkArray<double> doubles(2 * g + 2 * g * g + m * m + m);
  if (!doubles) {
    state.status = 2;
    return 0;
  }
  WorkArray<GroupSweepEntry> entries(g);
  if (!entries) {
    state.status = 2;
    return 0;
  }
  WorkArray<int32_t> lists(3 * g + m);
  if (!lists) {
    state.status = 2;
    return 0;
  }
  double* const logrankScore = doubles.get();
  double* const wilcoxonScore = logrankScore + g;
  double* const logrankCovariance = wilcoxonScore + g;
  double* const wilcoxonCovariance = logrankCovariance + g * g;
  double* const matrix = wilcoxonCovariance + g * g;
  double* const solution = matrix + m * m;
  int32_t* const permutation = lists.get() + 3 * g;
  const bool censored = Get(state, kHasCensoring) != 0;
  LockedBlock<const int32_t> order(state.bindings[kSortOrderBinding].data);
  LockedBlock<const double> time(state.bindings[kTimeBinding].data);
  LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
  LockedBlock<const int32_t> counts(state.bindings[kGroupCountsBinding].data);
  const SurvivalSample sample{order.get(), time.get(), censor.get(), counts.get(), groups};
  const GroupTestSums sums{logrankScore, wilcoxonScore, logrankCovariance, wilcoxonCovariance};
  AccumulateGroupTests(sample, {entries.get(), lists.get()}, sums);
  const double degrees = static_cast<double>(groups - 1);
  auto pValue = [degrees](double chiSquare) {
    return chiSquare == kMissingValue ? kMissingValue : 1.0 - ChiSquareCdf(chiSquare, degrees);
  };
  const double logrank =
      GroupChiSquare(logrankCovariance, logrankScore, groups, matrix, solution, permutation);
  Set(state, kLogrankChiSquare, logrank);
  Set(state, kLogrankPValue, pValue(logrank));
  const double wilcoxon =
      GroupChiSquare(wilcoxonCovariance, wilcoxonScore, groups, matrix, solution, permutation);
  Set(state, kWilcoxonChiSquare, wilcoxon);
  Set(state, kWilcoxonPValue, pValue(wilcoxon));
  return 1;
}

int32_t Life2Prepare(int32_t slot, int32_t /*unused*/) {
  ProcedureState& state = StateOf(slot);
  const int32_t n = state.rowCount;
  const bool censored = !ExpressionOf(state.bindings[kCensorBinding]).empty();
  Set(state, kHasCensoring, censored ? 1 : 0);
  // No group is known until the groups are formed; a failure before that
  // reports none.
  Set(state, kGroupCount, 0);

  struct RowBlock {
    int binding;
    uint32_t size;
  };
  constexpr RowBlock kRowBlocks[] = {
      {kGroupIndexBinding, sizeof(int32_t)},     {kGroupLabelsBinding, kGroupLabelWidth},
      {kSortOrderBinding, sizeof(int32_t)},      {kSortKeysBinding, sizeof(double)},
      {kSortWorkBinding, sizeof(int32_t)},       {kAtRiskBinding, sizeof(int32_t)},
      {kSurvivalBinding, sizeof(double)},        {kSurvivalErrorBinding, sizeof(double)},
      {kCumulativeHazardBinding, sizeof(double)}};
  for (const RowBlock& block : kRowBlocks) {
    if (!ReallocateBindingBlock(state, block.binding, static_cast<uint64_t>(n), block.size)) {
      state.status = 2;
      return 0;
    }
  }

  {
    LockedBlock<double> time(state.bindings[kTimeBinding].data);
    LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
    double smallest = kMissingValue;
    if (time) {
      // A row without a censoring value has no kind: it leaves the analysis.
      if (censor) {
        for (int32_t row = 0; row < n; ++row) {
          if (censor[row] == kMissingValue) time[row] = kMissingValue;
        }
      }
      for (int32_t row = 0; row < n; ++row) {
        if (time[row] != kMissingValue && (smallest == kMissingValue || time[row] < smallest)) {
          smallest = time[row];
        }
      }
    }
    Set(state, kSmallestTime, smallest);
    if (!(0.0 < smallest)) {
      state.status = kNonPositiveTimeText;
      return 0;
    }
  }

  // A failed group sort has shown its message and leaves no group to report.
  if (FormSurvivalGroups(slot) == 0) return 0;
  const int32_t groups = Get(state, kGroupCount);
  state.graphOptionsMask = groups <= 1 ? 1 : 0;

  if (!ReallocateBindingBlock(state, kGroupCountsBinding, 2 * static_cast<uint64_t>(groups),
                              sizeof(int32_t)) ||
      !ReallocateBindingBlock(state, kMeanSurvivalBinding, 2 * static_cast<uint64_t>(groups),
                              sizeof(double))) {
    state.status = 2;
    return 0;
  }
  {
    LockedBlock<int32_t> counts(state.bindings[kGroupCountsBinding].data);
    LockedBlock<const int32_t> index(state.bindings[kGroupIndexBinding].data);
    LockedBlock<const double> censor(censored ? state.bindings[kCensorBinding].data : 0);
    for (int32_t row = 0; row < n; ++row) {
      const int32_t g = index[row];
      if (g == kExcludedRow) continue;
      ++counts[g];
      if (!(censor && censor[row] > 0.0)) ++counts[groups + g];
    }
  }

  if (OrderSurvivalRows(slot) == 0) return 0;
  Life2Estimate(slot);
  if (groups > 1 && Life2CompareGroups(slot) == 0) return 0;
  return 1;
}

}  // namespace zv
