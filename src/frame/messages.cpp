#include "frame/messages.h"

#include <cstdio>

#include "frame/module_state.h"

namespace zv {
namespace {

constexpr char kCaption[] = "Zivara Suite";

int32_t Box(std::string_view text, uint32_t style) {
  return WinMessageBox(WinGetActiveWindow(), text, kCaption, style | kMbTaskModal);
}

}  // namespace

std::string LoadText(int32_t stringNumber) {
  char buffer[1024];
  const int32_t length =
      WinLoadString(gResourceModule, static_cast<uint32_t>(stringNumber), buffer, sizeof buffer);
  return std::string(buffer, length > 0 ? static_cast<size_t>(length) : 0);
}

void ShowError(int32_t stringNumber) {
  Box(LoadText(stringNumber), kMbOk | kMbIconExclamation);
}

int32_t ShowErrorText(std::string_view text) {
  return Box(text, kMbOk | kMbIconExclamation);
}

void ShowErrorNumber(int32_t stringNumber, int32_t value) {
  Box(FormatText(stringNumber, 84, value), kMbOk | kMbIconExclamation);
}

void ShowNote(int32_t stringNumber) {
  Box(LoadText(stringNumber), kMbOk | kMbIconInformation);
}

int32_t AskYesNo(int32_t stringNumber) {
  return Box(LoadText(stringNumber), kMbYesNo | kMbIconQuestion);
}

}  // namespace zv
