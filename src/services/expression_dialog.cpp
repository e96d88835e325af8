// The expression dialog: an edit field, the sheet's columns, a list of
// operators and functions, and a keypad, for building an expression that the
// sheet's evaluator accepts.
#include <algorithm>
#include <cstring>
#include <string>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/variable_dialog.h"
#include "services/variables.h"
#include "zvgrid/zvgrid.h"

namespace zv {
namespace {

constexpr uint32_t kTemplate = 314;
constexpr int32_t kEdit = 116;
constexpr int32_t kColumnList = 114;
constexpr int32_t kOperatorList = 118;
constexpr int32_t kTryButton = 119;
constexpr int32_t kDeleteKey = 298;
constexpr int32_t kDecimalKey = 334;
constexpr int32_t kBufferLimit = 63;

struct Key {
  int32_t control;
  const char* text;
};
constexpr Key kKeypad[] = {
    {333, "0"},  {330, "1"},  {331, "2"}, {332, "3"}, {327, "4"},  {328, "5"}, {329, "6"},
    {324, "7"},  {325, "8"},  {326, "9"}, {336, "+"}, {337, "-"},  {338, "*"}, {339, "/"},
    {335, "^"},  {342, "("},  {343, ")"}, {344, "="}, {347, "<>"}, {345, "<"}, {348, ">"},
    {346, "<="}, {349, ">="}, {340, "&"}, {341, "|"},
};

constexpr const char* kOperators[] = {
    "+", "-",    "*",    "/",      "^",    "=",     "<>",   "<",    ">",      "<=",   ">=",  "&",
    "|", "NOT ", "LOG(", "LOG10(", "EXP(", "SQRT(", "ABS(", "INT(", "ROUND(", "MIN(", "MAX("};

class ExpressionDialog : public WinDialog {
 public:
  explicit ExpressionDialog(std::string initial) : WinDialog(kTemplate), text(std::move(initial)) {}
  std::string text;

  bool OnInitDialog() override {
    SetItemText(kEdit, text);
    std::vector<char> buffer(static_cast<size_t>(kGridMaxColumns) * kGridNameBytes, '\0');
    const int32_t count = std::clamp(GridListColumns(buffer.data()), 0, kGridMaxColumns);
    for (int32_t i = 0; i < count; ++i) {
      const char* name = buffer.data() + static_cast<size_t>(i) * kGridNameBytes;
      ListAdd(kColumnList, std::string(name, strnlen(name, kGridNameBytes)));
    }
    for (const char* op : kOperators) ListAdd(kOperatorList, op);
    SetFocusItem(kEdit);
    return true;
  }

  void OnCommand(int32_t control, int32_t notification) override {
    if ((control == kColumnList || control == kOperatorList) &&
        (notification == kLbnDblClk || notification == kLbnSelChange)) {
      const int32_t selected = ListCurSel(control);
      if (selected >= 0) Insert(ListText(control, selected));
      return;
    }
    if (control == kTryButton) {
      const std::string current = TrimBlanks(GetItemText(kEdit));
      if (current.empty()) {
        ShowError(kEnterExpressionText);
      } else {
        GridTryFormula(current.c_str());
      }
      return;
    }
    if (control == kDecimalKey) {
      Insert(std::string(1, gDecimalChar));
      return;
    }
    if (control == kDeleteKey) {
      int32_t start = 0;
      int32_t end = 0;
      GetSelection(kEdit, &start, &end);
      if (start == end && start < static_cast<int32_t>(GetItemText(kEdit).size())) {
        SetSelection(kEdit, start, start + 1);
      }
      ReplaceSelection(kEdit, "");
      SetFocusItem(kEdit);
      return;
    }
    for (const Key& key : kKeypad) {
      if (key.control == control) {
        Insert(key.text);
        return;
      }
    }
  }

  void OnOK() override {
    const std::string current = TrimBlanks(GetItemText(kEdit));
    if (current.empty()) {
      ShowError(kEnterExpressionText);
      return;
    }
    if (GridCheckFormula(current.c_str()) == 0) return;
    text = current;
    EndDialog(kIdOk);
  }

 private:
  void Insert(const std::string& piece) {
    ReplaceSelection(kEdit, piece);
    SetFocusItem(kEdit);
  }
};

}  // namespace

int32_t PickVariableDialog(char* buffer64) {
  ExpressionDialog dialog(std::string(buffer64, strnlen(buffer64, 64)));
  if (dialog.DoModal() != kIdOk) return 0;
  const size_t length = std::min<size_t>(dialog.text.size(), kBufferLimit);
  std::memcpy(buffer64, dialog.text.data(), length);
  buffer64[length] = '\0';
  return 1;
}

int32_t EditHasText(const WinDialog& dialog, int32_t control) {
  return dialog.HasControl(control) && !IsBlankText(dialog.GetItemText(control)) ? 1 : 0;
}

}  // namespace zv
