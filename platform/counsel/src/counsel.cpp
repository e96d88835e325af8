#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "zvcounsel/zvcounsel.h"

namespace {

CounselInterpreter gInterpreter = nullptr;

// The module writes its interpretation without a bound; its longest text is
// a few kilobytes, so this leaves a wide margin.
constexpr size_t kInterpretBytes = 65536;

constexpr const char* kGraphAdvice =
    "Read the graph together with the summary pane: a few points far from the "
    "rest can move the mean and the spread a long way.\r\n";

}  // namespace

void CounselSetInterpreter(CounselInterpreter interpreter) {
  gInterpreter = interpreter;
}

int32_t CounselPaneWidth() {
  return 80;
}

void CounselWrite(zv::ProcedureState* state, int32_t item, char* buffer, int32_t size,
                  int32_t /*zero*/, int32_t graph) {
  if (buffer == nullptr || size <= 0) return;
  std::string advice;
  if (gInterpreter != nullptr && state != nullptr) {
    std::vector<char> text(kInterpretBytes, '\0');
    gInterpreter(state, text.data(), item);
    text.back() = '\0';
    advice = text.data();
    if (!advice.empty() && advice.back() != '\n') advice += "\r\n";
  }
  if (graph != 0) advice += kGraphAdvice;

  size_t n = std::min(advice.size(), static_cast<size_t>(size) - 1);
  // A cut never leaves half of a line end behind.
  if (n > 0 && n < advice.size() && advice[n - 1] == '\r' && advice[n] == '\n') --n;
  std::memcpy(buffer, advice.data(), n);
  buffer[n] = '\0';
}
