// The Host: the desktop program that loads the statistics module, owns the
// records that cross into it (analysis states, views, panes, the central
// record), implements their virtual operations, and calls the module's entry
// points in the order of the procedure protocol. It also plays the user: the
// dialogs are answered by a ScriptedUser, message boxes and expression edits
// from queues.
//
// One Host is active at a time, on one thread, as the module expects.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "zvhost/host_families.h"
#include "zvhost/module_library.h"
#include "zvhost/scripted_user.h"

namespace zvhost {

inline constexpr int32_t kEntryListBytes = 16384;
inline constexpr int32_t kAdviceBytes = 8192;

// One pane of an analysis: its window object and the Host's pane record.
struct Pane {
  int32_t item = 0;
  std::unique_ptr<zv::PaneWindow> window;
  std::unique_ptr<zv::PaneRecord> record;
  uint32_t windowRef = 0;
  uint32_t recordRef = 0;
  int32_t builds = 0;  // times Item ran for it
};

// One open analysis in a Slot.
struct Analysis {
  const FamilySpec* family = nullptr;
  int32_t slot = 0;
  std::unique_ptr<zv::ProcedureState> state;
  std::unique_ptr<zv::HostView> view;
  uint32_t stateRef = 0;
  uint32_t viewRef = 0;
  std::string title;  // the window title from the entry list
  std::vector<Pane> panes;

  Pane* PaneOf(int32_t item);
};

// A graph pane's text as the module left it in the pane record.
struct GraphText {
  int32_t kind;
  std::string text;
};

class Host {
 public:
  Host();
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  // Loads the module and calls IsKeel4Loaded with the help record and the
  // advice buffer. False with a message when that fails.
  bool LoadModule(const std::string& path, std::string* error);
  const ModuleLibrary& module() const { return module_; }
  bool HasProcedure(const FamilySpec& family) const { return module_.HasFamily(family); }

  // --- the user -----------------------------------------------------------
  ScriptedUser& user() { return user_; }
  // The answer to the next message box (kIdYes, kIdNo, kIdOk, ...).
  void QueueAnswer(int32_t answer) { answers_.push_back(answer); }
  // The text that the next EditExpression writes back.
  void QueueExpression(std::string text) { expressions_.push_back(std::move(text)); }
  // Sees every message box as it is shown.
  void SetMessageObserver(std::function<void(const MessageBoxCall&)> observer) {
    observer_ = std::move(observer);
  }

  // --- the protocol ---------------------------------------------------------
  // Every call is guarded: an exception that leaves the module (SilentAbort)
  // ends the call quietly with result 0, and a movable block left locked is
  // noted as a fault. Panes whose RefreshPanes came during a call are rebuilt
  // when the call has returned, as the window system would repaint them.

  // The Slot a new analysis takes: the HostRecord's nextSlot.
  int32_t NewSlot() const { return record_->nextSlot; }
  // Sets rowCount from the sheet and rowsDiffer to 0, then calls Dialog. A
  // reopen needs the analysis of the Slot.
  int32_t Dialog(const FamilySpec& family, int32_t slot, bool reopen);
  // Calls Setup and stores the entry list in the bindings. Without reopen it
  // opens a new analysis of the family of the last Dialog in the Slot.
  bool Setup(int32_t slot, bool reopen);
  int32_t Begin(int32_t slot);
  int32_t Item(int32_t slot, int32_t item);
  // Item for a graph pane whose data did not change (the window was resized,
  // say): graphKeepId names its graph, so the module keeps its axes.
  int32_t RedrawGraph(int32_t slot, int32_t item);
  // Item for every pane whose paneStale flag is set, clearing the flags.
  // With `only`, just those panes: the others stay stale, like windows that
  // are not open.
  void ShowStalePanes(int32_t slot, const std::vector<int32_t>& only = {});
  int32_t Opts(int32_t slot, int32_t item);
  int32_t RedoItem1(int32_t slot);
  void Vsave(int32_t slot);
  int32_t BeginAgain(int32_t slot);
  // Writes the analysis away and reads it back as the Host's files do: a
  // fresh block with the same bytes and fresh expression texts.
  bool Reload(int32_t slot);
  void Close(int32_t slot);
  void SetAddedText(const std::string& text, int32_t flag);
  // Places the Host's own expressions in hostTextBinding (which 0) or
  // hostNumberBinding (which 1); the module loads them at the next Begin.
  void SetHostBinding(int32_t slot, int32_t which, const std::string& text);
  // The module's interpretation of a pane (CallKeel4Interpret).
  std::string Interpret(int32_t slot, int32_t item);

