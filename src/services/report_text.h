// The pieces of report and interpretation text that every family writes:
// numbers in the report forms appended to a text, and sentences joined into
// a paragraph.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "services/number_format.h"

namespace zv {

// FormatNumber at width 16, as the text of a sentence or a "name = value" line.
std::string NumberText(double value);

// The appending forms are inline: a table calls them for every cell. The
// Put forms write the same text into a line buffer and return its end, for
// tables that fill a row and append it whole.

// A whole number left-justified in `width` characters, as "%-7d" prints it;
// at most 20 characters beyond the padding.
inline char* PutInt(char* out, int64_t value, int width) {
  char* end = std::to_chars(out, out + 20, value).ptr;
  while (end - out < width) *end++ = ' ';
  return end;
}

// FormatNumberLeft: exactly `width` characters (`width` < kNumberTextSize).
inline char* PutNumberLeft(char* out, double value, int32_t width) {
  const int32_t length = FormatNumber(out, value, width);
  std::memset(out + length, ' ', static_cast<size_t>(width - length));
  return out + width;
}

// FormatFixedTrimmed at width 15 with 4 decimals, blank-padded to `pad`
// characters (0: as it stands).
inline char* PutFixed(char* out, double value, size_t pad) {
  char buffer[kNumberTextSize];
  FormatFixedTrimmed(buffer, value, 15, 4);
  const size_t length = std::strlen(buffer);
  std::memcpy(out, buffer, length);
  if (length < pad) {
    std::memset(out + length, ' ', pad - length);
    return out + pad;
  }
  return out + length;
}

// NumberText appended to `text`.
inline void AppendNumber(std::string& text, double value) {
  char buffer[kNumberTextSize];
  text.append(buffer, static_cast<size_t>(FormatNumber(buffer, value, 16)));
}

// The Put forms appended to `text`; widths and pads up to kNumberTextSize.
inline void AppendNumberLeft(std::string& text, double value, int32_t width) {
  char buffer[kNumberTextSize];
  text.append(buffer, static_cast<size_t>(PutNumberLeft(buffer, value, width) - buffer));
}

inline void AppendInt(std::string& text, int64_t value, int width) {
  char buffer[kNumberTextSize + 24];
  text.append(buffer, static_cast<size_t>(PutInt(buffer, value, width) - buffer));
}

inline void AppendFixed(std::string& text, double value, size_t pad) {
  char buffer[2 * kNumberTextSize];
  text.append(buffer, static_cast<size_t>(PutFixed(buffer, value, pad) - buffer));
}

// The interpretation of a pane: the sentences opened by three blanks,
// separated by two and closed by two line ends; empty without sentences.
std::string JoinSentences(const std::vector<std::string>& sentences);

}  // namespace zv
