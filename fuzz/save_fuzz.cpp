// Any bytes to the CSV reader; an accepted sheet saved to a file and loaded
// back; see CheckSaveFile.
#include <unistd.h>

#include <cstdio>

#include "sheet_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::string path = "/tmp/zvgrid-save-fuzz-" + std::to_string(::getpid()) + ".csv";
  const std::string fault =
      zvfuzz::CheckSaveFile(std::string_view(reinterpret_cast<const char*>(data), size), path);
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
