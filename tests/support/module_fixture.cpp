#include "support/module_fixture.h"

#include <cstring>

#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/module_start.h"
#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"
#include "zvhost/record_blocks.h"

namespace zvtest {
namespace {

void Refresh(zv::ProcedureState*, int32_t, int32_t, int32_t) {
  ++ModuleFixture::refreshCalls;
}
void Modified(zv::HostRecord*, int32_t) {
  ++ModuleFixture::modifiedCalls;
}
void Wait(zv::HostHelpRecord*, int32_t) {}
void Drop(zv::HostView*, int32_t) {
  ++ModuleFixture::dropCalls;
}
int32_t Edit(zv::FrameWindow*, char*) {
  return 0;
}

zv::ProcedureStateVtbl gStateVtbl{Refresh};
zv::HostRecordVtbl gHostVtbl{Modified};
zv::HostHelpRecordVtbl gHelpVtbl{Wait};
zv::HostViewVtbl gViewVtbl{Drop};
zv::FrameWindowVtbl gFrameVtbl{Edit};

template <class T>
std::unique_ptr<T> Zeroed() {
  auto object = std::make_unique<T>();
  std::memset(static_cast<void*>(object.get()), 0, sizeof(T));
  return object;
}

bool gStarted = false;

}  // namespace

int ModuleFixture::refreshCalls = 0;
int ModuleFixture::modifiedCalls = 0;
int ModuleFixture::dropCalls = 0;

void ModuleFixture::SetUp() {
  WinSetMovingBlocks(true);
  if (!gStarted) {
    zv::ModuleStart();
    gStarted = true;
  }
  host = Zeroed<zv::HostRecord>();
  host->vtable = WinRegister(&gHostVtbl);
  host->graphKeepId = -1;
  host->nextGraphId = 1;
  help = Zeroed<zv::HostHelpRecord>();
  help->vtable = WinRegister(&gHelpVtbl);
  view = Zeroed<zv::HostView>();
  view->vtable = WinRegister(&gViewVtbl);
  sheet = Zeroed<zv::SheetWindow>();
  frame = Zeroed<zv::FrameWindow>();
  frame->vtable = WinRegister(&gFrameVtbl);
  frame->window = WinCreateWindow("frame");
  pane = Zeroed<zv::PaneWindow>();
  pane->window = WinCreateWindow("pane");
  paneRecord = Zeroed<zv::PaneRecord>();
  advice.assign(zv::kAdviceBufferSize, '\0');
  zv::gHost = host.get();
  zv::gSheetWindow = sheet.get();
  zv::gFrameWindow = frame.get();
  refreshCalls = modifiedCalls = dropCalls = 0;
  IsKeel4Loaded(help.get(), advice.data(), 0);
  WinClearMessageBoxLog();
  WinClearMissingStrings();
  zvgrid::ClearSheet();
}

void ModuleFixture::TearDown() {
  WinSetDialogDriver(nullptr);
  EXPECT_EQ(WinLockedBlockCount(), 0u) << "a block stayed locked";
  EXPECT_TRUE(WinMissingStrings().empty()) << "the string table lacks a number the code used";
  for (auto& state : states) zvhost::ReleaseStateBlocks(*state);
  zvhost::ReleasePaneRecordBlocks(*paneRecord);
  for (auto*& s : zv::gStates) s = nullptr;
}

void ModuleFixture::LoadSheet(std::string_view csv) {
  std::string error;
  ASSERT_TRUE(zvgrid::LoadCsvText(csv, &error)) << error;
  host->rowCount = GridRowCount();
}

zv::ProcedureState& ModuleFixture::NewState(int32_t slot) {
  states.push_back(Zeroed<zv::ProcedureState>());
  zv::ProcedureState& state = *states.back();
  state.vtable = WinRegister(&gStateVtbl);
  state.slot = slot;
  state.rowCount = GridRowCount();
  zv::gStates[slot] = &state;
  zv::gViews[slot] = view.get();
  return state;
}

void ModuleFixture::SetExpression(zv::ProcedureState& state, int binding, std::string_view text) {
  Handle& expression = state.bindings[binding].expression;
  if (expression) WinTextFree(expression);
  expression = WinTextCreate(text);
}

void ModuleFixture::StoreEntryList(zv::ProcedureState& state, const char* entryList,
                                   bool hasSelect) {
  const char* p = entryList + std::strlen(entryList) + 1;  // past the title
  for (int i = 0; i < state.firstListCount; ++i) {
    SetExpression(state, zv::kFirstList + i, p);
    p += std::strlen(p) + 1;
  }
  if (hasSelect) SetExpression(state, zv::kSelectBinding, p);
}

std::string ModuleFixture::LastMessage() const {
  const auto& log = WinMessageBoxLog();
  return log.empty() ? std::string() : log.back().text;
}

void ModuleFixture::Script(std::vector<ScriptedDialogDriver::Script> scripts) {
  driver = std::make_unique<ScriptedDialogDriver>(std::move(scripts));
  WinSetDialogDriver(driver.get());
}

}  // namespace zvtest
