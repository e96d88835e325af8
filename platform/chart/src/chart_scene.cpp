// Lays a stored graph out on a canvas: frame, ticks, the element lists, the
// text items and the legend, in pixel coordinates. The module places its
// texts in the plot's unit square (the unit cube for a three-dimensional
// graph), so the canvas only has to choose where that square goes: the plot
// area grows or shrinks until everything, texts included, fits the canvas.
#include "chart_scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zvchart {
namespace {

constexpr double kMissing = zv::kMissingValue;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDegree = 0.017453292519943295;
// Text height per unit of text size, as a fraction of the plot's side: the
// factor the module uses to place labels around the axes.
constexpr double kTextUnit = 0.003116883116883117;
constexpr double kCharWidth = 0.56;  // average advance of a sans-serif character, in font sizes

// The probability axis: tick i + 1 stands this much above tick i.
constexpr double kProbabilityIncrements[16] = {0.18229, 0.07871, 0.18437, 0.08143,
                                               0.08489, 0.05306, 0.04063, 0.03453,
                                               0.03159, 0.03089, 0.03283, 0.04051,
                                               0.02977, 0.04864, 0.01586, 0.03};

constexpr Rgb kWhite{255, 255, 255};
constexpr Rgb kFrameColour{40, 40, 40};
constexpr Rgb kLegendBorder{150, 150, 150};

// Ten pens that stay apart in colour; pen 6 is the grey of confidence limits.
constexpr Rgb kPenColours[10] = {{31, 78, 156},  {192, 57, 43},  {46, 139, 87},  {142, 68, 173},
                                 {214, 137, 16}, {110, 110, 110}, {23, 162, 184}, {139, 69, 19},
                                 {232, 67, 147}, {44, 62, 80}};

// Colour ramp of bands and facets, low to high.
constexpr Rgb kRamp[5] = {{44, 123, 182}, {171, 217, 233}, {255, 255, 191}, {253, 174, 97},
                          {215, 25, 28}};

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

// One axis of data: its scale, and how values map onto it.
struct AxisMap {
  double low = 0;
  double span = 1;
  int32_t log = 0;  // 1 logarithmic (scale in log10 units), 2 probability
};

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

bool Valid(const Pixel& p) { return std::isfinite(p.x) && std::isfinite(p.y); }

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

bool AxisVisible(const zv::PaneRecord& r, int axis) { return r.axes[axis].visible != 0; }

// Places of the ticks along an axis, as fractions of its length.
std::vector<double> MajorTicks(const zv::PaneRecord& r, int axis) {
  double stored = r.ticks[axis][0];
  int count = std::isfinite(stored) ? std::clamp(static_cast<int>(stored), 0, zv::kTickSlots - 1) : 0;
  std::vector<double> at;
  if (count == 1) at.push_back(0.0);
  if (count < 2) return at;
  if (r.logScale[axis] == 2 && count == 17) {
    double p = 0;
    at.push_back(p);
    for (double inc : kProbabilityIncrements) at.push_back(p += inc);
    return at;
  }
  for (int i = 0; i < count; ++i) at.push_back(static_cast<double>(i) / (count - 1));
  return at;
}

std::vector<double> MinorTicks(const zv::PaneRecord& r, int axis, const std::vector<double>& major) {
  std::vector<double> at;
  if (axis > 2 || r.minorOn[axis] != 1 || major.size() < 2 || r.logScale[axis] == 2) return at;
  for (size_t i = 0; i + 1 < major.size(); ++i) {
    double a = major[i], b = major[i + 1];
    if (r.logScale[axis] == 1) {
      // A decade between exponent ticks carries 2 x .. 9 x at their logarithms.
      if (std::fabs(r.ticks[axis][i + 2] - r.ticks[axis][i + 1]) != 1.0) continue;
      for (int k = 2; k <= 9; ++k) at.push_back(a + (b - a) * std::log10(k));
    } else {
      int m = r.axes[axis].minorTicks;
      if (m < 2 || m > 20) continue;
      for (int j = 1; j < m; ++j) at.push_back(a + (b - a) * j / m);
    }
  }
  return at;
}

void DrawFrame(Canvas& c, bool front) {
  const Layout& l = c.layout;
  bool closed = c.r.frameKind == 1 || c.r.frameKind == 3;
  if (!l.threeD) {
    if (front) return;
    if (closed) {
      SceneItem box = Line("frame", {Flat(l, 0, 0), Flat(l, 1, 0), Flat(l, 1, 1), Flat(l, 0, 1)},
                           kFrameColour, 1.2);
      box.closed = true;
      c.items.push_back(std::move(box));
    } else {
      c.items.push_back(
          Line("frame", {Flat(l, 0, 1), Flat(l, 0, 0), Flat(l, 1, 0)}, kFrameColour, 1.2));
    }
    return;
  }
  // The three faces away from the viewer come before the data, the three
  // towards him after it, and only for a closed frame.
  using Edge = std::array<int, 6>;
  static constexpr Edge kBack[] = {{0, 0, 0, 1, 0, 0}, {1, 0, 0, 1, 1, 0}, {1, 1, 0, 0, 1, 0},
                                   {0, 1, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 1}, {0, 1, 0, 0, 1, 1},
                                   {1, 1, 0, 1, 1, 1}, {0, 0, 1, 0, 1, 1}, {0, 1, 1, 1, 1, 1}};
  static constexpr Edge kFront[] = {{1, 0, 0, 1, 0, 1}, {0, 0, 1, 1, 0, 1}, {1, 0, 1, 1, 1, 1}};
  SceneItem edges = Line("frame", {}, kFrameColour, front ? 0.8 : 1.1);
  auto add = [&](const Edge& e) {
    edges.subpaths.push_back({Space(l, e[0], e[1], e[2]), Space(l, e[3], e[4], e[5])});
  };
  if (!front) {
    for (const Edge& e : kBack) add(e);
  } else if (closed) {
    for (const Edge& e : kFront) add(e);
  }
  if (!edges.subpaths.empty()) c.items.push_back(std::move(edges));
}

void DrawTicks(Canvas& c) {
  const Layout& l = c.layout;
  double e = c.r.tickLength * 0.001;
  int axes = l.threeD ? 3 : 2;
  for (int axis = 0; axis < axes; ++axis) {
    if (!AxisVisible(c.r, axis)) continue;
    double out = axis < 3 && c.r.tickSide[axis] == -1 ? 1.0 : -1.0;
    std::vector<double> major = MajorTicks(c.r, axis);
    std::vector<double> minor = MinorTicks(c.r, axis, major);
    for (int pass = 0; pass < 2; ++pass) {
      const std::vector<double>& at = pass == 0 ? major : minor;
      if (at.empty()) continue;
      double len = e * (pass == 0 ? 1.0 : 0.5) * out;
      SceneItem ticks = Line(pass == 0 ? "tick" : "tick-minor", {}, kFrameColour, 1.0);
      for (double p : at) {
        if (!l.threeD) {
          if (axis == 0) ticks.subpaths.push_back({Flat(l, p, 0), Flat(l, p, -len)});
          if (axis == 1) ticks.subpaths.push_back({Flat(l, 0, p), Flat(l, -len, p)});
        } else {
          if (axis == 0) ticks.subpaths.push_back({Space(l, p, 0, 0), Space(l, p, -len, 0)});
          if (axis == 1) ticks.subpaths.push_back({Space(l, 1, p, 0), Space(l, 1 + len, p, 0)});
          if (axis == 2) ticks.subpaths.push_back({Space(l, 0, 0, p), Space(l, -len, 0, p)});
        }
      }
      c.items.push_back(std::move(ticks));
    }
  }
}

// A point of list A on the canvas; legend samples stand in the flat square
// even in a three-dimensional graph.
Pixel PointOf(const Canvas& c, const double* v, int width, bool legend) {
  double fx = Fraction(MapOf(c.r, 0), v[0]);
  double fy = Fraction(MapOf(c.r, 1), v[1]);
  if (!c.layout.threeD || legend) return Flat(c.layout, fx, fy);
  double fz = width >= 4 ? Fraction(MapOf(c.r, 2), v[2]) : 0.0;
  return Space(c.layout, fx, fy, fz);
}

double SymbolRadius(const Layout& l) { return std::clamp(0.011 * l.side, 2.5, 6.0); }

SceneItem Symbol(int32_t style, Pixel p, Rgb colour, double r) {
  SceneItem it;
  it.role = "symbol";
  it.stroke = colour;
  it.strokeWidth = 1.1;
  it.fill = colour;
  auto poly = [&](std::initializer_list<Pixel> offsets) {
    std::vector<Pixel> pts;
    for (Pixel o : offsets) pts.push_back({p.x + o.x * r, p.y + o.y * r});
    it.subpaths.push_back(std::move(pts));
    it.closed = true;
  };
  auto strokeLine = [&](double x0, double y0, double x1, double y1) {
    it.subpaths.push_back({{p.x + x0 * r, p.y + y0 * r}, {p.x + x1 * r, p.y + y1 * r}});
  };
  switch ((style - 1) % 10) {
    case 0:  // filled circle
      it.kind = ItemKind::kCircle;
      it.centre = p;
      it.radius = r;
      it.filled = true;
      break;
    case 1: poly({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}); break;  // open square
    case 2: poly({{0, -1.2}, {1.1, 0.8}, {-1.1, 0.8}}); break;  // open triangle
    case 3: poly({{0, -1.3}, {1.3, 0}, {0, 1.3}, {-1.3, 0}}); break;  // open diamond
    case 4: strokeLine(-1, -1, 1, 1); strokeLine(-1, 1, 1, -1); break;  // cross
    case 5: strokeLine(-1.2, 0, 1.2, 0); strokeLine(0, -1.2, 0, 1.2); break;  // plus
    case 6: poly({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}); it.filled = true; break;
    case 7: poly({{0, -1.2}, {1.1, 0.8}, {-1.1, 0.8}}); it.filled = true; break;
    case 8:  // asterisk
      strokeLine(-1.2, 0, 1.2, 0);
      strokeLine(-0.6, -1.04, 0.6, 1.04);
      strokeLine(-0.6, 1.04, 0.6, -1.04);
      break;
    default:  // open circle, a ring around the filled one of style 1
      it.kind = ItemKind::kCircle;
      it.centre = p;
      it.radius = r * 1.6;
      break;
  }
  return it;
}

void DrawPolylines(Canvas& c, bool legendLayer) {
  int width = c.g.pointWidth;
  if (width < 3) return;
  bool flatClip = !c.layout.threeD;
  double radius = SymbolRadius(c.layout);
  for (const Polyline& e : c.g.elements) {
    size_t n = e.values.size() / width;
    std::vector<std::vector<Pixel>> runs(1);
    std::vector<Pixel> marks;
    for (size_t i = 0; i < n; ++i) {
      const double* v = e.values.data() + i * width;
      bool legend = v[width - 1] == kLegendSampleTag;
      Pixel p = legend == legendLayer ? PointOf(c, v, width, legend) : Pixel{kNaN, kNaN};
      if (!Valid(p)) {
        if (!runs.back().empty()) runs.emplace_back();
        continue;
      }
      runs.back().push_back(p);
      marks.push_back(p);
    }
    std::vector<SceneItem>& out = legendLayer ? c.legend : c.items;
    if (e.pen > 0) {
      SceneItem line = Line("series", {}, PenColour(e.pen), 1.6);
      line.dash = PenDash(e.pen);
      line.clipped = flatClip && !legendLayer;
      for (auto& run : runs) {
        if (run.size() >= 2) line.subpaths.push_back(std::move(run));
      }
      if (!line.subpaths.empty()) out.push_back(std::move(line));
    }
    if (e.symbol > 0) {
      Rgb colour = PenColour(e.pen > 0 ? e.pen : e.symbol);
      for (Pixel p : marks) {
        SceneItem s = Symbol(e.symbol, p, colour, radius);
        s.clipped = flatClip && !legendLayer;
        out.push_back(std::move(s));
      }
    }
  }
}

Rgb BandColour(const Canvas& c, int band) {
  return RampColour(c.maxBand > 1 ? (band - 1.0) / (c.maxBand - 1.0) : 0.5);
}

void DrawMarks(Canvas& c) {
  const Layout& l = c.layout;
  for (const MarkSeries& s : c.g.marks) {
    size_t n = s.values.size() / kMarkValues;
    for (size_t k = 0; k < n; ++k) {
      const double* v = s.values.data() + k * kMarkValues;
      if (s.style < 0) {
        // A bubble: x, y in data units and its display size.
        int32_t m = -s.style;
        bool outline = m > 1000;
        if (outline) m -= 1000;
        Pixel p = Flat(l, Fraction(MapOf(c.r, 0), v[0]), Fraction(MapOf(c.r, 1), v[1]));
        if (!Valid(p)) continue;
        double size = std::isfinite(v[2]) && v[2] != kMissing ? std::fabs(v[2]) : 0.0;
        SceneItem b;
        b.kind = ItemKind::kCircle;
        b.role = "mark";
        b.centre = p;
        b.radius = std::max(1.5, size / 200.0 * l.side);
        b.stroke = PenColour(m);
        b.strokeWidth = 1.0;
        b.filled = !outline;
        b.fill = PenColour(m);
        b.fillOpacity = 0.45;
        b.clipped = !l.threeD;
        c.items.push_back(std::move(b));
        continue;
      }
      // A polygon of four corners in fractions of the axes.
      std::vector<Pixel> corners;
      double zSum = 0;
      bool complete = true;
      for (int i = 0; i < 4 && complete; ++i) {
        Pixel p;
        if (l.threeD) {
          double z = v[3 * i + 2];
          if (z == kMissing) complete = false;
          zSum += z;
          p = Space(l, v[3 * i], v[3 * i + 1], z);
        } else {
          p = Flat(l, v[2 * i], v[2 * i + 1]);
        }
        if (!Valid(p)) complete = false;
        corners.push_back(p);
      }
      if (!complete) continue;
      Rgb fill = s.style >= 1000 ? BandColour(c, s.style - 1000)
                 : s.style == 1  ? RampColour(zSum / 4)
                                 : Mix(PenColour(s.style), kWhite, 0.5);
      SceneItem poly = FilledPolygon("mark", std::move(corners), fill);
      if (s.style < 1000) {
        poly.stroke = Mix(fill, Rgb{0, 0, 0}, 0.6);  // facets show their mesh
        poly.strokeWidth = 0.6;
      }
      poly.clipped = !l.threeD;
      c.items.push_back(std::move(poly));
    }
  }
}

Rgb LegendBoxColour(const Canvas& c, int32_t style) {
  if (style >= 1100 && style < 1200) return BandColour(c, style - 1100);
  if (style >= 1200 && style < 1300) return PenColour(style - 1200);
  return PenColour(style % 100);
}

void DrawShapes(Canvas& c, bool legendLayer) {
  const Layout& l = c.layout;
  for (const ShapeSeries& s : c.g.shapes) {
    bool legend = s.style >= 100;
    if (legend != legendLayer) continue;
    size_t n = s.values.size() / kShapeValues;
    for (size_t k = 0; k < n; ++k) {
      const double* v = s.values.data() + k * kShapeValues;
      std::vector<Pixel> pts = {Flat(l, v[0], v[1]), Flat(l, v[2], v[1]), Flat(l, v[2], v[3]),
                                Flat(l, v[0], v[3])};
      if (!std::all_of(pts.begin(), pts.end(), Valid)) continue;
      if (legend) {
        SceneItem box = FilledPolygon("legend-box", std::move(pts), LegendBoxColour(c, s.style));
        box.stroke = kFrameColour;
        c.legend.push_back(std::move(box));
      } else {
        SceneItem bar = FilledPolygon("shape", std::move(pts), Mix(PenColour(s.style), kWhite, 0.55));
        bar.stroke = PenColour(s.style);
        bar.strokeWidth = 1.0;
        bar.clipped = !l.threeD;
        c.items.push_back(std::move(bar));
      }
    }
  }
}

struct TextLook {
  const char* role;
  Anchor anchor;
  double rotation;
  int colour;  // index into textColor
};

TextLook LookOf(int32_t kind, bool threeD) {
  switch (kind) {
    case 1: return {"title", Anchor::kMiddle, 0, 0};
    case 2: return {"subtitle", Anchor::kMiddle, 0, 0};
    case 3: return {"axis-title", Anchor::kMiddle, 0, 1};
    case 4: return {"axis-title", Anchor::kMiddle, threeD ? 0.0 : -90.0, 1};
    case 5: return {"axis-title", Anchor::kMiddle, -90, 1};
    case 6: return {"tick-label", Anchor::kMiddle, 0, 2};
    case 7: return {"tick-label", threeD ? Anchor::kMiddle : Anchor::kEnd, 0, 2};
    case 8: return {"tick-label", Anchor::kEnd, 0, 2};
    case 9:
    case 10:
    case 11: return {"factor-label", threeD ? Anchor::kMiddle : Anchor::kEnd, 0, 2};
    case 12: return {"legend-text", Anchor::kStart, 0, 3};
    case 13:
    case 19: return {"text", Anchor::kStart, 0, 3};
    case 20: return {"message", Anchor::kMiddle, 0, 3};
    default: return {"text", Anchor::kMiddle, 0, 3};
  }
}

void DrawTexts(Canvas& c) {
  const zv::PaneRecord& r = c.r;
  const Layout& l = c.layout;
  int messages = 0;
  for (const TextItem& item : c.g.textItems) {
    int32_t kind = item.kind;
    if (kind == 12 && r.legendOn == 0) continue;
    TextLook look = LookOf(kind, l.threeD);
    bool styled = kind == 0 && item.words[0] > 0;
    int32_t size = kind >= 1 && kind <= 20 ? r.textStyleK[kind - 1] : styled ? item.words[0]
                                                                              : r.textStyleK[18];
    if (size <= 0) size = 11;
    bool bold = kind >= 1 && kind <= 20 ? r.textStyleL[kind - 1] != 0 : styled && item.words[1] != 0;
    Rgb colour = FromColourRef(styled ? static_cast<uint32_t>(item.words[5]) : r.textColor[look.colour]);
    for (const TextString& s : item.strings) {
      std::string text = Latin1ToUtf8(ExpandPlaceholders(s.text, c.g));
      if (text.find_first_not_of(' ') == std::string::npos) continue;
      SceneItem t;
      t.kind = ItemKind::kText;
      t.role = look.role;
      t.text = std::move(text);
      t.fontSize = std::clamp(size * kTextUnit * l.side, 6.0, 40.0);
      t.bold = bold;
      t.anchor = look.anchor;
      t.rotation = look.rotation;
      t.fill = colour;
      bool flat = !l.threeD || kind == 12 || kind == 13 || kind == 19;
      if (kind == 20) {
        t.centre = {c.size.width / 2.0, c.size.height / 2.0 + 1.5 * t.fontSize * messages++};
      } else {
        t.centre = flat ? Flat(l, s.x, s.y) : Space(l, s.x, s.y, s.z);
      }
      if (!Valid(t.centre)) continue;
      (kind == 12 ? c.legend : c.items).push_back(std::move(t));
    }
  }
}

struct Bounds {
  double left = 1e300, top = 1e300, right = -1e300, bottom = -1e300;
  void Add(double x, double y) {
    left = std::min(left, x);
    right = std::max(right, x);
    top = std::min(top, y);
    bottom = std::max(bottom, y);
  }
};

void AddToBounds(Bounds& b, const SceneItem& it) {
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

void DrawLegend(Canvas& c) {
  if (c.legend.empty()) return;
  Bounds b;
  for (const SceneItem& it : c.legend) AddToBounds(b, it);
  double pad = 0.4 * SymbolRadius(c.layout) + 3;
  SceneItem frame = Line("legend", {{b.left - pad, b.top - pad}, {b.right + pad, b.top - pad},
                                    {b.right + pad, b.bottom + pad}, {b.left - pad, b.bottom + pad}},
                         kLegendBorder, 0.8);
  frame.closed = true;
  frame.filled = true;
  frame.fill = kWhite;
  c.items.push_back(std::move(frame));
  for (SceneItem& it : c.legend) c.items.push_back(std::move(it));
  c.legend.clear();
}

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
  SceneItem background = FilledPolygon(
      "background", {{0, 0}, {1.0 * size.width, 0}, {1.0 * size.width, 1.0 * size.height},
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
