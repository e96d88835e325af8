// Variables: resolving texts to columns, the select rules, the dialog checks
// and the text services.
#include "services/variables.h"

#include <gtest/gtest.h>

#include <string>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "services/movable_block.h"
#include "support/module_fixture.h"

namespace {

using zv::kMissingValue;
using zvtest::ModuleFixture;

constexpr char kSheet[] =
    "Weight,Height,Name,Keep\n"
    "60,150,ann,1\n"
    "70,,bob,0\n"
    ",170,cy,1\n"
    "80,180,,\n";

class VariablesTest : public ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    LoadSheet(kSheet);
  }
};

TEST_F(VariablesTest, NamesInAnyFormResolveToTheColumn) {
  struct Row {
    int line;
    const char* text;
  };
  constexpr Row kRows[] = {{__LINE__, "Weight"},
                           {__LINE__, "(Weight)"},
                           {__LINE__, " Weight "},
                           {__LINE__, "weight"},
                           {__LINE__, "( Weight )"}};
  zv::ProcedureState& state = NewState(0);
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    SetExpression(state, 0, r.text);
    ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
    EXPECT_EQ(Block<double>(state, 0, 4), (std::vector<double>{60, 70, kMissingValue, 80}));
    EXPECT_EQ(state.bindings[0].count, 3);
    EXPECT_EQ(state.bindings[0].minimum, 60);
    EXPECT_EQ(state.bindings[0].maximum, 80);
  }
}

TEST_F(VariablesTest, ExpressionsGoToTheEvaluatorAndTakeRowCountRows) {
  zv::ProcedureState& state = NewState(0);
  SetExpression(state, 0, "Weight + 1");
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  EXPECT_EQ(Block<double>(state, 0, 4), (std::vector<double>{61, 71, kMissingValue, 81}));
  // A state with more rows than the sheet pads with missing values.
  state.rowCount = 6;
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  EXPECT_EQ(Block<double>(state, 0, 6)[5], kMissingValue);
  // Fewer rows: only the first rowCount values.
  state.rowCount = 2;
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  EXPECT_EQ(WinGlobalSize(state.bindings[0].data), 16u);
}

TEST_F(VariablesTest, SelectBlanksTextRowsAndDropsNumericRowsOnZeroOnly) {
  zv::ProcedureState& state = NewState(0);
  SetExpression(state, zv::kSelectBinding, "Keep");
  SetExpression(state, 0, "Height");
  SetExpression(state, 1, "Name");
  zv::LoadSpecialVariables(0);
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[1]), 1);
  // Keep is 1, 0, 1, missing: row 2 goes; the missing select keeps row 4.
  EXPECT_EQ(Block<double>(state, 0, 4), (std::vector<double>{150, kMissingValue, 170, 180}));
  EXPECT_EQ(state.bindings[0].count, 3);
  const zv::VariableBinding& names = state.bindings[1];
  EXPECT_EQ(names.type, 'C');
  EXPECT_EQ(names.width, 3);
  zv::LockedBlock<char> cells(names.data);
  // Rows 2 (select 0) and 4 (select missing) are blanked; the count of rows
  // that held text is taken before the select.
  EXPECT_EQ(std::string(cells.get(), 12), "ann   cy    ");
  EXPECT_EQ(names.count, 3);
}

TEST_F(VariablesTest, SelectOfZeroEverywhereLeavesNoValues) {
  zv::ProcedureState& state = NewState(0);
  SetExpression(state, zv::kSelectBinding, "Weight > 1000");
  SetExpression(state, 0, "Weight");
  zv::LoadSpecialVariables(0);
  ASSERT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  EXPECT_EQ(state.bindings[0].count, 0);
  EXPECT_EQ(state.bindings[0].minimum, kMissingValue);
  EXPECT_EQ(state.bindings[0].maximum, kMissingValue);
}

TEST_F(VariablesTest, UnusableSelectIsReportedAndSelectsNothingOut) {
  zv::ProcedureState& state = NewState(0);
  SetExpression(state, zv::kSelectBinding, "Name");  // a character column
  zv::LoadSpecialVariables(0);
  EXPECT_EQ(state.bindings[zv::kSelectBinding].data, 0u);
  EXPECT_EQ(LastMessage(), zv::LoadText(1026));
  SetExpression(state, zv::kHostNumberBinding, "Name");
  zv::LoadSpecialVariables(0);
  EXPECT_EQ(dropCalls, 1);
}

