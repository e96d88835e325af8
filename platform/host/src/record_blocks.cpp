#include "zvhost/record_blocks.h"

#include "zvwin/zvwin.h"

namespace zvhost {
namespace {

void FreeIfLive(Handle& block) {
  if (block != 0 && WinGlobalSize(block) != 0) WinGlobalFree(block);
  block = 0;
}

}  // namespace

void ReleaseStateBlocks(zv::ProcedureState& state) {
  for (zv::VariableBinding& binding : state.bindings) {
    FreeIfLive(binding.data);
    if (binding.expression != 0) WinTextFree(binding.expression);
    binding.expression = 0;
  }
  FreeIfLive(state.order);
  FreeIfLive(state.hostBlock);
  for (Handle& text : state.paneText) FreeIfLive(text);
}

void ReleasePaneRecordBlocks(zv::PaneRecord& record) {
  for (Handle* block : {&record.textItems, &record.textStrings, &record.textNumbers,
                        &record.titleLines, &record.titleLengths}) {
    FreeIfLive(*block);
  }
}

}  // namespace zvhost
