// The three report panes of the product-limit procedure: the estimates of
// every group, the percentile table, and the comparison of the groups.
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "frame/messages.h"
#include "frame/string_ids.h"
#include "protocol/families.h"
#include "services/movable_block.h"
#include "services/number_format.h"
#include "services/report_pane.h"
#include "services/report_text.h"
#include "services/variables.h"
#include "survival/group_tests.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "survival/product_limit.h"
#include "survival/survival_strings.h"

namespace zv {
namespace {

constexpr std::string_view kEnd = "\r\n";
constexpr std::string_view kSummaryRule =
    "---------------------------------------------------------------------------------------------"
    "-";
constexpr std::string_view kPercentileRule = "---------------------------------------------";
constexpr std::string_view kComparisonRule =
    "-------------------------------------------------------------------";
static_assert(kSummaryRule.size() == 94 && kPercentileRule.size() == 45 &&
              kComparisonRule.size() == 67);

void AppendLabel(std::string& text, const char* labels, int32_t group) {
  text.append(labels + static_cast<size_t>(group) * kGroupLabelWidth, kGroupLabelWidth);
}

// The columns of the state that the panes read, locked together.
struct Columns {
  explicit Columns(const ProcedureState& state)
      : censored(Get(state, kHasCensoring) != 0),
        order(state.bindings[kSortOrderBinding].data),
        time(state.bindings[kTimeBinding].data),
        censor(censored ? state.bindings[kCensorBinding].data : 0),
        labels(state.bindings[kGroupLabelsBinding].data),
        counts(state.bindings[kGroupCountsBinding].data),
        atRisk(state.bindings[kAtRiskBinding].data),
        survival(state.bindings[kSurvivalBinding].data),
        error(state.bindings[kSurvivalErrorBinding].data),
        hazard(state.bindings[kCumulativeHazardBinding].data),
        means(state.bindings[kMeanSurvivalBinding].data) {}

  SurvivalGroup Group(int32_t start, int32_t g) const {
    return {order.get() + start, counts[g], time.get(), censor.get()};
  }

