#include "zvhost/host.h"

#include <algorithm>
#include <cstring>

#include "zvchart/zvchart.h"
#include "zvcounsel/zvcounsel.h"
#include "zvgrid/sheet.h"
#include "text_column_note.h"
#include "zvhost/record_blocks.h"

namespace zvhost {

namespace {

Host* gActiveHost = nullptr;

const zv::ProcedureStateVtbl kStateVtbl{&Host::RefreshPanesOp};
const zv::HostRecordVtbl kHostVtbl{&Host::MarkModifiedOp};
const zv::HostHelpRecordVtbl kHelpVtbl{&Host::WaitCursorOp};
const zv::HostViewVtbl kViewVtbl{&Host::DropHostBindingOp};
const zv::FrameWindowVtbl kFrameVtbl{&Host::EditExpressionOp};

template <class T>
uint32_t RegisterTable(const T& table) {
  return WinRegister(const_cast<T*>(&table));
}

bool ValidSlot(int32_t slot) { return slot >= 0 && slot < 64; }

}  // namespace

Host* ActiveHost() { return gActiveHost; }

Pane* Analysis::PaneOf(int32_t item) {
  for (Pane& pane : panes) {
    if (pane.item == item) return &pane;
  }
  return nullptr;
}

Host::Host()
    : record_(std::make_unique<zv::HostRecord>()),
      help_(std::make_unique<zv::HostHelpRecord>()),
      sheet_(std::make_unique<zv::SheetWindow>()),
      frame_(std::make_unique<zv::FrameWindow>()),
      advice_(kAdviceBytes, '\0'),
      entryList_(kEntryListBytes, '\0') {
  gActiveHost = this;
  stateVtbl_ = RegisterTable(kStateVtbl);
  hostVtbl_ = RegisterTable(kHostVtbl);
  helpVtbl_ = RegisterTable(kHelpVtbl);
  viewVtbl_ = RegisterTable(kViewVtbl);
  frameVtbl_ = RegisterTable(kFrameVtbl);
  refs_ = {stateVtbl_, hostVtbl_, helpVtbl_, viewVtbl_, frameVtbl_};

  record_->vtable = hostVtbl_;
  record_->nextSlot = 0;
  record_->nextGraphId = 1;
  record_->graphKeepId = -1;
  record_->graphRebuilds = 0;
  help_->vtable = helpVtbl_;
  frame_->vtable = frameVtbl_;
  frame_->window = WinCreateWindow("ZivaraFrame");
  WinSetActiveWindow(frame_->window);
  refs_.push_back(WinRegister(record_.get()));
  refs_.push_back(WinRegister(help_.get()));
  refs_.push_back(WinRegister(sheet_.get()));
  refs_.push_back(WinRegister(frame_.get()));

  WinSetDialogDriver(&user_);
  WinSetMessageBoxResponder([this](const MessageBoxCall& call) -> int32_t {
    if (observer_) observer_(WithTextColumnNote(call));
    if (answers_.empty()) return 0;
    int32_t answer = answers_.front();
    answers_.pop_front();
    return answer;
  });
}

Host::~Host() {
  for (auto& [slot, analysis] : analyses_) DestroyAnalysis(analysis);
  analyses_.clear();
  for (TextRef text : textsToFree_) WinTextFree(text);
  textsToFree_.clear();
  CounselSetInterpreter(nullptr);
  module_.Close();
  WinSetDialogDriver(nullptr);
  WinSetMessageBoxResponder(nullptr);
  WinDestroyWindow(frame_->window);
  for (uint32_t ref : refs_) WinUnregister(ref);
  if (gActiveHost == this) gActiveHost = nullptr;
}

bool Host::LoadModule(const std::string& path, std::string* error) {
  if (!module_.Open(path, error)) return false;
  CounselSetInterpreter(module_.callKeel4Interpret);
  Guarded("IsKeel4Loaded",
          [&] { return module_.isKeel4Loaded(help_.get(), advice_.data(), 1); });
  if (lastAbandoned_) {
    if (error) *error = "the module failed in IsKeel4Loaded";
    return false;
  }
  return true;
}

template <class Call>
int32_t Host::Guarded(const std::string& what, Call&& call) {
  const size_t lockedBefore = WinLockedBlockCount();
  const int32_t appCursor = WinWaitCursorLevel();
  const int32_t hostCursor = waitLevel_;
  ++callDepth_;
  int32_t result = 0;
  bool abandoned = false;
  // The module lets a SilentAbort leave its entry point; the Host ends the
  // call there and carries on, as with any exception out of a module.
  try {
    result = call();
  } catch (...) {
    abandoned = true;
    result = 0;
  }
  --callDepth_;
  if (abandoned) {
    abandoned_.push_back(what);
    // The call did not get to lower the wait cursors it raised.
    for (int32_t n = WinWaitCursorLevel() - appCursor; n > 0; --n) WinWaitCursor(-1);
    waitLevel_ = hostCursor;
  }
  const size_t lockedAfter = WinLockedBlockCount();
  if (lockedAfter > lockedBefore) {
    faults_.push_back(what + " left " + std::to_string(lockedAfter - lockedBefore) +
                      " movable block(s) locked");
  }
  if (callDepth_ == 0) {
    for (TextRef text : textsToFree_) WinTextFree(text);
    textsToFree_.clear();
    RunDeferredRefresh();
  }
  lastAbandoned_ = abandoned;
  return result;
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

int32_t Host::Dialog(const FamilySpec& family, int32_t slot, bool reopen) {
  const FamilyEntries& e = module_.EntriesOf(family);
  if (e.dialog == nullptr) {
    faults_.push_back(std::string("the module has no ") + family.name + "Dialog");
    return 0;
  }
  if (!ValidSlot(slot)) {
    faults_.push_back("slot " + std::to_string(slot) + " is out of range");
    return 0;
  }
  if (reopen && Require(slot, "Dialog") == nullptr) return 0;
  record_->rowCount = zvgrid::RowCount();
  record_->rowsDiffer = 0;
  dialogFamily_ = &family;
  const std::string name = std::string(family.name) + "Dialog";
  if (family.shortForms) {
    return Guarded(name, [&] {
      return reinterpret_cast<CustomDialogEntry>(e.dialog)(slot, record_.get(), reopen ? 1 : 0);
    });
  }
  return Guarded(name, [&] {
    return reinterpret_cast<DialogEntry>(e.dialog)(slot, record_.get(), sheet_.get(),
                                                    frame_.get(), reopen ? 1 : 0, 0);
  });
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

bool Host::Setup(int32_t slot, bool reopen) {
  Analysis* a = nullptr;
  if (reopen) {
    a = Require(slot, "Setup");
    if (a == nullptr) return false;
  } else {
    if (dialogFamily_ == nullptr) {
      faults_.push_back("Setup without a Dialog before it");
      return false;
    }
    if (!ValidSlot(slot)) {
      faults_.push_back("slot " + std::to_string(slot) + " is out of range");
      return false;
    }
    Close(slot);
    Analysis& fresh = analyses_[slot];
    fresh.family = dialogFamily_;
    fresh.slot = slot;
    fresh.state = std::make_unique<zv::ProcedureState>();
    fresh.view = std::make_unique<zv::HostView>();
    fresh.state->vtable = stateVtbl_;
    fresh.view->vtable = viewVtbl_;
    fresh.stateRef = WinRegister(fresh.state.get());
    fresh.viewRef = WinRegister(fresh.view.get());
    CreatePanes(fresh);
    a = &fresh;
  }
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  if (e.setup == nullptr) {
    faults_.push_back(std::string("the module has no ") + a->family->name + "Setup");
    return false;
  }
  std::fill(entryList_.begin(), entryList_.end(), '\0');
  const std::string name = std::string(a->family->name) + "Setup";
  zv::ProcedureState* state = a->state.get();
  zv::HostView* view = a->view.get();
  Guarded(name, [&] {
    if (a->family->shortForms) {
      reinterpret_cast<CustomSetupEntry>(e.setup)(slot, state, view, entryList_.data(),
                                                  reopen ? 1 : 0);
    } else {
      reinterpret_cast<SetupEntry>(e.setup)(slot, state, view, entryList_.data(), reopen ? 1 : 0,
                                            0);
    }
    return 1;
  });
  if (lastAbandoned_) return false;
  StoreEntryList(*a, entryList_.data());
  return true;
}

void Host::SetExpression(zv::VariableBinding& binding, std::string_view text) {
  if (binding.expression != 0) {
    if (callDepth_ > 0) {
      // The module may still be reading the old text.
      textsToFree_.push_back(binding.expression);
    } else {
      WinTextFree(binding.expression);
    }
  }
  binding.expression = text.empty() ? 0 : WinTextCreate(text);
}

void Host::StoreEntryList(Analysis& analysis, const char* buffer) {
  const size_t size = entryList_.size();
  size_t pos = 0;
  auto next = [&]() -> std::string {
    size_t end = pos;
    while (end < size && buffer[end] != '\0') ++end;
    std::string text(buffer + pos, end - pos);
    pos = std::min(end + 1, size);
    return text;
  };
  const FamilySpec& family = *analysis.family;
  analysis.title = next();
  std::vector<std::string> texts;
  for (int32_t i = 0; i < family.entryTexts; ++i) texts.push_back(next());
  std::string select;
  if (family.hasSelect && !texts.empty()) {
    select = texts.back();
    texts.pop_back();
  }
  // A text of lines stands for one entry per line ended by "\r\n".
  std::vector<std::string> entries;
  for (size_t i = 0; i < texts.size(); ++i) {
    if (static_cast<int32_t>(i) != family.lineListEntry) {
      entries.push_back(texts[i]);
      continue;
    }
    size_t from = 0;
    const std::string& lines = texts[i];
    while (from < lines.size()) {
      size_t lf = lines.find('\n', from);
      size_t to = lf == std::string::npos ? lines.size() : lf;
      std::string line = lines.substr(from, to - from);
      if (!line.empty() && line.back() == '\r') line.pop_back();
      if (!line.empty()) entries.push_back(line);
      from = to + 1;
    }
  }
  zv::ProcedureState& state = *analysis.state;
  const size_t firstCount =
      static_cast<size_t>(std::clamp(state.firstListCount, 0, zv::kSecondList));
  const size_t secondCount = static_cast<size_t>(
      std::clamp(state.secondListCount, 0, zv::kSelectBinding - zv::kSecondList));
  for (int32_t i = 0; i < zv::kSelectBinding; ++i) SetExpression(state.bindings[i], {});
  size_t e = 0;
  for (size_t i = 0; i < firstCount && e < entries.size(); ++i, ++e) {
    SetExpression(state.bindings[zv::kFirstList + i], entries[e]);
  }
  for (size_t i = 0; i < secondCount && e < entries.size(); ++i, ++e) {
    SetExpression(state.bindings[zv::kSecondList + i], entries[e]);
  }
  if (family.hasSelect) SetExpression(state.bindings[zv::kSelectBinding], select);
}

int32_t Host::Begin(int32_t slot) {
  Analysis* a = Require(slot, "Begin");
  if (a == nullptr) return 0;
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  const std::string name = std::string(a->family->name) + "Begin";
  if (a->family->shortForms) {
    return Guarded(name, [&] { return reinterpret_cast<CustomBeginEntry>(e.begin)(slot); });
  }
  return Guarded(name, [&] { return reinterpret_cast<BeginEntry>(e.begin)(slot, 0, 0); });
}

int32_t Host::Item(int32_t slot, int32_t item) {
  Analysis* a = Require(slot, "Item");
  if (a == nullptr) return 0;
  if (item < 1 || item > 14) {
    faults_.push_back("Item " + std::to_string(item) + " is not a pane number");
    return 0;
  }
  Pane& pane = EnsurePane(*a, item);
  ++pane.builds;
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  const std::string name = std::string(a->family->name) + "Item " + std::to_string(item);
  zv::PaneWindow* window = pane.window.get();
  zv::PaneRecord* record = pane.record.get();
  if (a->family->shortForms) {
    return Guarded(name, [&] {
      return reinterpret_cast<CustomItemEntry>(e.item)(window, slot, item, record);
    });
  }
  return Guarded(name, [&] {
    return reinterpret_cast<ItemEntry>(e.item)(window, slot, item, record, 0);
  });
}

int32_t Host::RedrawGraph(int32_t slot, int32_t item) {
  Analysis* a = Require(slot, "RedrawGraph");
  if (a == nullptr) return 0;
  record_->graphKeepId = EnsurePane(*a, item).record->graphId;
  return Item(slot, item);
}

void Host::ShowStalePanes(int32_t slot) {
  Analysis* a = Require(slot, "ShowStalePanes");
  if (a == nullptr) return;
  for (int32_t item : ItemsOf(*a->family)) {
    // Looked up afresh after each call: a repaint may have closed it.
    Analysis* current = AnalysisOf(slot);
    if (current == nullptr) return;
    int32_t& stale = current->state->paneStale[item - 1];
    if (stale == 0) continue;
    stale = 0;
    Item(slot, item);
  }
  if (Analysis* current = AnalysisOf(slot)) current->state->extraStale = 0;
}

int32_t Host::Opts(int32_t slot, int32_t item) {
  Analysis* a = Require(slot, "Opts");
  if (a == nullptr) return 0;
  if (item < 1 || item > 14) {
    faults_.push_back("Item " + std::to_string(item) + " is not a pane number");
    return 0;
  }
  Pane& pane = EnsurePane(*a, item);
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  const std::string name = std::string(a->family->name) + "Opts " + std::to_string(item);
  zv::PaneWindow* window = pane.window.get();
  zv::PaneRecord* record = pane.record.get();
  if (a->family->shortForms) {
    return Guarded(name, [&] {
      return reinterpret_cast<CustomOptsEntry>(e.opts)(window, slot, item, record);
    });
  }
  return Guarded(name, [&] {
    return reinterpret_cast<OptsEntry>(e.opts)(window, slot, item, record, 0, 0, 0);
  });
}

int32_t Host::RedoItem1(int32_t slot) {
  Analysis* a = Require(slot, "RedoItem1");
  if (a == nullptr) return 0;
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  if (e.redoItem1 == nullptr) {
    faults_.push_back(std::string(a->family->name) + " has no RedoItem1");
    return 0;
  }
  zv::PaneWindow* window = EnsurePane(*a, 1).window.get();
  return Guarded(std::string(a->family->name) + "RedoItem1", [&] {
    return reinterpret_cast<RedoItem1Entry>(e.redoItem1)(window, slot, 0, 0, 0, 0);
  });
}

void Host::Vsave(int32_t slot) {
  Analysis* a = Require(slot, "Vsave");
  if (a == nullptr) return;
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  if (e.vsave == nullptr) {
    faults_.push_back(std::string(a->family->name) + " has no Vsave");
    return;
  }
  Guarded(std::string(a->family->name) + "Vsave", [&] {
    reinterpret_cast<VsaveEntry>(e.vsave)(slot);
    return 1;
  });
}

int32_t Host::BeginAgain(int32_t slot) {
  Analysis* a = Require(slot, "BeginAgain");
  if (a == nullptr) return 0;
  const FamilyEntries& e = module_.EntriesOf(*a->family);
  zv::ProcedureState* state = a->state.get();
  zv::HostView* view = a->view.get();
  const std::string name = std::string(a->family->name) + "BeginAgain";
  if (a->family->shortForms) {
    return Guarded(name, [&] {
      return reinterpret_cast<CustomBeginAgainEntry>(e.beginAgain)(
          slot, state, view, record_.get(), sheet_.get(), frame_.get());
    });
  }
  return Guarded(name, [&] {
    return reinterpret_cast<BeginAgainEntry>(e.beginAgain)(slot, state, view, record_.get(),
                                                           sheet_.get(), frame_.get(), 0);
  });
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

void Host::SetAddedText(const std::string& text, int32_t flag) {
  if (module_.keel4SetAddedText == nullptr) {
    faults_.push_back("the module has no Keel4SetAddedText");
    return;
  }
  Guarded("Keel4SetAddedText", [&] {
    module_.keel4SetAddedText(text.c_str(), flag);
    return 1;
  });
}

void Host::SetHostBinding(int32_t slot, int32_t which, const std::string& text) {
  Analysis* a = Require(slot, "SetHostBinding");
  if (a == nullptr) return;
  int32_t index = which == 0 ? zv::kHostTextBinding : zv::kHostNumberBinding;
  SetExpression(a->state->bindings[index], text);
}

std::string Host::Interpret(int32_t slot, int32_t item) {
  Analysis* a = Require(slot, "Interpret");
  if (a == nullptr || module_.callKeel4Interpret == nullptr) return {};
  // The module writes without a bound; its longest interpretation is a few
  // kilobytes.
  std::vector<char> output(65536, '\0');
  zv::ProcedureState* state = a->state.get();
  Guarded("CallKeel4Interpret", [&] {
    return module_.callKeel4Interpret(state, output.data(), item);
  });
  output.back() = '\0';
  return output.data();
}

std::string Host::PaneText(int32_t slot, int32_t item) {
  Analysis* a = AnalysisOf(slot);
  if (a == nullptr) return {};
  Pane* pane = a->PaneOf(item);
  if (pane == nullptr) return {};
  WinOsVersionInfo version{};
  version.size = sizeof version;
  WinGetVersionEx(&version);
  if (version.platformId != 0 || item < 1 || item > 7) {
    return WinGetWindowText(pane->window->window);
  }
  // Win32s: the report stands in the state as zero-ended lines.
  Handle block = a->state->paneText[item - 1];
  const int32_t lines = a->state->paneLines[item - 1];
  const uint32_t size = WinGlobalSize(block);
  const char* chars = static_cast<const char*>(WinGlobalLock(block));
  if (chars == nullptr) return {};
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
  return text;
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
  const uint32_t itemCount =
      std::min<uint32_t>(static_cast<uint32_t>(std::max(r.textItemCount, 0)),
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

// --- virtual operations -------------------------------------------------

void Host::RefreshPanesOp(zv::ProcedureState* self, int32_t, int32_t, int32_t) {
  Host* host = gActiveHost;
  if (host == nullptr) return;
  ++host->refreshCalls_;
  host->refreshWanted_.insert(self);
  if (host->callDepth_ == 0) host->RunDeferredRefresh();
}

void Host::MarkModifiedOp(zv::HostRecord*, int32_t modified) {
  if (gActiveHost != nullptr && modified != 0) ++gActiveHost->modifiedCalls_;
}

void Host::WaitCursorOp(zv::HostHelpRecord*, int32_t change) {
  Host* host = gActiveHost;
  if (host == nullptr) return;
  host->waitLevel_ += change;
  if (change > 0) ++host->waitRaises_;
}

void Host::DropHostBindingOp(zv::HostView* self, int32_t) {
  Host* host = gActiveHost;
  if (host == nullptr) return;
  ++host->dropCalls_;
  for (auto& [slot, analysis] : host->analyses_) {
    if (analysis.view.get() != self) continue;
    host->SetExpression(analysis.state->bindings[zv::kHostTextBinding], {});
    host->SetExpression(analysis.state->bindings[zv::kHostNumberBinding], {});
  }
}

int32_t Host::EditExpressionOp(zv::FrameWindow*, char* buffer64) {
  Host* host = gActiveHost;
  if (host == nullptr || buffer64 == nullptr) return 0;
  ++host->expressionEdits_;
  if (host->expressions_.empty()) return 0;
  std::string text = std::move(host->expressions_.front());
  host->expressions_.pop_front();
  size_t n = std::min<size_t>(text.size(), 63);
  std::memcpy(buffer64, text.data(), n);
  buffer64[n] = '\0';
  return 1;
}

}  // namespace zvhost
