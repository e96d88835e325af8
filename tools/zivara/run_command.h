// zivara run PROCEDURE [--sheet FILE] [--var N=TEXT]... [--select TEXT]
//   [--opts ITEM CONTROL=VALUE[,CONTROL=VALUE]...]... [--pane N]... [--graphs DIR]
//   [--format text|json] [--html FILE]
#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace zivara {

struct RunOptions {
  std::string procedure;
  std::string sheet;                   // empty: the family's bundled sample sheet
  std::vector<std::string> variables;  // "N=TEXT"
  std::optional<std::string> select;
  std::vector<std::string> options;  // ITEM, SETTINGS, ITEM, SETTINGS, ...
  std::vector<int> panes;
  std::string graphs;                       // folder for the graph pictures; empty: none
  std::optional<std::string> missingCodes;  // --na LIST; none: the sheet's default codes
  std::string format = "text";              // text or json
  std::string html;                         // the HTML page of the analysis; empty: none
};

int RunCommand(const RunOptions& options, std::ostream& out, std::ostream& err);

}  // namespace zivara
