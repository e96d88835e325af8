// Task-modal message boxes with the caption "Zivara Suite", owned by the
// active window, and the string-table read that every writer uses.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zv {

std::string LoadText(int32_t stringNumber);

void ShowError(int32_t stringNumber);                       // exclamation, OK
int32_t ShowErrorText(std::string_view text);               // exclamation, OK
void ShowErrorNumber(int32_t stringNumber, int32_t value);  // string is a format with one integer
void ShowNote(int32_t stringNumber);                        // information, OK
int32_t AskYesNo(int32_t stringNumber);                     // question; 6 is Yes

}  // namespace zv
