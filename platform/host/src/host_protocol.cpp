// The protocol driver: the module's entry points called in the order and
// with the arguments of each family, the entry list spread over the
// bindings, interpretation and added text.
#include <algorithm>

#include "host_call.h"
#include "zvgrid/sheet.h"

namespace zvhost {

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
    return reinterpret_cast<DialogEntry>(e.dialog)(slot, record_.get(), sheet_.get(), frame_.get(),
                                                   reopen ? 1 : 0, 0);
  });
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
  return Guarded(
      name, [&] { return reinterpret_cast<ItemEntry>(e.item)(window, slot, item, record, 0); });
}

int32_t Host::RedrawGraph(int32_t slot, int32_t item) {
  Analysis* a = Require(slot, "RedrawGraph");
  if (a == nullptr) return 0;
  record_->graphKeepId = EnsurePane(*a, item).record->graphId;
  return Item(slot, item);
}

void Host::ShowStalePanes(int32_t slot, const std::vector<int32_t>& only) {
  Analysis* a = Require(slot, "ShowStalePanes");
  if (a == nullptr) return;
  for (int32_t item : ItemsOf(*a->family)) {
    if (!only.empty() && std::find(only.begin(), only.end(), item) == only.end()) continue;
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
      return reinterpret_cast<CustomBeginAgainEntry>(e.beginAgain)(slot, state, view, record_.get(),
                                                                   sheet_.get(), frame_.get());
    });
  }
  return Guarded(name, [&] {
    return reinterpret_cast<BeginAgainEntry>(e.beginAgain)(slot, state, view, record_.get(),
                                                           sheet_.get(), frame_.get(), 0);
  });
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
  Guarded("CallKeel4Interpret",
          [&] { return module_.callKeel4Interpret(state, output.data(), item); });
  output.back() = '\0';
  return output.data();
}
}  // namespace zvhost
