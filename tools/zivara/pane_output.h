// What the command shows of an analysis: pane texts with "\n" line ends,
// the texts of graph panes, and graph pictures written to a folder.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

#include "zvhost/host.h"

namespace zivara {

// "\r\n" line ends become "\n".
std::string UnixLines(std::string_view text);

// A text pane's text; for a graph pane, the texts of its graph, one line
// each, with the title placeholders filled in.
std::string PaneOutput(zvhost::Host& host, int32_t slot, int32_t item);
// The same, written to `out` without a copy of the text.
void WritePaneOutput(std::ostream& out, zvhost::Host& host, int32_t slot, int32_t item);

// The line that stands above a pane when several are printed.
std::string PaneHeading(const zvhost::FamilySpec& family, int32_t item);

// Writes graph pane `item` as item<N>.svg and item<N>.png into folder. False
// after writing the reason to err; a pane without a graph writes nothing and
// is not a failure.
bool WriteGraphFiles(zvhost::Host& host, int32_t slot, int32_t item, const std::string& folder,
                     std::ostream& err);

}  // namespace zivara
