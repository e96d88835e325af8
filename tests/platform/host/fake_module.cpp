// A small module library with the export names of the real one, so that the
// Host's side of the protocol is tested on its own: what the Host passes,
// what it stores, how it reacts to the virtual calls, to an exception that
// leaves an export and to a lock left behind. Each entry does the least that
// lets a test see the Host's work, and logs its calls.
#include <cstdio>
#include <cstring>
#include <string>

#include "frame/host_records.h"
#include "zvwin/zvwin.h"

#define FAKE_API extern "C" __attribute__((visibility("default")))

using namespace zv;

namespace {

struct FakeSilentAbort {};

std::string gLog;
HostRecord* gHost = nullptr;
HostHelpRecord* gHelp = nullptr;
FrameWindow* gFrame = nullptr;
char* gAdvice = nullptr;
int32_t gAdviceEnabled = 0;
ProcedureState* gStates[64] = {};
HostView* gViews[64] = {};
ModuleRef gResources = 0;
std::string gEntryText[2];
std::string gNextEntryList;  // what the next Setup writes, when set by a test
int32_t gNextFirst = -1, gNextSecond = -1;
Handle gLeaked = 0;
int32_t gRadio = -1, gCheck = -1;
std::string gOption141, gLines122;

void Log(const std::string& line) {
  gLog += line + "\n";
}

void Refresh(ProcedureState* s) {
  VtblOf<ProcedureStateVtbl>(s).RefreshPanes(s, 0, 0, 0);
}
void Modified() {
  VtblOf<HostRecordVtbl>(gHost).MarkModified(gHost, 1);
}
void Cursor(int32_t change) {
  VtblOf<HostHelpRecordVtbl>(gHelp).WaitCursor(gHelp, change);
}

// The variable dialog (template 60001): field 116, select 117, a list 122,
// and a Transform button 119 that asks the Host to edit field 116.
class VariableDialog : public WinDialog {
 public:
  VariableDialog() : WinDialog(60001) {}
  void OnCommand(int32_t control, int32_t notification) override {
    if (control != 119 || notification != kBnClicked) return;
    char buffer[64] = {};
    std::string current = GetItemText(116);
    std::strncpy(buffer, current.c_str(), 63);
    if (VtblOf<FrameWindowVtbl>(gFrame).EditExpression(gFrame, buffer) != 0) {
      SetItemText(116, buffer);
    }
  }
  void OnOK() override {
    if (GetItemText(116).empty()) {
      WinMessageBox(WinGetActiveWindow(), "Field 1 is required.", "Zivara Suite",
                    kMbOk | kMbIconExclamation | kMbTaskModal);
      return;
    }
    gEntryText[0] = GetItemText(116);
    gEntryText[1] = GetItemText(117);
    gLines122 = GetItemText(122);
    EndDialog(kIdOk);
  }
};

// The options dialog (template 60002): radio group 176 to 178, check box
// 107, edit 141 (disabled until the third radio button is on).
class OptionsDialog : public WinDialog {
 public:
  OptionsDialog() : WinDialog(60002) {}
  bool OnInitDialog() override {
    CheckRadio(176, 178, 176);
    EnableItem(141, false);
    return true;
  }
  void OnCommand(int32_t control, int32_t) override {
    if (control >= 176 && control <= 178) EnableItem(141, IsChecked(178) != 0);
  }
  void OnOK() override {
    gRadio = IsChecked(176) ? 0 : IsChecked(177) ? 1 : IsChecked(178) ? 2 : -1;
    gCheck = IsChecked(107);
    gOption141 = GetItemText(141);
    EndDialog(kIdOk);
  }
};

void WriteEntryList(char* buffer) {
  std::string list;
  if (!gNextEntryList.empty()) {
    list = gNextEntryList;
  } else {
    list = "Fake - " + gEntryText[0] + '\0' + gEntryText[0] + '\0' + gEntryText[1] + '\0';
  }
  std::memcpy(buffer, list.data(), list.size());
}

void SetupCommon(int32_t slot, ProcedureState* state, HostView* view, char* buffer, int32_t reopen,
                 int32_t code, int32_t first, int32_t second) {
  gStates[slot] = state;
  gViews[slot] = view;
  state->slot = slot;
  state->procedureCode = code;
  state->rowCount = gHost->rowCount;
  if (reopen == 0) {
    state->firstListCount = gNextFirst >= 0 ? gNextFirst : first;
    state->secondListCount = gNextSecond >= 0 ? gNextSecond : second;
    if (gHost->nextSlot == slot) ++gHost->nextSlot;
  }
  Modified();
  WriteEntryList(buffer);
  Log("Setup " + std::to_string(slot) + " reopen " + std::to_string(reopen));
}

int32_t BeginCommon(int32_t slot) {
  ProcedureState* s = gStates[slot];
  std::string variable(CountedText(s->bindings[0].expression));
  Log("Begin " + std::to_string(slot) + " " + variable);
  if (CountedText(s->bindings[kHostNumberBinding].expression) == "bad") {
    VtblOf<HostViewVtbl>(gViews[slot]).DropHostBinding(gViews[slot], 0);
  }
  if (variable == "fail") return 0;
  if (variable == "abort") {
    // A guarded function gives up deep inside a computation: the lock is
    // released on the way out, the wait cursor is not.
    struct Lock {
      Handle h = WinGlobalAlloc(64);
      void* p = WinGlobalLock(h);
      ~Lock() {
        WinGlobalUnlock(h);
        WinGlobalFree(h);
      }
    } lock;
    Cursor(1);
    WinWaitCursor(1);
    throw FakeSilentAbort{};
  }
  if (variable == "leak") {
    gLeaked = WinGlobalAlloc(16);
    WinGlobalLock(gLeaked);
  }
  s->status = 0;
  s->begun = 1;
  for (int32_t& stale : s->paneStale) stale = 0;
  s->paneStale[0] = 1;
  s->paneStale[7] = 1;
  return 1;
}

int32_t ItemCommon(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record) {
  Log("Item " + std::to_string(item) + (record != nullptr ? " with record" : " without record"));
  ProcedureState* s = gStates[slot];
  std::string text = "Pane " + std::to_string(item) + " of " +
                     std::string(CountedText(s->bindings[0].expression)) + "\r\nsecond line\r\n";
  WinOsVersionInfo version{};
  version.size = sizeof version;
  WinGetVersionEx(&version);
  if (version.platformId == 0 && item <= 7) {
    // Win32s: the report as zero-ended lines in the state.
    const char lines[] = "a\0\0bcd";
    WinGlobalFree(s->paneText[item - 1]);
    s->paneText[item - 1] = WinGlobalAlloc(sizeof lines);
    std::memcpy(WinGlobalLock(s->paneText[item - 1]), lines, sizeof lines);
    WinGlobalUnlock(s->paneText[item - 1]);
    s->paneLines[item - 1] = 3;
    s->paneWidth[item - 1] = 3;
  } else {
    WinSetWindowText(pane->window, text);
  }
  return 1;
}

int32_t OptsCommon(int32_t slot, int32_t item) {
  Log("Opts " + std::to_string(item) + " begins");
  OptionsDialog dialog;
  if (dialog.DoModal() != kIdOk) return 0;
  Modified();
  ProcedureState* s = gStates[slot];
  s->paneStale[0] = 1;
  s->paneStale[7] = 1;
  Refresh(s);
  Log("Opts " + std::to_string(item) + " ends");
  return 1;
}

}  // namespace

