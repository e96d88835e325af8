// Graph panes: a plot writer describes one graph in numbers and texts between
// BeginGraph and EndGraph, and EndGraph hands the description to the chart
// library. The PaneRecord (gCurrentPane) outlives a graph and keeps the user's
// edits of titles and options; the scratch below lives for one graph only.
// One graph is built at a time, module-wide: nothing here is reentrant.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"

namespace zv {

// Text kinds of the text items.
inline constexpr int32_t kTextFree = 0;  // free text, the Host's added caption too
inline constexpr int32_t kTextMainTitle = 1;
inline constexpr int32_t kTextSubTitle = 2;
inline constexpr int32_t kTextAxisTitle = 3;  // + axis - 1: 3, 4, 5
inline constexpr int32_t kTextTickLabel = 6;  // + axis - 1: 6, 7, 8
inline constexpr int32_t kTextFactor = 9;     // + axis - 1: 9, 10, 11
inline constexpr int32_t kTextLegend = 12;
inline constexpr int32_t kTextMessage = 20;  // a message in the pane

inline constexpr int32_t kTextItemWords = 11;    // count, kind, nine style words
inline constexpr int32_t kTextNumberWords = 8;   // x, y, z, length, four zeros
inline constexpr int32_t kTextStringBytes = 80;  // stored strings, blank padded
inline constexpr int32_t kTitleLineCount = 64;
inline constexpr int32_t kTitleLineBytes = 80;

// The texts of a graph. Titles may hold the placeholders "{1}" to "{4}" and,
// in legends, "{%c}": the chart library fills them from the title lines.
extern std::string gXTitle;       // kind 3
extern std::string gYTitle;       // kind 4
extern std::string gZTitle;       // kind 5
extern std::string gLegendTitle;  // the group variable's expression
extern std::string gMainTitle;    // kind 1
extern std::string gSubTitle;     // kind 2

// The element lists of the graph being built, filled by the plot writer
// between BeginGraph and EndGraph. Counts follow from the sizes.
struct GraphLists {
  // List A, polylines: three int32 per element (points, pen: 0 for no line,
  // symbol style: 0 for no marker); then the points, pointWidth doubles each:
  // x, y, [z,] and -1 for a point of a line, -2 for a legend sample, else the
  // row number from 0.
  std::vector<int32_t> elementTable;
  std::vector<double> elementPoints;
  int32_t pointWidth = 3;  // 3, or 4 with z
  // List B, points as parallel arrays; EndGraph interleaves them into the
  // points of list A. pairZ is read only with pointWidth 4.
  std::vector<double> pairX, pairY, pairZ, pairId;
  // List C, marks: two int32 per series (marks, style); kMarkValues doubles
  // per mark (a bubble, or a polygon of four corners).
  std::vector<int32_t> markTable;
  std::vector<double> markPoints;
  // List D, shapes: two int32 per series (shapes, style); kShapeValues
  // doubles per shape (left, bottom, right, top).
  std::vector<int32_t> shapeTable;
  std::vector<double> shapePoints;
};
inline constexpr size_t kMarkValues = 12;
inline constexpr size_t kShapeValues = 4;

GraphLists& CurrentGraphLists();

// Fills list A in the order the polylines are added, within the sizes that
// the plot writer gave the lists from its own count. A write beyond them is
// dropped and remembered, never made, so a miscount cannot write past a
// list; plot writers assert in debug builds that nothing overflowed.
class ElementWriter {
 public:
  // `enabled` false (the lists could not be had) writes and checks nothing.
  ElementWriter(GraphLists& lists, bool enabled) : lists_(lists), enabled_(enabled) {}
  void Begin(int32_t points, int32_t pen, int32_t symbol = 0);
  void Point(double x, double y, double id);
  bool overflowed() const { return overflowed_; }

 private:
  GraphLists& lists_;
  bool enabled_;
  bool overflowed_ = false;
  size_t element_ = 0;
  size_t point_ = 0;
};

// Resizes a list of the graph being built. false after ShowError 1001: the
// list keeps its old size and the plot goes on without it.
bool ResizeGraphList(std::vector<double>& list, size_t size);
bool ResizeGraphList(std::vector<int32_t>& list, size_t size);

// Starts a graph on gCurrentPane: releases the pane's previous graph, takes a
// new identifier from the HostRecord, resets the scratch and the axes (those
// the user fixed excepted, and all of them when the scales are kept), and
// takes back the titles of the previous graph so that the user's edits stay.
// Returns the graph identifier, for the state's graphIds[Item]; 0 after
// ShowError 1001, and the graph then draws nothing.
int32_t BeginGraph(int32_t keepScales, int32_t rowCount);

// The start of a family's plot writer for graph `item` of the analysis in
// `slot`. With `status` not 0 the graph is string 1101 alone, written here.
// Without a pane record (RedoItem1 passes none), or when BeginGraph fails
// (ShowError 1001 shown), nothing is drawn. In those cases `record` is null
// and `result` is the writer's result (1 and 0); otherwise `record` is
// gCurrentPane and the graph identifier is in the state's graphIds.
struct GraphStart {
  PaneRecord* record;
  int32_t result;
};
GraphStart StartFamilyGraph(PaneWindow* pane, int32_t slot, int32_t item);

// The legend of a plot with one series per label, in the pane's legend box:
// `title` (title line 3) at the box's corner, and each label (title lines 10
// up, shown through the placeholders {A}, {B}, ...) beside a short line
// sample in pen i + 1, written to list A. At most kLegendCapacity labels are
// drawn: count one polyline of two points for each of them.
inline constexpr size_t kLegendCapacity = 26;
void DrawLegend(const PaneRecord& record, std::string_view title,
                const std::vector<std::string>& labels, ElementWriter& list);

// Places the Host's added caption, interleaves list B, stores the text items
// in the pane record and hands the whole graph to ChartDraw. The scratch is
// empty afterwards.
void EndGraph(PaneWindow* pane, int32_t slot);

// A text at (x, y, z) in the plot's unit square. Empty texts are ignored, and
// so are titles and legends that the previous graph's kept text stands for.
void AddText(std::string_view text, int32_t kind, double x, double y, double z);

// A free text with its own style: three style words, a flag (-999: take the
// Host's gAddedTextFlag; only such a text is written while the previous
// graph's text is in force) and one further word.
void AddStyledText(std::string_view text, double x, double y, double z, int32_t style1,
                   int32_t style2, int32_t style3, int32_t flag, int32_t last);

// Placeholder line `line` (1 to 64) of the titles; at most 80 characters.
void SetTitleLine(std::string_view text, int32_t line);

// Main title and subtitle above the plot.
void PlaceTitles();

// The positions of text items as stored in the scratch: value x 100000 +
// 500000, truncated; and back.
int32_t EncodeTextPosition(double value);
double DecodeTextPosition(double stored);

}  // namespace zv
