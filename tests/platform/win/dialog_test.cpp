#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/win/resource_folder.h"
#include "zvwin/zvwin.h"

namespace {

using testing::HasSubstr;
using Act = DialogAction;

constexpr char kTemplate[] =
    "DIALOG 500 \"Options\"\n"
    "CONTROL 101 EDIT \"0.95\"\n"
    "CONTROL 102 MULTIEDIT \"\"\n"
    "CONTROL 103 CHECKBOX \"Sort\"\n"
    "CONTROL 104 LISTBOX \"\"\n"
    "CONTROL 105 COMBOBOX \"\"\n"
    "CONTROL 201 RADIO \"Rank\" GROUP\n"
    "CONTROL 202 RADIO \"Likelihood\"\n"
    "CONTROL -1 STATIC \"Percent:\"\n"
    "CONTROL 203 RADIO \"Fixed\"\n"
    "CONTROL 301 RADIO \"Lines\" GROUP\n"
    "CONTROL 302 RADIO \"Points\"\n"
    "CONTROL 120 EDIT \"\" GROUP DISABLED\n"
    "CONTROL 121 IMAGEBUTTON \"\"\n"
    "CONTROL 1 BUTTON \"OK\"\n"
    "CONTROL 2 BUTTON \"Cancel\"\n";

// A dialog that records what reaches it. OnOK accepts only when the edit
// holds "ok", the way a module dialog refuses a bad field.
class RecordingDialog : public WinDialog {
 public:
  RecordingDialog() : WinDialog(500) {}
  bool OnInitDialog() override {
    ListAdd(104, "Time");
    ListAdd(104, "Status");
    ListAdd(105, "Lines");
    ListAdd(105, "Bars");
    CheckRadio(201, 203, 201);
    CheckRadio(301, 302, 301);
    return true;
  }
  void OnOK() override {
    events.push_back("ok");
    if (GetItemText(101) == "ok") {
      EndDialog(kIdOk);
    } else {
      SetFocusItem(101);
    }
  }
  void OnCancel() override {
    events.push_back("cancel");
    if (!refuseCancel) EndDialog(kIdCancel);
  }
  void OnCommand(int32_t control, int32_t notification) override {
    events.push_back(std::to_string(control) + "/" + std::to_string(notification));
    if (onCommand) onCommand(*this, control);
  }
  std::vector<std::string> events;
  bool refuseCancel = false;
  std::function<void(RecordingDialog&, int32_t)> onCommand;
};

class DialogTest : public testing::Test {
 protected:
  void SetUp() override {
    folder_.Write("dialogs/500.dlg", kTemplate);
    module_ = WinLoadLibrary("keel4res.dll");
    ASSERT_NE(module_, 0u);
    WinClearDialogLog();
  }
  void TearDown() override {
    WinSetDialogDriver(nullptr);
    WinFreeLibrary(module_);
  }

  // Runs `dialog` with `actions`; `inspect` runs when the script is used up,
  // before the dialog cancels. Returns the result and what stderr said.
  int32_t Run(RecordingDialog& dialog, std::vector<DialogAction> actions,
              std::function<void(RecordingDialog&)> inspect = nullptr) {
    struct Driver : WinDialogDriver {
      std::vector<DialogAction> actions;
      size_t next = 0;
      std::function<void(RecordingDialog&)> inspect;
      std::optional<DialogAction> NextAction(WinDialog& d) override {
        if (next < actions.size()) return actions[next++];
        if (inspect) inspect(static_cast<RecordingDialog&>(d));
        inspect = nullptr;
        return std::nullopt;
      }
    } driver;
    driver.actions = std::move(actions);
    driver.inspect = std::move(inspect);
    WinSetDialogDriver(&driver);
    testing::internal::CaptureStderr();
    int32_t result = dialog.DoModal();
    said = testing::internal::GetCapturedStderr();
    WinSetDialogDriver(nullptr);
    return result;
  }