  bool censored;
  LockedBlock<const int32_t> order;
  LockedBlock<const double> time;
  LockedBlock<const double> censor;
  LockedBlock<const char> labels;
  LockedBlock<const int32_t> counts;
  LockedBlock<const int32_t> atRisk;
  LockedBlock<const double> survival;
  LockedBlock<const double> error;
  LockedBlock<const double> hazard;
  LockedBlock<const double> means;
};

void AppendGroupTable(std::string& text, const Columns& c, int32_t start, int32_t g) {
  text.append(
      "                                    Number at     Cumulative     Standard      "
      "Cumulative\r\n"
      "Row    Time          Status         Risk          Survival       Error         Hazard\r\n");
  text.append(kSummaryRule).append(kEnd);
  const SurvivalGroup group = c.Group(start, g);
  // The times and kinds of the rows, scattered over the columns, are
  // gathered a block at a time in a tight loop, where the cache misses
  // overlap, instead of one at a time between the formatting; each block
  // takes one row more, for the look at the next row.
  constexpr int32_t kBlock = 1024;
  double times[kBlock + 1];
  bool withdrawn[kBlock + 1];
  // Each row is filled in a line buffer and appended whole; a row takes at
  // most 20 + 14 + 15 + 20 + 15 + 15 + 15 + 2 characters.
  char line[160];
  for (int32_t first = 0; first < group.count; first += kBlock) {
    const int32_t last = std::min(group.count, first + kBlock);
    const int32_t gathered = std::min(group.count, last + 1) - first;
    for (int32_t i = 0; i < gathered; ++i) {
      times[i] = c.time[group.rows[first + i]];
      withdrawn[i] = IsWithdrawn(group, first + i);
    }
    for (int32_t k = first; k < last; ++k) {
      const int32_t i = k - first;
      const int32_t p = start + k;
      char* out = PutInt(line, group.rows[k] + 1, 7);
      out = PutNumberLeft(out, times[i], 14);
      std::memcpy(out, withdrawn[i] ? "WITHDRAWN      " : "FAILED         ", 15);
      out = PutInt(out + 15, c.atRisk[p], 14);
      // A failure ends a step, and prints the estimates, when the next row
      // of the group is a withdrawal, has another time, or there is none.
      // Without a censoring column every row is a failure.
      if (!withdrawn[i] && (k + 1 == group.count || withdrawn[i + 1] || times[i + 1] != times[i])) {
        out = PutFixed(out, c.survival[p], 15);
        out = PutFixed(out, c.error[p], 15);
        out = PutFixed(out, c.hazard[p], 0);
      }
      *out++ = '\r';
      *out++ = '\n';
      text.append(line, static_cast<size_t>(out - line));
    }
  }
  text.append(kSummaryRule).append(kEnd);
  text.append("Mean survival time = ");
  AppendNumber(text, c.means[2 * g]);
  text.append("   Standard error = ");
  AppendNumber(text, c.means[2 * g + 1]);
  text.append(kEnd).append(kEnd);
}

}  // namespace

std::string Life2SummaryText(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const std::string_view censorText = ExpressionOf(state.bindings[kCensorBinding]);
  const std::string_view groupText = ExpressionOf(state.bindings[kGroupBinding]);
  const std::string_view selectText = ExpressionOf(state.bindings[kSelectBinding]);
  const int32_t groups = Get(state, kGroupCount);
  // A table line is about 90 characters: room for all of them at once.
  constexpr size_t kSummaryLine = 96;
  std::string text;
  text.reserve(kReportReserve + kSummaryLine * static_cast<size_t>(state.rowCount));
  text.append(LoadText(kAnalysisSummaryHeading)).append(kEnd).append(kEnd);
  text.append(LoadText(kDataVariableLabel))
      .append(ExpressionOf(state.bindings[kTimeBinding]))
      .append(kEnd);
  if (!censorText.empty()) text.append("Censoring: ").append(censorText).append(kEnd);
  if (!groupText.empty()) {
    text.append("Groups: ").append(groupText).append(kEnd);
    text.append("Number of groups = ");
    text.append(std::to_string(groups)).append(kEnd);
  }
  if (!selectText.empty()) text.append(LoadText(kSelectLabel)).append(selectText).append(kEnd);
  text.append(kEnd);
  if (state.status != 0) {
    text.append(LoadText(StatusString(kLifeStatusTexts, state.status))).append(kEnd);
    return text;
  }
  text.append("Product-Limit (Kaplan-Meier) Estimates\r\n\r\n");
  {
    Columns columns(state);
    int32_t start = 0;
    for (int32_t g = 0; g < groups; ++g) {
      if (groups > 1) {
        text.append(groupText).append(" = ");
        AppendLabel(text, columns.labels.get(), g);
        text.append(kEnd);
      }
      AppendGroupTable(text, columns, start, g);
      start += columns.counts[g];
    }
  }
  AppendAdvice(text, slot, 1);
  return text;
}

std::string Life2PercentileText(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const std::string_view groupText = ExpressionOf(state.bindings[kGroupBinding]);
  const int32_t groups = Get(state, kGroupCount);
  Set(state, kFirstPercentile, kMissingValue);
  std::string text;
  text.reserve(kReportReserve);
  {
    Columns c(state);
    int32_t start = 0;
    for (int32_t g = 0; g < groups; ++g) {
      text.append("Percentile Table");
      if (groups > 1) {
        text.append(" for ").append(groupText).append(" = ");
        AppendLabel(text, c.labels.get(), g);
      }
      text.append(kEnd).append(kEnd);
      text.append(
          "                              Standard\r\n"
          "Percentile     Estimate       Error \r\n");
      text.append(kPercentileRule).append(kEnd);
      // The percentiles walk the group once each.
      const GatheredGroup gathered(c.Group(start, g));
      const SurvivalGroup& group = gathered.view();
      for (uint32_t slotIndex = 0; slotIndex < kPercentileSlots; ++slotIndex) {
        const double percentile = Get(state, kPercentiles, slotIndex);
        if (percentile == 0.0) continue;
        const PercentileEstimate p =
            EstimatePercentile(group, c.survival.get() + start, c.error.get() + start, percentile);
        AppendNumberLeft(text, percentile, 15);
        AppendNumberLeft(text, p.estimate, 15);
        AppendNumberLeft(text, p.error, 15);
        text.append(kEnd);
        if (Get(state, kFirstPercentile) == kMissingValue) {
          Set(state, kFirstPercentile, percentile);
          Set(state, kFirstPercentileEstimate, p.estimate);
        }
      }
      text.append(kPercentileRule).append(kEnd).append(kEnd).append(kEnd);
      start += group.count;
    }
  }
  AppendAdvice(text, slot, 2);
  return text;
}

std::string Life2ComparisonText(int32_t slot) {
  ProcedureState& state = StateOf(slot);
  const int32_t groups = Get(state, kGroupCount);
  std::string text;
  text.reserve(kReportReserve);
  text.append("Comparison of Groups\r\n\r\n");
  Set(state, kSmallestPValue, kMissingValue);
  text.append(
      "                                                         Proportion\r\n"
      "Group                Total       Failed      Withdrawn   Withdrawn\r\n");
  text.append(kComparisonRule).append(kEnd);
  int64_t rows = 0;
  int64_t failed = 0;
  {
    LockedBlock<const char> labels(state.bindings[kGroupLabelsBinding].data);
    LockedBlock<const int32_t> counts(state.bindings[kGroupCountsBinding].data);
    for (int32_t g = 0; g < groups; ++g) {
      const int32_t total = counts[g];
      const int32_t failures = counts[groups + g];
      AppendLabel(text, labels.get(), g);
      text.append(" ");
      AppendInt(text, total, 12);
      AppendInt(text, failures, 12);
      AppendInt(text, total - failures, 12);
      AppendFixed(text, static_cast<double>(total - failures) / total, 0);
      text.append(kEnd);
      rows += total;
      failed += failures;
    }
  }
  text.append(kComparisonRule).append(kEnd);
  text.append("Total                ");
  AppendInt(text, rows, 12);
  AppendInt(text, failed, 12);
  AppendInt(text, rows - failed, 12);
  // With no analysed row the proportion has no value and its cell stays empty.
  AppendFixed(text, rows == 0 ? kMissingValue : static_cast<double>(rows - failed) / rows, 0);
  text.append(kEnd).append(kEnd);
  if (groups > kMaxComparedGroups) {
    text.append(FormatText(kTooManyGroupsText, 200, kMaxComparedGroups)).append(kEnd);
  } else if (groups > 1) {
    const double logrankP = Get(state, kLogrankPValue);
    const double wilcoxonP = Get(state, kWilcoxonPValue);
    text.append("Logrank test\r\n------------\r\nChi-square = ");
    AppendNumber(text, Get(state, kLogrankChiSquare));
    text.append("\r\nP-value = ");
    AppendNumber(text, logrankP);
    text.append("\r\n\r\nWilcoxon test\r\n-------------\r\nChi-square = ");
    AppendNumber(text, Get(state, kWilcoxonChiSquare));
    text.append("\r\nP-value = ");
    AppendNumber(text, wilcoxonP);
    text.append(kEnd);
    // The lesser of the two; a test whose matrix could not be inverted has no
    // P-value and does not take part.
    double smallest = logrankP;
    if (wilcoxonP != kMissingValue && (smallest == kMissingValue || wilcoxonP < smallest)) {
      smallest = wilcoxonP;
    }
    Set(state, kSmallestPValue, smallest);
  }
  AppendAdvice(text, slot, 3);
  return text;
}

int32_t Life2SummaryPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t /*unused*/) {
  return SetPaneText(pane, slot, item, Life2SummaryText(slot));
}

int32_t Life2PercentilePane(PaneWindow* pane, int32_t slot, int32_t item, int32_t /*unused*/) {
  if (StateOf(slot).status != 0) return WriteFailedPane(pane, slot, item);
  return SetPaneText(pane, slot, item, Life2PercentileText(slot));
}

int32_t Life2ComparisonPane(PaneWindow* pane, int32_t slot, int32_t item, int32_t /*unused*/) {
  if (StateOf(slot).status != 0) return WriteFailedPane(pane, slot, item);
  return SetPaneText(pane, slot, item, Life2ComparisonText(slot));
}

}  // namespace zv
