// Any arguments to the statistical functions; see CheckStatistics for what
// must hold.
#include <cstdio>
#include <cstdlib>

#include "stats_properties.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string fault = zvfuzz::CheckStatistics(data, size, 1.0);
  if (!fault.empty()) {
    std::fprintf(stderr, "%s\n", fault.c_str());
    std::abort();
  }
  return 0;
}
