// Field exchange between a dialog's controls and plain members, in both
// directions, with locale-aware numbers and the range checks of OK. A failed
// save shows its message, puts the focus on the control, and makes every
// later exchange of the same pass do nothing, so the dialog stays open.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "zvwin/zvwin.h"

namespace zv {

struct DataExchange {
  WinDialog& dialog;
  bool saving;  // true: controls to members (OK); false: members to controls
  bool failed = false;
};

bool ExchangeDouble(DataExchange& dx, int32_t control, double* value);
bool ExchangeInt(DataExchange& dx, int32_t control, int32_t* value);
bool ExchangeUnsigned(DataExchange& dx, int32_t control, uint32_t* value);
bool ExchangeText(DataExchange& dx, int32_t control, std::string* value);
bool ExchangeCheck(DataExchange& dx, int32_t control, int32_t* value);
// A radio group of consecutive controls first..last; *index counts from 0.
bool ExchangeRadio(DataExchange& dx, int32_t first, int32_t last, int32_t* index);

// Range checks, run only when saving, right after the exchange.
bool CheckDoubleRange(DataExchange& dx, int32_t control, double value, double minimum,
                      double maximum);
bool CheckIntRange(DataExchange& dx, int32_t control, int32_t value, int32_t minimum,
                   int32_t maximum);
bool CheckUnsignedRange(DataExchange& dx, int32_t control, uint32_t value, uint32_t minimum,
                        uint32_t maximum);
// String 965 with the limit when the text is longer than `maximum`.
bool CheckTextLength(std::string_view text, int32_t maximum);

// Reads a number as the dialogs do: the locale's decimal character, blanks
// around it, nothing else; a result of 0 must come from a text that begins
// with '0'. False for anything else.
bool ParseDialogNumber(std::string_view text, double* value);
// 15 significant digits in the shortest form, with the locale's decimal character.
std::string FormatDialogNumber(double value);

}  // namespace zv