TEST_F(VariablesTest, CheckVariableMessagesAndRowCounts) {
  EXPECT_EQ(zv::CheckVariable(2, "", true, false), 1);
  EXPECT_EQ(zv::CheckVariable(2, "", false, false), 0);
  EXPECT_EQ(LastMessage(), "Field 2 is required: enter a column name or an expression.");
  EXPECT_EQ(zv::CheckVariable(0, "", false, false), 0);  // silent, but resolving says 1009
  EXPECT_EQ(LastMessage(), zv::LoadText(1009));
  EXPECT_EQ(zv::CheckVariable(3, "Name", false, false), 0);
  EXPECT_EQ(LastMessage(), "Field 3 names a character column, where numbers are needed.");
  EXPECT_EQ(zv::CheckVariable(3, "Name", false, true), 1);

  host->rowCount = 2;
  host->rowsDiffer = 0;
  EXPECT_EQ(zv::CheckVariable(1, "Weight", false, false), 1);
  EXPECT_EQ(host->rowsDiffer, 1);
  EXPECT_EQ(host->rowCount, 4);  // raised to the longer column
  host->rowCount = 9;
  EXPECT_EQ(zv::CheckVariable(1, "Weight", false, false), 1);
  EXPECT_EQ(host->rowCount, 9);  // a shorter column leaves it
}

TEST_F(VariablesTest, LineListsCountNonEmptyLinesAndRefuseTooMany) {
  EXPECT_EQ(zv::CheckVariableList(1, "Weight\r\n\r\nHeight\r\n", false, false, 128), 1);
  EXPECT_EQ(zv::CheckVariableList(1, "Weight\r\nHeight", false, false, 1), 0);
  EXPECT_EQ(LastMessage(), "Field 1 lists too many columns: at most 1 are allowed.");
  EXPECT_EQ(zv::CheckVariableList(2, "  \r\n", false, false, 128), 0);
  EXPECT_EQ(zv::CheckVariableList(2, "", true, false, 128), 1);
  zv::ProcedureState& state = NewState(0);
  zv::CountVariableLines(0, "A\r\n\r\nB\r\nC");
  EXPECT_EQ(state.secondListCount, 3);
}

TEST(TextServices, TrimStripAndNameRules) {
  EXPECT_EQ(zv::TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(zv::StripBlanksAndQuotes(" \"My Col\" x 'y z' "), "My Colxy z");
  EXPECT_EQ(zv::IsBlankText("   "), 1);
  EXPECT_EQ(zv::IsBlankText(" a "), 0);
  struct Row {
    int line;
    const char* name;
    int valid;
  };
  constexpr Row kRows[] = {
      {__LINE__, "Weight", 1},
      {__LINE__, "_x1", 1},
      {__LINE__, "#n", 1},
      {__LINE__, "a.b$%?@#", 1},
      {__LINE__, "1abc", 0},
      {__LINE__, "", 0},
      {__LINE__, "a-b", 0},
      {__LINE__, "ab cd-", 1},                             // counts up to the first blank
      {__LINE__, "abcdefghijklmnopqrstuvwxyz012345-", 1},  // past the 32nd is not looked at
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::IsValidColumnName(r.name), r.valid);
  }
}

// The one size guard of every block: at least one byte, nothing that a
// block cannot hold, and no product that wraps.
TEST(BlockBytes, RefusesWhatABlockCannotHold) {
  struct Row {
    int line;
    uint64_t count, size;
    uint32_t bytes;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0, 8, 1},
      {__LINE__, 3, 8, 24},
      {__LINE__, UINT32_MAX, 1, UINT32_MAX},
      {__LINE__, UINT32_MAX / 2 + 1, 2, 0},
      {__LINE__, uint64_t{1} << 40, uint64_t{1} << 40, 0},  // the product wraps to 0
      {__LINE__, UINT64_MAX, 2, 0},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::BlockBytes(r.count, r.size), r.bytes);
  }
}

}  // namespace
