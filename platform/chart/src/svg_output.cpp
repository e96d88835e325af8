// A laid-out graph as SVG text. Every item becomes one element whose class
// names what it is, so that the picture can be read back by a program too.
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "chart_scene.h"

namespace zvchart {
namespace {

// A coordinate to two decimals at most, trailing zeros dropped. to_chars
// rounds as printf does, without its locale and format parsing.
void AppendNumber(std::string& out, double v) {
  char buffer[320];  // the largest double has 309 digits before the point
  if (!std::isfinite(v)) v = 0;
  auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, v, std::chars_format::fixed, 2);
  (void)error;  // cannot fail with room for every finite double
  while (end[-1] == '0') --end;
  if (end[-1] == '.') --end;
  std::string_view s(buffer, static_cast<size_t>(end - buffer));
  out += s == "-0" ? std::string_view("0") : s;
}

std::string Number(double v) {
  std::string s;
  AppendNumber(s, v);
  return s;
}

std::string Colour(Rgb c) {
  char buffer[8];
  std::snprintf(buffer, sizeof buffer, "#%02x%02x%02x", c.r, c.g, c.b);
  return buffer;
}

void AppendEscaped(std::string& out, std::string_view text) {
  for (char ch : text) {
    switch (ch) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&apos;";
        break;
      default:
        out += ch;
    }
  }
}

void AppendPaint(std::string& out, const SceneItem& it) {
  out += " fill=\"" + (it.filled ? Colour(it.fill) : std::string("none")) + "\"";
  if (it.filled && it.fillOpacity < 1.0) out += " fill-opacity=\"" + Number(it.fillOpacity) + "\"";
  if (!it.stroked) return;
  out += " stroke=\"" + Colour(it.stroke) + "\" stroke-width=\"" + Number(it.strokeWidth) + "\"";
  if (it.dash == Dash::kDashed) out += " stroke-dasharray=\"6 3\"";
  if (it.dash == Dash::kDotted) out += " stroke-dasharray=\"1.5 2.5\"";
  out += " stroke-linejoin=\"round\"";
}

void AppendItem(std::string& out, const SceneItem& it, std::string_view id = {}) {
  std::string idAttr;
  if (!id.empty()) (idAttr += " id=\"").append(id) += '"';
  switch (it.kind) {
    case ItemKind::kPath: {
      out += "<path";
      out += idAttr;
      out += " class=\"" + it.role + "\" d=\"";
      for (const auto& sub : it.subpaths) {
        for (size_t i = 0; i < sub.size(); ++i) {
          out += i == 0 ? "M" : " L";
          AppendNumber(out, sub[i].x);
          out += ' ';
          AppendNumber(out, sub[i].y);
        }
        if (it.closed) out += " Z";
        out += " ";
      }
      if (out.back() == ' ') out.pop_back();
      out += "\"";
      AppendPaint(out, it);
      out += "/>\n";
      break;
    }
    case ItemKind::kCircle:
      out += "<circle";
      out += idAttr;
      out += " class=\"" + it.role + "\" cx=\"" + Number(it.centre.x) + "\" cy=\"" +
             Number(it.centre.y) + "\" r=\"" + Number(it.radius) + "\"";
      AppendPaint(out, it);
      out += "/>\n";
      break;
    case ItemKind::kText: {
      const char* anchor = it.anchor == Anchor::kStart    ? "start"
                           : it.anchor == Anchor::kMiddle ? "middle"
                                                          : "end";
      out += "<text class=\"" + it.role + "\" x=\"" + Number(it.centre.x) + "\" y=\"" +
             Number(it.centre.y + kBaselineShift * it.fontSize) + "\" font-size=\"" +
             Number(it.fontSize) + "\" text-anchor=\"" + anchor + "\" fill=\"" + Colour(it.fill) +
             "\"";
      if (it.bold) out += " font-weight=\"bold\"";
      if (it.rotation != 0) {
        out += " transform=\"rotate(" + Number(it.rotation) + " " + Number(it.centre.x) + " " +
               Number(it.centre.y) + ")\"";
      }
      out += ">";
      AppendEscaped(out, it.text);
      out += "</text>\n";
      break;
    }
  }
}

