#include "services/dialog_exchange.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"

namespace zv {
namespace {

constexpr size_t kControlTextLimit = 64;

bool IsSpace(char c) {
  return c == ' ' || c == '\t';
}

bool Fail(DataExchange& dx, int32_t control, std::string_view message) {
  ShowErrorText(message);
  dx.dialog.SetFocusItem(control);
  dx.failed = true;
  return false;
}

// Expands "%1" and "%2" of a string-table format.
std::string Expand(int32_t stringNumber, std::string_view first, std::string_view second) {
  const std::string format = LoadText(stringNumber);
  std::string out;
  for (size_t i = 0; i < format.size(); ++i) {
    if (format[i] == '%' && i + 1 < format.size() &&
        (format[i + 1] == '1' || format[i + 1] == '2')) {
      out += format[i + 1] == '1' ? first : second;
      ++i;
    } else {
      out.push_back(format[i]);
    }
  }
  return out;
}

void SetIfDifferent(DataExchange& dx, int32_t control, const std::string& text) {
  // Setting an unchanged text would move the caret.
  if (dx.dialog.GetItemText(control) != text) dx.dialog.SetItemText(control, text);
}

// A whole number from a text with only blanks around it. One beyond the
// range of long long is taken as its nearest limit: it is still a whole
// number, and the range check that follows says what the field allows.
bool ParseWhole(std::string_view text, long long* value) {
  std::string s(text.substr(0, kControlTextLimit));
  const char* p = s.c_str();
  while (IsSpace(*p)) ++p;
  char* end = nullptr;
  *value = std::strtoll(p, &end, 10);
  if (end == p) return false;
  while (IsSpace(*end)) ++end;
  return *end == '\0';
}

}  // namespace

bool ParseDialogNumber(std::string_view text, double* value) {
  std::string s(text.substr(0, kControlTextLimit));
  for (char& c : s) {
    if (c == gDecimalChar) c = '.';
  }
  const char* p = s.c_str();
  while (IsSpace(*p)) ++p;
  const char* start = p;
  char* end = nullptr;
  const double v = std::strtod(p, &end);
  if (end == p || !std::isfinite(v)) return false;
  while (IsSpace(*end)) ++end;
  if (*end != '\0') return false;
  if (v == 0.0 && *start != '0') return false;
  *value = v;
  return true;
}

std::string FormatDialogNumber(double value) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15g", value);
  std::string text = buffer;
  for (char& c : text) {
    if (c == '.') c = gDecimalChar;
  }
  return text;
}

bool ExchangeDouble(DataExchange& dx, int32_t control, double* value) {
  if (dx.failed) return false;
  if (!dx.saving) {
    SetIfDifferent(dx, control, FormatDialogNumber(*value));
    return true;
  }
  double parsed = 0.0;
  if (!ParseDialogNumber(dx.dialog.GetItemText(control), &parsed)) {
    return Fail(dx, control, LoadText(kEnterNumberText));
  }
  *value = parsed;
  return true;
}

bool ExchangeInt(DataExchange& dx, int32_t control, int32_t* value) {
  if (dx.failed) return false;
  if (!dx.saving) {
    SetIfDifferent(dx, control, std::to_string(*value));
    return true;
  }
  long long parsed = 0;
  if (!ParseWhole(dx.dialog.GetItemText(control), &parsed)) {
    return Fail(dx, control, LoadText(kEnterWholeNumberText));
  }
  // Out of the int range: the nearest limit, for the range check to refuse.
  *value = static_cast<int32_t>(std::clamp<long long>(parsed, INT32_MIN, INT32_MAX));
  return true;
}

bool ExchangeUnsigned(DataExchange& dx, int32_t control, uint32_t* value) {
  if (dx.failed) return false;
  if (!dx.saving) {
    SetIfDifferent(dx, control, std::to_string(*value));
    return true;
  }
  long long parsed = 0;
  if (!ParseWhole(dx.dialog.GetItemText(control), &parsed)) {
    return Fail(dx, control, LoadText(kEnterWholeNumberText));
  }
  *value = static_cast<uint32_t>(std::clamp<long long>(parsed, 0, UINT32_MAX));
  return true;
}

bool ExchangeText(DataExchange& dx, int32_t control, std::string* value) {
  if (dx.failed) return false;
  if (dx.saving) {
    *value = dx.dialog.GetItemText(control);
  } else {
    SetIfDifferent(dx, control, *value);
  }
  return true;
}

bool ExchangeCheck(DataExchange& dx, int32_t control, int32_t* value) {
  if (dx.failed) return false;
  if (dx.saving) {
    *value = dx.dialog.IsChecked(control) ? 1 : 0;
  } else {
    dx.dialog.CheckButton(control, *value != 0 ? 1 : 0);
  }
  return true;
}

bool ExchangeRadio(DataExchange& dx, int32_t first, int32_t last, int32_t* index) {
  if (dx.failed) return false;
  if (dx.saving) {
    for (int32_t id = first; id <= last; ++id) {
      if (dx.dialog.IsChecked(id)) *index = id - first;
    }
  } else {
    dx.dialog.CheckRadio(first, last, first + *index);
  }
  return true;
}

bool CheckDoubleRange(DataExchange& dx, int32_t control, double value, double minimum,
                      double maximum) {
  if (dx.failed || !dx.saving) return !dx.failed;
  if (minimum <= value && value <= maximum) return true;
  return Fail(dx, control, Expand(962, FormatDialogNumber(minimum), FormatDialogNumber(maximum)));
}

bool CheckIntRange(DataExchange& dx, int32_t control, int32_t value, int32_t minimum,
                   int32_t maximum) {
  if (dx.failed || !dx.saving) return !dx.failed;
  if (minimum <= value && value <= maximum) return true;
  return Fail(dx, control, Expand(964, std::to_string(minimum), std::to_string(maximum)));
}

bool CheckUnsignedRange(DataExchange& dx, int32_t control, uint32_t value, uint32_t minimum,
                        uint32_t maximum) {
  if (dx.failed || !dx.saving) return !dx.failed;
  if (minimum <= value && value <= maximum) return true;
  return Fail(dx, control, Expand(964, std::to_string(minimum), std::to_string(maximum)));
}

bool CheckTextLength(std::string_view text, int32_t maximum) {
  if (static_cast<int64_t>(text.size()) <= maximum) return true;
  ShowErrorText(Expand(965, std::to_string(maximum), ""));
  return false;
}

}  // namespace zv