// --- what a test reads back --------------------------------------------

FAKE_API const char* FakeLog() {
  return gLog.c_str();
}
FAKE_API void FakeClearLog() {
  gLog.clear();
}
FAKE_API void FakeNextEntryList(const char* bytes, int32_t size, int32_t first, int32_t second) {
  gNextEntryList.assign(bytes, static_cast<size_t>(size));
  gNextFirst = first;
  gNextSecond = second;
}
FAKE_API Handle FakeLeakedBlock() {
  return gLeaked;
}
FAKE_API ProcedureState* FakeState(int32_t slot) {
  return gStates[slot];
}
FAKE_API const char* FakeAdvice() {
  return gAdvice;
}
FAKE_API int32_t FakeAdviceEnabled() {
  return gAdviceEnabled;
}
FAKE_API int32_t FakeRadio() {
  return gRadio;
}
FAKE_API int32_t FakeCheck() {
  return gCheck;
}
FAKE_API const char* FakeOption141() {
  return gOption141.c_str();
}
FAKE_API const char* FakeLines122() {
  return gLines122.c_str();
}

// --- the module-level exports ---------------------------------------------

FAKE_API int32_t IsKeel4Loaded(HostHelpRecord* help, char* adviceBuffer, int32_t adviceEnabled) {
  gHelp = help;
  gAdvice = adviceBuffer;
  gAdviceEnabled = adviceEnabled;
  help->helpContext = 0;
  if (gResources == 0) gResources = WinLoadLibrary("keel4res.dll");
  Log("IsKeel4Loaded");
  return 1;
}

FAKE_API int32_t CallKeel4Interpret(ProcedureState* state, char* output, int32_t item) {
  std::snprintf(output, 256, "Interpretation of pane %d for procedure %d.\r\n", item,
                state->procedureCode);
  return 1;
}

