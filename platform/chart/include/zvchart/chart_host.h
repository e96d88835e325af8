// The Host's side of the chart library: the graphs it holds, read back as
// the module described them, and their pictures as SVG or PNG.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "zvchart/zvchart.h"

namespace zvchart {

inline constexpr int kTitleLineCount = 64;
inline constexpr int kTitleLineWidth = 80;
inline constexpr int kTextStringWidth = 80;
inline constexpr int kTextItemWords = 11;
inline constexpr int kTextNumberCount = 8;  // doubles per string
inline constexpr int kMarkValues = 12;      // doubles per mark of list C
inline constexpr int kShapeValues = 4;      // doubles per shape of list D
inline constexpr int kGraphReals = 28;
inline constexpr int kGraphWords = 26;
inline constexpr double kLegendSampleTag = -2.0;

// A polyline of list A. `points` is the count as the module declared it;
// `values` holds pointWidth doubles per point that the point array really
// had, so it is shorter than points x pointWidth only when the element table
// asked for more points than were passed.
struct Polyline {
  int32_t points = 0;
  int32_t pen = 0;     // element kind; 0 draws no line
  int32_t symbol = 0;  // option; 0 draws no marker
  std::vector<double> values;
};

// A series of list C: `marks` records of 12 doubles. A negative style is a
// bubble (x, y in data units, display size, row); a positive style a polygon
// of four corners in fractions of the axes (x, y, z each, or x, y and four
// unused values in a flat graph).
struct MarkSeries {
  int32_t marks = 0;
  int32_t style = 0;
  std::vector<double> values;
};

// A series of list D: `shapes` rectangles of four doubles (left, bottom,
// right, top) in fractions of the plot. Styles below 100 are bar pens, from
// 100 on legend boxes.
struct ShapeSeries {
  int32_t shapes = 0;
  int32_t style = 0;
  std::vector<double> values;
};

struct TextString {
  std::string text;  // cut at the length in numbers[3], or blank-trimmed if that is unusable
  double x = 0, y = 0, z = 0;  // place in the plot's unit square (numbers[0..2])
  std::array<double, kTextNumberCount> numbers{};
};

struct TextItem {
  int32_t count = 0;  // strings as declared
  int32_t kind = 0;
  std::array<int32_t, 9> words{};  // 0 for a plain item; style words for a styled one
  std::vector<TextString> strings;
};

// Everything one ChartDraw call handed over, copied.
struct StoredGraph {
  int32_t graphId = 0;
  WindowRef window = 0;
  int32_t slot = 0;
  int32_t rowCount = 0;
  const zv::ProcedureState* state = nullptr;  // not owned: identifies the analysis only
  uint64_t sequence = 0;                      // order of the draws, for the window's current graph

  // The pane record from `frame` (offset 0x018) to its end, as passed;
  // `window` and `graphId` are the call's, the four words before `frame` 0.
  zv::PaneRecord record{};

  int32_t pointWidth = 3;
  int32_t pointCount = 0;
  std::vector<Polyline> elements;  // list A
  int32_t markPointCount = 0;
  std::vector<MarkSeries> marks;  // list C
  int32_t shapePointCount = 0;
  std::vector<ShapeSeries> shapes;  // list D
  int32_t textStringCount = 0;
  std::vector<TextItem> textItems;
  std::array<std::string, kTitleLineCount> titleLines;  // line n at index n - 1
  std::array<double, kGraphReals> reals{};              // dataRange (8), scale (8), chartReals (12)
  std::array<int32_t, kGraphWords> words{};
  std::vector<double> pairX, pairY, pairZ, pairId;  // list B, empty where a pointer was null
};

// Lookups. The pointers stay valid until that graph is released or redrawn.
const StoredGraph* FindGraph(int32_t graphId);
// The window's current graph: the last one drawn for it that is still held.
const StoredGraph* FindGraphByWindow(WindowRef window);
size_t GraphCount();
void ReleaseAllGraphs();

// The options most recently given to ChartPutOptions.
struct ChartOptions {
  std::array<int32_t, zv::kIntegerOptionWords> words{};
  std::array<double, zv::kRealOptionCount> reals{};
  bool given = false;
};
const ChartOptions& CurrentOptions();

// Word numbers of the integer option block that the library gives meaning.
inline constexpr int kWordFrameKind = 3;  // 1 and 3: closed frame
inline constexpr int kWordTickSide = 9;   // 9..11, -1 = outward
inline constexpr int kWordMinorOn = 12;   // 12..14
inline constexpr int kWordTickLength = 15;
inline constexpr int kWordTickGap = 16;
inline constexpr int kWordTextStyleL = 239;  // 239..258: 1 = bold
inline constexpr int kWordTextStyleK = 219;  // 219..238: text size of kinds 1..20
inline constexpr int kWordTextColor = 607;   // 607..622: four colours, one byte per word
inline constexpr int kWordLegendOn = 639;
inline constexpr int kWordViewAngle = 646;
inline constexpr int kRealLegendBox = 11;  // 11..14: x, y, text offset, line height

// Moves an option block pair into a pane record and back, word by word as
// the record's layout lists them.
void OptionsToRecord(const int32_t* words, const double* reals, zv::PaneRecord& record);
void RecordToOptions(const zv::PaneRecord& record, int32_t* words, double* reals);

// A title text with "{1}" to "{9}" replaced by title lines 1 to 9 and "{A}"
// to "{Z}" (also written "{%A}" or "{%a}") by lines 10 on.
std::string ExpandPlaceholders(std::string_view text, const StoredGraph& graph);

// The oblique projection of three-dimensional graphs: z up, depth y drawn at
// viewAngle above the horizontal, foreshortened by one half.
struct PlanePoint {
  double u = 0, v = 0;
};
inline constexpr double kDepthScale = 0.5;
PlanePoint ProjectUnitCube(double x, double y, double z, int32_t viewAngleDegrees);

// Pictures. An unknown graph gives an empty text or false.
struct RenderSize {
  int width = 640;
  int height = 480;
};
std::string RenderSvg(const StoredGraph& graph, RenderSize size = {});
bool RenderPng(const StoredGraph& graph, const std::string& path, RenderSize size = {});
std::string ChartRenderSvg(int32_t graphId, RenderSize size = {});
bool ChartRenderPng(int32_t graphId, const std::string& path, RenderSize size = {});
std::string RenderWindowSvg(WindowRef window, RenderSize size = {});
bool RenderWindowPng(WindowRef window, const std::string& path, RenderSize size = {});

}  // namespace zvchart
