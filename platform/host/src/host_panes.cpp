// What the panes show: a text pane's report, a graph pane's texts, and the
// repaint of stale panes after a RefreshPanes.
#include <algorithm>

#include "zvhost/host.h"
#include "zvwin/zvwin.h"

namespace zvhost {

std::string Host::PaneText(int32_t slot, int32_t item) {
  std::string text;
  ReadPaneText(slot, item, [&](std::string_view view) { text = view; });
  return text;
}

void Host::ReadPaneText(int32_t slot, int32_t item,
                        const std::function<void(std::string_view)>& sink) {
  Analysis* a = AnalysisOf(slot);
  Pane* pane = a ? a->PaneOf(item) : nullptr;
  if (pane == nullptr) return sink({});
  WinOsVersionInfo version{};
  version.size = sizeof version;
  WinGetVersionEx(&version);
  if (version.platformId != 0 || item < 1 || item > 7) {
    return sink(WinWindowTextView(pane->window->window));
  }
  // Win32s: the report stands in the state as zero-ended lines.
  Handle block = a->state->paneText[item - 1];
  const int32_t lines = a->state->paneLines[item - 1];
  const uint32_t size = WinGlobalSize(block);
  const char* chars = static_cast<const char*>(WinGlobalLock(block));
  if (chars == nullptr) return sink({});
  std::string text;
  uint32_t pos = 0;
  for (int32_t line = 0; line < lines && pos < size; ++line) {
    uint32_t end = pos;
    while (end < size && chars[end] != '\0') ++end;
    text.append(chars + pos, end - pos);
    text += "\r\n";
    pos = end + 1;
  }
  WinGlobalUnlock(block);
  sink(text);
}

std::vector<GraphText> Host::GraphTexts(int32_t slot, int32_t item) {
  std::vector<GraphText> texts;
  Analysis* a = AnalysisOf(slot);
  Pane* pane = a ? a->PaneOf(item) : nullptr;
  if (pane == nullptr) return texts;
  const zv::PaneRecord& r = *pane->record;
  if (r.textItems == 0 || r.textStrings == 0) return texts;
  constexpr uint32_t kItemBytes = 44;
  constexpr uint32_t kStringBytes = 80;
  const uint32_t itemCount = std::min<uint32_t>(static_cast<uint32_t>(std::max(r.textItemCount, 0)),
                                                WinGlobalSize(r.textItems) / kItemBytes);
  const uint32_t stringCount =
      std::min<uint32_t>(static_cast<uint32_t>(std::max(r.textStringCount, 0)),
                         WinGlobalSize(r.textStrings) / kStringBytes);
  const auto* items = static_cast<const int32_t*>(WinGlobalLock(r.textItems));
  const auto* strings = static_cast<const char*>(WinGlobalLock(r.textStrings));
  if (items != nullptr && strings != nullptr) {
    uint32_t next = 0;
    for (uint32_t i = 0; i < itemCount; ++i) {
      const int32_t count = items[i * 11];
      const int32_t kind = items[i * 11 + 1];
      for (int32_t k = 0; k < count && next < stringCount; ++k, ++next) {
        std::string text(strings + next * kStringBytes, kStringBytes);
        size_t nul = text.find('\0');
        if (nul != std::string::npos) text.resize(nul);
        while (!text.empty() && text.back() == ' ') text.pop_back();
        texts.push_back({kind, text});
      }
    }
  }
  if (items != nullptr) WinGlobalUnlock(r.textItems);
  if (strings != nullptr) WinGlobalUnlock(r.textStrings);
  return texts;
}

void Host::RunDeferredRefresh() {
  if (refreshing_) return;
  refreshing_ = true;
  while (!refreshWanted_.empty()) {
    zv::ProcedureState* state = *refreshWanted_.begin();
    refreshWanted_.erase(refreshWanted_.begin());
    for (auto& [slot, analysis] : analyses_) {
      if (analysis.state.get() == state) {
        ShowStalePanes(slot);
        break;
      }
    }
  }
  refreshing_ = false;
}

}  // namespace zvhost