  TempResourceFolder folder_;
  ModuleRef module_ = 0;
  std::string said;
};

TEST_F(DialogTest, EachActionChangesItsControlAndNotifies) {
  RecordingDialog dialog;
  bool inspected = false;
  int32_t result =
      Run(dialog,
          {Act::SetText(101, "0.90"), Act::Check(103, 1), Act::Select(104, 1), Act::Select(105, 1),
           Act::SelectRadio(202), Act::Press(121), Act::DoubleClick(104, 0),
           Act::SetText(102, "Time\r\nStatus\r\nGroup"), Act::SetSelection(102, 8, 14)},
          [&](RecordingDialog& d) {
            inspected = true;
            EXPECT_EQ(d.GetItemText(101), "0.90");
            int32_t start = -1, end = -1;
            d.GetSelection(101, &start, &end);
            EXPECT_EQ(start, 4) << "the caret goes to the end of typed text";
            EXPECT_EQ(end, 4);
            EXPECT_EQ(d.IsChecked(103), 1);
            EXPECT_EQ(d.ListCurSel(104), 0);
            EXPECT_EQ(d.ListCurSel(105), 1);
            EXPECT_EQ(d.GetItemText(105), "Bars") << "a combo box shows its selection";
            EXPECT_EQ(d.IsChecked(201), 0);
            EXPECT_EQ(d.IsChecked(202), 1);
            EXPECT_EQ(d.IsChecked(301), 1) << "another group was touched";
            d.GetSelection(102, &start, &end);
            EXPECT_EQ(start, 8);
            EXPECT_EQ(end, 14);
            EXPECT_EQ(d.FocusItem(), 102);
          });
  EXPECT_TRUE(inspected);
  EXPECT_EQ(result, kIdCancel);
  EXPECT_EQ(said, "");
  const std::vector<std::string> expected = {"101/768", "103/0", "104/1",   "105/1", "202/0",
                                             "121/0",   "104/2", "102/768", "cancel"};
  EXPECT_EQ(dialog.events, expected);

  ASSERT_EQ(WinDialogLog().size(), 1u);
  const DialogRun& run = WinDialogLog()[0];
  EXPECT_EQ(run.templateId, 500u);
  EXPECT_EQ(run.caption, "Options");
  EXPECT_EQ(run.result, kIdCancel);
  EXPECT_EQ(run.actions, 9);
  EXPECT_EQ(run.refused, 0);
  const std::vector<std::pair<int32_t, std::string>> texts = {
      {101, "0.90"}, {102, "Time\r\nStatus\r\nGroup"}, {120, ""}};
  EXPECT_EQ(run.finalTexts, texts);
}

TEST_F(DialogTest, ImpossibleActionsAreRefusedAndTheRunGoesOn) {
  struct Row {
    int line;
    DialogAction action;
    const char* message;
  };
  const Row rows[] = {
      {__LINE__, Act::Press(999), "dialog 500: control 999 does not exist"},
      {__LINE__, Act::SetText(120, "x"), "dialog 500: control 120 is disabled"},
      {__LINE__, Act::Check(101, 1), "cannot check control 101, an edit control"},
      {__LINE__, Act::Check(103, 2), "check box 103 takes 0 or 1, not 2"},
      {__LINE__, Act::SetText(103, "x"), "cannot type into control 103, a check box"},
      {__LINE__, Act::Select(104, 2), "list 104 has 2 entries; there is no entry 2"},
      {__LINE__, Act::DoubleClick(105, 0), "cannot double click control 105, a combo box"},
      {__LINE__, Act::Press(103), "cannot press control 103, a check box"},
      {__LINE__, Act::SetSelection(101, 0, 5), "selection 0 to 5 is outside the 4 characters"},
      {__LINE__, Act::Select(-1, 0), "control -1 does not exist"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    RecordingDialog dialog;
    WinClearDialogLog();
    EXPECT_EQ(Run(dialog, {row.action, Act::SetText(101, "ok"), Act::Press(kIdOk)}), kIdOk);
    EXPECT_THAT(said, HasSubstr(row.message));
    EXPECT_EQ(dialog.events, (std::vector<std::string>{"101/768", "ok"}));
    ASSERT_EQ(WinDialogLog().size(), 1u);
    EXPECT_EQ(WinDialogLog()[0].refused, 1);
  }
}

// How a run ends: a refused OK keeps the dialog open for the next action and
// nothing after the end is played; running out of actions cancels, even when
// the dialog refuses the first cancel or no driver is set; a script that never ends is cut off.
TEST_F(DialogTest, RunsEndOnOkCancelOrTheActionLimit) {
  RecordingDialog dialog;
  EXPECT_EQ(Run(dialog, {Act::Press(121), Act::Press(kIdOk), Act::SetText(101, "ok"),
                         Act::Press(kIdOk), Act::Press(121)}),
            kIdOk);
  EXPECT_EQ(dialog.events, (std::vector<std::string>{"121/0", "ok", "101/768", "ok"}));
  EXPECT_EQ(WinDialogLog().back().finalTexts.front(), (std::pair<int32_t, std::string>{101, "ok"}));

  RecordingDialog refusing;
  refusing.refuseCancel = true;
  EXPECT_EQ(Run(refusing, {Act::Press(kIdCancel)}), kIdCancel);
  EXPECT_EQ(refusing.events, (std::vector<std::string>{"cancel", "cancel"}));
  RecordingDialog undriven;  // no driver at all
  testing::internal::CaptureStderr();
  EXPECT_EQ(undriven.DoModal(), kIdCancel);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(undriven.events, (std::vector<std::string>{"cancel"}));

  struct Forever : WinDialogDriver {
    std::optional<DialogAction> NextAction(WinDialog&) override { return Act::Press(121); }
  } forever;
  RecordingDialog runaway;
  WinSetDialogDriver(&forever);
  testing::internal::CaptureStderr();
  EXPECT_EQ(runaway.DoModal(), kIdCancel);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("10000 actions without an end"));
  EXPECT_EQ(runaway.events.size(), 10000u);
  EXPECT_EQ(WinDialogLog().back().actions, 10000);
}

TEST_F(DialogTest, RadioGroupsRunFromGroupMarkToGroupMark) {
  RecordingDialog dialog;
  Run(dialog, {Act::SelectRadio(203), Act::SelectRadio(302)}, [](RecordingDialog& d) {
    // 203 is in the first group although a static text stands before it.
    EXPECT_EQ(d.IsChecked(201), 0);
    EXPECT_EQ(d.IsChecked(202), 0);
    EXPECT_EQ(d.IsChecked(203), 1);
    EXPECT_EQ(d.IsChecked(301), 0);
    EXPECT_EQ(d.IsChecked(302), 1);
    d.CheckRadio(201, 203, 202);
    EXPECT_EQ(d.IsChecked(202), 1);
    EXPECT_EQ(d.IsChecked(203), 0);
    EXPECT_EQ(d.IsChecked(302), 1);
  });
  EXPECT_EQ(said, "");
}

TEST_F(DialogTest, EditOperationsForListFields) {
  RecordingDialog dialog;
  Run(dialog, {Act::SetText(102, "Time\r\nStatus"), Act::SetSelection(102, 6, 6)},
      [](RecordingDialog& d) {
        d.ReplaceSelection(102, "Group\r\n");  // at the start of the second line
        EXPECT_EQ(d.GetItemText(102), "Time\r\nGroup\r\nStatus");
        int32_t start = 0, end = 0;
        d.GetSelection(102, &start, &end);
        EXPECT_EQ(start, 13);
        EXPECT_EQ(end, 13);
        d.SetSelection(102, 0, 4);
        d.ReplaceSelection(102, "Age");  // replaces "Time"
        EXPECT_EQ(d.GetItemText(102), "Age\r\nGroup\r\nStatus");
        struct Row {
          int32_t position, line;
        };
        for (Row r : {Row{0, 0}, Row{4, 0}, Row{5, 1}, Row{12, 2}, Row{100, 2}}) {
          SCOPED_TRACE(r.position);
          EXPECT_EQ(d.LineFromChar(102, r.position), r.line);
        }
        EXPECT_EQ(d.LineFromChar(102, -1), 0) << "-1 is the caret's line";
        d.ScrollToLine(102, 1);
        EXPECT_EQ(d.FirstVisibleLine(102), 1);
        d.SetItemText(101, std::string(500, '9'));  // no length limit in the engine
        EXPECT_EQ(d.GetItemText(101).size(), 500u);
      });
  EXPECT_EQ(said, "");
}

TEST_F(DialogTest, FocusEnableAndControlsOnlyWhileOpen) {
  RecordingDialog dialog;
  dialog.onCommand = [](RecordingDialog& d, int32_t control) {
    if (control == 103) d.EnableItem(120, d.IsChecked(103) != 0);
  };
  Run(dialog,
      {Act::Check(103, 1), Act::SetText(120, "now enabled"), Act::Check(103, 0),
       Act::SetText(120, "refused")},
      [](RecordingDialog& d) {
        EXPECT_FALSE(d.IsEnabled(120));
        EXPECT_EQ(d.GetItemText(120), "now enabled");
        EXPECT_EQ(d.FocusItem(), 103) << "focus left the control that was disabled";
        EXPECT_NE(d.window(), 0u);
        EXPECT_EQ(WinGetActiveWindow(), d.window());
        EXPECT_EQ(d.Caption(), "Options");
      });
  EXPECT_THAT(said, HasSubstr("control 120 is disabled"));
  EXPECT_EQ(dialog.window(), 0u);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(dialog.HasControl(101));
  EXPECT_EQ(dialog.GetItemText(101), "");
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("dialog 500: control 101 does not exist (GetItemText)"));
}

