#include "survival/survival_interpretation.h"

#include <cstdio>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "services/number_format.h"
#include "services/variables.h"
#include "survival/life2.h"
#include "survival/life2_state.h"

namespace zv {
namespace {

std::string Number(double value) {
  char buffer[kNumberTextSize];
  FormatNumber(buffer, value, 16);
  return buffer;
}

// A string-table format with one argument, expanded in the module's
// interpretation buffer.
template <class T>
std::string Formatted(int32_t stringNumber, T argument) {
  std::snprintf(gInterpretBuffer, sizeof gInterpretBuffer, LoadText(stringNumber).c_str(),
                argument);
  return gInterpretBuffer;
}

// The conclusion of the group tests from the smaller of the two P-values.
int32_t ConclusionString(double p) {
  if (p < 0.01) return 5604;
  if (p < 0.05) return 5605;
  if (p < 0.1) return 5606;
  return 5607;
}

}  // namespace

std::string JoinSentences(const std::vector<std::string>& sentences) {
  if (sentences.empty()) return {};
  std::string text = "   ";
  for (size_t i = 0; i < sentences.size(); ++i) {
    if (i > 0) text += "  ";
    text += sentences[i];
  }
  return text + "\r\n\r\n";
}

std::vector<std::string> PercentileSentences(const ProcedureState& state) {
  std::vector<std::string> sentences = {LoadText(8977), LoadText(8978)};
  const double first = Get(state, kFirstPercentile);
  if (first != kMissingValue) {
    sentences.push_back(LoadText(8979) + Number(first) + LoadText(8980) +
                        Number(Get(state, kFirstPercentileEstimate)) + ".");
  }
  sentences.push_back(LoadText(8981));
  return sentences;
}

std::string LimitsSentence(const ProcedureState& state, FamilyField<int32_t> flag) {
  if (Get(state, flag) == 0) return LoadText(8986);
  return LoadText(8987) + Number(Get(state, kConfidenceLevel)) + LoadText(8988);
}

void InterpretLife2(const ProcedureState& state, int32_t item, std::string& out) {
  const int32_t groups = Get(state, kGroupCount);
  std::vector<std::string> sentences;
  switch (item) {
    case 1: {
      const std::string time(ExpressionOf(state.bindings[kTimeBinding]));
      sentences = {Formatted(8997, time.c_str()),
                   LoadText(8998),
                   LoadText(8999),
                   LoadText(5600),
                   LoadText(5601),
                   LoadText(5602)};
      break;
    }
    case 2:
      sentences = PercentileSentences(state);
      break;
    case 3: {
      sentences = {LoadText(8982), LoadText(8983)};
      const double p = Get(state, kSmallestPValue);
      if (groups > 1 && p != kMissingValue) {
        sentences.push_back(Formatted(5603, groups));
        sentences.push_back(LoadText(ConclusionString(p)));
      }
      break;
    }
    case 8:
      sentences = {LoadText(8984), LoadText(8985)};
      if (groups == 1) sentences.push_back(LimitsSentence(state, kShowConfidenceLimits));
      break;
    case 9:
      sentences = {LoadText(8989), LoadText(8990)};
      break;
    case 10:
      sentences = {LoadText(8991), LoadText(8992)};
      break;
    default:
      break;
  }
  out += JoinSentences(sentences);
}

}  // namespace zv
