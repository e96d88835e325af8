// The user in front of the module's dialogs, played from a script: a queue
// of steps (type a text, tick a box, choose a radio button or a list entry,
// press a button) that the dialog engine asks for one at a time. When the
// queue runs dry, the dialog is cancelled, as a user walking away would.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "zvwin/zvwin.h"

namespace zvhost {

struct UserStep {
  enum class Kind {
    kSet,          // set a control by its kind: the text of an edit control
                   // (in a multi-line edit ';' or a line feed starts a new
                   // line), 0 or 1 for a check box, the entry number from 0
                   // for a radio group (named by its first button) or a list
    kPress,        // press a button: 1 is OK, 2 is Cancel
    kDoubleClick,  // double click entry `entry` of list `control`
    kAction,       // a dialog action as it stands
  };
  Kind kind = Kind::kSet;
  int32_t control = 0;
  // A kSet step may name its control instead, by the NAME of the dialog
  // template; the name is looked up in the dialog that asks for the step.
  std::string controlName;
  std::string value;
  int32_t entry = 0;
  DialogAction action{DialogAction::Kind::kPress};

  static UserStep Set(int32_t control, std::string value);
  static UserStep SetNamed(std::string name, std::string value);
  static UserStep Press(int32_t control);
  static UserStep Ok() { return Press(kIdOk); }
  static UserStep DoubleClick(int32_t control, int32_t entry);
  static UserStep Action(DialogAction action);
};

class ScriptedUser : public WinDialogDriver {
 public:
  ScriptedUser() = default;

  void Queue(const std::vector<UserStep>& steps);
  void Clear() { steps_.clear(); }
  size_t Pending() const { return steps_.size(); }

  std::optional<DialogAction> NextAction(WinDialog& dialog) override;

  // Steps that could not be carried out (a control the dialog lacks, a value
  // of the wrong form), in order; each cancelled its dialog and the rest of
  // the queue.
  const std::vector<std::string>& problems() const { return problems_; }
  void ClearProblems() { problems_.clear(); }
  // Templates of the dialogs that asked for a step, in order.
  const std::vector<uint32_t>& dialogsSeen() const { return dialogsSeen_; }

  // Turns a step into the action for this dialog; nothing and a reason when
  // it cannot be done there.
  static std::optional<DialogAction> Resolve(const UserStep& step, const WinDialog& dialog,
                                             std::string* problem);

 private:
  std::deque<UserStep> steps_;
  std::vector<std::string> problems_;
  std::vector<uint32_t> dialogsSeen_;
};

// The resource module's template of a dialog, loading "keel4res.dll" once
// for the Host's own use; nullptr when there is none.
const DialogTemplate* HostDialogTemplate(uint32_t templateId);

}  // namespace zvhost
