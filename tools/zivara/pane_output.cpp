#include "pane_output.h"

#include <fstream>
#include <ostream>

#include "zvchart/chart_host.h"

namespace zivara {

std::string UnixLines(std::string_view text) {
  // Whole runs between carriage returns are copied at once: pane texts of a
  // million rows are tens of megabytes.
  std::string out;
  out.reserve(text.size());
  size_t start = 0;
  for (size_t cr = text.find('\r'); cr != std::string_view::npos; cr = text.find('\r', cr + 1)) {
    if (cr + 1 < text.size() && text[cr + 1] == '\n') {
      out.append(text, start, cr - start);
      start = cr + 1;
    }
  }
  out.append(text, start, std::string_view::npos);
  return out;
}

namespace {

const zvchart::StoredGraph* GraphOf(zvhost::Host& host, int32_t slot, int32_t item) {
  zvhost::Analysis* analysis = host.AnalysisOf(slot);
  zvhost::Pane* pane = analysis ? analysis->PaneOf(item) : nullptr;
  if (pane == nullptr || pane->record->graphId == 0) return nullptr;
  return zvchart::FindGraph(pane->record->graphId);
}

}  // namespace

std::string PaneOutput(zvhost::Host& host, int32_t slot, int32_t item) {
  if (!zvhost::IsGraphItem(item)) return UnixLines(host.PaneText(slot, item));
  const zvchart::StoredGraph* graph = GraphOf(host, slot, item);
  if (graph == nullptr) return {};
  std::string out;
  for (const zvchart::TextItem& textItem : graph->textItems) {
    for (const zvchart::TextString& s : textItem.strings) {
      out += zvchart::ExpandPlaceholders(s.text, *graph);
      out += '\n';
    }
  }
  return out;
}

std::string PaneHeading(const zvhost::FamilySpec& family, int32_t item) {
  return std::string("--- ") + family.name + " pane " + std::to_string(item) + " ---";
}

bool WriteGraphFiles(zvhost::Host& host, int32_t slot, int32_t item, const std::string& folder,
                     std::ostream& err) {
  const zvchart::StoredGraph* graph = GraphOf(host, slot, item);
  if (graph == nullptr) return true;
  const std::string base = folder + "/item" + std::to_string(item);
  std::ofstream svg(base + ".svg", std::ios::binary);
  svg << zvchart::RenderSvg(*graph);
  if (!svg) {
    err << "zivara: cannot write " << base << ".svg\n";
    return false;
  }
  if (!zvchart::RenderPng(*graph, base + ".png")) {
    err << "zivara: cannot write " << base << ".png\n";
    return false;
  }
  return true;
}

}  // namespace zivara
