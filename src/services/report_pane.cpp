#include "services/report_pane.h"

#include <algorithm>
#include <cstring>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/movable_block.h"
#include "services/variables.h"
#include "zvcounsel/zvcounsel.h"

namespace zv {

int32_t SetPaneText(PaneWindow* pane, int32_t slot, int32_t item, std::string_view text) {
  if (gPlatformId != 0) {
    WinSetWindowText(pane->window, text);
    return 1;
  }
  // Win32s: the Host paints the pane from a block of zero-ended lines.
  ProcedureState& state = *gStates[slot];
  const int index = item - 1;
  FreeGlobal(&state.paneText[index]);
  state.paneText[index] = AllocGlobal(static_cast<uint32_t>(text.size() + 2));
  if (state.paneText[index] == 0) return 0;
  LockedBlock<char> block(state.paneText[index]);
  int32_t width = 0;
  int32_t lines = 0;
  int32_t length = 0;
  size_t out = 0;
  for (char c : text) {
    if (c == '\n') {
      ++lines;
      width = std::max(width, length);
      length = 0;
      block[out++] = '\0';
    } else if (c != '\r') {
      ++length;
      block[out++] = c;
    }
  }
  if (length > 0) {
    ++lines;
    width = std::max(width, length);
  }
  block[out] = '\0';
  state.paneWidth[index] = width;
  state.paneLines[index] = lines;
  return 1;
}

void AppendAdvice(std::string& text, int32_t slot, int32_t item) {
  if (gAdviceBuffer == nullptr) return;
  gAdviceBuffer[0] = '\0';
  CounselWrite(gStates[slot], item, gAdviceBuffer, kAdviceBufferSize, 0, 0);
  if (gAdviceEnabled)
    text += std::string_view(gAdviceBuffer, strnlen(gAdviceBuffer, kAdviceBufferSize));
}

void WriteGraphAdvice(int32_t slot, int32_t item) {
  if (gAdviceBuffer == nullptr) return;
  CounselWrite(gStates[slot], item, gAdviceBuffer, kAdviceBufferSize, 0, 1);
}

int32_t WriteFailedPane(PaneWindow* pane, int32_t slot, int32_t item) {
  return SetPaneText(pane, slot, item, LoadText(kNoResultsText));
}

int32_t StatusString(std::span<const StatusText> table, int32_t status) {
  for (const StatusText& row : table) {
    if (row.status == status || row.status == kAnyOtherStatus) {
      return row.string == kStatusOwnString ? status : row.string;
    }
  }
  return status;
}

}  // namespace zv
