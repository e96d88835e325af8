// The pieces that the scene's builders share: constants and colours, the map
// from data to the unit square and from there to pixels, the canvas being
// composed, and the drawing routines of each kind of element, one file per
// kind (scene_axes.cpp, scene_series.cpp, scene_texts.cpp), composed by
// chart_scene.cpp. Internal to the chart library.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "chart_scene.h"

namespace zvchart {
namespace scene {

inline constexpr double kMissing = zv::kMissingValue;
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kDegree = 0.017453292519943295;
// Text height per unit of text size, as a fraction of the plot's side: the
// factor the module uses to place labels around the axes.
inline constexpr double kTextUnit = 0.003116883116883117;
inline constexpr double kCharWidth =
    0.56;  // average advance of a sans-serif character, in font sizes

inline constexpr Rgb kWhite{255, 255, 255};
inline constexpr Rgb kFrameColour{40, 40, 40};
inline constexpr Rgb kLegendBorder{150, 150, 150};

Rgb PenColour(int32_t pen);
Dash PenDash(int32_t pen);
Rgb Mix(Rgb a, Rgb b, double t);
// Colour ramp of bands and facets, t from 0 (low) to 1 (high).
Rgb RampColour(double t);
Rgb FromColourRef(uint32_t c);
// Texts come from an 8-bit code page; XML and cairo want UTF-8 without
// control characters.
std::string Latin1ToUtf8(std::string_view in);
size_t CodePoints(const std::string& utf8);

// One axis of data: its scale, and how values map onto it.
struct AxisMap {
  double low = 0;
  double span = 1;
  int32_t log = 0;  // 1 logarithmic (scale in log10 units), 2 probability
};

AxisMap MapOf(const zv::PaneRecord& r, int axis);
// Where v falls along the axis, as a fraction; NaN for a missing value.
double Fraction(const AxisMap& a, double v);

struct Rect {
  double left = 0, top = 0, width = 0, height = 0;
};

// Where the unit square (or the projected unit cube) lies on the canvas.
struct Layout {
  bool threeD = false;
  int32_t angle = 0;
  Rect flat;           // the unit square; for a 3-D graph the box around the projected cube
  double unit = 1;     // 3-D: pixels per unit of the projection
  double originX = 0;  // 3-D: pixel of the projection's origin
  double originY = 0;
  double side = 1;  // the plot's side for text sizes, in pixels
};

// The box that the projected unit cube takes, in units of the projection.
struct PlaneBox {
  double uMin = 1e300, uMax = -1e300, vMin = 1e300, vMax = -1e300;
};

PlaneBox CubeBox(int32_t angle);
Layout FlatLayout(const Rect& plot);
Layout SpaceLayout(int32_t angle, double unit, double originX, double originY);
Pixel Flat(const Layout& l, double fx, double fy);
Pixel Space(const Layout& l, double fx, double fy, double fz);
inline bool Valid(const Pixel& p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

// The canvas being composed.
struct Canvas {
  const StoredGraph& g;
  const zv::PaneRecord& r;
  Layout layout;
  RenderSize size;
  std::vector<SceneItem> items;
  std::vector<SceneItem> legend;
  int maxBand = 1;
};

// A stroked path; with no points, one whose subpaths are added later.
SceneItem Line(std::string role, std::vector<Pixel> points, Rgb colour, double width);
SceneItem FilledPolygon(std::string role, std::vector<Pixel> points, Rgb fill);

// The box that items take on the canvas.
struct Bounds {
  double left = 1e300, top = 1e300, right = -1e300, bottom = -1e300;
  void Add(double x, double y) {
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
};
void AddToBounds(Bounds& b, const SceneItem& it);

double SymbolRadius(const Layout& l);

// Frame and ticks (scene_axes.cpp).
bool AxisVisible(const zv::PaneRecord& r, int axis);
void DrawFrame(Canvas& c, bool front);
void DrawTicks(Canvas& c);
// Polylines, marks and shapes of the element lists, in the plot or as legend
// samples (scene_series.cpp).
void DrawPolylines(Canvas& c, bool legendLayer);
void DrawMarks(Canvas& c);
void DrawShapes(Canvas& c, bool legendLayer);
// Text items and the legend's box (scene_texts.cpp).
void DrawTexts(Canvas& c);
void DrawLegend(Canvas& c);

}  // namespace scene
}  // namespace zvchart
