#include "report_formats.h"

#include <sstream>

#include "pane_output.h"
#include "zvchart/chart_host.h"

namespace zivara {

namespace {

using nlohmann::json;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

const zvchart::StoredGraph* GraphOf(zvhost::Host& host, int32_t slot, int32_t item) {
  zvhost::Analysis* analysis = host.AnalysisOf(slot);
  zvhost::Pane* pane = analysis ? analysis->PaneOf(item) : nullptr;
  if (pane == nullptr || pane->record->graphId == 0) return nullptr;
  return zvchart::FindGraph(pane->record->graphId);
}

// Groups a flat array into tuples of `width`.
json Tuples(const std::vector<double>& values, size_t width) {
  json out = json::array();
  for (size_t i = 0; width > 0 && i + width <= values.size(); i += width) {
    out.push_back(std::vector<double>(values.begin() + static_cast<std::ptrdiff_t>(i),
                                      values.begin() + static_cast<std::ptrdiff_t>(i + width)));
  }
  return out;
}

json GraphJson(const zvchart::StoredGraph& g) {
  json texts = json::array();
  for (const zvchart::TextItem& item : g.textItems) {
    for (const zvchart::TextString& s : item.strings) {
      texts.push_back({{"kind", item.kind},
                       {"text", zvchart::ExpandPlaceholders(s.text, g)},
                       {"at", {s.x, s.y, s.z}}});
    }
  }
  // The axes as the record leaves them: scale low and span, the scale kind,
  // and the stored tick values after their count.
  static const char* const kAxisNames[] = {"x", "y", "z"};
  static const char* const kScaleKinds[] = {"linear", "logarithmic", "probability"};
  json axes = json::array();
  for (int axis = 0; axis < 3; ++axis) {
    if (axis == 2 && g.record.threeD == 0) break;
    const zv::AxisScale& scale = g.record.scale[axis];
    const int32_t kind = g.record.logScale[axis];
    const double stored = g.record.ticks[axis][0];
    const int count = stored >= 1 && stored < zv::kTickSlots ? static_cast<int>(stored) : 0;
    axes.push_back({{"axis", kAxisNames[axis]},
                    {"low", scale.low},
                    {"high", scale.low + scale.span},
                    {"scale", kind >= 0 && kind <= 2 ? kScaleKinds[kind] : "linear"},
                    {"ticks", std::vector<double>(&g.record.ticks[axis][1],
                                                  &g.record.ticks[axis][1] + count)}});
  }
  const size_t width = static_cast<size_t>(g.pointWidth > 0 ? g.pointWidth : 3);
  json series = json::array();
  for (const zvchart::Polyline& p : g.elements) {
    series.push_back({{"list", "A"},
                      {"pen", p.pen},
                      {"symbol", p.symbol},
                      {"point", width == 2   ? json{"x", "y"}
                                : width == 3 ? json{"x", "y", "id"}
                                             : json{"x", "y", "z", "id"}},
                      {"points", Tuples(p.values, width)}});
  }
  if (!g.pairX.empty()) {
    json points = json::array();
    for (size_t i = 0; i < g.pairX.size(); ++i) {
      points.push_back({g.pairX[i], i < g.pairY.size() ? g.pairY[i] : 0.0,
                        i < g.pairZ.size() ? g.pairZ[i] : 0.0,
                        i < g.pairId.size() ? g.pairId[i] : 0.0});
    }
    series.push_back({{"list", "B"}, {"point", {"x", "y", "z", "id"}}, {"points", points}});
  }
  for (const zvchart::MarkSeries& m : g.marks) {
    series.push_back(
        {{"list", "C"}, {"style", m.style}, {"marks", Tuples(m.values, zvchart::kMarkValues)}});
  }
  for (const zvchart::ShapeSeries& s : g.shapes) {
    series.push_back({{"list", "D"},
                      {"style", s.style},
                      {"rectangles", Tuples(s.values, zvchart::kShapeValues)}});
  }
  return {{"texts", texts}, {"axes", axes}, {"series", series}};
}

}  // namespace

json PaneJson(zvhost::Host& host, int32_t slot, int32_t item) {
  if (!zvhost::IsGraphItem(item)) {
    return {{"item", item}, {"kind", "text"}, {"lines", Lines(PaneOutput(host, slot, item))}};
  }
  json pane = {{"item", item}, {"kind", "graph"}};
  const zvchart::StoredGraph* graph = GraphOf(host, slot, item);
  if (graph == nullptr) {
    pane["graph"] = nullptr;
  } else {
    pane.update(GraphJson(*graph));
  }
  return pane;
}

json AnalysisJson(zvhost::Host& host, int32_t slot, const std::vector<int32_t>& items) {
  zvhost::Analysis* analysis = host.AnalysisOf(slot);
  json out = json::object();
  if (analysis == nullptr) return out;
  out["procedure"] = analysis->family->name;
  out["title"] = analysis->title;
  out["status"] = analysis->state->status;
  json panes = json::array();
  for (int32_t item : items) panes.push_back(PaneJson(host, slot, item));
  out["panes"] = panes;
  return out;
}

std::string HtmlEscape(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    switch (c) {
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
      default:
        out += c;
    }
  }
  return out;
}

