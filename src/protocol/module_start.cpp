// The module's application object, start-up and stop, the locale read once
// at start, and the five module-level exports.
#include "protocol/module_start.h"

#include <algorithm>
#include <cstring>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "protocol/exports.h"
#include "services/graph_pane.h"

namespace zv {
namespace {

// The application object: named "zvkeel4.dll" at load, renamed from string
// 57344 at start; it serves message pre-translation, idle time and the wait
// cursor. The name is a plain pointer so that the object needs no dynamic
// initialisation: start-up runs from the library's load hook, which may come
// before this file's constructors.
struct ModuleApplication {
  const char* name = "zvkeel4.dll";
  int32_t PreTranslateMessage(const WinMsg* message) { return WinAppPreTranslateMessage(message); }
  int32_t OnIdle(int32_t count) { return WinAppOnIdle(count); }
};

constinit ModuleApplication gApp;

}  // namespace

void ParseShortDate(const char* format) {
  char order[4] = {' ', ' ', ' ', ' '};
  int field = 0;
  int yearLetters = 0;
  for (const char* p = format; *p != '\0'; ++p) {
    switch (*p) {
      case 'D':
      case 'd':
        order[field] = order[field] == 'd' ? 'D' : 'd';
        break;
      case 'M':
      case 'm':
        order[field] = order[field] == 'm' ? 'M' : 'm';
        break;
      case 'Y':
      case 'y':
        order[field] = yearLetters < 2 ? 'y' : 'Y';
        ++yearLetters;
        break;
      default:
        order[3] = *p;
        if (field < 2) ++field;
        break;
    }
  }
  const bool filled = order[0] != ' ' && order[1] != ' ' && order[2] != ' ' && order[3] != ' ';
  if (field == 2 && filled) {
    std::memcpy(gDateOrder, order, 4);
    int k = 0;
    for (int i = 0; i < 3 && k < 2; ++i) {
      const char c = order[i];
      if (c == 'm' || c == 'M' || c == 'y' || c == 'Y') gMonthYearOrder[k++] = c;
    }
    if (k == 2) {
      gMonthYearOrder[2] = order[3];
      return;
    }
  }
  std::memcpy(gDateOrder, "mdy/", 4);
  std::memcpy(gMonthYearOrder, "my/", 3);
}

void ModuleStart() {
  gResourceModule = WinLoadLibrary("keel4res.dll");
  const std::string title = LoadText(kAppTitleText);
  std::memset(gAppTitle, 0, sizeof gAppTitle);
  std::memcpy(gAppTitle, title.data(), std::min(title.size(), sizeof gAppTitle - 1));
  gApp.name = gAppTitle;

  WinOsVersionInfo version{};
  version.size = sizeof version;
  WinGetVersionEx(&version);
  gPlatformId = static_cast<int32_t>(version.platformId);

  gLeadingZero = WinGetProfileInt("Intl", "iLzero", 1);
  char buffer[20];
  WinGetProfileString("Intl", "sDecimal", ".", buffer, 10);
  gDecimalChar = buffer[0] != '\0' ? buffer[0] : '.';
  WinGetProfileString("Intl", "sShortdate", "M/D/YY", buffer, 20);
  ParseShortDate(buffer);
  gTimeLeadingZero = WinGetProfileInt("Intl", "iTLZero", 0);
  WinGetProfileString("Intl", "sTime", ":", buffer, 10);
  gTimeSeparator = buffer[0] != '\0' ? buffer[0] : ':';
}

void ModuleStop() {
  if (gResourceModule != 0) WinFreeLibrary(gResourceModule);
  gResourceModule = 0;
  gAddedText.clear();
  gAddedText.shrink_to_fit();
  for (std::string* text : {&gXTitle, &gYTitle, &gZTitle, &gLegendTitle, &gMainTitle, &gSubTitle}) {
    text->clear();
    text->shrink_to_fit();
  }
  for (std::string& text : gEntryText) {
    text.clear();
    text.shrink_to_fit();
  }
}

void WaitCursor(int32_t change) {
  WinWaitCursor(change);
}

}  // namespace zv

using namespace zv;

ZV_API int32_t FilterDllMsg(const WinMsg* message) {
  return gApp.PreTranslateMessage(message);
}

ZV_API int32_t ProcessDllIdle() {
  int32_t count = 0;
  while (gApp.OnIdle(count) != 0) ++count;
  return 0;
}

ZV_API int32_t IsKeel4Loaded(HostHelpRecord* help, char* adviceBuffer, int32_t adviceEnabled) {
  gHostHelp = help;
  gAdviceBuffer = adviceBuffer;
  gAdviceEnabled = adviceEnabled;
  if (help != nullptr) help->helpContext = 0;
  return 1;
}

ZV_API void Keel4SetAddedText(const char* text, int32_t flag) {
  gAddedText = text != nullptr ? text : "";
  gAddedTextFlag = flag;
}