TEST_F(DialogTest, MissingTemplateGivesMinusOne) {
  WinDialog dialog(777);
  testing::internal::CaptureStderr();
  EXPECT_EQ(dialog.DoModal(), -1);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("dialog 777: no template in the resource module"));
  EXPECT_EQ(WinDialogLog().back().result, -1);
}

// A dialog that opens a second one from a button, as the variable dialogs do
// with the expression dialog.
class OuterDialog : public RecordingDialog {
 public:
  void OnCommand(int32_t control, int32_t notification) override {
    RecordingDialog::OnCommand(control, notification);
    if (control == 121) {
      RecordingDialog inner;
      innerResult = inner.DoModal();
      innerText = WinDialogLog().back().finalTexts.front().second;
    }
  }
  int32_t innerResult = 0;
  std::string innerText;
};

TEST_F(DialogTest, ScriptedDriverPlaysNestedDialogsInOrder) {
  ScriptedDialogDriver driver({
      {500, {Act::Press(121), Act::SetText(101, "ok"), Act::Press(kIdOk)}},
      {500, {Act::SetText(101, "inner"), Act::Press(kIdCancel)}},
  });
  WinSetDialogDriver(&driver);
  OuterDialog outer;
  EXPECT_EQ(outer.DoModal(), kIdOk);
  EXPECT_EQ(outer.innerResult, kIdCancel);
  EXPECT_EQ(outer.innerText, "inner");
  EXPECT_EQ(driver.ScriptsLeft(), 0u);
  EXPECT_TRUE(driver.Unexpected().empty());

  testing::internal::CaptureStderr();
  RecordingDialog extra;
  EXPECT_EQ(extra.DoModal(), kIdCancel);
  EXPECT_THAT(testing::internal::GetCapturedStderr(),
              HasSubstr("dialog 500 opened after the last script"));
  EXPECT_EQ(driver.Unexpected(), (std::vector<uint32_t>{500}));
}

TEST_F(DialogTest, ExceptionFromAHandlerLeavesNoDeadDialogBehind) {
  WindowRef frame = WinCreateWindow("frame");
  WinSetActiveWindow(frame);
  ScriptedDialogDriver driver({{500, {Act::Press(121)}}, {500, {Act::Press(kIdOk)}}});
  WinSetDialogDriver(&driver);
  {
    RecordingDialog dialog;
    dialog.onCommand = [](RecordingDialog&, int32_t) { throw std::runtime_error("abort"); };
    EXPECT_THROW(dialog.DoModal(), std::runtime_error);
    EXPECT_EQ(dialog.window(), 0u);
    EXPECT_EQ(WinGetActiveWindow(), frame);
  }
  RecordingDialog next;
  next.onCommand = nullptr;
  EXPECT_EQ(next.DoModal(), kIdCancel);  // gets the second script: OK is refused, then cancel
  EXPECT_EQ(next.events, (std::vector<std::string>{"ok", "cancel"}));
  EXPECT_TRUE(driver.Unexpected().empty());
  WinDestroyWindow(frame);
}

}  // namespace
