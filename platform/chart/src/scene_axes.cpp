// The plot's frame (the box, or the cube's back and front edges) and the
// ticks of its axes.
#include <algorithm>
#include <cmath>

#include "scene_canvas.h"

namespace zvchart {
namespace scene {

// The probability axis: tick i + 1 stands this much above tick i.
constexpr double kProbabilityIncrements[16] = {0.18229, 0.07871, 0.18437, 0.08143, 0.08489, 0.05306,
                                               0.04063, 0.03453, 0.03159, 0.03089, 0.03283, 0.04051,
                                               0.02977, 0.04864, 0.01586, 0.03};

bool AxisVisible(const zv::PaneRecord& r, int axis) {
  return r.axes[axis].visible != 0;
}

// Places of the ticks along an axis, as fractions of its length.
std::vector<double> MajorTicks(const zv::PaneRecord& r, int axis) {
  double stored = r.ticks[axis][0];
  int count =
      std::isfinite(stored) ? std::clamp(static_cast<int>(stored), 0, zv::kTickSlots - 1) : 0;
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

std::vector<double> MinorTicks(const zv::PaneRecord& r, int axis,
                               const std::vector<double>& major) {
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

}  // namespace scene
}  // namespace zvchart
