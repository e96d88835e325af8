#include "survival/survival_blocks.h"

#include <algorithm>

#include "frame/messages.h"
#include "services/variables.h"

namespace zv {

Handle AllocSurvivalBlock(uint64_t bytes) {
  bytes = std::max<uint64_t>(bytes, 1);
  if (bytes > UINT32_MAX) {
    ShowError(1001);
    return 0;
  }
  return AllocGlobal(static_cast<uint32_t>(bytes));
}

bool ReallocateBindingBlock(ProcedureState& state, int binding, uint64_t count, uint32_t size) {
  FreeGlobal(&state.bindings[binding].data);
  state.bindings[binding].data = AllocSurvivalBlock(count * size);
  return state.bindings[binding].data != 0;
}

}  // namespace zv
