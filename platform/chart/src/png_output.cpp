// A laid-out graph painted with cairo and written as PNG.
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "chart_scene.h"

namespace zvchart {
namespace {

void SetColour(cairo_t* cr, Rgb c, double alpha = 1.0) {
  cairo_set_source_rgba(cr, c.r / 255.0, c.g / 255.0, c.b / 255.0, alpha);
}

void Paint(cairo_t* cr, const SceneItem& it) {
  if (it.filled) {
    SetColour(cr, it.fill, it.fillOpacity);
    if (it.stroked) {
      cairo_fill_preserve(cr);
    } else {
      cairo_fill(cr);
    }
  }
  if (!it.stroked) {
    cairo_new_path(cr);
    return;
  }
  static const double kDashed[] = {6, 3};
  static const double kDotted[] = {1.5, 2.5};
  if (it.dash == Dash::kDashed) cairo_set_dash(cr, kDashed, 2, 0);
  if (it.dash == Dash::kDotted) cairo_set_dash(cr, kDotted, 2, 0);
  SetColour(cr, it.stroke);
  cairo_set_line_width(cr, it.strokeWidth);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
}

void DrawItem(cairo_t* cr, const SceneItem& it) {
  switch (it.kind) {
    case ItemKind::kPath:
      for (const auto& sub : it.subpaths) {
        for (size_t i = 0; i < sub.size(); ++i) {
          if (i == 0) {
            cairo_move_to(cr, sub[i].x, sub[i].y);
          } else {
            cairo_line_to(cr, sub[i].x, sub[i].y);
          }
        }
        if (it.closed) cairo_close_path(cr);
      }
      Paint(cr, it);
      break;
    case ItemKind::kCircle:
      cairo_new_sub_path(cr);
      cairo_arc(cr, it.centre.x, it.centre.y, it.radius, 0, 6.283185307179586);
      Paint(cr, it);
      break;
    case ItemKind::kText: {
      cairo_select_font_face(cr, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                             it.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
      cairo_set_font_size(cr, it.fontSize);
      cairo_text_extents_t extents;
      cairo_text_extents(cr, it.text.c_str(), &extents);
      double before = it.anchor == Anchor::kStart    ? 0.0
                      : it.anchor == Anchor::kMiddle ? extents.x_advance / 2
                                                     : extents.x_advance;
      cairo_save(cr);
      cairo_translate(cr, it.centre.x, it.centre.y);
      cairo_rotate(cr, it.rotation * 0.017453292519943295);
      cairo_move_to(cr, -before, kBaselineShift * it.fontSize);
      SetColour(cr, it.fill);
      cairo_show_text(cr, it.text.c_str());
      cairo_new_path(cr);
      cairo_restore(cr);
      break;
    }
  }
}

// A repeated symbol is painted once per grid phase into a small picture,
// which is then laid over the canvas at each spot: a million dots cost a
// million small blends rather than a million paths through the rasteriser.
// Stamps are premultiplied ARGB; the canvas is xRGB.
struct Stamp {
  int size = 0;  // square, the symbol's centre at (half, half) plus the phase
  int half = 0;
  std::vector<uint32_t> pixels;
};

Stamp PaintStamp(const SceneItem& it, double phaseX, double phaseY) {
  Stamp st;
  st.half = static_cast<int>(std::ceil(StampExtent(it))) + 1;
  st.size = 2 * st.half + 1;
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, st.size, st.size);
  cairo_t* cr = cairo_create(surface);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  cairo_translate(cr, st.half + phaseX, st.half + phaseY);
  DrawItem(cr, it);  // the symbol around (0, 0)
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  st.pixels.resize(static_cast<size_t>(st.size) * st.size);
  const unsigned char* data = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  for (int y = 0; y < st.size; ++y) {
    std::memcpy(&st.pixels[static_cast<size_t>(y) * st.size], data + y * stride,
                sizeof(uint32_t) * st.size);
  }
  cairo_surface_destroy(surface);
  return st;
}

// Source over destination, one channel, both premultiplied.
inline uint32_t Over(uint32_t src, uint32_t dst, uint32_t inverseAlpha, int shift) {
  uint32_t d = (dst >> shift) & 0xFF;
  uint32_t s = (src >> shift) & 0xFF;
  uint32_t v = s + (d * inverseAlpha + 127) / 255;
  return (v > 255 ? 255 : v) << shift;
}

// Where stamps may paint: the pixels that the clip rectangle touches, and how
// much of each column and row it covers (0 to 256), so that its edges are
// antialiased as cairo's clip would be.
struct Clip {
  int left = 0, top = 0, right = 0, bottom = 0;  // right and bottom excluded
  std::vector<uint32_t> columns, rows;           // coverage by x, by y
};

std::vector<uint32_t> Coverage(double from, double to, int count) {
  std::vector<uint32_t> cover(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) {
    double part =
        std::clamp(std::min(i + 1.0, to) - std::max(static_cast<double>(i), from), 0.0, 1.0);
    cover[i] = static_cast<uint32_t>(std::lround(part * 256));
  }
  return cover;
}

Clip ClipOf(double left, double top, double right, double bottom, int width, int height) {
  Clip c;
  c.columns = Coverage(left, right, width);
  c.rows = Coverage(top, bottom, height);
  c.left = std::clamp(static_cast<int>(std::floor(left)), 0, width);
  c.right = std::clamp(static_cast<int>(std::ceil(right)), c.left, width);
  c.top = std::clamp(static_cast<int>(std::floor(top)), 0, height);
  c.bottom = std::clamp(static_cast<int>(std::ceil(bottom)), c.top, height);
  return c;
}

// A premultiplied pixel scaled by a coverage of 0 to 256.
inline uint32_t Scale(uint32_t s, uint32_t cover) {
  return (((s >> 24) * cover >> 8) << 24) | ((((s >> 16) & 0xFF) * cover >> 8) << 16) |
         ((((s >> 8) & 0xFF) * cover >> 8) << 8) | ((s & 0xFF) * cover >> 8);
}

void StampAll(cairo_surface_t* surface, const SceneItem& it, const Clip& clip) {
  Stamp stamps[kStampSteps][kStampSteps];
  for (int py = 0; py < kStampSteps; ++py) {
    for (int px = 0; px < kStampSteps; ++px) {
      stamps[py][px] = PaintStamp(it, static_cast<double>(px) / kStampSteps,
                                  static_cast<double>(py) / kStampSteps);
    }
  }
  cairo_surface_flush(surface);
  unsigned char* data = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  for (Pixel p : it.at) {
    // Centres lie on the grid: split each into its pixel and its phase.
    const long gx = std::lround(p.x * kStampSteps), gy = std::lround(p.y * kStampSteps);
    const long ix = gx >= 0 ? gx / kStampSteps : -((-gx + kStampSteps - 1) / kStampSteps);
    const long iy = gy >= 0 ? gy / kStampSteps : -((-gy + kStampSteps - 1) / kStampSteps);
    const Stamp& st = stamps[gy - iy * kStampSteps][gx - ix * kStampSteps];
    const long x0 = ix - st.half, y0 = iy - st.half;
    const long xa = std::max<long>(x0, clip.left), xb = std::min<long>(x0 + st.size, clip.right);
    const long ya = std::max<long>(y0, clip.top), yb = std::min<long>(y0 + st.size, clip.bottom);
    for (long y = ya; y < yb; ++y) {
      auto* row = reinterpret_cast<uint32_t*>(data + y * stride);
      const uint32_t* src = st.pixels.data() + (y - y0) * st.size;
      const uint32_t rowCover = clip.rows[y];
      for (long x = xa; x < xb; ++x) {
        uint32_t s = src[x - x0];
        const uint32_t cover = rowCover * clip.columns[x] >> 8;
        if (cover < 256) s = Scale(s, cover);
        const uint32_t alpha = s >> 24;
        if (alpha == 0) continue;
        if (alpha == 255) {
          row[x] = s;
          continue;
        }
        const uint32_t inverse = 255 - alpha;
        const uint32_t d = row[x];
        row[x] =
            0xFF000000u | Over(s, d, inverse, 16) | Over(s, d, inverse, 8) | Over(s, d, inverse, 0);
      }
    }
  }
  cairo_surface_mark_dirty(surface);
}

// Cairo and fontconfig keep font caches for the life of the process. They
// are handed back at exit so that a leak checker sees only real leaks.
void ReleaseFontCaches() {
  cairo_debug_reset_static_data();
  FcFini();
}

}  // namespace

bool RenderPng(const StoredGraph& graph, const std::string& path, RenderSize size) {
  static const bool kCachesReleasedAtExit = std::atexit(ReleaseFontCaches) == 0;
  (void)kCachesReleasedAtExit;
  Scene scene = BuildScene(graph, size);
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, scene.width, scene.height),
      cairo_surface_destroy);
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return false;
  std::unique_ptr<cairo_t, decltype(&cairo_destroy)> context(cairo_create(surface.get()),
                                                             cairo_destroy);
  cairo_t* cr = context.get();
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  const Clip canvas = ClipOf(0, 0, scene.width, scene.height, scene.width, scene.height);
  const Clip plot = ClipOf(scene.clipLeft, scene.clipTop, scene.clipRight, scene.clipBottom,
                           scene.width, scene.height);
  for (const SceneItem& it : scene.items) {
    if (!it.at.empty()) {
      StampAll(surface.get(), it, it.clipped ? plot : canvas);
    } else if (it.clipped) {
      cairo_save(cr);
      cairo_rectangle(cr, scene.clipLeft, scene.clipTop, scene.clipRight - scene.clipLeft,
                      scene.clipBottom - scene.clipTop);
      cairo_clip(cr);
      DrawItem(cr, it);
      cairo_restore(cr);
    } else {
      DrawItem(cr, it);
    }
  }
  if (cairo_status(cr) != CAIRO_STATUS_SUCCESS) return false;
  cairo_surface_flush(surface.get());
  return cairo_surface_write_to_png(surface.get(), path.c_str()) == CAIRO_STATUS_SUCCESS;
}

bool ChartRenderPng(int32_t graphId, const std::string& path, RenderSize size) {
  const StoredGraph* g = FindGraph(graphId);
  return g != nullptr && RenderPng(*g, path, size);
}

bool RenderWindowPng(WindowRef window, const std::string& path, RenderSize size) {
  const StoredGraph* g = FindGraphByWindow(window);
  return g != nullptr && RenderPng(*g, path, size);
}

}  // namespace zvchart
