#include "pane_output.h"

#include <fstream>
#include <ostream>

#include "zvchart/chart_host.h"

namespace zivara {

namespace {

// Calls `sink` with the runs of `text` between the carriage returns that stand
// before a line feed, each run ending with that line feed. Whole runs are
// handed on at once: pane texts of a million rows are tens of megabytes.
template <class Sink>
void ForEachUnixRun(std::string_view text, Sink&& sink) {
  size_t start = 0;
  for (size_t cr = text.find('\r'); cr != std::string_view::npos; cr = text.find('\r', cr + 1)) {
    if (cr + 1 < text.size() && text[cr + 1] == '\n') {
      sink(text.substr(start, cr - start));
      start = cr + 1;
    }
  }
  sink(text.substr(start));
}

}  // namespace

std::string UnixLines(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  ForEachUnixRun(text, [&](std::string_view run) { out.append(run); });
  return out;
}

void WritePaneOutput(std::ostream& out, zvhost::Host& host, int32_t slot, int32_t item) {
  if (zvhost::IsGraphItem(item)) {
    out << PaneOutput(host, slot, item);
    return;
  }
  host.ReadPaneText(slot, item, [&](std::string_view text) {
    ForEachUnixRun(text, [&](std::string_view run) { out.write(run.data(), run.size()); });
  });
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
  if (!zvhost::IsGraphItem(item)) {
    std::string out;
    host.ReadPaneText(slot, item, [&](std::string_view text) { out = UnixLines(text); });
    return out;
  }
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
