// The procedure protocol driven as the Host drives it, with DotDiagram, the
// simplest family, as the passenger.
#include "protocol/protocol.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "charts/dot_diagram.h"
#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/family_entries.h"
#include "support/module_fixture.h"
#include "zvgrid/sheet.h"

// The short forms of the family list, on the dot diagram's row.
ZV_DECLARE_FAMILY_ENTRIES_6(ShortDot)
ZV_DEFINE_FAMILY_ENTRIES_6(ShortDot, zv::kDotDiagramFamily)

namespace {

using zvtest::ModuleFixture;

constexpr char kSheet[] =
    "Weight,Height,Sex\n"
    "61,58,F\n"
    "72,63,M\n"
    "58,61,F\n"
    "72,66,M\n"
    "80,70,M\n"
    ",59,F\n"
    "66,64,F\n";

class ProtocolTest : public ModuleFixture {
 protected:
  // Dialog and Setup for a new analysis on `slot`, as the Host calls them.
  zv::ProcedureState& Open(int32_t slot, const char* variable, const char* select) {
    return OpenFamily(zv::kDotDiagramFamily, {variable}, select, slot);
  }
};

TEST_F(ProtocolTest, SetupWritesConstantsEntryListAndRaisesNextSlotOnce) {
  LoadSheet(kSheet);
  host->nextSlot = 5;
  zv::ProcedureState& state = Open(3, "Weight", "Height > 60");
  EXPECT_EQ(host->nextSlot, 5);  // Slot 3 is not the next free one
  EXPECT_EQ(state.procedureCode, 2842);
  EXPECT_EQ(host->helpIds[3], 32977);
  EXPECT_EQ(zv::Get(state, zv::kDotClasses), 0);
  EXPECT_EQ(zv::Get(state, zv::kDotUnused2014), -32768);
  EXPECT_STREQ(entryList, "Dot Diagram - Weight");
  const char* second = entryList + std::strlen(entryList) + 1;
  EXPECT_STREQ(second, "Weight");
  EXPECT_STREQ(second + 7, "Height > 60");

  host->nextSlot = 4;
  Open(4, "Weight", "");
  EXPECT_EQ(host->nextSlot, 5);

  // Reopening keeps options and nextSlot but rewrites the constants.
  zv::Set(state, zv::kDotClasses, 12);
  state.procedureCode = 0;
  host->nextSlot = 3;
  host->rowCount = 99;
  DotDiagramSetup(3, &state, view.get(), entryList, 1, 0);
  EXPECT_EQ(zv::Get(state, zv::kDotClasses), 12);
  EXPECT_EQ(host->nextSlot, 3);
  EXPECT_EQ(state.procedureCode, 2842);
  EXPECT_EQ(state.rowCount, 99);
}

// The flags and counts Begin sets are checked by the session replays
// (tests/data/sessions); here the numbers it computes.
TEST_F(ProtocolTest, BeginComputesOnTheSelectedRows) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open(0, "Weight", "Height > 60");
  ASSERT_EQ(DotDiagramBegin(0, 0, 0), 1);
  ASSERT_EQ(state.status, 0);
  // Rows with Height > 60: 72, 58, 72, 80, 66 (the missing weight is skipped).
  EXPECT_EQ(zv::Get(state, zv::kDotCount), 5.0);
  EXPECT_EQ(zv::Get(state, zv::kDotDistinct), 4.0);
  EXPECT_DOUBLE_EQ(zv::Get(state, zv::kDotMean), 69.6);
  // Squares about 69.6: 5.76 + 134.56 + 5.76 + 108.16 + 12.96 = 267.2; / 4 = 66.8.
  EXPECT_NEAR(zv::Get(state, zv::kDotDeviation), 8.17312669668102, 1e-12);
}

TEST_F(ProtocolTest, FailingBeginLeavesBegunAndStaleFlags) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = NewState(0);
  state.firstListCount = 1;
  SetExpression(state, 0, "NoSuchColumn");
  state.paneStale[0] = 0;
  EXPECT_EQ(DotDiagramBegin(0, 0, 0), 0);
  EXPECT_EQ(state.begun, 0);
  EXPECT_EQ(state.paneStale[0], 0);
  EXPECT_EQ(host->begunCount, 0);
  EXPECT_NE(LastMessage(), "");  // the sheet said what is wrong
}

// An empty column gives status 3 (a constant one, 1042, is in the sessions).
TEST_F(ProtocolTest, StatusFromAnEmptyColumn) {
  LoadSheet("A,B\n5,\n5,\n5,\n");
  zv::ProcedureState& empty = Open(1, "B", "");
  DotDiagramBegin(1, 0, 0);
  EXPECT_EQ(empty.status, 3);
  // Every pane but the summary of a failed analysis has no options.
  EXPECT_EQ(DotDiagramOpts(pane.get(), 1, 8, paneRecord.get(), 0, 0, 0), 0);
  EXPECT_TRUE(WinDialogLog().empty() || WinDialogLog().back().templateId == 9969);
}

