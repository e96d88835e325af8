// An analysis written for other programs and for a browser: every pane as
// JSON (text panes as their lines, graph panes as their numeric description),
// and one self-contained HTML page with the text panes, the pictures as
// inline SVG, the interpretation and the inputs.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "zvhost/host.h"

namespace zivara {

// What the analysis was run with, for the record.
struct AnalysisInputs {
  std::string sheet;
  std::vector<std::pair<std::string, std::string>> fields;  // label, text
  std::vector<std::string> options;                         // "--opts 8 limits=1"
  std::vector<std::string> messages;                        // message boxes shown
};

// One pane. A text pane: {"item", "kind": "text", "lines"}, where the pane's
// text is each line followed by "\n". A graph pane: {"item", "kind":
// "graph", "texts", "axes", "series"}; null when the pane holds no graph.
nlohmann::json PaneJson(zvhost::Host& host, int32_t slot, int32_t item);

// {"procedure", "title", "status", "panes": [...]} for the given panes.
nlohmann::json AnalysisJson(zvhost::Host& host, int32_t slot, const std::vector<int32_t>& items);

// The whole analysis as one HTML page that needs nothing else to show.
std::string AnalysisHtml(zvhost::Host& host, int32_t slot, const AnalysisInputs& inputs);

// Text with &, <, > and " escaped for HTML.
std::string HtmlEscape(const std::string& text);

}  // namespace zivara
