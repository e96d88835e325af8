#include "services/variable_dialog.h"

#include <algorithm>
#include <cstring>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/dialog_exchange.h"
#include "services/variables.h"
#include "zvgrid/zvgrid.h"

namespace zv {
namespace {

constexpr int32_t kTransformLimit = 64;

std::vector<std::string> SheetColumnNames() {
  std::vector<char> buffer(static_cast<size_t>(kGridMaxColumns) * kGridNameBytes, '\0');
  const int32_t count = std::clamp(GridListColumns(buffer.data()), 0, kGridMaxColumns);
  std::vector<std::string> names;
  for (int32_t i = 0; i < count; ++i) {
    const char* record = buffer.data() + static_cast<size_t>(i) * kGridNameBytes;
    names.emplace_back(record, strnlen(record, kGridNameBytes));
  }
  return names;
}

// The text of a field on reopen, from the expressions the Host stored.
std::string FieldFromState(const ProcedureState& state, const VariableField& field) {
  if (field.isSelect) return std::string(ExpressionOf(state.bindings[kSelectBinding]));
  if (!field.isList) return std::string(ExpressionOf(state.bindings[field.binding]));
  int32_t from = 0;
  int32_t count = state.secondListCount;
  if (field.listPart != 0) {
    count = state.secondListCount / 2;
    if (field.listPart == 2) from = count;
  }
  std::string text;
  for (int32_t i = from; i < from + count; ++i) {
    text += ExpressionOf(state.bindings[field.binding + i]);
    text += "\r\n";
  }
  return text;
}

}  // namespace

void SetHelpContext(int32_t helpId) {
  if (gHostHelp != nullptr) gHostHelp->helpContext = helpId;
}

VariableDialog::VariableDialog(const VariableDialogLayout& layout)
    : WinDialog(layout.templateId), fields(layout.fields.size()), layout_(layout) {}

bool VariableDialog::OnInitDialog() {
  SetHelpContext(layout_.helpId);
  if (layout_.caption != nullptr) SetCaption(layout_.caption);
  CheckButton(layout_.sortControl, sorted);
  FillColumnList();
  for (size_t i = 0; i < fields.size(); ++i) SetItemText(layout_.fields[i].control, fields[i]);
  SetActiveField(1);
  SetFocusItem(layout_.fields.front().control);
  return true;
}

void VariableDialog::FillColumnList() {
  std::vector<std::string> names = SheetColumnNames();
  columnCount = static_cast<int32_t>(names.size());
  if (sorted) std::sort(names.begin(), names.end());
  ListReset(layout_.listControl);
  for (const std::string& name : names) ListAdd(layout_.listControl, name);
}

void VariableDialog::SetActiveField(int32_t field) {
  activeField = field;
  // The active field's arrow shows the pressed pair of images, the others
  // the plain pair; off Win32s they take the system's 3-D colours.
  const bool systemColors = gPlatformId != 0;
  for (size_t i = 0; i < layout_.fields.size(); ++i) {
    const int32_t arrow = layout_.fields[i].arrow;
    if (arrow == 0 || !HasControl(arrow)) continue;
    const bool active = static_cast<int32_t>(i) + 1 == field;
    SetItemImage(arrow,
                 WinLoadImage(gResourceModule, active ? "RARROWD" : "RARROWU", systemColors));
  }
}

int32_t VariableDialog::FieldOfControl(int32_t control, bool arrow) const {
  for (size_t i = 0; i < layout_.fields.size(); ++i) {
    const VariableField& f = layout_.fields[i];
    if ((arrow ? f.arrow : f.control) == control && control != 0)
      return static_cast<int32_t>(i) + 1;
  }
  return 0;
}

void VariableDialog::PutSelectedName() {
  const int32_t selected = ListCurSel(layout_.listControl);
  const std::string name =
      selected >= 0 ? TrimBlanks(ListText(layout_.listControl, selected)) : std::string();
  const VariableField& field = layout_.fields[static_cast<size_t>(activeField - 1)];
  if (field.isList) {
    ReplaceSelection(field.control, name + "\r\n");
  } else {
    SetItemText(field.control, name);
  }
}

void VariableDialog::Transform() {
  const VariableField& field = layout_.fields[static_cast<size_t>(activeField - 1)];
  std::string text = GetItemText(field.control);
  int32_t lineStart = 0;
  int32_t lineEnd = static_cast<int32_t>(text.size());
  if (field.isList) {
    // The line that holds the caret.
    int32_t caret = 0;
    int32_t ignored = 0;
    GetSelection(field.control, &caret, &ignored);
    caret = std::clamp(caret, 0, static_cast<int32_t>(text.size()));
    const size_t before = caret == 0 ? std::string::npos : text.rfind('\n', caret - 1);
    lineStart = before == std::string::npos ? 0 : static_cast<int32_t>(before) + 1;
    const size_t after = text.find('\r', lineStart);
    lineEnd = after == std::string::npos ? static_cast<int32_t>(text.size())
                                         : static_cast<int32_t>(after);
  }
  char buffer[kTransformLimit + 1] = {};
  const std::string line = text.substr(lineStart, lineEnd - lineStart);
  std::memcpy(buffer, line.data(), std::min<size_t>(line.size(), kTransformLimit));

  int32_t changed = 0;
  if (layout_.expressionDialog) {
    changed = PickVariableDialog(buffer);
  } else if (gFrameWindow != nullptr) {
    changed = VtblOf<FrameWindowVtbl>(gFrameWindow).EditExpression(gFrameWindow, buffer);
  }
  if (changed == 0) return;
  const std::string edited(buffer, strnlen(buffer, kTransformLimit));
  if (!field.isList) {
    SetItemText(field.control, edited);
    return;
  }
  // In a list the old line gives way to the new one and its line end.
  size_t end = static_cast<size_t>(lineEnd);
  if (text.compare(end, 2, "\r\n") == 0) end += 2;
  text.replace(static_cast<size_t>(lineStart), end - static_cast<size_t>(lineStart),
               edited + "\r\n");
  SetItemText(field.control, text);
  const int32_t line_number = LineFromChar(field.control, lineStart);
  ScrollToLine(field.control, std::max(0, line_number - 5));
}

void VariableDialog::OnCommand(int32_t control, int32_t notification) {
  if (control == layout_.sortControl) {
    sorted = IsChecked(control) ? 1 : 0;
    FillColumnList();
  } else if (control == layout_.listControl) {
    if (notification == kLbnDblClk) PutSelectedName();
  } else if (const int32_t arrowField = FieldOfControl(control, true); arrowField != 0) {
    SetActiveField(arrowField);
    PutSelectedName();
  } else if (const int32_t field = FieldOfControl(control, false); field != 0) {
    if (notification == kEnChange && field != activeField) SetActiveField(field);
  } else if (control == layout_.transformControl && layout_.transformControl != 0) {
    Transform();
  } else if (control == kHelpButton) {
    WinHelp(window(), "zvwin.hlp", kHelpContext, static_cast<uint32_t>(layout_.helpId));
  }
}

void VariableDialog::OnOK() {
  for (size_t i = 0; i < fields.size(); ++i) {
    fields[i] = TrimBlanks(GetItemText(layout_.fields[i].control));
  }
  if (layout_.minListLines > 0) {
    for (size_t i = 0; i < fields.size(); ++i) {
      if (layout_.fields[i].isList &&
          SplitVariableLines(fields[i], nullptr, 0) < layout_.minListLines) {
        ShowErrorNumber(kFieldNeedsTwoColumnsText, 1);
        SetFocusItem(layout_.fields[i].control);
        return;
      }
    }
  }
  for (size_t i = 0; i < fields.size(); ++i) {
    const VariableField& f = layout_.fields[i];
    const int32_t position = static_cast<int32_t>(i) + 1;
    bool ok = CheckTextLength(fields[i], f.maxLength);
    if (ok) {
      ok = f.isList ? CheckVariableList(position, fields[i], f.allowEmpty, f.allowText,
                                        kListColumnLimit) != 0
                    : CheckVariable(position, fields[i], f.allowEmpty, f.allowText) != 0;
    }
    if (!ok) {
      SetFocusItem(f.control);
      return;
    }
  }
  SetHelpContext(0);
  EndDialog(kIdOk);
}

void VariableDialog::OnCancel() {
  SetHelpContext(0);
  EndDialog(kIdCancel);
}

int32_t RunVariableDialog(const VariableDialogLayout& layout, int32_t slot, int32_t reopen) {
  VariableDialog dialog(layout);
  if (reopen != 0 && slot >= 0 && slot < kSlotCount && gStates[slot] != nullptr) {
    for (size_t i = 0; i < layout.fields.size(); ++i) {
      dialog.fields[i] = FieldFromState(*gStates[slot], layout.fields[i]);
    }
  }
  if (dialog.DoModal() != kIdOk) return 0;
  for (size_t i = 0; i < dialog.fields.size() && i < 5; ++i) gEntryText[i] = dialog.fields[i];
  return 1;
}

}  // namespace zv
