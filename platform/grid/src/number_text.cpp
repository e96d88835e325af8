#include "number_text.h"

#include <charconv>
#include <cmath>
#include <system_error>

#include "sheet_store.h"

namespace zvgrid::detail {
namespace {

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

size_t SkipDigits(std::string_view text, size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

}  // namespace

size_t ScanNumber(std::string_view text) {
  size_t at = SkipDigits(text, 0);
  const bool whole = at > 0;
  bool fraction = false;
  if (at < text.size() && text[at] == '.') {
    const size_t end = SkipDigits(text, at + 1);
    fraction = end > at + 1;
    if (whole || fraction) at = end;
  }
  if (!whole && !fraction) return 0;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    size_t exponent = at + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    const size_t end = SkipDigits(text, exponent);
    if (end > exponent) at = end;  // "2e" is the number 2 followed by a name
  }
  return at;
}

bool NumberValue(std::string_view digits, double* value) {
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), *value);
  if (error == std::errc()) return std::isfinite(*value);
  if (error != std::errc::result_out_of_range) return false;
  // Out of range either way: the decimal exponent of the leading digit tells
  // an overflow from an underflow.
  long lead = 0;
  bool seenDigit = false;
  bool afterPoint = false;
  size_t at = 0;
  for (; at < digits.size() && digits[at] != 'e' && digits[at] != 'E'; ++at) {
    const char c = digits[at];
    if (c == '.') {
      afterPoint = true;
    } else if (!seenDigit && c == '0') {
      if (afterPoint) --lead;
    } else if (!seenDigit) {
      seenDigit = true;
      if (afterPoint) --lead;
    } else if (!afterPoint) {
      ++lead;
    }
  }
  long exponent = 0;
  if (at < digits.size()) {
    size_t e = at + 1;
    const bool negative = e < digits.size() && digits[e] == '-';
    if (e < digits.size() && (digits[e] == '+' || digits[e] == '-')) ++e;
    for (; e < digits.size() && exponent < 100000; ++e)
      exponent = exponent * 10 + (digits[e] - '0');
    if (negative) exponent = -exponent;
  }
  if (lead + exponent > 0) return false;
  *value = 0.0;
  return true;
}

bool ParseNumberText(std::string_view text, bool commaPoint, double* value) {
  text = TrimBlanks(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  std::string copy;
  if (commaPoint && text.find('.') == std::string_view::npos) {
    const size_t comma = text.find(',');
    if (comma != std::string_view::npos) {
      copy.assign(text);
      copy[comma] = '.';
      text = copy;
    }
  }
  if (text.empty() || ScanNumber(text) != text.size()) return false;
  if (!NumberValue(text, value)) return false;
  if (negative) *value = -*value;
  return true;
}

CellNumber ClassifyCell(std::string_view text, double* value) {
  bool negative = false;
  if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
    negative = text.front() == '-';
    text.remove_prefix(1);
  }
  if (text.empty()) return CellNumber::kText;
  if (IsDigit(text.front()) || text.front() == '.') {
    // from_chars reads the same grammar as ScanNumber once the sign is off
    // and the text starts with a digit or a point.
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *value);
    if (stop != end) return CellNumber::kText;
    if (error == std::errc::result_out_of_range && !NumberValue(text, value))
      return CellNumber::kNotFinite;
    if (error != std::errc() && error != std::errc::result_out_of_range) return CellNumber::kText;
    if (negative) *value = -*value;
    return CellNumber::kNumber;
  }
  if (EqualNoCase(text, "inf") || EqualNoCase(text, "infinity") || EqualNoCase(text, "nan"))
    return CellNumber::kNotFinite;
  return CellNumber::kText;
}

std::string FormatNumberText(double value) {
  char buffer[32];
  const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
  if (error != std::errc()) return {};
  return std::string(buffer, end);
}

}  // namespace zvgrid::detail
