// Message boxes, the version query, system help, the wait cursor and the
// application object's message hooks: each records what it was asked so that
// tests and the command line can see it.
#include <cstring>

#include "win_internal.h"

namespace {

struct Services {
  MessageBoxResponder responder;
  std::vector<MessageBoxCall> boxes;
  std::vector<HelpCall> help;
  uint32_t platformId = 2;
  int32_t waitCursor = 0;
};

Services& State() {
  static Services state;
  return state;
}

constexpr uint32_t kMbTypeMask = 0xF;

}  // namespace

int32_t WinMessageBox(WindowRef owner, std::string_view text, std::string_view caption,
                      uint32_t style) {
  MessageBoxCall call{owner, std::string(text), std::string(caption), style, 0};
  if (State().responder) call.answer = State().responder(call);
  if (call.answer == 0) call.answer = (style & kMbTypeMask) == kMbYesNo ? kIdNo : kIdOk;
  State().boxes.push_back(call);
  return call.answer;
}

void WinSetMessageBoxResponder(MessageBoxResponder responder) {
  State().responder = std::move(responder);
}

const std::vector<MessageBoxCall>& WinMessageBoxLog() {
  return State().boxes;
}

void WinClearMessageBoxLog() {
  State().boxes.clear();
}

int32_t WinGetVersionEx(WinOsVersionInfo* info) {
  if (info == nullptr || info->size != sizeof(WinOsVersionInfo)) return 0;
  info->majorVersion = 4;
  info->minorVersion = 0;
  info->buildNumber = 1381;
  info->platformId = State().platformId;
  std::memset(info->servicePack, 0, sizeof info->servicePack);
  return 1;
}

void WinSetPlatformId(uint32_t platformId) {
  State().platformId = platformId;
}

int32_t WinHelp(WindowRef window, const char* file, uint32_t command, uint32_t data) {
  State().help.push_back(HelpCall{window, file == nullptr ? "" : file, command, data});
  return 1;
}

const std::vector<HelpCall>& WinHelpLog() {
  return State().help;
}

void WinClearHelpLog() {
  State().help.clear();
}

void WinWaitCursor(int32_t change) {
  State().waitCursor += change;
}

int32_t WinWaitCursorLevel() {
  return State().waitCursor;
}

int32_t WinAppPreTranslateMessage(const WinMsg* message) {
  (void)message;  // no accelerators or dialog messages to translate here
  return 0;
}

// The classic idle handler: one pass to update the user interface (count 0),
// one to free temporary objects (count 1), then no more work.
int32_t WinAppOnIdle(int32_t count) {
  return count <= 1 ? 1 : 0;
}
