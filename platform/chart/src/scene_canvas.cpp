// Colours, the maps from data to pixels, and the canvas's small builders.
#include "scene_canvas.h"

#include <algorithm>
#include <cmath>

namespace zvchart {
namespace scene {

// Ten pens that stay apart in colour; pen 6 is the grey of confidence limits.
constexpr Rgb kPenColours[10] = {{31, 78, 156},  {192, 57, 43},   {46, 139, 87},  {142, 68, 173},
                                 {214, 137, 16}, {110, 110, 110}, {23, 162, 184}, {139, 69, 19},
                                 {232, 67, 147}, {44, 62, 80}};

// Colour ramp of bands and facets, low to high.
constexpr Rgb kRamp[5] = {
    {44, 123, 182}, {171, 217, 233}, {255, 255, 191}, {253, 174, 97}, {215, 25, 28}};

Rgb PenColour(int32_t pen) {
  int32_t i = pen > 0 ? (pen - 1) % 10 : 0;
  return kPenColours[i];
}

Dash PenDash(int32_t pen) {
  if (pen == 6) return Dash::kDashed;
  if (pen > 20) return Dash::kDotted;
  if (pen > 10) return Dash::kDashed;
  return Dash::kSolid;
}

Rgb Mix(Rgb a, Rgb b, double t) {
  auto m = [t](uint8_t x, uint8_t y) {
    return static_cast<uint8_t>(std::lround(x + (y - x) * std::clamp(t, 0.0, 1.0)));
  };
  return {m(a.r, b.r), m(a.g, b.g), m(a.b, b.b)};
}

Rgb RampColour(double t) {
  t = std::clamp(std::isfinite(t) ? t : 0.5, 0.0, 1.0) * 4.0;
  int i = std::min(3, static_cast<int>(t));
  return Mix(kRamp[i], kRamp[i + 1], t - i);
}

Rgb FromColourRef(uint32_t c) {
  return {static_cast<uint8_t>(c & 0xFF), static_cast<uint8_t>((c >> 8) & 0xFF),
          static_cast<uint8_t>((c >> 16) & 0xFF)};
}

// Texts come from an 8-bit code page; XML and cairo want UTF-8 without
// control characters.
std::string Latin1ToUtf8(std::string_view in) {
  std::string out;
  for (unsigned char c : in) {
    if (c < 0x20 || c == 0x7F) {
      out += ' ';
    } else if (c < 0x80) {
      out += static_cast<char>(c);
    } else {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

size_t CodePoints(const std::string& utf8) {
  return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

AxisMap MapOf(const zv::PaneRecord& r, int axis) {
  AxisMap m;
  m.low = std::isfinite(r.scale[axis].low) ? r.scale[axis].low : 0.0;
  double span = r.scale[axis].span;
  m.span = std::isfinite(span) && span != 0.0 ? span : 1.0;
  m.log = r.logScale[axis];
  return m;
}

double Fraction(const AxisMap& a, double v) {
  if (v == kMissing || !std::isfinite(v)) return kNaN;
  if (a.log == 1) {
    if (v <= 0) return kNaN;
    v = std::log10(v);
  }
  return (v - a.low) / a.span;
}

PlaneBox CubeBox(int32_t angle) {
  PlaneBox b;
  for (int c = 0; c < 8; ++c) {
    PlanePoint p = ProjectUnitCube(c & 1, (c >> 1) & 1, (c >> 2) & 1, angle);
    b.uMin = std::min(b.uMin, p.u);
    b.uMax = std::max(b.uMax, p.u);
    b.vMin = std::min(b.vMin, p.v);
    b.vMax = std::max(b.vMax, p.v);
  }
  return b;
}

Layout FlatLayout(const Rect& plot) {
  Layout l;
  l.flat = plot;
  l.side = plot.height;
  return l;
}

Layout SpaceLayout(int32_t angle, double unit, double originX, double originY) {
  Layout l;
  l.threeD = true;
  l.angle = angle;
  l.unit = unit;
  l.originX = originX;
  l.originY = originY;
  PlaneBox b = CubeBox(angle);
  l.flat = {originX + b.uMin * unit, originY - b.vMax * unit, (b.uMax - b.uMin) * unit,
            (b.vMax - b.vMin) * unit};
  l.side = unit;
  return l;
}

Pixel Flat(const Layout& l, double fx, double fy) {
  return {l.flat.left + fx * l.flat.width, l.flat.top + (1.0 - fy) * l.flat.height};
}

Pixel Space(const Layout& l, double fx, double fy, double fz) {
  PlanePoint p = ProjectUnitCube(fx, fy, fz, l.angle);
  return {l.originX + p.u * l.unit, l.originY - p.v * l.unit};
}

// A stroked path; with no points, one whose subpaths are added later.
SceneItem Line(std::string role, std::vector<Pixel> points, Rgb colour, double width) {
  SceneItem it;
  it.role = std::move(role);
  if (!points.empty()) it.subpaths.push_back(std::move(points));
  it.stroke = colour;
  it.strokeWidth = width;
  return it;
}

SceneItem FilledPolygon(std::string role, std::vector<Pixel> points, Rgb fill) {
  SceneItem it;
  it.role = std::move(role);
  it.subpaths.push_back(std::move(points));
  it.closed = true;
  it.filled = true;
  it.fill = fill;
  it.stroke = fill;
  it.strokeWidth = 0.5;
  return it;
}

void AddToBounds(Bounds& b, const SceneItem& it) {
  if (!it.at.empty()) {  // the symbol's box moved to the outermost centres
    SceneItem one = it;
    one.at.clear();
    Bounds shape;
    AddToBounds(shape, one);
    Bounds centres;
    for (Pixel p : it.at) centres.Add(p.x, p.y);
    b.Add(centres.left + shape.left, centres.top + shape.top);
    b.Add(centres.right + shape.right, centres.bottom + shape.bottom);
    return;
  }
  switch (it.kind) {
    case ItemKind::kPath:
      for (const auto& sub : it.subpaths) {
        for (Pixel p : sub) b.Add(p.x, p.y);
      }
      break;
    case ItemKind::kCircle:
      b.Add(it.centre.x - it.radius, it.centre.y - it.radius);
      b.Add(it.centre.x + it.radius, it.centre.y + it.radius);
      break;
    case ItemKind::kText: {
      double w = kCharWidth * it.fontSize * static_cast<double>(CodePoints(it.text));
      double before = it.anchor == Anchor::kStart ? 0 : it.anchor == Anchor::kMiddle ? w / 2 : w;
      double half = it.fontSize * 0.6;
      if (it.rotation == 0) {
        b.Add(it.centre.x - before, it.centre.y - half);
        b.Add(it.centre.x - before + w, it.centre.y + half);
      } else {  // read upwards
        b.Add(it.centre.x - half, it.centre.y + before);
        b.Add(it.centre.x + half, it.centre.y + before - w);
      }
      break;
    }
  }
}

double SymbolRadius(const Layout& l) {
  return std::clamp(0.011 * l.side, 2.5, 6.0);
}

}  // namespace scene
}  // namespace zvchart
