#include "protocol/protocol.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/variable_dialog.h"
#include "services/variables.h"
#include "zvgrid/zvgrid.h"

namespace zv {
namespace {

void RunComputation(const FamilyInfo& family, int32_t slot) {
  if (family.compute == nullptr) return;
  WaitCursorScope wait;
  family.compute(slot);
}

std::vector<std::string> EntryTexts(const FamilyInfo& family) {
  if (family.entryTexts != nullptr) return family.entryTexts();
  const size_t fields = family.dialog != nullptr ? family.dialog->fields.size() : 0;
  return std::vector<std::string>(gEntryText, gEntryText + std::min<size_t>(fields, 5));
}

std::string WindowTitle(const FamilyInfo& family, const std::vector<std::string>& entries) {
  if (family.windowTitle != nullptr) return family.windowTitle();
  std::string title = LoadText(family.titleString);
  if (family.titleEntry >= 0 && static_cast<size_t>(family.titleEntry) < entries.size()) {
    title += " - ";
    title += entries[static_cast<size_t>(family.titleEntry)];
  }
  return title;
}

// Calls `check` for every variable that Begin would load, with its position
// in the list; false at the first refusal.
template <class Check>
bool ForEachVariable(const FamilyInfo& family, ProcedureState& state, Check check) {
  int32_t position = 0;
  for (const BeginVariable& v : family.variables) {
    if (v.binding == kWholeSecondList) {
      for (int32_t i = 0; i < state.secondListCount; ++i) {
        if (!check(state.bindings[kSecondList + i], true, v.allowText, position++)) return false;
      }
      continue;
    }
    VariableBinding& binding = state.bindings[v.binding];
    if (!v.required && ExpressionOf(binding).empty()) {
      ++position;
      continue;
    }
    if (!check(binding, v.required, v.allowText, position++)) return false;
  }
  return true;
}

void MarkAllStale(ProcedureState& state, int32_t fromItem) {
  for (int32_t item = fromItem; item <= 14; ++item) state.paneStale[item - 1] = 1;
}

}  // namespace

ProcedureState& StateOf(int32_t slot) {
  return *gStates[slot];
}

void MarkAnalysisModified() {
  if (gHost != nullptr) VtblOf<HostRecordVtbl>(gHost).MarkModified(gHost, 1);
}

void RefreshPanes(ProcedureState& state) {
  VtblOf<ProcedureStateVtbl>(&state).RefreshPanes(&state, 0, 0, 0);
}

int32_t ProtocolDialog(const FamilyInfo& family, int32_t slot, HostRecord* host, SheetWindow* sheet,
                       FrameWindow* frame, int32_t reopen) {
  gHost = host;
  gSheetWindow = sheet;
  gFrameWindow = frame;
  if (family.dialog == nullptr) return 0;
  return RunVariableDialog(*family.dialog, slot, reopen);
}

void ProtocolSetup(const FamilyInfo& family, int32_t slot, ProcedureState* state, HostView* view,
                   char* entryList, int32_t reopen) {
  gStates[slot] = state;
  gViews[slot] = view;
  state->rowCount = gHost->rowCount;
  state->rowsDiffer = gHost->rowsDiffer;
  gHost->helpIds[slot] = family.helpId;
  state->slot = slot;
  state->procedureCode = family.procedureCode;
  if (reopen == 0) {
    state->hostWord1 = gHost->hostWord1;
    state->hostWord2 = gHost->hostWord2;
    state->firstListCount = family.firstListCount;
    state->secondListCount = std::max(family.secondListCount, 0);
    if (slot == gHost->nextSlot) ++gHost->nextSlot;
  }
  MarkAnalysisModified();

  const std::vector<std::string> entries = EntryTexts(family);
  std::string packed = WindowTitle(family, entries);
  packed.push_back('\0');
  for (const std::string& entry : entries) {
    packed += entry;
    packed.push_back('\0');
  }
  const size_t length = std::min<size_t>(packed.size(), kEntryListBytes);
  std::memcpy(entryList, packed.data(), length);
  if (length == kEntryListBytes) entryList[length - 1] = '\0';

  if (family.lineListEntry >= 0 && static_cast<size_t>(family.lineListEntry) < entries.size()) {
    CountVariableLines(slot, entries[static_cast<size_t>(family.lineListEntry)]);
  }
  if (reopen == 0 && family.writeDefaults != nullptr) family.writeDefaults(*state);
}

int32_t ProtocolBegin(const FamilyInfo& family, int32_t slot) {
  ProcedureState& state = StateOf(slot);
  state.status = 0;
  state.textOptionsMask = family.textOptionsMask;
  state.graphOptionsMask = family.graphOptionsMask;
  state.orderReady = 0;
  if (!family.loadsNoColumns) LoadSpecialVariables(slot);
  const bool loaded =
      ForEachVariable(family, state, [slot](VariableBinding& binding, bool, bool, int32_t) {
        return LoadVariable(slot, &binding) != 0;
      });
  if (!loaded) return 0;
  if (family.setsExtraStale) state.extraStale = 1;
  MarkAllStale(state, 1);
  if (state.begun == 0) ++gHost->begunCount;
  state.begun = 1;
  RunComputation(family, slot);
  return 1;
}

int32_t ProtocolBeginAgain(const FamilyInfo& family, int32_t slot, ProcedureState* state,
                           HostView* view, HostRecord* host, SheetWindow* sheet,
                           FrameWindow* frame) {
  gStates[slot] = state;
  gViews[slot] = view;
  gHost = host;
  gSheetWindow = sheet;
  gFrameWindow = frame;
  host->helpIds[slot] = family.helpId;
  host->currentSlot = slot;
  host->rowCount = GridRowCount();
  host->rowsDiffer = 0;
  if (!family.loadsNoColumns) {
    const bool resolves = ForEachVariable(
        family, *state,
        [](VariableBinding& binding, bool required, bool allowText, int32_t position) {
          return CheckVariable(position, ExpressionOf(binding), !required, allowText) != 0;
        });
    if (!resolves) {
      state->status = 1025;
      return 0;
    }
  }
  state->rowCount = host->rowCount;
  state->rowsDiffer = host->rowsDiffer;
  ProtocolBegin(family, slot);
  if (state->rowsDiffer != 0) FreeGlobal(&state->hostBlock);
  return 1;
}

int32_t ProtocolItem(const FamilyInfo& family, PaneWindow* pane, int32_t slot, int32_t item,
                     PaneRecord* record) {
  gCurrentPane = record;
  int32_t result = 0;
  {
    WaitCursorScope wait;
    if (family.writePane != nullptr) result = family.writePane(pane, slot, item);
    WinInvalidate(pane->window, true);
  }
  return result;
}

// Refuses the panes of a failed analysis except Item 1, runs the Item's
// dialog, then marks the analysis modified and rebuilds the pane; Item 1
// recomputes and refreshes every pane.
int32_t ProtocolOpts(const FamilyInfo& family, PaneWindow* pane, int32_t slot, int32_t item,
                     PaneRecord* record) {
  ProcedureState& state = StateOf(slot);
  if (item != 1 && state.status != 0) return 0;
  const int32_t answer = family.optionsDialog != nullptr ? family.optionsDialog(slot, item) : -1;
  if (answer < 0) {
    ShowNote(kPaneHasNoOptionsText);
    return 1;
  }
  if (answer == 0) return 0;
  MarkAnalysisModified();
  if (item == 1) RunComputation(family, slot);
  ProtocolItem(family, pane, slot, item, record);
  if (item == 1) {
    state.status = 0;
    MarkAllStale(state, 1);
    RefreshPanes(state);
  }
  return 1;
}

void ProtocolVsave(const FamilyInfo& family, int32_t slot) {
  if (family.save != nullptr) family.save(slot);
}

int32_t ProtocolRedoItem1(const FamilyInfo& family, PaneWindow* pane, int32_t slot,
                          int32_t /*passThrough*/) {
  if (family.redoDoesNothing) return 1;
  RunComputation(family, slot);
  ProtocolItem(family, pane, slot, 1, nullptr);
  MarkAllStale(StateOf(slot), 2);
  return 1;
}

}  // namespace zv
