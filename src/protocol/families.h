// The Families table: what differs between the eleven procedures. The
// protocol (Dialog, Setup, Begin, BeginAgain, Item, Opts, RedoItem1, Vsave)
// is written once in protocol.cpp and reads a family's row; a family brings
// its row, its computation and its pane writers, never a copy of the protocol.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/host_records.h"
#include "services/variable_dialog.h"

namespace zv {

// A variable that Begin loads and BeginAgain checks.
struct BeginVariable {
  int32_t binding;  // index into bindings; kWholeSecondList for the second list
  bool required;    // optional ones load only when their text is not empty
  bool allowText;
};
inline constexpr int32_t kWholeSecondList = -2;

enum ListCount : int32_t { kFromLines = -1 };

struct FamilyInfo {
  const char* name;  // "Life2"
  int32_t procedureCode;
  int32_t helpId;
  int32_t titleString;  // first part of the window title
  int32_t titleEntry;   // entry text appended after " - ", or -1 for none
  int32_t firstListCount;
  int32_t secondListCount;  // kFromLines: counted from the line list entry
  int32_t lineListEntry;    // entry index of the line list, or -1
  int32_t textOptionsMask;
  int32_t graphOptionsMask;
  bool setsExtraStale;   // Codebook, Rowwise, Custom
  bool loadsNoColumns;   // Surfplot, Custom: no special variables, no checks
  bool redoDoesNothing;  // Codebook, Rowwise
  std::vector<BeginVariable> variables;
  const VariableDialogLayout* dialog;

  // Builds the window title when the plain rule (titleString, " - ",
  // titleEntry) does not fit; nullptr for the plain rule.
  std::string (*windowTitle)() = nullptr;
  // The texts of the entry list after the title; nullptr: gEntryText in field
  // order.
  std::vector<std::string> (*entryTexts)() = nullptr;
  // Writes the option defaults at the first Setup.
  void (*writeDefaults)(ProcedureState& state) = nullptr;
  // The computation of Begin, RedoItem1 and Opts on Item 1.
  void (*compute)(int32_t slot) = nullptr;
  // Writes pane `item`; items the family lacks do nothing and give 0.
  int32_t (*writePane)(PaneWindow* pane, int32_t slot, int32_t item) = nullptr;
  // The options dialog of pane `item`: 1 after OK with the fields stored, 0
  // after Cancel, -1 when the pane has none. nullptr: no pane has options.
  int32_t (*optionsDialog)(int32_t slot, int32_t item) = nullptr;
  void (*save)(int32_t slot) = nullptr;  // Vsave; nullptr does nothing
  // Appends the interpretation of pane `item` (CallKeel4Interpret).
  void (*interpret)(const ProcedureState& state, int32_t item, std::string& out) = nullptr;
};

// The rows, defined by each family in its own subsystem, one for each line
// of the family list.
#define ZV_FAMILY(Name, entries) extern const FamilyInfo k##Name##Family;
#include "protocol/family_list.h"
#undef ZV_FAMILY

// The family of a procedure code; nullptr for an unknown code.
const FamilyInfo* FamilyOfCode(int32_t procedureCode);

// The state of a Slot, as Setup or BeginAgain bound it.
ProcedureState& StateOf(int32_t slot);

// Marks the analysis of the current Host modified (after an accepted dialog).
void MarkAnalysisModified();
// Calls the state's RefreshPanes(0, 0, 0).
void RefreshPanes(ProcedureState& state);

// Raises (+1) or lowers (-1) the wait cursor of the module's application object.
void WaitCursor(int32_t change);

}  // namespace zv
