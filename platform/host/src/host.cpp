// The Host's records and their registration with the window system, the
// message-box and dialog answers, loading the module, and the virtual
// operations that the module calls through the records' tables.
#include "zvhost/host.h"

#include <cstring>

#include "host_call.h"
#include "text_column_note.h"
#include "zvcounsel/zvcounsel.h"

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

}  // namespace

Host* ActiveHost() {
  return gActiveHost;
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
  Guarded("IsKeel4Loaded", [&] { return module_.isKeel4Loaded(help_.get(), advice_.data(), 1); });
  if (lastAbandoned_) {
    if (error) *error = "the module failed in IsKeel4Loaded";
    return false;
  }
  return true;
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
