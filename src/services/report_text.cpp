#include "services/report_text.h"

#include <charconv>
#include <string_view>

#include "services/number_format.h"

namespace zv {

std::string NumberText(double value) {
  char buffer[kNumberTextSize];
  return std::string(buffer, static_cast<size_t>(FormatNumber(buffer, value, 16)));
}

void AppendNumber(std::string& text, double value) {
  char buffer[kNumberTextSize];
  text.append(buffer, static_cast<size_t>(FormatNumber(buffer, value, 16)));
}

void AppendNumberLeft(std::string& text, double value, int32_t width) {
  char buffer[kNumberTextSize];
  FormatNumberLeft(buffer, value, width);
  text.append(buffer, static_cast<size_t>(width));
}

void AppendInt(std::string& text, int64_t value, int width) {
  char buffer[24];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  const size_t length = static_cast<size_t>(end - buffer);
  text.append(buffer, length);
  if (length < static_cast<size_t>(width)) text.append(static_cast<size_t>(width) - length, ' ');
}

void AppendFixed(std::string& text, double value, size_t pad) {
  char buffer[kNumberTextSize];
  FormatFixedTrimmed(buffer, value, 15, 4);
  const std::string_view cell(buffer);
  text.append(cell);
  if (cell.size() < pad) text.append(pad - cell.size(), ' ');
}

std::string JoinSentences(const std::vector<std::string>& sentences) {
  if (sentences.empty()) return {};
  std::string text = "   ";
  for (size_t i = 0; i < sentences.size(); ++i) {
    if (i > 0) text += "  ";
    text += sentences[i];
  }
  return text + "\r\n\r\n";
}

}  // namespace zv
