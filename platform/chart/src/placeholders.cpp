// Title texts are stored with placeholders that stand for the title lines,
// so the user can edit either; they are filled only when drawn.
#include <cctype>

#include "zvchart/chart_host.h"

namespace zvchart {

// "{n}" for a digit 1..9 is line n. "{L}", "{%L}" for a letter L is line
// 10 + (L - 'A'), either case, as the legends number their entries.
std::string ExpandPlaceholders(std::string_view text, const StoredGraph& graph) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '{') {
      size_t close = text.find('}', i);
      std::string_view inner =
          close == std::string_view::npos ? std::string_view() : text.substr(i + 1, close - i - 1);
      if (!inner.empty() && inner[0] == '%') inner.remove_prefix(1);
      int line = 0;
      if (inner.size() == 1) {
        unsigned char c = static_cast<unsigned char>(inner[0]);
        if (c >= '1' && c <= '9' && close - i == 2) line = c - '0';
        if (std::isalpha(c)) line = 10 + (std::toupper(c) - 'A');
      }
      if (line >= 1 && line <= kTitleLineCount) {
        out += graph.titleLines[line - 1];
        i = close;
        continue;
      }
    }
    out += text[i];
  }
  return out;
}

}  // namespace zvchart
