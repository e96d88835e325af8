// The exit statuses of the zivara command.
#pragma once

namespace zivara {

inline constexpr int kExitRan = 0;        // the analysis ran and has results
inline constexpr int kExitFault = 1;      // an internal fault: module missing, lock left, ...
inline constexpr int kExitRefused = 2;    // the input was refused
inline constexpr int kExitNoResults = 3;  // the analysis ran and reports a status instead

}  // namespace zivara
