// The pictures: SVG read back with expat, PNG read back with cairo.
#include <cairo.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "chart_support.h"

namespace {

using chart_test::GraphInput;
using chart_test::ParseSvg;
using chart_test::PathPoints;
using chart_test::Point;
using chart_test::SvgElement;
using chart_test::WithClass;

class ChartRender : public ::testing::Test {
 protected:
  void SetUp() override { zvchart::ReleaseAllGraphs(); }
  void TearDown() override { zvchart::ReleaseAllGraphs(); }

  std::vector<SvgElement> Svg(int32_t graphId) {
    std::string svg = zvchart::ChartRenderSvg(graphId);
    std::vector<SvgElement> elements;
    std::string error;
    EXPECT_TRUE(ParseSvg(svg, &elements, &error)) << error << "\n" << svg;
    return elements;
  }
};

std::vector<std::string> Texts(const std::vector<SvgElement>& all, const std::string& cls) {
  std::vector<std::string> out;
  for (const SvgElement* e : WithClass(all, "text", cls)) out.push_back(e->text);
  return out;
}

// The <use> elements that repeat the symbol with this id.
std::vector<const SvgElement*> Uses(const std::vector<SvgElement>& all, const std::string& id) {
  std::vector<const SvgElement*> found;
  for (const SvgElement& e : all) {
    if (e.name == "use" && e.Attr("xlink:href") == "#" + id) found.push_back(&e);
  }
  return found;
}

// The id of the one symbol defined for <use>.
std::string DefinedSymbol(const std::vector<SvgElement>& all) {
  std::string id;
  for (const SvgElement* e : WithClass(all, "path", "symbol")) {
    if (!e->Attr("id").empty()) {
      EXPECT_TRUE(id.empty()) << "a second definition " << e->Attr("id");
      id = e->Attr("id");
    }
  }
  return id;
}

// Filled dots drawn as round-capped strokes down columns of spots: each run's
// x, first and last y.
struct DotRun {
  double x, top, bottom;
};
std::vector<DotRun> DotRuns(const std::vector<SvgElement>& all, double* width) {
  std::vector<DotRun> runs;
  for (const SvgElement* e : WithClass(all, "path", "symbol")) {
    if (e->Attr("stroke-linecap") != "round") continue;
    *width = std::stod(e->Attr("stroke-width"));
    const std::string d = e->Attr("d");
    for (const char* p = d.c_str(); *p == 'M';) {
      char* end;
      DotRun r{};
      r.x = std::strtod(p + 1, &end);
      r.top = r.bottom = std::strtod(end, &end);
      if (*end == 'V') r.bottom = std::strtod(end + 1, &end);
      if (*end == 'v') std::strtod(end + 1, &end);
      runs.push_back(r);
      p = end;
    }
  }
  return runs;
}

// The plot square from the closed frame: left, top, width, height.
struct Box {
  double left, top, width, height;
};
Box FrameBox(const std::vector<SvgElement>& all) {
  auto frames = WithClass(all, "path", "frame");
  EXPECT_EQ(frames.size(), 1u);
  if (frames.empty()) return {0, 0, 1, 1};
  auto pts = PathPoints(*frames[0])[0];
  double l = 1e9, r = -1e9, t = 1e9, b = -1e9;
  for (Point p : pts) {
    l = std::min(l, p.x);
    r = std::max(r, p.x);
    t = std::min(t, p.y);
    b = std::max(b, p.y);
  }
  return {l, t, r - l, b - t};
}

// A two-group product-limit step plot as its plot writer describes it:
// x 0 to 10 by 2, y 0 to 1 by 0.2, legend with two samples.
GraphInput StepPlot() {
  GraphInput in;
  in.SetAxis(0, 0, 10, {0, 2, 4, 6, 8, 10}, 0, 4);
  in.SetAxis(1, 0, 1, {0, 0.2, 0.4, 0.6, 0.8, 1.0}, 0, 2);
  in.record.legendOn = 1;
  in.AddElement(1, 0, {0, 1, -1, 2, 1, -1, 2, 0.8, -1, 5, 0.8, -1, 5, 0.5, -1, 9, 0.5, -1});
  in.AddElement(2, 0, {0, 1, -1, 3, 1, -1, 3, 0.6, -1, 7, 0.6, -1, 7, 0.2, -1, 10, 0.2, -1});
  const double lx = in.record.legendBox[0], ly = in.record.legendBox[1];
  const double lh = in.record.legendBox[3];
  for (int i = 0; i < 2; ++i) {
    double y = ly + (-1 - i) * lh;
    in.AddElement(i + 1, 0, {(lx - 0.03) * 10, y, -2, (lx + 0.03) * 10, y, -2});
  }
  const char* xLabels[] = {"0", "2", "4", "6", "8", "10"};
  for (int i = 0; i < 6; ++i) in.AddText(6, xLabels[i], i / 5.0, -0.07);
  const char* yLabels[] = {"0", "0.2", "0.4", "0.6", "0.8", "1"};
  for (int i = 0; i < 6; ++i) in.AddText(7, yLabels[i], -0.05, i / 5.0);
  in.AddText(3, "{1}", 0.5, -0.17);
  in.AddText(4, "survival probability", -0.14, 0.5);
  in.AddText(1, "Estimated Survival Function", 0.5, 1.13);
  in.AddText(12, "{3}", lx, ly);
  in.AddText(12, "{A}", lx + in.record.legendBox[2], ly - lh);
  in.AddText(12, "{%b}", lx + in.record.legendBox[2], ly - 2 * lh);
  in.SetTitleLine(1, "Months & <days>");
  in.SetTitleLine(3, "Treatment");
  in.SetTitleLine(10, "drug");
  in.SetTitleLine(11, "placebo");
  return in;
}

TEST_F(ChartRender, StepPlotIsWellFormedAndComplete) {
  StepPlot().Draw(10, 1);
  auto all = Svg(1);
  ASSERT_FALSE(all.empty());
  EXPECT_EQ(all[0].name, "svg");
  // Two curves and two legend samples, one path each.
  EXPECT_EQ(WithClass(all, "path", "series").size(), 4u);
  EXPECT_EQ(Texts(all, "tick-label"), (std::vector<std::string>{"0", "2", "4", "6", "8", "10", "0",
                                                                "0.2", "0.4", "0.6", "0.8", "1"}));
  // Placeholders filled, with the characters XML must escape.
  EXPECT_EQ(Texts(all, "axis-title"),
            (std::vector<std::string>{"Months & <days>", "survival probability"}));
  EXPECT_EQ(Texts(all, "title"), (std::vector<std::string>{"Estimated Survival Function"}));
  EXPECT_EQ(Texts(all, "legend-text"), (std::vector<std::string>{"Treatment", "drug", "placebo"}));
  EXPECT_EQ(WithClass(all, "path", "legend").size(), 1u);
  // Six major and 5 x 3 minor ticks on x, six major and 5 x 1 minor on y.
  auto major = WithClass(all, "path", "tick");
  auto minor = WithClass(all, "path", "tick-minor");
  ASSERT_EQ(major.size(), 2u);
  ASSERT_EQ(minor.size(), 2u);
  EXPECT_EQ(PathPoints(*major[0]).size(), 6u);
  EXPECT_EQ(PathPoints(*minor[0]).size(), 15u);
  EXPECT_EQ(PathPoints(*minor[1]).size(), 5u);
  // The first curve's corner at (2, 0.8) stands at 0.2 and 0.8 of the frame.
  Box box = FrameBox(all);
  auto curve = PathPoints(*WithClass(all, "path", "series")[0])[0];
  ASSERT_EQ(curve.size(), 6u);
  EXPECT_NEAR((curve[2].x - box.left) / box.width, 0.2, 1e-4);
  EXPECT_NEAR((box.top + box.height - curve[2].y) / box.height, 0.8, 1e-4);
  // Everything stays on the canvas.
  for (const SvgElement& e : all) {
    if (e.name != "text") continue;
    SCOPED_TRACE(e.text);
    EXPECT_GE(std::stod(e.Attr("x")), 0.0);
    EXPECT_LE(std::stod(e.Attr("x")), 640.0);
    EXPECT_GE(std::stod(e.Attr("y")), 0.0);
    EXPECT_LE(std::stod(e.Attr("y")), 480.0);
  }
  // Without legendOn the legend and its samples are not drawn.
  GraphInput noLegend = StepPlot();
  noLegend.record.legendOn = 0;
  noLegend.Draw(10, 2);
  all = Svg(2);
  EXPECT_EQ(WithClass(all, "path", "series").size(), 2u);
  EXPECT_TRUE(Texts(all, "legend-text").empty());
  EXPECT_TRUE(WithClass(all, "path", "legend").empty());
}

// Missing values break a line; a symbol is drawn at each plotted point.
TEST_F(ChartRender, MissingValuesBreakLinesAndSymbolsCount) {
  GraphInput in;
  in.SetAxis(0, 0, 4, {0, 2, 4});
  in.SetAxis(1, 0, 4, {0, 2, 4});
  const double m = zv::kMissingValue;
  in.AddElement(3, 0, {0, 1, -1, 1, 2, -1, 2, m, -1, 3, 1, -1, 4, 2, -1});
  in.AddElement(0, 1, {1, 1, 0, 2, 2, 1, 3, 3, 2});  // dots only
  in.AddElement(0, 2, {1, 3, 5});
  in.Draw(1, 3);
  auto all = Svg(3);
  auto series = WithClass(all, "path", "series");
  ASSERT_EQ(series.size(), 1u);
  EXPECT_EQ(PathPoints(*series[0]).size(), 2u);  // two runs around the gap
  // Filled dots are round caps; another symbol is defined once and used.
  double width = 0;
  EXPECT_EQ(DotRuns(all, &width).size(), 3u);
  EXPECT_EQ(Uses(all, DefinedSymbol(all)).size(), 1u);
}

// Many markers on few spots: each spot is drawn once, at most a quarter
// pixel from its points, filled dots down a column as one stroke from the
// first spot to the last; points beyond the plot are left out of the
// picture, while the stored graph keeps every point.
TEST_F(ChartRender, RepeatedMarkersDrawnOncePerSpot) {
  GraphInput in;
  in.SetAxis(0, 0, 10, {0, 5, 10});
  in.SetAxis(1, 0, 10, {0, 5, 10});
  std::vector<double> points;
  for (int i = 0; i < 5000; ++i) {
    points.insert(points.end(), {2.0 + (i % 2) * 1e-6, 3.0, 0.0});  // all on one spot
  }
  for (int i = 0; i < 1000; ++i) {
    points.insert(points.end(), {7.0, 5.0 + i * 1e-3, 0.0});  // a column, far below a pixel apart
  }
  points.insert(points.end(), {30.0, 3.0, 0.0});  // beyond the x axis
  in.AddElement(0, 1, points);                    // filled dots
  in.AddElement(0, 2, points);                    // squares
  in.Draw(1, 10);
  ASSERT_EQ(zvchart::FindGraph(10)->elements[0].values.size(), points.size());
  auto all = Svg(10);
  Box plot = FrameBox(all);
  auto near = [](double a, double b) { return std::fabs(a - b) <= 0.25 + 0.01; };  // frame to 0.01
  const Point spot{plot.left + 0.2 * plot.width, plot.top + 0.7 * plot.height};
  const double columnX = plot.left + 0.7 * plot.width;
  const double columnTop = plot.top + (1 - 0.5999) * plot.height;
  const double columnBottom = plot.top + 0.5 * plot.height;

  double width = 0;
  auto runs = DotRuns(all, &width);
  ASSERT_EQ(runs.size(), 2u);  // sorted by x
  EXPECT_TRUE(near(runs[0].x, spot.x) && near(runs[0].top, spot.y) &&
              runs[0].bottom == runs[0].top);
  EXPECT_TRUE(near(runs[1].x, columnX) && near(runs[1].top, columnTop) &&
              near(runs[1].bottom, columnBottom));

  auto uses = Uses(all, DefinedSymbol(all));
  // One use on the spot and one per half pixel down the column.
  const double column = columnBottom - columnTop;
  EXPECT_GE(uses.size(), 1 + std::floor(2 * column) + 1 - 0.5);
  EXPECT_LE(uses.size(), 1 + std::ceil(2 * column) + 1 + 0.5);
  for (const SvgElement* u : uses) {
    double x = std::stod(u->Attr("x")), y = std::stod(u->Attr("y"));
    SCOPED_TRACE(u->Attr("x") + " " + u->Attr("y"));
    EXPECT_EQ(std::fmod(x * 2, 1.0), 0.0);  // on the half-pixel grid
    EXPECT_EQ(std::fmod(y * 2, 1.0), 0.0);
    EXPECT_TRUE(near(x, spot.x)
                    ? near(y, spot.y)
                    : near(x, columnX) && y >= columnTop - 0.26 && y <= columnBottom + 0.26);
  }
}

// A line of many points within a pixel or two is thinned in the picture, never in
// the stored graph; it starts and ends where its points do.
TEST_F(ChartRender, LineThinnedWithinPixels) {
  GraphInput in;
  in.SetAxis(0, 0, 4, {0, 2, 4});
  in.SetAxis(1, 0, 4, {0, 2, 4});
  std::vector<double> points = {2, 2, -1};
  for (int i = 1; i <= 10000; ++i) points.insert(points.end(), {2 + 1e-7 * i, 2, -1});
  points.insert(points.end(), {4, 4, -1});
  in.AddElement(1, 0, points);
  in.Draw(1, 11);
  ASSERT_EQ(zvchart::FindGraph(11)->elements[0].values.size(), points.size());
  auto all = Svg(11);
  Box plot = FrameBox(all);
  auto series = WithClass(all, "path", "series");
  ASSERT_EQ(series.size(), 1u);
  auto runs = PathPoints(*series[0]);
  ASSERT_EQ(runs.size(), 1u);
  const auto& v = runs[0];
  // The points go 0.001 of the axis along, into at most two pixels: the
  // first and last point of each, then the far corner.
  ASSERT_GE(v.size(), 3u);
  EXPECT_LE(v.size(), 5u);
  EXPECT_NEAR(v.front().x, plot.left + plot.width / 2, 0.02);
  EXPECT_NEAR(v.front().y, plot.top + plot.height / 2, 0.02);
  EXPECT_NEAR(v.back().x, plot.left + plot.width, 0.02);
  EXPECT_NEAR(v.back().y, plot.top, 0.02);
}

// Bubbles, band polygons of a flat contour map, and histogram bars.
TEST_F(ChartRender, MarksAndShapes) {
  GraphInput in;
  in.SetAxis(0, 0, 10, {0, 5, 10});
  in.SetAxis(1, 0, 10, {0, 5, 10});
  in.AddMarks(-1, {{{2, 2, 5, 0}}, {{5, 5, 10, 1}}});
  in.AddMarks(-1002, {{{8, 8, 3, 2}}});
  in.AddMarks(1001, {{{0, 0, 0.5, 0, 0.5, 0.5, 0, 0.5}}});
  in.AddMarks(1002, {{{0.5, 0, 1, 0, 1, 0.5, 0.5, 0}}});  // a triangle: last corner repeats
  in.AddShapes(1, {{{0.1, 0, 0.2, 0.4}}, {{0.2, 0, 0.3, 0.7}}});
  in.Draw(1, 4);
  auto all = Svg(4);
  EXPECT_EQ(WithClass(all, "circle", "mark").size(), 3u);
  EXPECT_EQ(WithClass(all, "path", "mark").size(), 2u);
  auto bars = WithClass(all, "path", "shape");
  ASSERT_EQ(bars.size(), 2u);
  Box box = FrameBox(all);
  auto bar = PathPoints(*bars[1])[0];
  double top = std::min(bar[0].y, bar[2].y);
  EXPECT_NEAR((box.top + box.height - top) / box.height, 0.7, 1e-4);
  // The two band colours differ.
  auto polys = WithClass(all, "path", "mark");
  EXPECT_NE(polys[0]->Attr("fill"), polys[1]->Attr("fill"));
}

// x on a logarithmic axis from 1 to 1000: the scale holds 0 and 3.
TEST_F(ChartRender, LogAndProbabilityAxesPlaceTheirTicks) {
  GraphInput in;
  in.SetAxis(0, 0, 3, {0, 1, 2, 3}, 1);
  in.SetAxis(1, 0, 1, {0, 1});
  in.record.minorOn[0] = 1;
  in.AddElement(1, 0, {10, 0.5, -1, 100, 0.5, -1, 0, 0.5, -1});  // 0 has no logarithm
  in.Draw(1, 5);
  auto all = Svg(5);
  Box box = FrameBox(all);
  auto line = PathPoints(*WithClass(all, "path", "series")[0]);
  ASSERT_EQ(line.size(), 1u);
  ASSERT_EQ(line[0].size(), 2u);
  EXPECT_NEAR((line[0][0].x - box.left) / box.width, 1.0 / 3.0, 1e-4);
  EXPECT_NEAR((line[0][1].x - box.left) / box.width, 2.0 / 3.0, 1e-4);
  // Eight minor ticks per decade, at log10(2) .. log10(9) of it.
  auto minor = WithClass(all, "path", "tick-minor");
  ASSERT_EQ(minor.size(), 1u);
  auto ticks = PathPoints(*minor[0]);
  ASSERT_EQ(ticks.size(), 24u);
  EXPECT_NEAR((ticks[0][0].x - box.left) / box.width, 0.30103 / 3, 1e-4);  // 2
  EXPECT_NEAR((ticks[7][0].x - box.left) / box.width, 0.95424 / 3, 1e-4);  // 9

  // The probability axis: 17 ticks spaced by the 16 increments.
  GraphInput probability;
  probability.SetAxis(0, 0, 1, {0, 1});
  probability.SetAxis(1, -6.907, 1.933, std::vector<double>(17, 1.0), 2);
  probability.Draw(1, 6);
  all = Svg(6);
  box = FrameBox(all);
  auto tickPaths = WithClass(all, "path", "tick");
  ASSERT_EQ(tickPaths.size(), 2u);
  auto y = PathPoints(*tickPaths[1]);
  ASSERT_EQ(y.size(), 17u);
  // Running sums of the increments: 0.18229, 0.26100, ... 1.
  const double expected[] = {0, 0.18229, 0.26100, 0.44537, 1.0};
  const int index[] = {0, 1, 2, 3, 16};
  for (int i = 0; i < 5; ++i) {
    SCOPED_TRACE(index[i]);
    EXPECT_NEAR((box.top + box.height - y[index[i]][0].y) / box.height, expected[i], 1e-4);
  }
  EXPECT_TRUE(WithClass(all, "path", "tick-minor").empty());
}

// The projection of the unit cube: u = x + y cos(a) / 2, v = z + y sin(a) / 2.
TEST_F(ChartRender, ProjectionOfTheUnitCube) {
  struct Row {
    int line;
    double x, y, z;
    int angle;
    double u, v;
  };
  const Row kRows[] = {
      {__LINE__, 1, 1, 1, 30, 1.4330127018922193, 1.25},  // cos 30 = 0.8660254
      {__LINE__, 0, 1, 0, 45, 0.3535533905932738, 0.3535533905932738},
      {__LINE__, 1, 0, 0.5, 60, 1.0, 0.5},
      {__LINE__, 0, 1, 0, 90, 0.0, 0.5},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    zvchart::PlanePoint p = zvchart::ProjectUnitCube(r.x, r.y, r.z, r.angle);
    EXPECT_NEAR(p.u, r.u, 1e-12);
    EXPECT_NEAR(p.v, r.v, 1e-12);
  }
}

// A three-dimensional graph draws the cube's edges at the projected corners,
// up to one uniform scale and a shift, and puts its points in the cube.
TEST_F(ChartRender, ThreeDimensionalGraphProjectsTheCube) {
  GraphInput in;
  in.record.threeD = 1;
  in.record.viewAngle = 30;
  in.record.frameKind = 1;
  in.pointWidth = 4;
  in.SetAxis(0, -2, 2, {-2, 0, 2});
  in.SetAxis(1, 0, 10, {0, 5, 10});
  in.SetAxis(2, 0, 100, {0, 50, 100});
  in.AddElement(1, 0, {0, 10, 25, -1, 2, 10, 25, -1});
  in.Draw(1, 7);
  auto all = Svg(7);
  std::vector<Point> corners;
  for (const SvgElement* f : WithClass(all, "path", "frame")) {
    for (const auto& sub : PathPoints(*f)) corners.insert(corners.end(), sub.begin(), sub.end());
  }
  ASSERT_EQ(corners.size(), 24u);  // twelve edges
  double left = 1e9, right = -1e9, top = 1e9, bottom = -1e9;
  for (Point p : corners) {
    left = std::min(left, p.x);
    right = std::max(right, p.x);
    top = std::min(top, p.y);
    bottom = std::max(bottom, p.y);
  }
  // The projected cube spans u 0..1.4330 and v 0..1.25: one scale for both.
  const double c = std::cos(30 * std::numbers::pi / 180) / 2,
               s = std::sin(30 * std::numbers::pi / 180) / 2;
  double k = (right - left) / (1 + c);
  EXPECT_NEAR((bottom - top) / (1 + s), k, 0.02);
  for (int i = 0; i < 8; ++i) {
    double x = i & 1, y = (i >> 1) & 1, z = (i >> 2) & 1;
    Point want{left + (x + c * y) * k, bottom - (z + s * y) * k};
    bool found = std::any_of(corners.begin(), corners.end(), [&](Point p) {
      return std::fabs(p.x - want.x) < 0.02 && std::fabs(p.y - want.y) < 0.02;
    });
    EXPECT_TRUE(found) << "corner " << x << y << z;
  }
  // (0, 10, 25) is the cube's (0.5, 1, 0.25).
  auto line = PathPoints(*WithClass(all, "path", "series")[0])[0];
  EXPECT_NEAR(line[0].x, left + (0.5 + c) * k, 0.02);
  EXPECT_NEAR(line[0].y, bottom - (0.25 + s) * k, 0.02);
}

// A pane whose analysis failed shows its message in the middle and no axes;
// an unknown graph gives nothing.
TEST_F(ChartRender, MessageOnlyAndUnknownGraphs) {
  GraphInput in;
  in.AddText(20, "No results", 0, 1.0);
  in.Draw(1, 8);
  auto all = Svg(8);
  EXPECT_TRUE(WithClass(all, "path", "frame").empty());
  auto message = WithClass(all, "text", "message");
  ASSERT_EQ(message.size(), 1u);
  EXPECT_EQ(message[0]->text, "No results");
  EXPECT_EQ(message[0]->Attr("x"), "320");

  EXPECT_EQ(zvchart::ChartRenderSvg(404), "");
  EXPECT_FALSE(zvchart::ChartRenderPng(404, ZV_BIN_DIR "/never.png"));
  EXPECT_EQ(zvchart::RenderWindowSvg(404), "");
}

// Counts the pixels that are not white, to see that something was drawn.
int InkedPixels(const std::string& path, int* width, int* height) {
  cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
  int inked = -1;
  if (cairo_surface_status(image) == CAIRO_STATUS_SUCCESS) {
    *width = cairo_image_surface_get_width(image);
    *height = cairo_image_surface_get_height(image);
    int stride = cairo_image_surface_get_stride(image);
    const unsigned char* data = cairo_image_surface_get_data(image);
    inked = 0;
    for (int y = 0; y < *height; ++y) {
      const auto* row = reinterpret_cast<const uint32_t*>(data + y * stride);
      for (int x = 0; x < *width; ++x) inked += (row[x] & 0xFFFFFF) != 0xFFFFFF;
    }
  }
  cairo_surface_destroy(image);
  return inked;
}

// Writes the step plot as PNG, the picture looked at by eye.
TEST_F(ChartRender, PngPictureIsWritten) {
  StepPlot().Draw(21, 9);
  const std::string step = ZV_BIN_DIR "/chart_step_plot.png";
  ASSERT_TRUE(zvchart::RenderWindowPng(21, step));
  int w = 0, h = 0;
  int inked = InkedPixels(step, &w, &h);
  EXPECT_EQ(w, 640);
  EXPECT_EQ(h, 480);
  EXPECT_GT(inked, 2000);
  EXPECT_LT(inked, 640 * 480 / 4);
}

// Dots painted from one stamp: solid in the pen colour at each centre the
// SVG gives, each about a disc as wide as the SVG's stroke,
// and nothing beyond the plot's clip.
TEST_F(ChartRender, PngDotsStampedWhereTheSvgPlacesThem) {
  GraphInput in;
  in.SetAxis(0, 0, 10, {0, 5, 10});
  in.SetAxis(1, 0, 10, {0, 5, 10});
  in.AddElement(0, 1, {2, 2, 0, 4.03, 6.01, 1, 6.07, 3.02, 2, 8.05, 8.04, 3, 10, 5, 4});
  in.Draw(1, 12);
  auto all = Svg(12);
  double width = 0;
  auto dots = DotRuns(all, &width);
  ASSERT_EQ(dots.size(), 5u);
  const double r = width / 2;
  const auto fill = WithClass(all, "path", "symbol")[0]->Attr("stroke");
  const std::string path = ZV_BIN_DIR "/chart_dots.png";
  ASSERT_TRUE(zvchart::ChartRenderPng(12, path));
  cairo_surface_t* image = cairo_image_surface_create_from_png(path.c_str());
  ASSERT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
  const int stride = cairo_image_surface_get_stride(image);
  const unsigned char* data = cairo_image_surface_get_data(image);
  auto pixel = [&](double x, double y) {
    return reinterpret_cast<const uint32_t*>(data +
                                             static_cast<int>(y) * stride)[static_cast<int>(x)] &
           0xFFFFFF;
  };
  const uint32_t pen = std::stoul(fill.substr(1), nullptr, 16);
  Box plot = FrameBox(all);
  const double clipRight = plot.left + plot.width + 1;
  for (const DotRun& dot : dots) {
    const double x = dot.x, y = dot.top;
    SCOPED_TRACE(std::to_string(x) + " " + std::to_string(y));
    EXPECT_EQ(pixel(x, y), pen);
    EXPECT_EQ(pixel(x - r + 2, y), pen);
    EXPECT_EQ(pixel(x - r - 1.5, y), 0xFFFFFFu);
    if (x < clipRight - r - 2) {
      for (double d : {r - 2, -(r - 2)}) EXPECT_EQ(pixel(x, y + d), pen);
      for (double d : {r + 1.5, -(r + 1.5)}) EXPECT_EQ(pixel(x, y + d), 0xFFFFFFu);
      EXPECT_EQ(pixel(x + r - 2, y), pen);
      EXPECT_EQ(pixel(x + r + 1.5, y), 0xFFFFFFu);
    } else {  // the dot on the right edge: cut at the clip
      EXPECT_EQ(pixel(clipRight + 1, y), 0xFFFFFFu);
    }
  }
  // Pixels of the pen colour, a little less than four whole discs and half of
  // the fifth (antialiased edges are mixed with white).
  int solid = 0;
  for (int y = 0; y < cairo_image_surface_get_height(image); ++y) {
    for (int x = 0; x < cairo_image_surface_get_width(image); ++x) solid += pixel(x, y) == pen;
  }
  const double discs = 4.5 * std::numbers::pi * r * r;
  EXPECT_GT(solid, 0.6 * discs);
  EXPECT_LT(solid, 1.05 * discs);
  cairo_surface_destroy(image);
}

}  // namespace
