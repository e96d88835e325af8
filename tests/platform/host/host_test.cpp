// The Host's bookkeeping, against a small module library built for this
// test (fake_module.cpp) that has the real export names and logs its calls.
#include "zvhost/host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "zvgrid/sheet.h"

namespace {

using zvhost::UserStep;

class HostTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // The test module's own dialog templates.
    setenv("ZIVARA_RESOURCES", ZV_HOST_TEST_RESOURCES, 1);
    std::string error;
    ASSERT_TRUE(zvgrid::LoadCsvText("Weight,Height\n150,60\n160,65\n170,70\n", &error)) << error;
    host = std::make_unique<zvhost::Host>();
    host->SetMessageObserver([this](const MessageBoxCall& call) { messages.push_back(call.text); });
    ASSERT_TRUE(host->LoadModule(ZV_FAKE_MODULE, &error)) << error;
    Fake<void (*)()>("FakeClearLog")();
    Fake<void (*)(const char*, int32_t, int32_t, int32_t)>("FakeNextEntryList")("", 0, -1, -1);
  }
  void TearDown() override { host.reset(); }

  template <class F>
  F Fake(const char* name) {
    return reinterpret_cast<F>(host->module().Find(name));
  }
  std::string Log() { return Fake<const char* (*)()>("FakeLog")(); }
  void NextEntryList(const std::string& bytes, int32_t first, int32_t second) {
    Fake<void (*)(const char*, int32_t, int32_t, int32_t)>("FakeNextEntryList")(
        bytes.data(), static_cast<int32_t>(bytes.size()), first, second);
  }
  // Dialog with field 116 typed and OK, then Setup: the new analysis's Slot.
  int32_t Open(const char* family, const std::string& variable) {
    int32_t slot = host->NewSlot();
    host->user().Queue({UserStep::Set(116, variable), UserStep::Ok()});
    EXPECT_EQ(host->Dialog(*zvhost::FindFamily(family), slot, false), 1);
    EXPECT_TRUE(host->Setup(slot, false));
    return slot;
  }
  std::string Expression(int32_t slot, int binding) {
    return std::string(zv::CountedText(host->State(slot)->bindings[binding].expression));
  }

  std::unique_ptr<zvhost::Host> host;
  std::vector<std::string> messages;
};

TEST_F(HostTest, LoadsTheModuleByNameAndHandsOverHelpRecordAndAdviceBuffer) {
  EXPECT_EQ(Log(), "");  // cleared after IsKeel4Loaded
  EXPECT_EQ(Fake<const char* (*)()>("FakeAdvice")(), host->adviceBuffer());
  EXPECT_EQ(Fake<int32_t (*)()>("FakeAdviceEnabled")(), 1);
  EXPECT_TRUE(host->HasProcedure(*zvhost::FindFamily("dotdiagram")));
  EXPECT_TRUE(host->HasProcedure(*zvhost::FindFamily("CUSTOM")));
  EXPECT_FALSE(host->HasProcedure(*zvhost::FindFamily("Weibull")));

  zvhost::Host second;
  std::string error;
  EXPECT_FALSE(second.LoadModule("/nonexistent/libzvkeel4.so", &error));
  EXPECT_NE(error.find("/nonexistent/libzvkeel4.so"), std::string::npos) << error;
}

TEST_F(HostTest, DialogStartsFromTheSheetsRowCount) {
  host->record().rowCount = 99;
  host->record().rowsDiffer = 1;
  int32_t slot = Open("DotDiagram", "Weight");
  EXPECT_NE(Log().find("DotDiagramDialog 0 reopen 0 rows 3 sheet"), std::string::npos) << Log();
  EXPECT_EQ(host->record().rowsDiffer, 0);
  EXPECT_EQ(host->record().nextSlot, 1);  // raised by the module's Setup
  EXPECT_EQ(host->AnalysisOf(slot)->title, "Fake - Weight");
}

