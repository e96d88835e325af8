// The graphs the library holds: ChartDraw copies everything it is handed,
// ChartRelease drops it. The caller's buffers may go away right after the
// call, so nothing here points into them.
#include <algorithm>
#include <cstring>
#include <map>

#include "zvchart/chart_host.h"

namespace zvchart {
namespace {

struct Store {
  std::map<int32_t, StoredGraph> graphs;
  uint64_t nextSequence = 1;
};

Store& TheStore() {
  static Store store;
  return store;
}

int32_t NonNegative(int32_t n) {
  return n < 0 ? 0 : n;
}

std::vector<double> CopyDoubles(const double* from, size_t count) {
  if (from == nullptr) return {};
  return std::vector<double>(from, from + count);
}

// A run of `declared` records of `width` doubles from a pool, taking only
// what the pool still has.
std::vector<double> TakeRecords(const double* pool, int32_t poolRecords, int32_t width,
                                int32_t* used, int32_t declared) {
  int32_t take = std::clamp(declared, 0, poolRecords - *used);
  std::vector<double> out;
  if (pool != nullptr && take > 0 && width > 0) {
    const double* first = pool + static_cast<size_t>(*used) * width;
    out.assign(first, first + static_cast<size_t>(take) * width);
  }
  *used += take;
  return out;
}

std::string TextOfString(const char* chars, double length) {
  std::string raw(chars, kTextStringWidth);
  raw = raw.substr(0, std::min(raw.find('\0'), raw.size()));
  if (length >= 0 && length <= kTextStringWidth && length == static_cast<int>(length) &&
      static_cast<size_t>(length) <= raw.size()) {
    return raw.substr(0, static_cast<size_t>(length));
  }
  size_t end = raw.find_last_not_of(' ');
  return end == std::string::npos ? std::string() : raw.substr(0, end + 1);
}

void CopyTexts(StoredGraph& g, const int32_t* items, int32_t itemCount, const double* numbers,
               const char* strings, int32_t stringCount) {
  if (items == nullptr) return;
  int32_t next = 0;
  for (int32_t i = 0; i < itemCount; ++i) {
    const int32_t* w = items + static_cast<size_t>(i) * kTextItemWords;
    TextItem item;
    item.count = w[0];
    item.kind = w[1];
    std::copy(w + 2, w + kTextItemWords, item.words.begin());
    int32_t take = std::clamp(w[0], 0, stringCount - next);
    for (int32_t s = 0; s < take; ++s, ++next) {
      TextString ts;
      if (numbers != nullptr) {
        std::copy_n(numbers + static_cast<size_t>(next) * kTextNumberCount, kTextNumberCount,
                    ts.numbers.begin());
      }
      ts.x = ts.numbers[0];
      ts.y = ts.numbers[1];
      ts.z = ts.numbers[2];
      if (strings != nullptr) {
        ts.text = TextOfString(strings + static_cast<size_t>(next) * kTextStringWidth,
                               numbers != nullptr ? ts.numbers[3] : -1.0);
      }
      item.strings.push_back(std::move(ts));
    }
    g.textItems.push_back(std::move(item));
  }
}

}  // namespace

const StoredGraph* FindGraph(int32_t graphId) {
  auto& graphs = TheStore().graphs;
  auto it = graphs.find(graphId);
  return it == graphs.end() ? nullptr : &it->second;
}

const StoredGraph* FindGraphByWindow(WindowRef window) {
  const StoredGraph* best = nullptr;
  for (const auto& [id, g] : TheStore().graphs) {
    if (g.window == window && (best == nullptr || g.sequence > best->sequence)) best = &g;
  }
  return best;
}

size_t GraphCount() {
  return TheStore().graphs.size();
}

void ReleaseAllGraphs() {
  TheStore().graphs.clear();
}

}  // namespace zvchart

using zvchart::StoredGraph;

