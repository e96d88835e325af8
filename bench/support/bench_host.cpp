#include "support/bench_host.h"

#include <cstring>

#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/module_start.h"
#include "zvgrid/zvgrid.h"
#include "zvhost/record_blocks.h"
#include "zvwin/zvwin.h"

namespace zvbench {
namespace {

void Refresh(zv::ProcedureState*, int32_t, int32_t, int32_t) {}
void Wait(zv::HostHelpRecord*, int32_t) {}
void Modified(zv::HostRecord*, int32_t) {}
zv::ProcedureStateVtbl gStateVtbl{Refresh};
zv::HostHelpRecordVtbl gHelpVtbl{Wait};
zv::HostRecordVtbl gHostVtbl{Modified};

template <class T>
std::unique_ptr<T> Zeroed() {
  auto object = std::make_unique<T>();
  std::memset(static_cast<void*>(object.get()), 0, sizeof(T));
  return object;
}

}  // namespace

BenchHost::BenchHost(const zv::FamilyInfo& family, std::initializer_list<const char*> expressions) {
  static bool started = false;
  if (!started) {
    zv::ModuleStart();
    started = true;
  }
  help = Zeroed<zv::HostHelpRecord>();
  help->vtable = WinRegister(&gHelpVtbl);
  advice.assign(zv::kAdviceBufferSize, '\0');
  IsKeel4Loaded(help.get(), advice.data(), 0);
  host = Zeroed<zv::HostRecord>();
  host->vtable = WinRegister(&gHostVtbl);
  host->nextGraphId = 1;
  host->graphKeepId = -1;
  host->rowCount = GridRowCount();
  zv::gHost = host.get();
  view = Zeroed<zv::HostView>();
  pane = Zeroed<zv::PaneWindow>();
  pane->window = WinCreateWindow("pane");
  record = Zeroed<zv::PaneRecord>();
  state = Zeroed<zv::ProcedureState>();
  state->vtable = WinRegister(&gStateVtbl);
  state->rowCount = host->rowCount;
  state->procedureCode = family.procedureCode;
  state->firstListCount = family.firstListCount;
  zv::gStates[0] = state.get();
  zv::gViews[0] = view.get();
  if (family.writeDefaults) family.writeDefaults(*state);
  int binding = 0;
  for (const char* text : expressions) state->bindings[binding++].expression = WinTextCreate(text);
  state->bindings[zv::kSelectBinding].expression = WinTextCreate("");
}

BenchHost::~BenchHost() {
  zvhost::ReleaseStateBlocks(*state);
  zvhost::ReleasePaneRecordBlocks(*record);
  zv::gStates[0] = nullptr;
}

}  // namespace zvbench
