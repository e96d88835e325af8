// Lays a stored graph out on a canvas: frame, ticks, the element lists, the
// text items and the legend, in pixel coordinates. The module places its
// texts in the plot's unit square (the unit cube for a three-dimensional
// graph), so the canvas only has to choose where that square goes: the plot
// area grows or shrinks until everything, texts included, fits the canvas.
#include "chart_scene.h"

#include <algorithm>
#include <cmath>

#include "scene_canvas.h"

namespace zvchart {
namespace {

using namespace scene;

int MaxBand(const StoredGraph& g) {
  int band = 1;
  for (const MarkSeries& s : g.marks) {
    if (s.style >= 1000 && s.style < 1100) band = std::max(band, s.style - 1000);
  }
  for (const ShapeSeries& s : g.shapes) {
    if (s.style >= 1100 && s.style < 1200) band = std::max(band, s.style - 1100);
  }
  return band;
}

Scene Compose(const StoredGraph& g, const Layout& layout, RenderSize size, bool withData) {
  Canvas c{g, g.record, layout, size, {}, {}, MaxBand(g)};
  SceneItem background = FilledPolygon("background",
                                       {{0, 0},
                                        {1.0 * size.width, 0},
                                        {1.0 * size.width, 1.0 * size.height},
                                        {0, 1.0 * size.height}},
                                       kWhite);
  background.stroked = false;
  c.items.push_back(std::move(background));

  const zv::PaneRecord& r = g.record;
  bool axes = AxisVisible(r, 0) || AxisVisible(r, 1) || (layout.threeD && AxisVisible(r, 2));
  if (axes) {
    DrawFrame(c, false);
    DrawTicks(c);
  }
  if (withData) {
    DrawShapes(c, false);
    DrawMarks(c);
    DrawPolylines(c, false);
  }
  if (axes) DrawFrame(c, true);
  DrawTexts(c);
  if (r.legendOn != 0) {  // legend texts were left out already without it
    DrawShapes(c, true);
    DrawPolylines(c, true);
  }
  DrawLegend(c);

  Scene s;
  s.width = size.width;
  s.height = size.height;
  s.clipLeft = layout.flat.left - 1;
  s.clipTop = layout.flat.top - 1;
  s.clipRight = layout.flat.left + layout.flat.width + 1;
  s.clipBottom = layout.flat.top + layout.flat.height + 1;
  s.items = std::move(c.items);
  return s;
}

Bounds LayoutBounds(const StoredGraph& g, const Layout& layout, RenderSize size) {
  Scene trial = Compose(g, layout, size, false);
  Bounds b;
  for (const SceneItem& it : trial.items) {
    if (it.role != "background" && it.role != "message") AddToBounds(b, it);
  }
  // The plot itself always takes part, drawn frame or not.
  b.Add(layout.flat.left, layout.flat.top);
  b.Add(layout.flat.left + layout.flat.width, layout.flat.top + layout.flat.height);
  return b;
}

// A flat plot: the plot area's edges move until what stands around it meets
// the canvas's edges. Texts scale with the plot, so a few rounds settle it.
Layout FitFlat(const StoredGraph& g, RenderSize size, double pad) {
  const double w = size.width, h = size.height;
  Rect plot{0.12 * w, 0.12 * h, 0.76 * w, 0.76 * h};
  for (int round = 0; round < 8; ++round) {
    Bounds b = LayoutBounds(g, FlatLayout(plot), size);
    double dl = pad - b.left, dr = (w - pad) - b.right;
    double dt = pad - b.top, db = (h - pad) - b.bottom;
    if (std::max({std::fabs(dl), std::fabs(dr), std::fabs(dt), std::fabs(db)}) < 0.5) break;
    Rect next{plot.left + dl, plot.top + dt, plot.width - dl + dr, plot.height - dt + db};
    next.width = std::clamp(next.width, 0.3 * w, w);
    next.height = std::clamp(next.height, 0.3 * h, h);
    next.left = std::clamp(next.left, 0.0, w - next.width);
    next.top = std::clamp(next.top, 0.0, h - next.height);
    plot = next;
  }
  return FlatLayout(plot);
}

// A three-dimensional plot scales as a whole: everything around the cube
// is placed in the cube's units, so one scale and one shift fit it.
Layout FitSpace(const StoredGraph& g, RenderSize size, double pad) {
  const double w = size.width - 2 * pad, h = size.height - 2 * pad;
  const int32_t angle = g.record.viewAngle;
  PlaneBox cube = CubeBox(angle);
  double unit = std::min(0.76 * w / (cube.uMax - cube.uMin), 0.76 * h / (cube.vMax - cube.vMin));
  double originX = pad + (w - (cube.uMax - cube.uMin) * unit) / 2 - cube.uMin * unit;
  double originY = pad + (h - (cube.vMax - cube.vMin) * unit) / 2 + cube.vMax * unit;
  for (int round = 0; round < 6; ++round) {
    Bounds b = LayoutBounds(g, SpaceLayout(angle, unit, originX, originY), size);
    double left = (b.left - originX) / unit, right = (b.right - originX) / unit;
    double top = (b.top - originY) / unit, bottom = (b.bottom - originY) / unit;
    double next = std::min(w / (right - left), h / (bottom - top));
    double nextX = pad + (w - (right - left) * next) / 2 - left * next;
    double nextY = pad + (h - (bottom - top) * next) / 2 - top * next;
    bool settled = std::fabs(next - unit) * (right - left) < 0.5 &&
                   std::fabs(nextX - originX) < 0.5 && std::fabs(nextY - originY) < 0.5;
    unit = next;
    originX = nextX;
    originY = nextY;
    if (settled) break;
  }
  return SpaceLayout(angle, unit, originX, originY);
}

}  // namespace

double StampExtent(const SceneItem& it) {
  double extent = it.kind == ItemKind::kCircle ? it.radius : 0.0;
  for (const auto& sub : it.subpaths) {
    for (Pixel p : sub) extent = std::max({extent, std::fabs(p.x), std::fabs(p.y)});
  }
  return extent + (it.stroked ? it.strokeWidth : 0.0);
}

PlanePoint ProjectUnitCube(double x, double y, double z, int32_t viewAngleDegrees) {
  double a = viewAngleDegrees * kDegree;
  return {x + kDepthScale * y * std::cos(a), z + kDepthScale * y * std::sin(a)};
}

Scene BuildScene(const StoredGraph& g, RenderSize size) {
  size.width = std::clamp(size.width, 64, 8192);
  size.height = std::clamp(size.height, 64, 8192);
  const double pad = std::max(6.0, 0.02 * std::min(size.width, size.height));
  Layout layout = g.record.threeD == 1 ? FitSpace(g, size, pad) : FitFlat(g, size, pad);
  return Compose(g, layout, size, true);
}

}  // namespace zvchart