void ChartDraw(WindowRef window, int32_t graphId, const int32_t* frame, const int32_t* elementTable,
               int32_t elementCount, const double* elementPoints, int32_t pointCount,
               int32_t pointWidth, const int32_t* shapeTable, int32_t shapeCount,
               const double* shapePoints, int32_t shapePointCount, const int32_t* markTable,
               int32_t markCount, const double* markPoints, int32_t markPointCount,
               const int32_t* textItems, int32_t textItemCount, const double* textNumbers,
               const char* textStrings, int32_t textStringCount, const char* titleLines,
               const int32_t* titleLengths, const double* reals, const int32_t* words,
               const double* pairX, const double* pairY, const double* pairZ, const double* pairId,
               int32_t pairCount, int32_t rowCount, int32_t slot, zv::ProcedureState* state) {
  using namespace zvchart;
  StoredGraph g;
  g.graphId = graphId;
  g.window = window;
  g.slot = slot;
  g.rowCount = rowCount;
  g.state = state;
  g.sequence = TheStore().nextSequence++;

  // `frame` is the record's word at 0x018; the rest of the record follows it.
  constexpr size_t kFrameOffset = offsetof(zv::PaneRecord, frameStyle);
  if (frame != nullptr) {
    std::memcpy(reinterpret_cast<std::byte*>(&g.record) + kFrameOffset, frame,
                sizeof(zv::PaneRecord) - kFrameOffset);
  }
  g.record.window = window;
  g.record.graphId = graphId;

  g.pointWidth = pointWidth;
  g.pointCount = NonNegative(pointCount);
  int32_t width = pointWidth > 0 && pointWidth <= 16 ? pointWidth : 0;
  if (elementTable != nullptr) {
    int32_t used = 0;
    for (int32_t e = 0; e < elementCount; ++e) {
      const int32_t* w = elementTable + static_cast<size_t>(e) * 3;
      Polyline line{w[0], w[1], w[2], {}};
      line.values = TakeRecords(elementPoints, g.pointCount, width, &used, w[0]);
      g.elements.push_back(std::move(line));
    }
  }

  g.markPointCount = NonNegative(markPointCount);
  if (markTable != nullptr) {
    int32_t used = 0;
    for (int32_t m = 0; m < markCount; ++m) {
      MarkSeries s{markTable[2 * m], markTable[2 * m + 1], {}};
      s.values = TakeRecords(markPoints, g.markPointCount, kMarkValues, &used, s.marks);
      g.marks.push_back(std::move(s));
    }
  }

  g.shapePointCount = NonNegative(shapePointCount);
  if (shapeTable != nullptr) {
    int32_t used = 0;
    for (int32_t m = 0; m < shapeCount; ++m) {
      ShapeSeries s{shapeTable[2 * m], shapeTable[2 * m + 1], {}};
      s.values = TakeRecords(shapePoints, g.shapePointCount, kShapeValues, &used, s.shapes);
      g.shapes.push_back(std::move(s));
    }
  }

  g.textStringCount = NonNegative(textStringCount);
  CopyTexts(g, textItems, textItemCount, textNumbers, textStrings, g.textStringCount);

  if (titleLines != nullptr) {
    for (int i = 0; i < kTitleLineCount; ++i) {
      int32_t length = titleLengths != nullptr ? std::clamp(titleLengths[i], 0, kTitleLineWidth)
                                               : kTitleLineWidth;
      std::string line(titleLines + static_cast<size_t>(i) * kTitleLineWidth, length);
      line = line.substr(0, std::min(line.find('\0'), line.size()));
      if (titleLengths == nullptr) line = line.substr(0, line.find_last_not_of(' ') + 1);
      g.titleLines[i] = std::move(line);
    }
  }
  if (reals != nullptr) std::copy_n(reals, kGraphReals, g.reals.begin());
  if (words != nullptr) std::copy_n(words, kGraphWords, g.words.begin());

  size_t pairs = static_cast<size_t>(NonNegative(pairCount));
  g.pairX = CopyDoubles(pairX, pairs);
  g.pairY = CopyDoubles(pairY, pairs);
  g.pairZ = CopyDoubles(pairZ, pairs);
  g.pairId = CopyDoubles(pairId, pairs);

  TheStore().graphs[graphId] = std::move(g);
}

void ChartRelease(int32_t graphId) {
  zvchart::TheStore().graphs.erase(graphId);
}