TEST_F(HostTest, EntryListGoesIntoTheBindings) {
  using namespace std::string_literals;
  struct Row {
    int line;
    const char* family;
    std::string list;
    int32_t first, second;
    std::vector<std::pair<int, std::string>> bindings;  // every non-empty list entry
    std::string select;
    std::string title;
  };
  const Row rows[] = {
      {__LINE__, "DotDiagram", "Dot - W\0W\0H > 60\0"s, 1, 0, {{0, "W"}}, "H > 60", "Dot - W"},
      // A line list: one entry per line, empty lines skipped, no select.
      {__LINE__,
       "Life1",
       "Life\0Years\0Label\0A\r\nB\r\n\r\nC\r\n\0"s,
       2,
       3,
       {{0, "Years"}, {1, "Label"}, {64, "A"}, {65, "B"}, {66, "C"}},
       "",
       "Life"},
      {__LINE__,
       "BubbleChart",
       "Bubble\0Y\0X\0S\0C\0Sex = 1\0"s,
       0,
       4,
       {{64, "Y"}, {65, "X"}, {66, "S"}, {67, "C"}},
       "Sex = 1",
       "Bubble"},
      // Fewer texts than the first list holds: the rest stay empty.
      {__LINE__, "Surfplot", "Surface\0X*Y\0"s, 10, 0, {{0, "X*Y"}}, "", "Surface"},
      // Custom: the shorter argument lists.
      {__LINE__,
       "Custom",
       "Custom\0Title\0Y axis\0X axis\0"s,
       3,
       0,
       {{0, "Title"}, {1, "Y axis"}, {2, "X axis"}},
       "",
       "Custom"},
      // An empty optional text is no entry.
      {__LINE__,
       "BubbleChart",
       "B\0Y\0X\0S\0\0\0"s,
       0,
       4,
       {{64, "Y"}, {65, "X"}, {66, "S"}},
       "",
       "B"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    NextEntryList(row.list, row.first, row.second);
    int32_t slot = Open(row.family, "anything");
    EXPECT_EQ(host->AnalysisOf(slot)->title, row.title);
    std::vector<std::pair<int, std::string>> stored;
    for (int i = 0; i < zv::kSelectBinding; ++i) {
      if (!Expression(slot, i).empty()) stored.emplace_back(i, Expression(slot, i));
    }
    EXPECT_EQ(stored, row.bindings);
    EXPECT_EQ(Expression(slot, zv::kSelectBinding), row.select);
    host->Close(slot);
  }
}

TEST_F(HostTest, SetupReopenReplacesTheStoredTexts) {
  using namespace std::string_literals;
  NextEntryList("B\0Y\0X\0S\0C\0Sex = 1\0"s, 0, 4);
  int32_t slot = Open("BubbleChart", "Y");
  NextEntryList("B\0Y2\0X2\0S2\0\0\0"s, -1, -1);
  host->user().Queue({UserStep::Set(116, "Y2"), UserStep::Ok()});
  ASSERT_EQ(host->Dialog(*zvhost::FindFamily("BubbleChart"), slot, true), 1);
  ASSERT_TRUE(host->Setup(slot, true));
  EXPECT_EQ(Expression(slot, 64), "Y2");
  EXPECT_EQ(Expression(slot, 66), "S2");
  EXPECT_EQ(Expression(slot, 67), "");
  EXPECT_EQ(Expression(slot, zv::kSelectBinding), "");
  EXPECT_EQ(host->modifiedCalls(), 2);  // each Setup

  // A shorter line list leaves none of the old lines behind.
  NextEntryList("Life\0Years\0Label\0A\r\nB\r\nC\r\n\0"s, 2, 3);
  slot = Open("Life1", "Years");
  NextEntryList("Life\0Years\0Label\0A\r\n\0"s, -1, -1);
  host->user().Queue({UserStep::Set(116, "Years"), UserStep::Ok()});
  ASSERT_EQ(host->Dialog(*zvhost::FindFamily("Life1"), slot, true), 1);
  ASSERT_TRUE(host->Setup(slot, true));
  EXPECT_EQ(Expression(slot, 64), "A");
  EXPECT_EQ(Expression(slot, 65), "");
}

TEST_F(HostTest, StalePanesAreRebuiltAfterTheCallThatAskedForThem) {
  int32_t slot = Open("DotDiagram", "Weight");
  ASSERT_EQ(host->Begin(slot), 1);
  // Showing only pane 1 builds it alone; pane 8 stays stale until shown.
  host->ShowStalePanes(slot, {1});
  EXPECT_EQ(host->PaneText(slot, 1), "Pane 1 of Weight\r\nsecond line\r\n");
  EXPECT_EQ(host->State(slot)->paneStale[0], 0);
  EXPECT_EQ(host->State(slot)->paneStale[7], 1);
  EXPECT_EQ(host->AnalysisOf(slot)->PaneOf(8)->builds, 0);
  host->ShowStalePanes(slot);
  EXPECT_EQ(host->State(slot)->paneStale[7], 0);
  EXPECT_EQ(host->AnalysisOf(slot)->PaneOf(1)->builds, 1);

  Fake<void (*)()>("FakeClearLog")();
  host->user().Queue({UserStep::Ok()});
  ASSERT_EQ(host->Opts(slot, 8), 1);
  // RefreshPanes came in the middle of Opts; the panes were built after it.
  EXPECT_EQ(Log(), "Opts 8 begins\nOpts 8 ends\nItem 1 with record\nItem 8 with record\n");
  EXPECT_EQ(host->refreshCalls(), 1);
  EXPECT_EQ(host->State(slot)->paneStale[0], 0);
  EXPECT_EQ(host->State(slot)->paneStale[7], 0);
  EXPECT_EQ(host->AnalysisOf(slot)->PaneOf(1)->builds, 2);
}

TEST_F(HostTest, SilentAbortEndsTheCallQuietlyAndTheHostCarriesOn) {
  const int32_t appCursor = WinWaitCursorLevel();
  int32_t slot = Open("DotDiagram", "abort");
  EXPECT_EQ(host->Begin(slot), 0);
  EXPECT_TRUE(host->lastCallAbandoned());
  EXPECT_EQ(host->abandonedCalls(), std::vector<std::string>{"DotDiagramBegin"});
  EXPECT_EQ(WinLockedBlockCount(), 0u);
  EXPECT_EQ(WinWaitCursorLevel(), appCursor);
  EXPECT_EQ(host->waitCursorLevel(), 0);
  EXPECT_TRUE(host->faults().empty());
  EXPECT_TRUE(messages.empty());

  host->user().Queue({UserStep::Set(116, "Weight"), UserStep::Ok()});
  ASSERT_EQ(host->Dialog(*zvhost::FindFamily("DotDiagram"), slot, true), 1);
  ASSERT_TRUE(host->Setup(slot, true));
  EXPECT_EQ(host->Begin(slot), 1);
  EXPECT_FALSE(host->lastCallAbandoned());
  host->ShowStalePanes(slot);
  EXPECT_EQ(host->PaneText(slot, 1), "Pane 1 of Weight\r\nsecond line\r\n");
}

TEST_F(HostTest, ALockLeftBehindIsAFault) {
  int32_t slot = Open("DotDiagram", "leak");
  EXPECT_EQ(host->Begin(slot), 1);
  ASSERT_EQ(host->faults().size(), 1u);
  EXPECT_EQ(host->faults()[0], "DotDiagramBegin left 1 movable block(s) locked");
  Handle leaked = Fake<Handle (*)()>("FakeLeakedBlock")();
  WinGlobalUnlock(leaked);
  WinGlobalFree(leaked);
}

TEST_F(HostTest, ScriptedUserSetsControlsByTheirKind) {
  int32_t slot = Open("DotDiagram", "Weight");
  ASSERT_EQ(host->Begin(slot), 1);
  // Entry 1 of the group that 176 opens is 178 in the template's order; the
  // group and the check box are named in the template.
  host->user().Queue({UserStep::SetNamed("method", "1"), UserStep::SetNamed("counts", "on"),
                      UserStep::Set(141, "12.5"), UserStep::Ok()});
  ASSERT_EQ(host->Opts(slot, 8), 1);
  EXPECT_TRUE(host->user().problems().empty());
  EXPECT_EQ(Fake<int32_t (*)()>("FakeRadio")(), 2);
  EXPECT_EQ(Fake<int32_t (*)()>("FakeCheck")(), 1);
  EXPECT_STREQ(Fake<const char* (*)()>("FakeOption141")(), "12.5");

  // A disabled, unknown or misnamed control is refused the same way; zivara's
  // pane options test checks those words end to end.
  struct Row {
    int line;
    std::vector<UserStep> steps;
    std::string problem;
  };
  const Row rows[] = {
      {__LINE__,
       {UserStep::Set(107, "2"), UserStep::Ok()},
       "dialog 60002: control 107 is a check box: give 1 (on) or 0 (off), not \"2\""},
      {__LINE__,
       {UserStep::Set(176, "3"), UserStep::Ok()},
       "dialog 60002: control 176 opens a group of 3 radio buttons; entry 3 is not among them"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    host->user().ClearProblems();
    host->user().Queue(row.steps);
    EXPECT_EQ(host->Opts(slot, 8), 0);  // the dialog was cancelled
    EXPECT_EQ(host->user().problems(), std::vector<std::string>{row.problem});
    EXPECT_EQ(host->user().Pending(), 0u);
  }
}

TEST_F(HostTest, VariableDialogRefusalsExpressionsAndLineLists) {
  const zvhost::FamilySpec& dot = *zvhost::FindFamily("DotDiagram");
  // A refused OK leaves the dialog open; with no further step it cancels.
  host->user().Queue({UserStep::Ok()});
  EXPECT_EQ(host->Dialog(dot, 0, false), 0);
  EXPECT_EQ(messages, std::vector<std::string>{"Field 1 is required."});

  host->user().Queue(
      {UserStep::Ok(), UserStep::Set(116, "Weight"), UserStep::Set(122, "A;B"), UserStep::Ok()});
  EXPECT_EQ(host->Dialog(dot, 0, false), 1);
  EXPECT_STREQ(Fake<const char* (*)()>("FakeLines122")(), "A\r\nB\r\n");

  // Transform asks the Host's EditExpression for a text.
  host->QueueExpression("LOG(Weight)");
  host->user().Queue({UserStep::Set(116, "Weight"), UserStep::Press(119), UserStep::Ok()});
  ASSERT_EQ(host->Dialog(dot, 0, false), 1);
  ASSERT_TRUE(host->Setup(0, false));
  EXPECT_EQ(Expression(0, 0), "LOG(Weight)");
  // Without a text waiting, the field keeps what was typed.
  host->user().Queue({UserStep::Set(116, "Height"), UserStep::Press(119), UserStep::Ok()});
  ASSERT_EQ(host->Dialog(dot, 0, true), 1);
  ASSERT_TRUE(host->Setup(0, true));
  EXPECT_EQ(Expression(0, 0), "Height");
  EXPECT_EQ(host->expressionEdits(), 2);
}

TEST_F(HostTest, DropHostBindingClearsTheHostsTexts) {
  int32_t slot = Open("DotDiagram", "Weight");
  host->SetHostBinding(slot, 0, "Height");
  host->SetHostBinding(slot, 1, "bad");
  EXPECT_EQ(host->Begin(slot), 1);
  EXPECT_EQ(host->dropCalls(), 1);
  EXPECT_EQ(host->State(slot)->bindings[zv::kHostTextBinding].expression, 0u);
  EXPECT_EQ(host->State(slot)->bindings[zv::kHostNumberBinding].expression, 0u);
  EXPECT_EQ(Expression(slot, 0), "Weight");
}

TEST_F(HostTest, ReloadedAnalysisComesBackThroughBeginAgain) {
  int32_t slot = Open("DotDiagram", "Weight");
  ASSERT_EQ(host->Begin(slot), 1);
  const zv::ProcedureState* before = host->State(slot);
  const TextRef oldText = before->bindings[0].expression;
  ASSERT_TRUE(host->Reload(slot));
  EXPECT_NE(host->State(slot), before);
  EXPECT_NE(host->State(slot)->bindings[0].expression, oldText);
  EXPECT_EQ(Expression(slot, 0), "Weight");
  EXPECT_EQ(host->State(slot)->firstListCount, 1);

  EXPECT_EQ(host->BeginAgain(slot), 1);
  EXPECT_EQ(Fake<zv::ProcedureState* (*)(int32_t)>("FakeState")(slot), host->State(slot));
  EXPECT_EQ(host->record().currentSlot, slot);
}

TEST_F(HostTest, Win32sPaneTextComesFromTheState) {
  int32_t slot = Open("DotDiagram", "Weight");
  ASSERT_EQ(host->Begin(slot), 1);
  WinSetPlatformId(0);
  host->Item(slot, 1);
  WinSetPlatformId(2);
  EXPECT_EQ(host->PaneText(slot, 1), "");
  WinSetPlatformId(0);
  EXPECT_EQ(host->PaneText(slot, 1), "a\r\n\r\nbcd\r\n");
  WinSetPlatformId(2);
}

}  // namespace
