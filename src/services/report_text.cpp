#include "services/report_text.h"

#include "services/number_format.h"

namespace zv {

std::string NumberText(double value) {
  char buffer[kNumberTextSize];
  return std::string(buffer, static_cast<size_t>(FormatNumber(buffer, value, 16)));
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
