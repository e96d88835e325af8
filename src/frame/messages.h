// Task-modal message boxes with the caption "Zivara Suite", owned by the
// active window, and the string-table read that every writer uses.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

namespace zv {

std::string LoadText(int32_t stringNumber);

// A string-table format expanded with `args` as printf expands them, cut to
// `capacity` - 1 characters: the fixed buffers that some texts are made in
// (84 bytes for a message with a number, gInterpretBuffer for sentences).
template <class... Args>
std::string FormatText(int32_t stringNumber, size_t capacity, Args... args) {
  const std::string format = LoadText(stringNumber);
  const int length = std::snprintf(nullptr, 0, format.c_str(), args...);
  if (length <= 0 || capacity == 0) return {};
  std::string out(static_cast<size_t>(length) + 1, '\0');
  std::snprintf(out.data(), out.size(), format.c_str(), args...);
  out.resize(std::min(static_cast<size_t>(length), capacity - 1));
  return out;
}

void ShowError(int32_t stringNumber);                       // exclamation, OK
int32_t ShowErrorText(std::string_view text);               // exclamation, OK
void ShowErrorNumber(int32_t stringNumber, int32_t value);  // string is a format with one integer
void ShowNote(int32_t stringNumber);                        // information, OK
int32_t AskYesNo(int32_t stringNumber);                     // question; 6 is Yes

}  // namespace zv
