// The variable dialog that every family opens first: a list of the sheet's
// columns with a Sort box, one field per variable with its arrow button, the
// select field, a Transform button, and the checks of OK.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "frame/host_records.h"
#include "zvwin/zvwin.h"

namespace zv {

inline constexpr int32_t kHelpButton = 9;
inline constexpr int32_t kListColumnLimit = 128;

// A field of a family's variable dialog.
struct VariableField {
  int32_t control;    // the edit control
  int32_t arrow;      // its arrow button; 0 when the field has none
  int32_t maxLength;  // characters
  bool isList;        // one column name per line (CheckVariableList)
  bool allowEmpty;
  bool allowText;  // a character column is acceptable
  bool isSelect;   // the select expression
  // Where the text comes back from on reopen: a binding index; for a list
  // field the first binding of the list.
  int32_t binding;
  // For a list field: 0 the whole second list, 1 its first half, 2 its second
  // half (the two lists of a life table share the second list).
  int32_t listPart = 0;
};

struct VariableDialogLayout {
  uint32_t templateId;
  int32_t helpId;
  const char* caption;  // nullptr keeps the template's caption
  std::vector<VariableField> fields;
  int32_t listControl = 114;
  int32_t sortControl = 115;
  int32_t transformControl = 0;   // 0 when the dialog has no Transform button
  bool expressionDialog = false;  // Transform opens the module's expression dialog
  int32_t minListLines = 0;       // a list with fewer lines is refused (string 1056)
};

class VariableDialog : public WinDialog {
 public:
  explicit VariableDialog(const VariableDialogLayout& layout);

  std::vector<std::string> fields;  // one text per field, select included
  int32_t activeField = 1;          // the field the arrow buttons and double clicks fill
  int32_t sorted = 1;
  int32_t columnCount = 0;

  bool OnInitDialog() override;
  void OnOK() override;
  void OnCancel() override;
  void OnCommand(int32_t control, int32_t notification) override;

 private:
  void FillColumnList();
  void SetActiveField(int32_t field);
  void PutSelectedName();
  void Transform();
  int32_t FieldOfControl(int32_t control, bool arrow) const;

  const VariableDialogLayout& layout_;
};

// Runs the family's variable dialog: fields empty, or with reopen = 1 from
// the expressions of the Slot's state. On OK the fields go to gEntryText and
// the result is 1; Cancel gives 0 and leaves gEntryText alone.
int32_t RunVariableDialog(const VariableDialogLayout& layout, int32_t slot, int32_t reopen);

// The module's expression dialog (template 314): builds an expression from
// the columns and the operators in the caller's 64-byte buffer. 1 on OK.
int32_t PickVariableDialog(char* buffer64);

// Writes a dialog's help id to the Host's help record (0 when it closes).
void SetHelpContext(int32_t helpId);

}  // namespace zv
