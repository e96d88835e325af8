#include "survival/survival_interpretation.h"

#include <cstdio>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/report_text.h"
#include "services/variables.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "survival/survival_strings.h"

namespace zv {
namespace {

// The conclusion of the group tests from the smaller of the two P-values.
int32_t ConclusionString(double p) {
  if (p < 0.01) return kDifferAt1Sentence;
  if (p < 0.05) return kDifferAt5Sentence;
  if (p < 0.1) return kDifferAt10Sentence;
  return kNoDifferenceSentence;
}

}  // namespace

std::vector<std::string> PercentileSentences(const ProcedureState& state) {
  std::vector<std::string> sentences = {LoadText(kPercentileTableSentence),
                                        LoadText(kPercentileErrorSentence)};
  const double first = Get(state, kFirstPercentile);
  if (first != kMissingValue) {
    sentences.push_back(LoadText(kPercentileTimePrefix) + NumberText(first) +
                        LoadText(kPercentileTimeMiddle) +
                        NumberText(Get(state, kFirstPercentileEstimate)) + ".");
  }
  sentences.push_back(LoadText(kPercentileUnreachedSentence));
  return sentences;
}

std::string LimitsSentence(const ProcedureState& state, FamilyField<int32_t> flag) {
  if (Get(state, flag) == 0) return LoadText(kLimitsOfferedSentence);
  return LoadText(kLimitsShownPrefix) + NumberText(Get(state, kConfidenceLevel)) +
         LoadText(kLimitsShownSuffix);
}

void InterpretLife2(const ProcedureState& state, int32_t item, std::string& out) {
  const int32_t groups = Get(state, kGroupCount);
  std::vector<std::string> sentences;
  switch (item) {
    case 1: {
      const std::string time(ExpressionOf(state.bindings[kTimeBinding]));
      sentences = {FormatText(kSummaryTableSentence, kInterpretBufferSize, time.c_str()),
                   LoadText(kSummaryColumnsSentence),
                   LoadText(kSummaryStepsSentence),
                   LoadText(kMeanAreaSentence),
                   LoadText(kMeanUnderestimateSentence),
                   LoadText(kPercentilePointerSentence)};
      break;
    }
    case 2:
      sentences = PercentileSentences(state);
      break;
    case 3: {
      sentences = {LoadText(kComparisonTableSentence), LoadText(kComparisonWithdrawalSentence)};
      const double p = Get(state, kSmallestPValue);
      if (groups > 1 && p != kMissingValue) {
        sentences.push_back(FormatText(kGroupTestsSentence, kInterpretBufferSize, groups));
        sentences.push_back(LoadText(ConclusionString(p)));
      }
      break;
    }
    case 8:
      sentences = {LoadText(kSurvivalPlotSentence), LoadText(kSurvivalStepsSentence)};
      if (groups == 1) sentences.push_back(LimitsSentence(state, kShowConfidenceLimits));
      break;
    case 9:
      sentences = {LoadText(kLogSurvivalPlotSentence), LoadText(kLogSurvivalLineSentence)};
      break;
    case 10:
      sentences = {LoadText(kHazardPlotSentence), LoadText(kHazardSlopeSentence)};
      break;
    default:
      break;
  }
  out += JoinSentences(sentences);
}

}  // namespace zv
