// The pieces of report and interpretation text that every family writes:
// numbers in the report forms appended to a text, and sentences joined into
// a paragraph.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "services/number_format.h"

namespace zv {

// FormatNumber at width 16, as the text of a sentence or a "name = value" line.
std::string NumberText(double value);

// The appending forms are inline: a table calls them for every cell.

// NumberText appended to `text`.
inline void AppendNumber(std::string& text, double value) {
  char buffer[kNumberTextSize];
  text.append(buffer, static_cast<size_t>(FormatNumber(buffer, value, 16)));
}

// FormatNumberLeft: exactly `width` characters.
inline void AppendNumberLeft(std::string& text, double value, int32_t width) {
  char buffer[kNumberTextSize];
  FormatNumberLeft(buffer, value, width);
  text.append(buffer, static_cast<size_t>(width));
}

// A whole number left-justified in `width` characters, as "%-7d" prints it.
inline void AppendInt(std::string& text, int64_t value, int width) {
  char buffer[24];
  const char* end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  const size_t length = static_cast<size_t>(end - buffer);
  text.append(buffer, length);
  if (length < static_cast<size_t>(width)) text.append(static_cast<size_t>(width) - length, ' ');
}

// FormatFixedTrimmed at width 15 with 4 decimals, blank-padded to `pad`
// characters (0: as it stands).
inline void AppendFixed(std::string& text, double value, size_t pad) {
  char buffer[kNumberTextSize];
  FormatFixedTrimmed(buffer, value, 15, 4);
  const std::string_view cell(buffer);
  text.append(cell);
  if (cell.size() < pad) text.append(pad - cell.size(), ' ');
}

// The interpretation of a pane: the sentences opened by three blanks,
// separated by two and closed by two line ends; empty without sentences.
std::string JoinSentences(const std::vector<std::string>& sentences);

}  // namespace zv
