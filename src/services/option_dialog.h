// The base of every options dialog: a modal dialog over plain members that
// loads them into the controls when it opens, reads and checks them on OK
// (staying open after a refusal), keeps the Host's help context while it is
// open, and opens the help file on its Help button.
#pragma once

#include <cstdint>

#include "services/dialog_exchange.h"
#include "zvwin/zvwin.h"

namespace zv {

class OptionDialog : public WinDialog {
 public:
  OptionDialog(uint32_t templateId, int32_t helpId) : WinDialog(templateId), helpId_(helpId) {}

  bool OnInitDialog() override;
  void OnOK() override;
  void OnCancel() override;
  void OnCommand(int32_t control, int32_t notification) override;

 protected:
  // Both directions of the members; dx.saving tells which.
  virtual void Exchange(DataExchange& dx) = 0;
  // After the members were loaded and after every command of a control: for
  // dialogs whose controls enable one another.
  virtual void UpdateControls() {}

 private:
  int32_t helpId_;
};

}  // namespace zv
