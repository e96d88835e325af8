// Test helpers for the chart stand-in: the arguments of one ChartDraw call
// built by hand, and an SVG document read back into elements.
#pragma once

#include <array>
#include <map>
#include <string>
#include <vector>

#include "zvchart/chart_host.h"

namespace chart_test {

// Everything ChartDraw takes, owned by the test, laid out as the module
// lays it out.
struct GraphInput {
  GraphInput();  // a pane record filled from the library's defaults

  zv::PaneRecord record{};
  int32_t pointWidth = 3;
  std::vector<int32_t> elementTable;
  std::vector<double> elementPoints;
  std::vector<int32_t> shapeTable;
  std::vector<double> shapePoints;
  std::vector<int32_t> markTable;
  std::vector<double> markPoints;
  std::vector<int32_t> textItems;
  std::vector<double> textNumbers;
  std::vector<char> textStrings;
  std::vector<char> titleLines;
  std::vector<int32_t> titleLengths;
  std::array<double, 28> reals{};
  std::array<int32_t, 26> words{};
  std::vector<double> pairX, pairY, pairZ, pairId;

  // One polyline; `points` holds pointWidth values per point.
  void AddElement(int32_t pen, int32_t symbol, const std::vector<double>& points);
  void AddMarks(int32_t style, const std::vector<std::array<double, 12>>& marks);
  void AddShapes(int32_t style, const std::vector<std::array<double, 4>>& shapes);
  // A plain text item of one string, or a further string of the last item
  // when that has the same kind.
  void AddText(int32_t kind, const std::string& text, double x, double y, double z = 0);
  void SetTitleLine(int line, const std::string& text);
  // A linear (log 0), logarithmic (1) or probability (2) axis with these
  // tick values; visible, minor divisions as given.
  void SetAxis(int axis, double low, double high, const std::vector<double>& ticks, int log = 0,
               int minorDivisions = 1);

  void Draw(WindowRef window, int32_t graphId, int32_t slot = 0, int32_t rowCount = 0);
};

struct SvgElement {
  std::string name;
  std::map<std::string, std::string> attributes;
  std::string text;
  std::string Attr(const std::string& key) const;
  std::string Class() const { return Attr("class"); }
};

// Parses with expat; false and the parser's message when it is not
// well-formed XML.
bool ParseSvg(const std::string& svg, std::vector<SvgElement>* elements, std::string* error);

std::vector<const SvgElement*> WithClass(const std::vector<SvgElement>& all,
                                         const std::string& name, const std::string& cls);

struct Point {
  double x, y;
};
// The vertices of a path's "d", subpath by subpath.
std::vector<std::vector<Point>> PathPoints(const SvgElement& path);

}  // namespace chart_test
