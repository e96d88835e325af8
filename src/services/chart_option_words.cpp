// The option blocks of ChartGetDefaults and ChartPutOptions: which record
// fields the 660 integer words and the 15 reals stand for.
#include "services/chart_option_words.h"

#include <cstddef>
#include <cstring>

namespace zv {
namespace {

struct WordRun {
  uint16_t firstWord;
  uint16_t offset;  // into PaneRecord
  uint16_t count;
};

constexpr WordRun kIntegerWordRuns[] = {
    {0, offsetof(PaneRecord, optionWord0), 1},
    {1, offsetof(PaneRecord, optionWord1), 2},
    {3, offsetof(PaneRecord, frameKind), 3},
    {6, offsetof(PaneRecord, optionWords6to8), 3},
    {9, offsetof(PaneRecord, tickSide), 3},
    {12, offsetof(PaneRecord, minorOn), 3},
    {15, offsetof(PaneRecord, tickLength), 3},
    {18, offsetof(PaneRecord, optionWord18), 1},
    {19, offsetof(PaneRecord, textStyleE), 6 * 20},   // E to J
    {139, offsetof(PaneRecord, textStyleA), 4 * 20},  // A to D
    {219, offsetof(PaneRecord, textStyleK), 4 * 20},  // K to N
    {299, offsetof(PaneRecord, textStyleO), 20},
    {639, offsetof(PaneRecord, legendOn), 1},
    {640, offsetof(PaneRecord, optionWord640), 2},
    {642, offsetof(PaneRecord, axisFixed), 4},
    {646, offsetof(PaneRecord, viewAngle), 2},
    {648, offsetof(PaneRecord, optionWord648), 1},
    {653, offsetof(PaneRecord, optionWord653), 1},
    {654, offsetof(PaneRecord, optionWord654), 2},
    {656, offsetof(PaneRecord, optionWords656to659), 4},
};
// Words 319 to 638 carry one byte each of the record's option bytes.
constexpr uint16_t kByteWordFirst = 319;
constexpr uint16_t kByteWordCount = 320;
constexpr uint16_t kByteWordOffset = offsetof(PaneRecord, optionBytes);

constexpr WordRun kRealRuns[] = {
    {0, offsetof(PaneRecord, optionReals0to3), 4},
    {4, offsetof(PaneRecord, optionReals4to10), 7},
    {11, offsetof(PaneRecord, legendBox), 4},
};

static_assert(offsetof(PaneRecord, textStyleE) + 6 * 80 == offsetof(PaneRecord, textStyleK));
static_assert(offsetof(PaneRecord, textStyleA) + 4 * 80 == offsetof(PaneRecord, textStyleE));
static_assert(offsetof(PaneRecord, textStyleK) + 4 * 80 == offsetof(PaneRecord, optionWord653));
static_assert(offsetof(PaneRecord, tickLength) + 8 == offsetof(PaneRecord, optionWord17));
static_assert(kByteWordFirst + kByteWordCount - 1 == 638);

}  // namespace

void OptionsFromRecord(const PaneRecord& pane, int32_t* words, double* reals) {
  const auto* base = reinterpret_cast<const unsigned char*>(&pane);
  for (const WordRun& run : kIntegerWordRuns) {
    std::memcpy(words + run.firstWord, base + run.offset, run.count * sizeof(int32_t));
  }
  for (uint16_t i = 0; i < kByteWordCount; ++i)
    words[kByteWordFirst + i] = base[kByteWordOffset + i];
  for (const WordRun& run : kRealRuns) {
    std::memcpy(reals + run.firstWord, base + run.offset, run.count * sizeof(double));
  }
}

void OptionsToRecord(const int32_t* words, const double* reals, PaneRecord& pane) {
  auto* base = reinterpret_cast<unsigned char*>(&pane);
  for (const WordRun& run : kIntegerWordRuns) {
    std::memcpy(base + run.offset, words + run.firstWord, run.count * sizeof(int32_t));
  }
  for (uint16_t i = 0; i < kByteWordCount; ++i) {
    base[kByteWordOffset + i] = static_cast<unsigned char>(words[kByteWordFirst + i]);
  }
  for (const WordRun& run : kRealRuns) {
    std::memcpy(base + run.offset, reals + run.firstWord, run.count * sizeof(double));
  }
}

}  // namespace zv
