// Any text to the expression parser; see CheckExpression for what must hold.
#include <cstdio>

#include "sheet_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool loaded = (zvfuzz::LoadExpressionSheet(), true);
  (void)loaded;
  const std::string fault =
      zvfuzz::CheckExpression(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
