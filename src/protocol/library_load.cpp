// Runs start-up when the shared library is loaded and stop when it is
// unloaded. Nothing refers to this file, so programs that link the module's
// objects statically (the tests) start the module themselves.
#include "protocol/module_start.h"

namespace {

__attribute__((constructor)) void OnLoad() {
  zv::ModuleStart();
}
__attribute__((destructor)) void OnUnload() {
  zv::ModuleStop();
}

}  // namespace
