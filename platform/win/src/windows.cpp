// Windows with a text and an invalidate counter, and the active window.
#include <cstdio>
#include <unordered_map>

#include "win_internal.h"

namespace {

struct Window {
  std::string className;
  std::string text;
  int32_t invalidates = 0;
};

struct Windows {
  std::unordered_map<WindowRef, Window> windows;
  WindowRef active = 0;
};

Windows& State() {
  static Windows state;
  return state;
}

Window* Find(WindowRef window) {
  auto it = State().windows.find(window);
  return it == State().windows.end() ? nullptr : &it->second;
}

}  // namespace

WindowRef WinCreateWindow(std::string_view className) {
  WindowRef ref = zvwin_detail::NextReference();
  State().windows[ref] = Window{std::string(className), {}, 0};
  return ref;
}

void WinDestroyWindow(WindowRef window) {
  if (State().windows.erase(window) == 0) {
    if (window != 0) std::fprintf(stderr, "WinDestroyWindow: %#x is not a window\n", window);
    return;
  }
  if (State().active == window) State().active = 0;
}

void WinSetWindowText(WindowRef window, std::string_view text) {
  if (Window* w = Find(window)) w->text = text;
}

std::string WinGetWindowText(WindowRef window) {
  return std::string(WinWindowTextView(window));
}

std::string_view WinWindowTextView(WindowRef window) {
  const Window* w = Find(window);
  return w == nullptr ? std::string_view() : std::string_view(w->text);
}

void WinInvalidate(WindowRef window, bool erase) {
  (void)erase;  // nothing is painted here; only the request is counted
  if (Window* w = Find(window)) ++w->invalidates;
}

int32_t WinInvalidateCount(WindowRef window) {
  const Window* w = Find(window);
  return w == nullptr ? 0 : w->invalidates;
}

WindowRef WinGetActiveWindow() {
  return State().active;
}

void WinSetActiveWindow(WindowRef window) {
  State().active = Find(window) != nullptr ? window : 0;
}
