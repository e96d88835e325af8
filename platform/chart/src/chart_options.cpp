// The option blocks: the library's defaults, the options the module puts
// back, and the word-by-word mapping between the blocks and a pane record.
#include <algorithm>
#include <cstring>

#include "zvchart/chart_host.h"

namespace zvchart {
namespace {

ChartOptions& TheOptions() {
  static ChartOptions options;
  return options;
}

// Words 319 to 638 are kept in the record as one byte each, from 0x634 on.
constexpr int kFirstByteWord = 319;
constexpr int kByteWords = 320;
constexpr size_t kByteOffset = 0x634;

// The twenty-word text style tables, by the first word of each.
template <class F>
void ForEachStyleTable(F f) {
  using R = zv::PaneRecord;
  struct Entry {
    int firstWord;
    int32_t (R::*table)[20];
  };
  static constexpr Entry kTables[] = {
      {19, &R::textStyleE},  {39, &R::textStyleF},  {59, &R::textStyleG},  {79, &R::textStyleH},
      {99, &R::textStyleI},  {119, &R::textStyleJ}, {139, &R::textStyleA}, {159, &R::textStyleB},
      {179, &R::textStyleC}, {199, &R::textStyleD}, {219, &R::textStyleK}, {239, &R::textStyleL},
      {259, &R::textStyleM}, {279, &R::textStyleN}, {299, &R::textStyleO}};
  for (const Entry& e : kTables) f(e.firstWord, e.table);
}

// Single words and short runs of words, with where each lives in the record.
struct WordRun {
  int firstWord;
  int count;
  size_t offset;
};
constexpr WordRun kWordRuns[] = {
    {0, 1, offsetof(zv::PaneRecord, optionWord0)},
    {648, 1, offsetof(zv::PaneRecord, optionWord648)},
    {1, 1, offsetof(zv::PaneRecord, optionWord1)},
    {2, 1, offsetof(zv::PaneRecord, optionWord2)},
    {3, 3, offsetof(zv::PaneRecord, frameKind)},
    {6, 3, offsetof(zv::PaneRecord, optionWords6to8)},
    {9, 3, offsetof(zv::PaneRecord, tickSide)},
    {12, 3, offsetof(zv::PaneRecord, minorOn)},
    {15, 3, offsetof(zv::PaneRecord, tickLength)},
    {18, 1, offsetof(zv::PaneRecord, optionWord18)},
    {653, 1, offsetof(zv::PaneRecord, optionWord653)},
    {639, 1, offsetof(zv::PaneRecord, legendOn)},
    {640, 2, offsetof(zv::PaneRecord, optionWord640)},
    {642, 4, offsetof(zv::PaneRecord, axisFixed)},
    {646, 2, offsetof(zv::PaneRecord, viewAngle)},
    {654, 2, offsetof(zv::PaneRecord, optionWord654)},
    {656, 4, offsetof(zv::PaneRecord, optionWords656to659)},
};

struct RealRun {
  int first;
  int count;
  size_t offset;
};
constexpr RealRun kRealRuns[] = {
    {0, 4, offsetof(zv::PaneRecord, optionReals0to3)},
    {4, 7, offsetof(zv::PaneRecord, optionReals4to10)},
    {11, 4, offsetof(zv::PaneRecord, legendBox)},
};

// Colours are 0x00BBGGRR; the option bytes hold them lowest byte first.
void PutColour(int32_t* words, int index, uint32_t colour) {
  for (int b = 0; b < 4; ++b) words[kWordTextColor + 4 * index + b] = (colour >> (8 * b)) & 0xFF;
}

}  // namespace

void OptionsToRecord(const int32_t* words, const double* reals, zv::PaneRecord& record) {
  auto* bytes = reinterpret_cast<std::byte*>(&record);
  for (const WordRun& r : kWordRuns) {
    std::memcpy(bytes + r.offset, words + r.firstWord, sizeof(int32_t) * r.count);
  }
  ForEachStyleTable([&](int first, int32_t(zv::PaneRecord::*table)[20]) {
    std::copy_n(words + first, 20, record.*table);
  });
  for (int i = 0; i < kByteWords; ++i) {
    bytes[kByteOffset + i] = static_cast<std::byte>(words[kFirstByteWord + i] & 0xFF);
  }
  for (const RealRun& r : kRealRuns) {
    std::memcpy(bytes + r.offset, reals + r.first, sizeof(double) * r.count);
  }
}

void RecordToOptions(const zv::PaneRecord& record, int32_t* words, double* reals) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&record);
  for (const WordRun& r : kWordRuns) {
    std::memcpy(words + r.firstWord, bytes + r.offset, sizeof(int32_t) * r.count);
  }
  ForEachStyleTable([&](int first, int32_t(zv::PaneRecord::*table)[20]) {
    std::copy_n(record.*table, 20, words + first);
  });
  for (int i = 0; i < kByteWords; ++i) {
    words[kFirstByteWord + i] = static_cast<int32_t>(bytes[kByteOffset + i]);
  }
  for (const RealRun& r : kRealRuns) {
    std::memcpy(reals + r.first, bytes + r.offset, sizeof(double) * r.count);
  }
}

const ChartOptions& CurrentOptions() {
  return TheOptions();
}

}  // namespace zvchart

void ChartGetDefaults(int32_t* integerOptions, double* realOptions) {
  using namespace zvchart;
  if (integerOptions == nullptr || realOptions == nullptr) return;
  int32_t* w = integerOptions;
  std::fill_n(w, zv::kIntegerOptionWords, 0);
  std::fill_n(realOptions, zv::kRealOptionCount, 0.0);

  w[kWordFrameKind] = 1;  // closed frame
  for (int axis = 0; axis < 3; ++axis) {
    w[kWordTickSide + axis] = -1;  // ticks point outward
    w[kWordMinorOn + axis] = 1;
  }
  w[kWordTickLength] = 20;  // 2 % of the plot's side
  w[kWordTickGap] = 10;

  // Text sizes by kind; the module takes S x 0.0031 of the plot's side as
  // the text height, so 11 is about 3.4 % of it.
  constexpr int32_t kSizes[20] = {16, 12, 12, 12, 12, 11, 11, 11, 10, 10,
                                  10, 11, 11, 11, 11, 11, 11, 11, 11, 14};
  for (int kind = 1; kind <= 20; ++kind) {
    w[kWordTextStyleK + kind - 1] = kSizes[kind - 1];
  }
  w[kWordTextStyleL + 0] = 1;  // main title bold

  for (int c = 0; c < 4; ++c) PutColour(w, c, 0x000000);  // black text
  w[kWordLegendOn] = 0;
  w[kWordViewAngle] = 30;
  w[655] = 50;  // the value BeginGraph itself gives this word

  realOptions[kRealLegendBox + 0] = 1.06;  // legend x, right of the plot
  realOptions[kRealLegendBox + 1] = 0.98;  // legend y
  realOptions[kRealLegendBox + 2] = 0.05;  // text offset from the sample
  realOptions[kRealLegendBox + 3] = 0.06;  // line height
}

void ChartPutOptions(const int32_t* integerOptions, const double* realOptions, int32_t one) {
  (void)one;
  if (integerOptions == nullptr || realOptions == nullptr) return;
  zvchart::ChartOptions& o = zvchart::TheOptions();
  std::copy_n(integerOptions, zv::kIntegerOptionWords, o.words.begin());
  std::copy_n(realOptions, zv::kRealOptionCount, o.reals.begin());
  o.given = true;
}
