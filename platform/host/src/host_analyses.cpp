// The analyses the Host keeps in Slots: their panes, storing and reloading
// a state, discarding an analysis with the blocks it holds.
#include "zvchart/zvchart.h"
#include "zvhost/host.h"
#include "zvhost/record_blocks.h"

namespace zvhost {

Pane* Analysis::PaneOf(int32_t item) {
  for (Pane& pane : panes) {
    if (pane.item == item) return &pane;
  }
  return nullptr;
}
Analysis* Host::AnalysisOf(int32_t slot) {
  auto it = analyses_.find(slot);
  return it == analyses_.end() ? nullptr : &it->second;
}

zv::ProcedureState* Host::State(int32_t slot) {
  Analysis* a = AnalysisOf(slot);
  return a ? a->state.get() : nullptr;
}

std::vector<int32_t> Host::OpenSlots() const {
  std::vector<int32_t> slots;
  for (const auto& [slot, analysis] : analyses_) slots.push_back(slot);
  return slots;
}

Analysis* Host::Require(int32_t slot, const char* what) {
  Analysis* a = AnalysisOf(slot);
  if (a == nullptr) {
    faults_.push_back(std::string(what) + ": no analysis is open in slot " + std::to_string(slot));
  }
  return a;
}
void Host::CreatePanes(Analysis& analysis) {
  for (int32_t item : ItemsOf(*analysis.family)) EnsurePane(analysis, item);
}

Pane& Host::EnsurePane(Analysis& analysis, int32_t item) {
  if (Pane* existing = analysis.PaneOf(item)) return *existing;
  Pane pane;
  pane.item = item;
  pane.window = std::make_unique<zv::PaneWindow>();
  pane.record = std::make_unique<zv::PaneRecord>();
  pane.window->window = WinCreateWindow(IsGraphItem(item) ? "ZivaraGraphPane" : "ZivaraTextPane");
  pane.windowRef = WinRegister(pane.window.get());
  pane.recordRef = WinRegister(pane.record.get());
  analysis.panes.push_back(std::move(pane));
  return analysis.panes.back();
}
bool Host::Reload(int32_t slot) {
  Analysis* a = Require(slot, "Reload");
  if (a == nullptr) return false;
  // The stored analysis keeps its option fields, list counts and expression
  // texts; its handles stay valid, since this process still holds the blocks.
  auto fresh = std::make_unique<zv::ProcedureState>(*a->state);
  for (int32_t i = 0; i < zv::kBindingCount; ++i) {
    fresh->bindings[i].expression = 0;
    std::string_view text = zv::CountedText(a->state->bindings[i].expression);
    if (!text.empty()) fresh->bindings[i].expression = WinTextCreate(text);
    SetExpression(a->state->bindings[i], {});
  }
  WinUnregister(a->stateRef);
  a->state = std::move(fresh);
  a->stateRef = WinRegister(a->state.get());
  return true;
}

void Host::DestroyAnalysis(Analysis& analysis) {
  for (Pane& pane : analysis.panes) {
    zv::PaneRecord& r = *pane.record;
    if (r.graphId != 0) ChartRelease(r.graphId);
    ReleasePaneRecordBlocks(r);
    WinDestroyWindow(pane.window->window);
    WinUnregister(pane.windowRef);
    WinUnregister(pane.recordRef);
  }
  analysis.panes.clear();
  if (analysis.state) {
    // The Host discards the block, and with it the blocks its fields hold.
    ReleaseStateBlocks(*analysis.state);
    WinUnregister(analysis.stateRef);
  }
  if (analysis.view) WinUnregister(analysis.viewRef);
  analysis.state.reset();
  analysis.view.reset();
}

void Host::Close(int32_t slot) {
  auto it = analyses_.find(slot);
  if (it == analyses_.end()) return;
  refreshWanted_.erase(it->second.state.get());
  DestroyAnalysis(it->second);
  analyses_.erase(it);
}
}  // namespace zvhost