std::string AnalysisHtml(zvhost::Host& host, int32_t slot, const AnalysisInputs& inputs) {
  zvhost::Analysis* analysis = host.AnalysisOf(slot);
  if (analysis == nullptr) return {};
  const std::string title = analysis->title.empty() ? analysis->family->name : analysis->title;
  std::ostringstream html;
  html << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>"
       << HtmlEscape(title) << "</title>\n<style>\n"
       << "body{font-family:sans-serif;margin:2em;max-width:60em}\n"
       << "pre{font-family:monospace;background:#f6f6f6;padding:1em;overflow-x:auto;white-space:"
          "pre-wrap}\n"
       << "table{border-collapse:collapse}td,th{padding:0.2em 1em;text-align:left}\n"
       << "svg{max-width:100%;height:auto}\n</style>\n</head>\n<body>\n"
       << "<h1>" << HtmlEscape(title) << "</h1>\n<section id=\"inputs\">\n<h2>Inputs</h2>\n"
       << "<table>\n<tr><th>Procedure</th><td>" << analysis->family->name << "</td></tr>\n"
       << "<tr><th>Sheet</th><td>" << HtmlEscape(inputs.sheet) << "</td></tr>\n";
  for (const auto& [label, text] : inputs.fields) {
    html << "<tr><th>" << HtmlEscape(label) << "</th><td>" << HtmlEscape(text) << "</td></tr>\n";
  }
  for (const std::string& options : inputs.options) {
    html << "<tr><th>Options</th><td>" << HtmlEscape(options) << "</td></tr>\n";
  }
  html << "</table>\n</section>\n";
  for (int32_t item : zvhost::ItemsOf(*analysis->family)) {
    const std::string text = PaneOutput(host, slot, item);
    const std::vector<std::string> lines = Lines(text);
    std::string heading = "Pane " + std::to_string(item);
    for (const std::string& line : lines) {
      if (line.find_first_not_of(' ') == std::string::npos) continue;
      heading += ": " + line;
      break;
    }
    html << "<section class=\"pane\" id=\"pane" << item << "\">\n<h2>" << HtmlEscape(heading)
         << "</h2>\n";
    if (!zvhost::IsGraphItem(item)) {
      html << "<pre>" << HtmlEscape(text) << "</pre>\n";
    } else if (const zvchart::StoredGraph* graph = GraphOf(host, slot, item)) {
      const std::string svg = zvchart::RenderSvg(*graph);
      const size_t start = svg.find("<svg");
      html << (start == std::string::npos ? std::string() : svg.substr(start)) << "\n";
    } else {
      html << "<p>This pane has no graph.</p>\n";
    }
    const std::string interpretation = UnixLines(host.Interpret(slot, item));
    if (interpretation.find_first_not_of(" \n") != std::string::npos) {
      html << "<h3>Interpretation</h3>\n";
      for (const std::string& line : Lines(interpretation)) {
        if (!line.empty()) html << "<p>" << HtmlEscape(line) << "</p>\n";
      }
    }
    html << "</section>\n";
  }
  if (!inputs.messages.empty()) {
    html << "<section id=\"messages\">\n<h2>Messages</h2>\n";
    for (const std::string& m : inputs.messages) html << "<p>" << HtmlEscape(m) << "</p>\n";
    html << "</section>\n";
  }
  html << "</body>\n</html>\n";
  return html.str();
}

}  // namespace zivara
