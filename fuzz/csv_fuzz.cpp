// Any bytes to the CSV reader; see CheckCsv for what must hold.
#include <cstdio>

#include "sheet_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string fault =
      zvfuzz::CheckCsv(std::string_view(reinterpret_cast<const char*>(data), size));
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
