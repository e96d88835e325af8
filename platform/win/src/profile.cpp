// Profile reads from the INI file named by ZIVARA_PROFILE: "[Section]"
// headers, "key=value" lines, ';' comment lines; section and key names
// compare without regard to case. The file is read at every call, as the
// system does, so a test may point the variable at another file at any time.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "win_internal.h"

namespace {

std::string_view Trim(std::string_view text) {
  size_t begin = text.find_first_not_of(" \t\r");
  if (begin == std::string_view::npos) return {};
  size_t end = text.find_last_not_of(" \t\r");
  return text.substr(begin, end - begin + 1);
}

// The value of `key` in `section`, or nothing when the file, the section or
// the key is absent. The first occurrence of a key wins.
std::optional<std::string> FindProfileValue(const char* section, const char* key) {
  const char* path = std::getenv("ZIVARA_PROFILE");
  if (path == nullptr || section == nullptr || key == nullptr) return std::nullopt;
  std::ifstream file(path);
  if (!file) return std::nullopt;
  const std::string wantedSection = zvwin_detail::AsciiLower(Trim(section));
  const std::string wantedKey = zvwin_detail::AsciiLower(Trim(key));
  bool inSection = false;
  std::string line;
  while (std::getline(file, line)) {
    std::string_view text = Trim(line);
    if (text.empty() || text.front() == ';') continue;
    if (text.front() == '[') {
      // A header without its ']' still ends the section before it.
      size_t close = std::min(text.find(']'), text.size());
      inSection = zvwin_detail::AsciiLower(Trim(text.substr(1, close - 1))) == wantedSection;
      continue;
    }
    if (!inSection) continue;
    size_t equals = text.find('=');
    if (equals == std::string_view::npos) continue;
    if (zvwin_detail::AsciiLower(Trim(text.substr(0, equals))) != wantedKey) continue;
    std::string_view value = Trim(text.substr(equals + 1));
    // A value in matching quotes loses them, as the system's reader does.
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
      value = value.substr(1, value.size() - 2);
    }
    return std::string(value);
  }
  return std::nullopt;
}

// Leading blanks, an optional sign, then decimal digits up to the first other
// character: "12abc" is 12, "abc" is 0. The value wraps to 32 bits.
int32_t ParseLeadingInteger(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  bool negative = false;
  if (i < text.size() && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  uint32_t value = 0;
  for (; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
    value = value * 10u + static_cast<uint32_t>(text[i] - '0');
  }
  return static_cast<int32_t>(negative ? 0u - value : value);
}

}  // namespace

int32_t WinGetProfileInt(const char* section, const char* key, int32_t defaultValue) {
  std::optional<std::string> value = FindProfileValue(section, key);
  // An empty value counts as absent, as with the system's reader.
  if (!value || value->empty()) return defaultValue;
  return ParseLeadingInteger(*value);
}

uint32_t WinGetProfileString(const char* section, const char* key, const char* defaultValue,
                             char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return 0;
  std::optional<std::string> value = FindProfileValue(section, key);
  std::string_view text =
      value ? std::string_view(*value) : std::string_view(defaultValue ? defaultValue : "");
  size_t length = std::min<size_t>(text.size(), size - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
  return static_cast<uint32_t>(length);
}