// A repeated symbol: defined once, then one <use> per spot. Spots lie on the
// half-pixel grid, so their coordinates are short.
void AppendRepeated(std::string& out, const SceneItem& it, int number) {
  std::string id = std::to_string(number);
  id.insert(id.begin(), 's');
  out += "<defs>";
  AppendItem(out, it, id);  // the symbol around (0, 0)
  out.pop_back();           // the line end
  out += "</defs>\n<g class=\"" + it.role + "\">\n";
  for (Pixel p : it.at) {
    out += "<use xlink:href=\"#";
    out += id;
    out += "\" x=\"";
    AppendNumber(out, p.x);
    out += "\" y=\"";
    AppendNumber(out, p.y);
    out += "\"/>\n";
  }
  out += "</g>\n";
}

// A filled dot repeated down a column of spots: discs at most a pixel apart
// merge into one stroke with round caps, as wide as the dot, from the first
// centre to the last (the scallops it fills are at most r - sqrt(r^2 - 1/4)
// deep, 0.04 pixel for the smallest dot). A lone dot is a round cap on a
// line of length zero. Spots come sorted by x, then y.
bool DrawnAsDotRuns(const SceneItem& it) {
  return it.kind == ItemKind::kCircle && it.filled && it.fillOpacity >= 1.0 &&
         (!it.stroked ||
          (it.stroke.r == it.fill.r && it.stroke.g == it.fill.g && it.stroke.b == it.fill.b));
}

void AppendDotRuns(std::string& out, const SceneItem& it) {
  const double width = 2 * it.radius + (it.stroked ? it.strokeWidth : 0.0);
  out += "<path class=\"" + it.role + "\" d=\"";
  for (size_t i = 0; i < it.at.size();) {
    size_t end = i + 1;
    while (end < it.at.size() && it.at[end].x == it.at[i].x &&
           it.at[end].y <= it.at[end - 1].y + 1.0) {
      ++end;
    }
    out += 'M';
    AppendNumber(out, it.at[i].x);
    out += ' ';
    AppendNumber(out, it.at[i].y);
    if (end - i == 1) {
      out += "v0";
    } else {
      out += 'V';
      AppendNumber(out, it.at[end - 1].y);
    }
    i = end;
  }
  out += "\" fill=\"none\" stroke=\"" + Colour(it.fill) + "\" stroke-width=\"" + Number(width) +
         "\" stroke-linecap=\"round\"/>\n";
}

}  // namespace

std::string RenderSvg(const StoredGraph& graph, RenderSize size) {
  Scene scene = BuildScene(graph, size);
  std::string out;
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  out +=
      "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
      "version=\"1.1\" width=\"" +
      std::to_string(scene.width) + "\" height=\"" + std::to_string(scene.height) +
      "\" viewBox=\"0 0 " + std::to_string(scene.width) + " " + std::to_string(scene.height) +
      "\" font-family=\"DejaVu Sans, Verdana, sans-serif\">\n";
  out += "<defs><clipPath id=\"plot-area\"><rect x=\"" + Number(scene.clipLeft) + "\" y=\"" +
         Number(scene.clipTop) + "\" width=\"" + Number(scene.clipRight - scene.clipLeft) +
         "\" height=\"" + Number(scene.clipBottom - scene.clipTop) + "\"/></clipPath></defs>\n";
  bool inClip = false;
  int repeated = 0;
  for (const SceneItem& it : scene.items) {
    if (it.clipped != inClip) {
      out += it.clipped ? "<g clip-path=\"url(#plot-area)\">\n" : "</g>\n";
      inClip = it.clipped;
    }
    if (it.at.empty()) {
      AppendItem(out, it);
    } else {
      if (DrawnAsDotRuns(it)) {
        AppendDotRuns(out, it);
      } else {
        AppendRepeated(out, it, ++repeated);
      }
    }
  }
  if (inClip) out += "</g>\n";
  out += "</svg>\n";
  return out;
}

std::string ChartRenderSvg(int32_t graphId, RenderSize size) {
  const StoredGraph* g = FindGraph(graphId);
  return g == nullptr ? std::string() : RenderSvg(*g, size);
}

std::string RenderWindowSvg(WindowRef window, RenderSize size) {
  const StoredGraph* g = FindGraphByWindow(window);
  return g == nullptr ? std::string() : RenderSvg(*g, size);
}

}  // namespace zvchart