  // --- what the Host holds -----------------------------------------------
  Analysis* AnalysisOf(int32_t slot);
  zv::ProcedureState* State(int32_t slot);
  std::vector<int32_t> OpenSlots() const;
  // The text of a text pane as the module set it, lines ended by "\r\n".
  std::string PaneText(int32_t slot, int32_t item);
  // Hands `sink` the same text without a copy where the pane holds it whole:
  // the report of a million rows is tens of megabytes.
  void ReadPaneText(int32_t slot, int32_t item, const std::function<void(std::string_view)>& sink);
  std::vector<GraphText> GraphTexts(int32_t slot, int32_t item);

  zv::HostRecord& record() { return *record_; }
  zv::HostHelpRecord& help() { return *help_; }
  zv::SheetWindow& sheet() { return *sheet_; }
  zv::FrameWindow& frame() { return *frame_; }
  char* adviceBuffer() { return advice_.data(); }

  // Counters of the virtual operations.
  int32_t modifiedCalls() const { return modifiedCalls_; }
  int32_t refreshCalls() const { return refreshCalls_; }
  int32_t dropCalls() const { return dropCalls_; }
  int32_t expressionEdits() const { return expressionEdits_; }
  int32_t waitCursorLevel() const { return waitLevel_; }
  int32_t waitCursorRaises() const { return waitRaises_; }

  // Calls that an exception ended, by entry name, and faults: locks left
  // behind, calls to entry points the module lacks.
  const std::vector<std::string>& abandonedCalls() const { return abandoned_; }
  const std::vector<std::string>& faults() const { return faults_; }
  bool lastCallAbandoned() const { return lastAbandoned_; }

  // The virtual operations, reached through the records' tables.
  static void RefreshPanesOp(zv::ProcedureState* self, int32_t a, int32_t b, int32_t c);
  static void MarkModifiedOp(zv::HostRecord* self, int32_t modified);
  static void WaitCursorOp(zv::HostHelpRecord* self, int32_t change);
  static void DropHostBindingOp(zv::HostView* self, int32_t zero);
  static int32_t EditExpressionOp(zv::FrameWindow* self, char* buffer64);

 private:
  template <class Call>
  int32_t Guarded(const std::string& what, Call&& call);
  Analysis* Require(int32_t slot, const char* what);
  void StoreEntryList(Analysis& analysis, const char* buffer);
  void SetExpression(zv::VariableBinding& binding, std::string_view text);
  void CreatePanes(Analysis& analysis);
  void DestroyAnalysis(Analysis& analysis);
  void RunDeferredRefresh();
  Pane& EnsurePane(Analysis& analysis, int32_t item);

  ModuleLibrary module_;
  ScriptedUser user_;
  std::deque<int32_t> answers_;
  std::deque<std::string> expressions_;
  std::function<void(const MessageBoxCall&)> observer_;

  std::unique_ptr<zv::HostRecord> record_;
  std::unique_ptr<zv::HostHelpRecord> help_;
  std::unique_ptr<zv::SheetWindow> sheet_;
  std::unique_ptr<zv::FrameWindow> frame_;
  std::vector<uint32_t> refs_;  // every registration, released at the end
  uint32_t stateVtbl_ = 0, hostVtbl_ = 0, helpVtbl_ = 0, viewVtbl_ = 0, frameVtbl_ = 0;
  std::vector<TextRef> textsToFree_;  // dropped during a call, freed after it
  std::vector<char> advice_;
  std::vector<char> entryList_;

  std::map<int32_t, Analysis> analyses_;
  const FamilySpec* dialogFamily_ = nullptr;  // of the last Dialog
  int32_t callDepth_ = 0;
  std::set<zv::ProcedureState*> refreshWanted_;
  bool refreshing_ = false;

  int32_t modifiedCalls_ = 0;
  int32_t refreshCalls_ = 0;
  int32_t dropCalls_ = 0;
  int32_t expressionEdits_ = 0;
  int32_t waitLevel_ = 0;
  int32_t waitRaises_ = 0;
  std::vector<std::string> abandoned_;
  std::vector<std::string> faults_;
  bool lastAbandoned_ = false;
};

// The active Host, reached by the virtual operations; nullptr when none.
Host* ActiveHost();

}  // namespace zvhost
