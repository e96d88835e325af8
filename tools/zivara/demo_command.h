// zivara demo [FOLDER]: every procedure that the module has, run on the
// bundled sample sheets; the panes, pictures and one HTML page per analysis
// are written to FOLDER (a new temporary folder when none is given), with an
// HTML index. Stdout gets one line per procedure and the folder at the end.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zivara {

// The fixed inputs a procedure is shown with on its bundled sample sheet.
struct DemoInput {
  const char* family;
  std::vector<std::pair<int32_t, std::string>> variables;  // field from 1, text
  const char* select;                                      // nullptr: none
};
// nullptr for a procedure without demo inputs.
const DemoInput* DemoInputOf(std::string_view family);

int DemoCommand(const std::string& folder, std::ostream& out, std::ostream& err);

}  // namespace zivara
