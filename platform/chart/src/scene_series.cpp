// The element lists: polylines (list A), marks (list B: symbols, bars,
// bands) and shapes (list C), in the plot and as legend samples.
#include <algorithm>
#include <cmath>

#include "scene_canvas.h"

namespace zvchart {
namespace scene {

// A point of list A on the canvas; legend samples stand in the flat square
// even in a three-dimensional graph.
Pixel PointOf(const Canvas& c, const double* v, int width, bool legend) {
  double fx = Fraction(MapOf(c.r, 0), v[0]);
  double fy = Fraction(MapOf(c.r, 1), v[1]);
  if (!c.layout.threeD || legend) return Flat(c.layout, fx, fy);
  double fz = width >= 4 ? Fraction(MapOf(c.r, 2), v[2]) : 0.0;
  return Space(c.layout, fx, fy, fz);
}

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
    case 1:
      poly({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}});
      break;  // open square
    case 2:
      poly({{0, -1.2}, {1.1, 0.8}, {-1.1, 0.8}});
      break;  // open triangle
    case 3:
      poly({{0, -1.3}, {1.3, 0}, {0, 1.3}, {-1.3, 0}});
      break;  // open diamond
    case 4:
      strokeLine(-1, -1, 1, 1);
      strokeLine(-1, 1, 1, -1);
      break;  // cross
    case 5:
      strokeLine(-1.2, 0, 1.2, 0);
      strokeLine(0, -1.2, 0, 1.2);
      break;  // plus
    case 6:
      poly({{-1, -1}, {1, -1}, {1, 1}, {-1, 1}});
      it.filled = true;
      break;
    case 7:
      poly({{0, -1.2}, {1.1, 0.8}, {-1.1, 0.8}});
      it.filled = true;
      break;
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

// Thinning of a line, only in the picture (the stored graph keeps every
// point): of consecutive points on one pixel, the first and the last are
// kept, so the line enters and leaves each pixel where it did. The last
// point of a run is `provisional` while the next one may still replace it.
bool SamePixel(Pixel a, Pixel b) {
  return std::floor(a.x) == std::floor(b.x) && std::floor(a.y) == std::floor(b.y);
}

void AddToRun(std::vector<Pixel>& run, Pixel p, bool& provisional) {
  if (!run.empty() && SamePixel(run[run.size() - (provisional ? 2 : 1)], p)) {
    if (provisional) {
      run.back() = p;
    } else {
      run.push_back(p);
      provisional = true;
    }
    return;
  }
  run.push_back(p);
  provisional = false;
}

// One symbol item drawn at every visible centre. Centres move to the
// half-pixel grid (at most a quarter pixel, below what antialiasing shows)
// and each spot is drawn once: a million dots of a tall stack fall on a few
// thousand spots. Painting one colour over itself is the same in any order,
// so the spots are kept sorted.
SceneItem RepeatedSymbol(const Canvas& c, int32_t style, Rgb colour, double radius,
                         const std::vector<Pixel>& centres, bool clipped) {
  SceneItem s = Symbol(style, Pixel{0, 0}, colour, radius);
  s.clipped = clipped;
  const double reach = StampExtent(s);
  double left = -1e6, top = -1e6, right = 1e6, bottom = 1e6;  // far beyond any canvas
  if (clipped) {
    left = c.layout.flat.left - 1 - reach;
    top = c.layout.flat.top - 1 - reach;
    right = c.layout.flat.left + c.layout.flat.width + 1 + reach;
    bottom = c.layout.flat.top + c.layout.flat.height + 1 + reach;
  }
  std::vector<uint64_t> spots;
  spots.reserve(centres.size());
  for (Pixel p : centres) {
    if (!(p.x >= left && p.x <= right && p.y >= top && p.y <= bottom)) continue;
    // Centres lie within 1e6 pixels, 2e6 grid steps: the offset makes both
    // halves of the key positive.
    auto gx = static_cast<uint64_t>(std::lround(p.x * kStampSteps) + 4000000);
    auto gy = static_cast<uint64_t>(std::lround(p.y * kStampSteps) + 4000000);
    spots.push_back(gx << 32 | gy);
  }
  std::sort(spots.begin(), spots.end());
  spots.erase(std::unique(spots.begin(), spots.end()), spots.end());
  s.at.reserve(spots.size());
  for (uint64_t k : spots) {
    double gx = static_cast<double>(static_cast<int64_t>(k >> 32) - 4000000);
    double gy = static_cast<double>(static_cast<int64_t>(k & 0xFFFFFFFFu) - 4000000);
    s.at.push_back({gx / kStampSteps, gy / kStampSteps});
  }
  return s;
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
    bool provisional = false;
    for (size_t i = 0; i < n; ++i) {
      const double* v = e.values.data() + i * width;
      bool legend = v[width - 1] == kLegendSampleTag;
      Pixel p = legend == legendLayer ? PointOf(c, v, width, legend) : Pixel{kNaN, kNaN};
      if (!Valid(p)) {
        if (!runs.back().empty()) runs.emplace_back();
        provisional = false;
        continue;
      }
      if (e.pen > 0) AddToRun(runs.back(), p, provisional);
      if (e.symbol > 0) marks.push_back(p);
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
    if (e.symbol > 0 && !marks.empty()) {
      Rgb colour = PenColour(e.pen > 0 ? e.pen : e.symbol);
      SceneItem s = RepeatedSymbol(c, e.symbol, colour, radius, marks, flatClip && !legendLayer);
      if (!s.at.empty()) out.push_back(std::move(s));
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
        SceneItem bar =
            FilledPolygon("shape", std::move(pts), Mix(PenColour(s.style), kWhite, 0.55));
        bar.stroke = PenColour(s.style);
        bar.strokeWidth = 1.0;
        bar.clipped = !l.threeD;
        c.items.push_back(std::move(bar));
      }
    }
  }
}

}  // namespace scene
}  // namespace zvchart
