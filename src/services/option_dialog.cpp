#include "services/option_dialog.h"

#include "services/variable_dialog.h"

namespace zv {

bool OptionDialog::OnInitDialog() {
  SetHelpContext(helpId_);
  DataExchange dx{*this, false};
  Exchange(dx);
  UpdateControls();
  return true;
}

void OptionDialog::OnOK() {
  DataExchange dx{*this, true};
  Exchange(dx);
  if (dx.failed) return;
  SetHelpContext(0);
  EndDialog(kIdOk);
}

void OptionDialog::OnCancel() {
  SetHelpContext(0);
  EndDialog(kIdCancel);
}

void OptionDialog::OnCommand(int32_t control, int32_t /*notification*/) {
  if (control == kHelpButton) {
    WinHelp(window(), "zvwin.hlp", kHelpContext, static_cast<uint32_t>(helpId_));
    return;
  }
  UpdateControls();
}

}  // namespace zv