// A graph Item without a pane record (RedoItem1 passes none) draws nothing;
// an item without a writer still invalidates its pane.
TEST_F(ProtocolTest, ItemsWithoutRecordOrWriter) {
  LoadSheet(kSheet);
  Open(0, "Weight", "");
  DotDiagramBegin(0, 0, 0);
  EXPECT_EQ(DotDiagramItem(pane.get(), 0, 8, nullptr, 0), 0);
  const int32_t before = WinInvalidateCount(pane->window);
  EXPECT_EQ(DotDiagramItem(pane.get(), 0, 5, paneRecord.get(), 0), 0);
  EXPECT_EQ(WinInvalidateCount(pane->window), before + 1);
  EXPECT_EQ(WinGetWindowText(pane->window), "");
  EXPECT_EQ(WinWaitCursorLevel(), 0);
}

TEST_F(ProtocolTest, BeginAgainWithDeletedColumnSets1025AndDoesNotBegin) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open(0, "Weight", "");
  DotDiagramBegin(0, 0, 0);
  state.begun = 0;  // a Begin that ran would set it again
  zvgrid::DeleteColumn("Weight");
  EXPECT_EQ(DotDiagramBeginAgain(0, &state, view.get(), host.get(), sheet.get(), frame.get(), 0),
            0);
  EXPECT_EQ(state.status, 1025);
  EXPECT_EQ(state.begun, 0);
  EXPECT_EQ(host->currentSlot, 0);
}

TEST_F(ProtocolTest, DialogRefusesEmptyAndCharacterFieldsAndCancelKeepsEntryText) {
  LoadSheet(kSheet);
  zv::gEntryText[0] = "before";
  Script({{9969,
           {DialogAction::Press(kIdOk), DialogAction::SetText(116, "Sex"),
            DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(DotDiagramDialog(0, host.get(), sheet.get(), frame.get(), 0, 0), 0);
  const auto& boxes = WinMessageBoxLog();
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_NE(boxes[0].text.find("Field 1"), std::string::npos);    // string 1019 with the field
  EXPECT_NE(boxes[1].text.find("character"), std::string::npos);  // string 1022
  EXPECT_EQ(boxes[0].caption, "Zivara Suite");
  EXPECT_EQ(zv::gEntryText[0], "before");
  EXPECT_EQ(help->helpContext, 0);
}

TEST_F(ProtocolTest, InterpretDispatchesOnProcedureCode) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open(0, "Weight", "");
  DotDiagramBegin(0, 0, 0);
  char out[2048];
  EXPECT_EQ(CallKeel4Interpret(&state, out, 1), 1);
  EXPECT_NE(std::string(out).find("Weight"), std::string::npos);
  EXPECT_EQ(CallKeel4Interpret(&state, out, 2), 1);
  EXPECT_STREQ(out, "");
  state.procedureCode = 0;
  EXPECT_EQ(CallKeel4Interpret(&state, out, 1), 1);
  EXPECT_STREQ(out, "");
}

// The six short entries reach the protocol with their arguments in place, and
// Dialog keeps the sheet and frame windows of the last full Dialog.
TEST_F(ProtocolTest, ShortFormEntriesReachTheProtocol) {
  LoadSheet(kSheet);
  zv::gSheetWindow = sheet.get();
  zv::gFrameWindow = frame.get();
  Script({{9969, {DialogAction::SetText(116, "Weight"), DialogAction::Press(kIdOk)}}});
  ASSERT_EQ(ShortDotDialog(2, host.get(), 0), 1);
  EXPECT_EQ(zv::gSheetWindow, sheet.get());
  EXPECT_EQ(zv::gFrameWindow, frame.get());
  zv::ProcedureState& state = NewState(2);
  ShortDotSetup(2, &state, view.get(), entryList, 0);
  StoreEntryList(state, entryList, true);
  EXPECT_EQ(state.procedureCode, 2842);
  ASSERT_EQ(ShortDotBegin(2), 1);
  EXPECT_EQ(zv::Get(state, zv::kDotCount), 6.0);
  EXPECT_EQ(ShortDotItem(pane.get(), 2, 1, paneRecord.get()), 1);
  EXPECT_NE(WinGetWindowText(pane->window).find("Weight"), std::string::npos);
  EXPECT_EQ(ShortDotOpts(pane.get(), 2, 1, paneRecord.get()), 1);  // no dialog: note 1100
  state.begun = 0;
  EXPECT_EQ(ShortDotBeginAgain(2, &state, view.get(), host.get(), sheet.get(), frame.get()), 1);
  EXPECT_EQ(state.begun, 1);
  EXPECT_EQ(host->currentSlot, 2);
}

}  // namespace
