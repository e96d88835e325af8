// A laid-out graph painted with cairo and written as PNG.
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <cstdlib>
#include <memory>

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
  for (const SceneItem& it : scene.items) {
    if (it.clipped) {
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
