// The Host's guard around every call into the module, shared by the files
// that make those calls. Internal to the Host library.
#pragma once

#include <string>

#include "zvhost/host.h"
#include "zvwin/zvwin.h"

namespace zvhost {

inline bool ValidSlot(int32_t slot) {
  return slot >= 0 && slot < 64;
}

template <class Call>
int32_t Host::Guarded(const std::string& what, Call&& call) {
  const size_t lockedBefore = WinLockedBlockCount();
  const int32_t appCursor = WinWaitCursorLevel();
  const int32_t hostCursor = waitLevel_;
  ++callDepth_;
  int32_t result = 0;
  bool abandoned = false;
  // The module lets a SilentAbort leave its entry point; the Host ends the
  // call there and carries on, as with any exception out of a module.
  try {
    result = call();
  } catch (...) {
    abandoned = true;
    result = 0;
  }
  --callDepth_;
  if (abandoned) {
    abandoned_.push_back(what);
    // The call did not get to lower the wait cursors it raised.
    for (int32_t n = WinWaitCursorLevel() - appCursor; n > 0; --n) WinWaitCursor(-1);
    waitLevel_ = hostCursor;
  }
  const size_t lockedAfter = WinLockedBlockCount();
  if (lockedAfter > lockedBefore) {
    faults_.push_back(what + " left " + std::to_string(lockedAfter - lockedBefore) +
                      " movable block(s) locked");
  }
  if (callDepth_ == 0) {
    for (TextRef text : textsToFree_) WinTextFree(text);
    textsToFree_.clear();
    RunDeferredRefresh();
  }
  lastAbandoned_ = abandoned;
  return result;
}

}  // namespace zvhost
