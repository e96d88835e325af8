// zivara demo [FOLDER]: every procedure that the module has, run on the
// bundled sample sheets; the panes and pictures are written to FOLDER (a new
// temporary folder when none is given), whose name is printed at the end.
#pragma once

#include <iosfwd>
#include <string>

namespace zivara {

int DemoCommand(const std::string& folder, std::ostream& out, std::ostream& err);

}  // namespace zivara
