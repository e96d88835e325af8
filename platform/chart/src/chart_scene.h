// A graph laid out as a list of pixel-space drawing items: paths, circles and
// texts. One routine builds it; the SVG and the PNG writer only replay it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zvchart/chart_host.h"

namespace zvchart {

struct Rgb {
  uint8_t r = 0, g = 0, b = 0;
};

struct Pixel {
  double x = 0, y = 0;
};

enum class ItemKind { kPath, kCircle, kText };
enum class Anchor { kStart, kMiddle, kEnd };
enum class Dash { kSolid, kDashed, kDotted };

struct SceneItem {
  ItemKind kind = ItemKind::kPath;
  std::string role;      // what the item is: "frame", "series", "tick-label"...
  bool clipped = false;  // drawn inside the plot area only

  // Paths: subpaths of vertices, each closed or not. A circle: its centre.
  std::vector<std::vector<Pixel>> subpaths;
  // A symbol drawn many times: when `at` is not empty, the path or circle
  // above is the symbol around (0, 0), drawn once at each of these centres.
  // They lie on the half-pixel grid, each once, so that a writer may stamp
  // one picture of the symbol at each.
  std::vector<Pixel> at;
  bool closed = false;
  Pixel centre;
  double radius = 0;
  bool filled = false;
  Rgb fill;
  double fillOpacity = 1.0;
  bool stroked = true;
  Rgb stroke;
  double strokeWidth = 1.0;
  Dash dash = Dash::kSolid;

  // Texts: `centre` is the anchor point, with the text's middle height on it.
  std::string text;  // UTF-8
  double fontSize = 10;
  bool bold = false;
  Anchor anchor = Anchor::kMiddle;
  double rotation = 0;  // degrees, clockwise on the screen
};

struct Scene {
  int width = 0;
  int height = 0;
  // The plot area that clipped items stay inside.
  double clipLeft = 0, clipTop = 0, clipRight = 0, clipBottom = 0;
  std::vector<SceneItem> items;
};

Scene BuildScene(const StoredGraph& graph, RenderSize size);

// How far a symbol's paint reaches from its centre, stroke included.
double StampExtent(const SceneItem& symbol);

// Centres of repeated symbols lie on a grid of this many steps per pixel.
inline constexpr int kStampSteps = 2;

// The baseline sits this far below the anchor point, in font sizes.
inline constexpr double kBaselineShift = 0.35;

}  // namespace zvchart
