#include "support/module_fixture.h"

#include <cstring>
#include <fstream>
#include <sstream>

#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/module_start.h"
#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"
#include "zvhost/record_blocks.h"

namespace zvtest {
namespace {

void Refresh(zv::ProcedureState*, int32_t, int32_t, int32_t) {}
void Modified(zv::HostRecord*, int32_t) {}
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

// The exported entry points of each family of the family list that the
// fixture calls, the short forms brought to the full argument lists.
struct FamilyEntries {
  const zv::FamilyInfo* family;
  int32_t (*dialog)(int32_t, zv::HostRecord*, zv::SheetWindow*, zv::FrameWindow*, int32_t, int32_t);
  void (*setup)(int32_t, zv::ProcedureState*, zv::HostView*, char*, int32_t, int32_t);
  int32_t (*begin)(int32_t, int32_t, int32_t);
  int32_t (*item)(zv::PaneWindow*, int32_t, int32_t, zv::PaneRecord*, int32_t);
};
#define ZVTEST_ENTRIES_8(Name) \
  {&zv::k##Name##Family, Name##Dialog, Name##Setup, Name##Begin, Name##Item},
#define ZVTEST_ENTRIES_6(Name)                                                                \
  {&zv::k##Name##Family,                                                                      \
   [](int32_t s, zv::HostRecord* h, zv::SheetWindow*, zv::FrameWindow*, int32_t r, int32_t) { \
     return Name##Dialog(s, h, r);                                                            \
   },                                                                                         \
   [](int32_t s, zv::ProcedureState* st, zv::HostView* v, char* e, int32_t r, int32_t) {      \
     Name##Setup(s, st, v, e, r);                                                             \
   },                                                                                         \
   [](int32_t s, int32_t, int32_t) { return Name##Begin(s); },                                \
   [](zv::PaneWindow* p, int32_t s, int32_t i, zv::PaneRecord* r, int32_t) {                  \
     return Name##Item(p, s, i, r);                                                           \
   }},
const FamilyEntries kEntries[] = {
#define ZV_FAMILY(Name, entries) ZVTEST_ENTRIES_##entries(Name)
#include "protocol/family_list.h"
#undef ZV_FAMILY
};

const FamilyEntries& EntriesOf(const zv::FamilyInfo& family) {
  for (const FamilyEntries& e : kEntries) {
    if (e.family == &family) return e;
  }
  ADD_FAILURE() << family.name << " is not in the family list";
  return kEntries[0];
}

}  // namespace

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
  dropCalls = 0;
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

zv::ProcedureState& ModuleFixture::OpenFamily(const zv::FamilyInfo& family,
                                              const std::vector<std::string>& fields,
                                              std::string_view select, int32_t slot) {
  const FamilyEntries& entries = EntriesOf(family);
  std::vector<DialogAction> actions;
  bool hasSelect = false;
  size_t next = 0;
  for (const zv::VariableField& field : family.dialog->fields) {
    if (field.isSelect) {
      hasSelect = true;
      actions.push_back(DialogAction::SetText(field.control, std::string(select)));
    } else if (next < fields.size()) {
      actions.push_back(DialogAction::SetText(field.control, fields[next++]));
    }
  }
  actions.push_back(DialogAction::Press(kIdOk));
  Script({{family.dialog->templateId, std::move(actions)}});
  EXPECT_EQ(entries.dialog(slot, host.get(), sheet.get(), frame.get(), 0, 0), 1)
      << "the variable dialog refused: " << LastMessage();
  zv::ProcedureState& state = NewState(slot);
  entries.setup(slot, &state, view.get(), entryList, 0, 0);
  StoreEntryList(state, entryList, hasSelect);
  return state;
}

zv::ProcedureState& ModuleFixture::RunFamily(const zv::FamilyInfo& family,
                                             const std::vector<std::string>& fields,
                                             std::string_view select, int32_t slot) {
  zv::ProcedureState& state = OpenFamily(family, fields, select, slot);
  EXPECT_EQ(EntriesOf(family).begin(slot, 0, 0), 1) << "Begin refused: " << LastMessage();
  return state;
}

std::string ModuleFixture::PaneText(const zv::FamilyInfo& family, int32_t item, int32_t slot) {
  EntriesOf(family).item(pane.get(), slot, item, paneRecord.get(), 0);
  return WinGetWindowText(pane->window);
}

void ModuleFixture::ExpectGolden(const std::string& text, const std::string& name) const {
  const std::string path = std::string(ZV_TEST_DATA_DIR) + "/" + name;
  std::ifstream file(path, std::ios::binary);
  std::stringstream golden;
  golden << file.rdbuf();
  if (golden.str() != text) {
    const std::string base = name.substr(name.find_last_of('/') + 1);
    std::ofstream(std::string(ZV_BIN_DIR) + "/" + base + ".actual", std::ios::binary) << text;
  }
  EXPECT_TRUE(file.is_open()) << "no golden file " << path;
  EXPECT_EQ(golden.str(), text) << "pane text differs from " << path;
}

}  // namespace zvtest
