// The pieces of report and interpretation text that every family writes:
// numbers in the report forms appended to a text, and sentences joined into
// a paragraph.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zv {

// FormatNumber at width 16, as the text of a sentence or a "name = value" line.
std::string NumberText(double value);
// The same appended to `text`.
void AppendNumber(std::string& text, double value);
// FormatNumberLeft: exactly `width` characters.
void AppendNumberLeft(std::string& text, double value, int32_t width);
// A whole number left-justified in `width` characters, as "%-7d" prints it.
void AppendInt(std::string& text, int64_t value, int width);
// FormatFixedTrimmed at width 15 with 4 decimals, blank-padded to `pad`
// characters (0: as it stands).
void AppendFixed(std::string& text, double value, size_t pad);

// The interpretation of a pane: the sentences opened by three blanks,
// separated by two and closed by two line ends; empty without sentences.
std::string JoinSentences(const std::vector<std::string>& sentences);

}  // namespace zv