FAKE_API void Keel4SetAddedText(const char* text, int32_t flag) {
  Log(std::string("AddedText ") + text + " " + std::to_string(flag));
}
FAKE_API int32_t FilterDllMsg(const WinMsg*) {
  return 0;
}
FAKE_API int32_t ProcessDllIdle() {
  return 0;
}

__attribute__((destructor)) static void FakeUnload() {
  if (gResources != 0) WinFreeLibrary(gResources);
  gResources = 0;
}

// --- families with the common argument lists ------------------------------

#define FAKE_FAMILY(Family, code, first, second)                                                  \
  FAKE_API int32_t Family##Dialog(int32_t slot, HostRecord* host, SheetWindow* sheet,             \
                                  FrameWindow* frame, int32_t reopen, int32_t) {                  \
    gHost = host;                                                                                 \
    gFrame = frame;                                                                               \
    Log(std::string(#Family "Dialog ") + std::to_string(slot) + " reopen " +                      \
        std::to_string(reopen) + " rows " + std::to_string(host->rowCount) +                      \
        (sheet != nullptr ? " sheet" : " nosheet"));                                              \
    VariableDialog dialog;                                                                        \
    return dialog.DoModal() == kIdOk ? 1 : 0;                                                     \
  }                                                                                               \
  FAKE_API void Family##Setup(int32_t slot, ProcedureState* state, HostView* view, char* buffer,  \
                              int32_t reopen, int32_t) {                                          \
    SetupCommon(slot, state, view, buffer, reopen, code, first, second);                          \
  }                                                                                               \
  FAKE_API int32_t Family##Begin(int32_t slot, int32_t, int32_t) {                                \
    return BeginCommon(slot);                                                                     \
  }                                                                                               \
  FAKE_API int32_t Family##BeginAgain(int32_t slot, ProcedureState* state, HostView* view,        \
                                      HostRecord* host, SheetWindow*, FrameWindow*, int32_t) {    \
    gStates[slot] = state;                                                                        \
    gViews[slot] = view;                                                                          \
    host->currentSlot = slot;                                                                     \
    Log("BeginAgain " + std::to_string(slot));                                                    \
    return BeginCommon(slot);                                                                     \
  }                                                                                               \
  FAKE_API int32_t Family##Item(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record, \
                                int32_t) {                                                        \
    return ItemCommon(pane, slot, item, record);                                                  \
  }                                                                                               \
  FAKE_API int32_t Family##Opts(PaneWindow*, int32_t slot, int32_t item, PaneRecord*, int32_t,    \
                                int32_t, int32_t) {                                               \
    return OptsCommon(slot, item);                                                                \
  }                                                                                               \
  FAKE_API void Family##Vsave(int32_t slot) {                                                     \
    Log("Vsave " + std::to_string(slot));                                                         \
  }                                                                                               \
  FAKE_API int32_t Family##RedoItem1(PaneWindow* pane, int32_t slot, int32_t, int32_t, int32_t,   \
                                     int32_t) {                                                   \
    ItemCommon(pane, slot, 1, nullptr);                                                           \
    for (int32_t i = 1; i < 14; ++i) gStates[slot]->paneStale[i] = 1;                             \
    return 1;                                                                                     \
  }

FAKE_FAMILY(DotDiagram, 2842, 1, 0)
FAKE_FAMILY(Life1, 5748, 2, 0)
FAKE_FAMILY(BubbleChart, 2858, 0, 4)
FAKE_FAMILY(Surfplot, 2826, 10, 0)

// --- Custom, with its shorter argument lists --------------------------------

FAKE_API int32_t CustomDialog(int32_t slot, HostRecord* host, int32_t reopen) {
  gHost = host;
  Log("CustomDialog " + std::to_string(slot) + " reopen " + std::to_string(reopen));
  VariableDialog dialog;
  return dialog.DoModal() == kIdOk ? 1 : 0;
}
FAKE_API void CustomSetup(int32_t slot, ProcedureState* state, HostView* view, char* buffer,
                          int32_t reopen) {
  SetupCommon(slot, state, view, buffer, reopen, 5700, 3, 0);
}
FAKE_API int32_t CustomBegin(int32_t slot) {
  return BeginCommon(slot);
}
FAKE_API int32_t CustomBeginAgain(int32_t slot, ProcedureState* state, HostView* view,
                                  HostRecord* host, SheetWindow*, FrameWindow*) {
  gStates[slot] = state;
  gViews[slot] = view;
  host->currentSlot = slot;
  return BeginCommon(slot);
}
FAKE_API int32_t CustomItem(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record) {
  return ItemCommon(pane, slot, item, record);
}
FAKE_API int32_t CustomOpts(PaneWindow*, int32_t slot, int32_t item, PaneRecord*) {
  return OptsCommon(slot, item);
}
