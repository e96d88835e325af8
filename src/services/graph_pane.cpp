#include "services/graph_pane.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/chart_option_words.h"
#include "services/movable_block.h"
#include "services/variables.h"
#include "zvchart/zvchart.h"

namespace zv {

std::string gXTitle;
std::string gYTitle;
std::string gZTitle;
std::string gLegendTitle;
std::string gMainTitle;
std::string gSubTitle;

namespace {

constexpr int32_t kAddedTextFlagMarker = -999;
constexpr double kPositionScale = 100000.0;
constexpr double kPositionOrigin = 500000.0;

using TextNumbers = std::array<int32_t, kTextNumberWords>;

// A text item with its own strings, so that adding to an earlier item keeps
// the strings of all items in item order without moving the others. The
// count word is set from the strings when the text is stored.
struct ScratchItem {
  std::array<int32_t, kTextItemWords> words{};
  std::vector<std::string> strings;
  std::vector<TextNumbers> numbers;  // one entry per string
};

// Small text kinds find their last item directly.
constexpr int32_t kIndexedKinds = 32;

// The graph being built. One for the module: one graph at a time.
struct GraphScratch {
  std::vector<ScratchItem> textItems;
  std::array<int32_t, kIndexedKinds> lastOfKind{};  // item index + 1; 0 for none
  int32_t keptItemCount = 0;                        // items taken over from the last graph
  int32_t restoring = 0;                            // 1 while the last graph's text is in force
  bool active = false;                              // from a BeginGraph that succeeded to EndGraph
  bool failed = false;                              // a list could not grow: nothing is drawn
  GraphLists lists;
};

GraphScratch gScratch;

// Runs `grow`, which adds to the scratch. Running out of memory shows string
// 1001 once per graph, and the graph then draws nothing.
template <class F>
bool Guarded(F&& grow) {
  try {
    grow();
    return true;
  } catch (const std::bad_alloc&) {
    if (!gScratch.failed) ShowError(kNoMemoryText);
    gScratch.failed = true;
    return false;
  }
}

void ClearScratch(GraphScratch& s) {
  s.textItems.clear();
  s.lastOfKind.fill(0);
  s.keptItemCount = 0;
  s.lists = GraphLists{};
}

// Titles and legends that the user may have edited come back from the last
// graph; tick and factor labels are always made from the current scales.
bool IsKeptKind(int32_t kind) {
  return kind < 6 || kind == 12 || kind == 13 || kind == 19;
}

bool KeptHasKind(const GraphScratch& s, int32_t kind) {
  for (int32_t i = 0; i < s.keptItemCount; ++i) {
    if (s.textItems[static_cast<size_t>(i)].words[1] == kind) return true;
  }
  return false;
}

int32_t TruncateToInt32(double v) {
  if (!(v > -2147483648.0)) return std::numeric_limits<int32_t>::min();  // NaN too
  if (v >= 2147483647.0) return std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(v);
}

// The last item of `kind`, or nullptr.
ScratchItem* LastItemOfKind(GraphScratch& s, int32_t kind) {
  if (kind >= 0 && kind < kIndexedKinds) {
    const int32_t index = s.lastOfKind[static_cast<size_t>(kind)];
    return index > 0 ? &s.textItems[static_cast<size_t>(index - 1)] : nullptr;
  }
  for (size_t i = s.textItems.size(); i-- > 0;) {
    if (s.textItems[i].words[1] == kind) return &s.textItems[i];
  }
  return nullptr;
}

// Appends an item: either it is added whole or, when memory runs out, the
// scratch stays as it was.
void AppendItem(GraphScratch& s, ScratchItem&& item) {
  const int32_t kind = item.words[1];
  s.textItems.push_back(std::move(item));
  if (kind >= 0 && kind < kIndexedKinds) {
    s.lastOfKind[static_cast<size_t>(kind)] = static_cast<int32_t>(s.textItems.size());
  }
}

TextNumbers PlaceOf(double x, double y, double z, size_t length) {
  return {EncodeTextPosition(x), EncodeTextPosition(y), EncodeTextPosition(z),
          static_cast<int32_t>(length)};
}

// Copies the last graph's titles and legends into the scratch, in order,
// skipping the items of other kinds with their strings. false when the
// stored blocks cannot be had.
bool TakeOldTextBack(const PaneRecord& pane, GraphScratch& s) {
  LockedBlock<int32_t> items(pane.textItems);
  LockedBlock<char> strings(pane.textStrings);
  LockedBlock<double> numbers(pane.textNumbers);
  if (!items || !strings || !numbers) return false;
  // The counts are the Host's: never read beyond the blocks.
  const size_t itemCount =
      std::min<size_t>(std::max(pane.textItemCount, 0), items.size() / kTextItemWords);
  const size_t stringCount =
      std::min({static_cast<size_t>(std::max(pane.textStringCount, 0)),
                static_cast<size_t>(std::max(pane.textNumberCount, 0)),
                strings.size() / kTextStringBytes, numbers.size() / kTextNumberWords});
  size_t next = 0;
  for (size_t i = 0; i < itemCount; ++i) {
    const int32_t* words = &items[i * kTextItemWords];
    const size_t first = next;
    next = std::min(stringCount, next + static_cast<size_t>(std::max(words[0], 0)));
    if (!IsKeptKind(words[1]) || first == next) continue;
    ScratchItem item;
    std::copy(words, words + kTextItemWords, item.words.begin());
    for (size_t j = first; j < next; ++j) {
      const double* number = &numbers[j * kTextNumberWords];
      const int32_t length =
          std::clamp(TruncateToInt32(number[3]), 0, static_cast<int32_t>(kTextStringBytes));
      item.strings.emplace_back(&strings[j * kTextStringBytes], static_cast<size_t>(length));
      TextNumbers entry{EncodeTextPosition(number[0]), EncodeTextPosition(number[1]),
                        EncodeTextPosition(number[2]), length};
      for (int k = 4; k < kTextNumberWords; ++k) entry[k] = TruncateToInt32(number[k]);
      item.numbers.push_back(entry);
    }
    AppendItem(s, std::move(item));
    ++s.keptItemCount;
  }
  return true;
}

void BlankTitleLines(const PaneRecord& pane) {
  LockedBlock<char> lines(pane.titleLines);
  if (lines) std::memset(lines.get(), ' ', lines.size());
  LockedBlock<int32_t> lengths(pane.titleLengths);
  if (lengths) std::fill(lengths.get(), lengths.get() + lengths.size(), 0);
}

void ResetRecord(PaneRecord& pane, int32_t keep, int32_t restoring) {
  for (int axis = 0; axis < 3; ++axis) pane.dataRange[axis] = {0.1, 0.1};
  pane.frameStyle = pane.majorX = pane.majorY = pane.intervalsX = pane.intervalsY = 0;
  for (int axis = 0; axis < 4; ++axis) {
    pane.axes[axis] = PaneAxis{};
    pane.axes[axis].type = axis < 3 ? axis + 1 : 0;
  }
  BlankTitleLines(pane);
  std::fill(std::begin(pane.secondAxisState), std::end(pane.secondAxisState), 0);
  pane.legendOn = 0;
  if (!restoring) {
    pane.optionWord640 = pane.optionWord641 = pane.clearedWord = 0;
    std::fill(std::begin(pane.axisFixed), std::end(pane.axisFixed), 0);
    pane.optionWord654 = 0;
    std::fill(std::begin(pane.optionWords656to659), std::end(pane.optionWords656to659), 0);
    pane.optionWord655 = 50;
    gAddedText.clear();
  }
  if (!keep) {
    for (int axis = 0; axis < 4; ++axis) {
      if (pane.axisFixed[axis] != 0) continue;
      pane.axisSet[axis] = 0;
      pane.scale[axis] = {0.0, 1.0};
      pane.logScale[axis] = 0;
      pane.factorOn[axis] = 1;
    }
  }
  pane.textItemCount = pane.textStringCount = pane.textNumberCount = 0;
  for (std::string* title :
       {&gXTitle, &gYTitle, &gZTitle, &gLegendTitle, &gMainTitle, &gSubTitle}) {
    title->clear();
  }
}

uint32_t PackedColor(const PaneRecord& pane, int index) {
  // Four bytes of the option area, byte 3 the highest.
  unsigned char bytes[4];
  std::memcpy(bytes, reinterpret_cast<const unsigned char*>(&pane.textColor[index]), 4);
  return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
         static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

// Writes the scratch's text into fresh record blocks. false when a block
// could not be had; the record then holds no text.
bool StoreText(PaneRecord& pane, const GraphScratch& s) {
  const size_t items = s.textItems.size();
  size_t strings = 0;
  for (const ScratchItem& item : s.textItems) strings += item.strings.size();
  FreeGlobal(&pane.textItems);
  FreeGlobal(&pane.textStrings);
  FreeGlobal(&pane.textNumbers);
  pane.textItemCount = pane.textStringCount = pane.textNumberCount = 0;
  // At least one entry each, so that a graph without text still counts as a
  // pane's earlier graph at the next build.
  const uint64_t itemBytes = std::max<uint64_t>(items, 1) * kTextItemWords * sizeof(int32_t);
  const uint64_t stringBytes = std::max<uint64_t>(strings, 1) * kTextStringBytes;
  const uint64_t numberBytes = std::max<uint64_t>(strings, 1) * kTextNumberWords * sizeof(double);
  if (numberBytes > std::numeric_limits<uint32_t>::max()) {
    ShowError(kNoMemoryText);
    return false;
  }
  pane.textItems = AllocGlobal(static_cast<uint32_t>(itemBytes));
  if (pane.textItems != 0) pane.textStrings = AllocGlobal(static_cast<uint32_t>(stringBytes));
  if (pane.textStrings != 0) pane.textNumbers = AllocGlobal(static_cast<uint32_t>(numberBytes));
  if (pane.textNumbers == 0) {
    FreeGlobal(&pane.textItems);
    FreeGlobal(&pane.textStrings);
    return false;
  }
  pane.textItemCount = static_cast<int32_t>(items);
  pane.textStringCount = static_cast<int32_t>(strings);
  pane.textNumberCount = static_cast<int32_t>(strings);

  LockedBlock<int32_t> itemBlock(pane.textItems);
  LockedBlock<char> stringBlock(pane.textStrings);
  LockedBlock<double> numberBlock(pane.textNumbers);
  if (!itemBlock || !stringBlock || !numberBlock) return false;
  size_t j = 0;
  for (size_t i = 0; i < items; ++i) {
    const ScratchItem& item = s.textItems[i];
    int32_t* words = &itemBlock[i * kTextItemWords];
    std::copy(item.words.begin(), item.words.end(), words);
    words[0] = static_cast<int32_t>(item.strings.size());
    for (size_t k = 0; k < item.strings.size(); ++k, ++j) {
      char* target = &stringBlock[j * kTextStringBytes];
      const std::string& text = item.strings[k];
      const size_t length = std::min<size_t>(text.size(), kTextStringBytes);
      std::memcpy(target, text.data(), length);
      std::memset(target + length, ' ', kTextStringBytes - length);
      const TextNumbers& number = item.numbers[k];
      double* out = &numberBlock[j * kTextNumberWords];
      for (int w = 0; w < 3; ++w) out[w] = DecodeTextPosition(number[w]);
      for (int w = 3; w < kTextNumberWords; ++w) out[w] = number[w];
    }
  }
  return true;
}

// List B as interleaved points (x, y, [z,] id) in a fresh block; 0 when the
// block could not be had.
Handle InterleavePairs(const GraphLists& lists, size_t pairs) {
  const size_t width = static_cast<size_t>(lists.pointWidth);
  const uint64_t bytes = static_cast<uint64_t>(pairs) * width * sizeof(double);
  if (bytes > std::numeric_limits<uint32_t>::max()) {
    ShowError(kNoMemoryText);
    return 0;
  }
  const Handle block = AllocGlobal(static_cast<uint32_t>(bytes));
  if (block == 0) return 0;
  LockedBlock<double> points(block);
  if (!points) return block;
  for (size_t i = 0; i < pairs; ++i) {
    double* p = &points[i * width];
    *p++ = lists.pairX[i];
    *p++ = lists.pairY[i];
    if (width > 3) *p++ = lists.pairZ[i];
    *p = lists.pairId[i];
  }
  return block;
}

size_t PairCount(const GraphLists& lists) {
  size_t pairs = std::min({lists.pairX.size(), lists.pairY.size(), lists.pairId.size()});
  if (lists.pointWidth > 3) pairs = std::min(pairs, lists.pairZ.size());
  return pairs;
}

template <class T>
bool ResizeList(std::vector<T>& list, size_t size) {
  try {
    list.resize(size);
    return true;
  } catch (const std::bad_alloc&) {
    ShowError(kNoMemoryText);
    return false;
  }
}

}  // namespace

GraphLists& CurrentGraphLists() {
  return gScratch.lists;
}

bool ResizeGraphList(std::vector<double>& list, size_t size) {
  return ResizeList(list, size);
}
bool ResizeGraphList(std::vector<int32_t>& list, size_t size) {
  return ResizeList(list, size);
}

int32_t EncodeTextPosition(double value) {
  return TruncateToInt32(value * kPositionScale + kPositionOrigin);
}

double DecodeTextPosition(double stored) {
  return (stored - kPositionOrigin) * 0.00001;
}

int32_t BeginGraph(int32_t keepScales, int32_t rowCount) {
  GraphScratch& s = gScratch;
  s.active = false;
  s.failed = false;
  s.restoring = 0;
  PaneRecord* pane = gCurrentPane;
  if (pane == nullptr || gHost == nullptr) return 0;
  HostRecord& host = *gHost;

  // The Host may ask for a rebuild that keeps the axes, and so does a graph
  // that is to show the Host's added caption.
  int32_t keep = keepScales;
  if (pane->graphId == host.graphKeepId) keep = 1;
  host.graphKeepId = -1;
  if (host.graphRebuilds > 0) {
    keep = 1;
    --host.graphRebuilds;
  }
  if (!gAddedText.empty()) keep = 1;

  if (pane->graphId != 0) ChartRelease(pane->graphId);
  pane->graphId = host.nextGraphId++;
  pane->rowCount = rowCount;

  int32_t words[kIntegerOptionWords] = {};
  double reals[kRealOptionCount] = {};
  if (pane->textItems == 0) {  // the pane's first graph
    ChartGetDefaults(words, reals);
    OptionsToRecord(words, reals, *pane);
  }
  OptionsFromRecord(*pane, words, reals);
  ChartPutOptions(words, reals, 1);

  ClearScratch(s);
  FreeGlobal(&pane->titleLines);
  FreeGlobal(&pane->titleLengths);
  pane->titleLines = AllocGlobal(kTitleLineCount * kTitleLineBytes);
  if (pane->titleLines != 0) pane->titleLengths = AllocGlobal(kTitleLineCount * sizeof(int32_t));
  if (pane->titleLengths == 0) {
    FreeGlobal(&pane->titleLines);  // AllocGlobal has shown string 1001
    return 0;
  }

  if (pane->textItems != 0) {
    bool taken = false;
    if (Guarded([&] { taken = TakeOldTextBack(*pane, s); }) && taken) {
      s.restoring = 1;
    } else {
      ClearScratch(s);
    }
  }
  ResetRecord(*pane, keep, s.restoring);
  s.active = true;
  return pane->graphId;
}

GraphStart StartFamilyGraph(PaneWindow* pane, int32_t slot, int32_t item) {
  ProcedureState& state = *gStates[slot];
  if (state.status != 0) {
    BeginGraph(state.keepScales, state.rowCount);
    AddText(LoadText(kNoResultsText), kTextMessage, 0, 1.0, 0);
    EndGraph(pane, slot);
    return {nullptr, 1};
  }
  const int32_t id = BeginGraph(state.keepScales, state.rowCount);
  state.graphIds[item - 8] = id;
  if (id == 0) {
    EndGraph(pane, slot);
    return {nullptr, 0};
  }
  return {gCurrentPane, 1};
}

void ElementWriter::Begin(int32_t points, int32_t pen, int32_t symbol) {
  if (!enabled_) return;
  if (element_ + 3 > lists_.elementTable.size()) {
    overflowed_ = true;
    return;
  }
  lists_.elementTable[element_++] = points;
  lists_.elementTable[element_++] = pen;
  lists_.elementTable[element_++] = symbol;
}

void ElementWriter::Point(double x, double y, double id) {
  if (!enabled_) return;
  if (point_ + 3 > lists_.elementPoints.size()) {
    overflowed_ = true;
    return;
  }
  lists_.elementPoints[point_++] = x;
  lists_.elementPoints[point_++] = y;
  lists_.elementPoints[point_++] = id;
}

void DrawLegend(const PaneRecord& record, std::string_view title,
                const std::vector<std::string>& labels, ElementWriter& list) {
  constexpr int32_t kFirstLegendLine = 10;
  constexpr double kLegendSample = -2.0;
  const double legendX = record.legendBox[0];
  const double legendY = record.legendBox[1];
  const double textOffset = record.legendBox[2];
  const double lineHeight = record.legendBox[3];
  const size_t count = std::min(labels.size(), kLegendCapacity);
  SetTitleLine(title, 3);
  gLegendTitle = std::string(title);
  AddText("{3}", kTextLegend, legendX, legendY, 0.0);
  for (size_t i = 0; i < count; ++i) {
    const int32_t line = static_cast<int32_t>(i);
    SetTitleLine(labels[i], kFirstLegendLine + line);
    const std::string placeholder = {'{', static_cast<char>('A' + line), '}'};
    AddText(placeholder, kTextLegend, legendX + textOffset, legendY + (-1 - line) * lineHeight,
            0.0);
  }
  for (size_t i = 0; i < count; ++i) {
    const int32_t line = static_cast<int32_t>(i);
    const double y =
        (legendY + (-1 - line) * lineHeight) * record.scale[1].span + record.scale[1].low;
    list.Begin(2, line + 1);
    list.Point((legendX - 0.03) * record.scale[0].span + record.scale[0].low, y, kLegendSample);
    list.Point((legendX + 0.03) * record.scale[0].span + record.scale[0].low, y, kLegendSample);
  }
}

void AddText(std::string_view text, int32_t kind, double x, double y, double z) {
  GraphScratch& s = gScratch;
  if (text.empty() || !s.active) return;
  // What the user edited in the last graph wins over the fresh text.
  if (s.restoring && IsKeptKind(kind) && KeptHasKind(s, kind)) return;
  Guarded([&] {
    std::string stored(text.substr(0, kTextStringBytes));
    const TextNumbers place = PlaceOf(x, y, z, stored.size());
    if (ScratchItem* item = LastItemOfKind(s, kind)) {
      item->numbers.push_back(place);
      try {
        item->strings.push_back(std::move(stored));
      } catch (const std::bad_alloc&) {
        item->numbers.pop_back();  // strings and numbers stay in step
        throw;
      }
      return;
    }
    ScratchItem item;
    item.words[1] = kind;
    item.strings.push_back(std::move(stored));
    item.numbers.push_back(place);
    AppendItem(s, std::move(item));
  });
}

void AddStyledText(std::string_view text, double x, double y, double z, int32_t style1,
                   int32_t style2, int32_t style3, int32_t flag, int32_t last) {
  GraphScratch& s = gScratch;
  if (text.empty() || !s.active || gCurrentPane == nullptr) return;
  if (s.restoring && flag != kAddedTextFlagMarker) return;
  const PaneRecord& pane = *gCurrentPane;
  Guarded([&] {
    ScratchItem item;
    item.words = {1,
                  kTextFree,
                  style1,
                  style2,
                  style3,
                  flag == kAddedTextFlagMarker ? gAddedTextFlag : flag,
                  last,
                  static_cast<int32_t>(PackedColor(pane, 0)),
                  static_cast<int32_t>(PackedColor(pane, 1)),
                  static_cast<int32_t>(PackedColor(pane, 2)),
                  static_cast<int32_t>(PackedColor(pane, 3))};
    item.strings.emplace_back(text.substr(0, kTextStringBytes));
    item.numbers.push_back(PlaceOf(x, y, z, item.strings.back().size()));
    AppendItem(s, std::move(item));
  });
}

void SetTitleLine(std::string_view text, int32_t line) {
  if (gCurrentPane == nullptr || line < 1 || line > kTitleLineCount) return;
  const size_t length = std::min<size_t>(text.size(), kTitleLineBytes);
  const size_t index = static_cast<size_t>(line - 1);
  LockedBlock<char> lines(gCurrentPane->titleLines);
  LockedBlock<int32_t> lengths(gCurrentPane->titleLengths);
  if (lines.size() < kTitleLineCount * kTitleLineBytes || lengths.size() < kTitleLineCount) return;
  char* target = &lines[index * kTitleLineBytes];
  std::memcpy(target, text.data(), length);
  std::memset(target + length, ' ', kTitleLineBytes - length);
  lengths[index] = static_cast<int32_t>(length);
}

void PlaceTitles() {
  if (gCurrentPane == nullptr || (gMainTitle.empty() && gSubTitle.empty())) return;
  const PaneRecord& pane = *gCurrentPane;
  double t = pane.tickLength * 0.001;
  if (pane.tickSide[0] == -1) t += pane.tickGap * 0.001;
  const double h = pane.textStyleK[kTextSubTitle - 1] / 385.0;
  const double shift = gSubTitle.empty() ? 0.0 : 1.5 * h;
  if (pane.threeD == 0) {
    const double y = 1.0 + t + 0.1 + shift;
    AddText(gMainTitle, kTextMainTitle, 0.5, y, 0.0);
    AddText(gSubTitle, kTextSubTitle, 0.5, y - 5.0 * h, 0.0);
  } else {
    const double y = 1.0 + t;
    const double z = 1.15 + t + shift;
    AddText(gMainTitle, kTextMainTitle, 0.5, y, z);
    AddText(gSubTitle, kTextSubTitle, 0.5, y, z - 5.0 * h);
  }
}

void EndGraph(PaneWindow* paneWindow, int32_t slot) {
  GraphScratch& s = gScratch;
  PaneRecord* pane = gCurrentPane;
  if (!s.active || pane == nullptr) {
    ClearScratch(s);
    s.active = false;
    return;
  }
  if (!gAddedText.empty()) {
    const int32_t k = 19 - 1;
    AddStyledText(gAddedText, 0.5, 1.05, 1.05, pane->textStyleK[k], pane->textStyleL[k],
                  pane->textStyleM[k], kAddedTextFlagMarker, 4);
    gAddedText.clear();
  }

  GraphLists& lists = s.lists;
  if (lists.pointWidth < 3) lists.pointWidth = 3;
  bool drawable = !s.failed;
  const size_t pairs = PairCount(lists);
  Handle interleaved = 0;
  if (pairs > 0) {
    interleaved = InterleavePairs(lists, pairs);
    if (interleaved == 0) drawable = false;
  }
  if (!StoreText(*pane, s)) drawable = false;

  if (drawable) {
    pane->window = paneWindow != nullptr ? paneWindow->window : 0;
    LockedBlock<double> pairPoints(interleaved);
    LockedBlock<int32_t> items(pane->textItems);
    LockedBlock<double> numbers(pane->textNumbers);
    LockedBlock<char> strings(pane->textStrings);
    LockedBlock<char> titleLines(pane->titleLines);
    LockedBlock<int32_t> titleLengths(pane->titleLengths);
    if (items && numbers && strings && titleLines && titleLengths &&
        (interleaved == 0 || pairPoints)) {
      const size_t width = static_cast<size_t>(lists.pointWidth);
      const double* points = interleaved ? pairPoints.get() : lists.elementPoints.data();
      const size_t pointCount = interleaved ? pairs : lists.elementPoints.size() / width;

      double reals[28];
      for (int axis = 0; axis < 4; ++axis) {
        reals[2 * axis] = pane->dataRange[axis].low;
        reals[2 * axis + 1] = pane->dataRange[axis].high;
        reals[8 + 2 * axis] = pane->scale[axis].low;
        reals[8 + 2 * axis + 1] = pane->scale[axis].span;
      }
      std::copy(std::begin(pane->chartReals), std::end(pane->chartReals), reals + 16);
      int32_t words[26];
      int32_t* w = words;
      w = std::copy(std::begin(pane->logScale), std::end(pane->logScale), w);
      w = std::copy(std::begin(pane->axisFixed), std::end(pane->axisFixed), w);
      *w++ = pane->optionWord640;
      *w++ = pane->optionWord641;
      w = std::copy(std::begin(pane->secondAxisState), std::end(pane->secondAxisState), w);
      *w++ = pane->legendOn;
      for (char type : pane->axisType) *w++ = static_cast<unsigned char>(type);
      *w++ = pane->frameKind;
      *w++ = pane->optionWord654;
      *w++ = pane->optionWord655;
      w = std::copy(std::begin(pane->optionWords656to659), std::end(pane->optionWords656to659), w);

      ProcedureState* state = slot >= 0 && slot < kSlotCount ? gStates[slot] : nullptr;
      // List B reached the chart as list A's points: it goes with count 0.
      ChartDraw(pane->window, pane->graphId, &pane->frameStyle, lists.elementTable.data(),
                static_cast<int32_t>(lists.elementTable.size() / 3), points,
                static_cast<int32_t>(pointCount), lists.pointWidth, lists.shapeTable.data(),
                static_cast<int32_t>(lists.shapeTable.size() / 2), lists.shapePoints.data(),
                static_cast<int32_t>(lists.shapePoints.size() / kShapeValues),
                lists.markTable.data(), static_cast<int32_t>(lists.markTable.size() / 2),
                lists.markPoints.data(),
                static_cast<int32_t>(lists.markPoints.size() / kMarkValues), items.get(),
                pane->textItemCount, numbers.get(), strings.get(), pane->textStringCount,
                titleLines.get(), titleLengths.get(), reals, words, lists.pairX.data(),
                lists.pairY.data(), lists.pairZ.data(), lists.pairId.data(), 0, pane->rowCount,
                slot, state);
    }
  }
  FreeGlobal(&interleaved);
  ClearScratch(s);
  s.active = false;
}

}  // namespace zv
