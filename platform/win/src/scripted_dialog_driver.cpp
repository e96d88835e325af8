// A driver that plays one script of actions per dialog, in order.
#include <cstdio>

#include "zvwin/zvwin.h"

ScriptedDialogDriver::ScriptedDialogDriver(std::vector<Script> scripts)
    : scripts_(std::move(scripts)) {}

void ScriptedDialogDriver::Add(Script script) {
  scripts_.push_back(std::move(script));
}

void ScriptedDialogDriver::DialogOpened(WinDialog& dialog) {
  Running run{&dialog, std::nullopt};
  if (nextScript_ < scripts_.size() && scripts_[nextScript_].templateId == dialog.templateId()) {
    run.script = nextScript_++;
  } else {
    if (nextScript_ < scripts_.size()) {
      std::fprintf(stderr, "script: dialog %u opened while the next script is for dialog %u\n",
                   dialog.templateId(), scripts_[nextScript_].templateId);
    } else {
      std::fprintf(stderr, "script: dialog %u opened after the last script\n", dialog.templateId());
    }
    unexpected_.push_back(dialog.templateId());
  }
  running_.push_back(run);
}

void ScriptedDialogDriver::DialogClosed(WinDialog& dialog, int32_t result) {
  (void)result;
  if (!running_.empty() && running_.back().dialog == &dialog) running_.pop_back();
}

std::optional<DialogAction> ScriptedDialogDriver::NextAction(WinDialog& dialog) {
  // Nested dialogs: the innermost open dialog asks.
  if (running_.empty() || running_.back().dialog != &dialog || !running_.back().script) {
    return std::nullopt;
  }
  Running& run = running_.back();
  const std::vector<DialogAction>& actions = scripts_[*run.script].actions;
  if (run.next >= actions.size()) return std::nullopt;
  return actions[run.next++];
}

size_t ScriptedDialogDriver::ScriptsLeft() const {
  return scripts_.size() - nextScript_;
}

const std::vector<uint32_t>& ScriptedDialogDriver::Unexpected() const {
  return unexpected_;
}
