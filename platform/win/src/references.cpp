// 32-bit references to objects and the Host's counted texts.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>
#include <unordered_map>

#include "win_internal.h"

namespace zvwin_detail {

uint32_t NextReference() {
  // Start well away from small integers so that a count or an index passed
  // by mistake does not resolve.
  static uint32_t next = 0x10000;
  return next++;
}

std::string AsciiLower(std::string_view text) {
  std::string out(text);
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

}  // namespace zvwin_detail

namespace {

std::unordered_map<uint32_t, void*>& References() {
  static std::unordered_map<uint32_t, void*> table;
  return table;
}

// A counted text: a 4-byte spare word, the int32 length, a 4-byte spare word
// so that the length sits exactly 8 bytes before the characters, then the
// characters and their terminator.
struct TextHeader {
  int32_t reserved;
  int32_t length;
  int32_t pad;
};
static_assert(sizeof(TextHeader) == 12);
constexpr size_t kLengthToChars = sizeof(TextHeader) - offsetof(TextHeader, length);
static_assert(kLengthToChars == 8);

std::unordered_map<TextRef, char*>& Texts() {
  static std::unordered_map<TextRef, char*> table;
  return table;
}

}  // namespace

uint32_t WinRegister(void* object) {
  if (object == nullptr) return 0;
  uint32_t ref = zvwin_detail::NextReference();
  References()[ref] = object;
  return ref;
}

void* WinResolve(uint32_t ref) {
  auto it = References().find(ref);
  return it == References().end() ? nullptr : it->second;
}

void WinUnregister(uint32_t ref) {
  References().erase(ref);
}

TextRef WinTextCreate(std::string_view text) {
  if (text.size() > static_cast<size_t>(std::numeric_limits<int32_t>::max()) - 64) return 0;
  char* block = new char[sizeof(TextHeader) + text.size() + 1];
  TextHeader header{0, static_cast<int32_t>(text.size()), 0};
  std::memcpy(block, &header, sizeof header);
  char* chars = block + sizeof(TextHeader);
  if (!text.empty()) std::memcpy(chars, text.data(), text.size());
  chars[text.size()] = '\0';
  TextRef ref = WinRegister(chars);
  Texts()[ref] = block;
  return ref;
}

void WinTextFree(TextRef text) {
  auto it = Texts().find(text);
  if (it == Texts().end()) {
    if (text != 0) std::fprintf(stderr, "WinTextFree: %#x is not a live text\n", text);
    return;
  }
  delete[] it->second;
  Texts().erase(it);
  WinUnregister(text);
}
