// The sheet's operations as the module calls them: reading columns and
// expressions for a variable, and writing result columns.
#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "grid_fixture.h"

namespace {

using zvgrid::Column;
using zvgrid::Columns;
using zvgrid::kMissing;

using GridOperationsTest = GridTest;

constexpr char kSheet[] =
    "Weight,Group,Short\n"
    "60,ab,1\n"
    "70,c,\n"
    ",,\n";

double CellNumber(int32_t column, int32_t row) {
  char buffer[kGridCellBuffer];
  std::memset(buffer, 0x55, sizeof buffer);
  GridGetCell(column, row, buffer);
  double value = 0.0;
  std::memcpy(&value, buffer, sizeof value);
  return value;
}

std::string CellText(int32_t column, int32_t row) {
  char buffer[kGridCellBuffer];
  std::memset(buffer, 0x55, sizeof buffer);
  GridGetCell(column, row, buffer);
  return std::string(buffer, strnlen(buffer, sizeof buffer));
}

TEST_F(GridOperationsTest, DescribesAndReadsTheColumns) {
  Load(kSheet);
  std::vector<char> records(static_cast<size_t>(kGridMaxColumns) * kGridNameBytes, 'z');
  ASSERT_EQ(GridListColumns(records.data()), 3);
  EXPECT_STREQ(records.data(), "Weight");
  EXPECT_STREQ(records.data() + kGridNameBytes, "Group");
  EXPECT_STREQ(records.data() + 2 * kGridNameBytes, "Short");
  EXPECT_EQ(records[3 * kGridNameBytes], 'z');  // nothing written past the last record
  EXPECT_EQ(GridRowCount(), 3);
  EXPECT_EQ(GridColumnType(0), 'N');
  EXPECT_EQ(GridColumnType(1), 'C');
  EXPECT_EQ(GridColumnWidth(1), 2);
  // Indexes out of range answer as an unknown column.
  EXPECT_EQ(GridColumnType(3), 'N');
  EXPECT_EQ(GridColumnType(-1), 'N');
  EXPECT_EQ(GridColumnWidth(7), 0);

  ASSERT_TRUE(zvgrid::AddNumericColumn("Two", {5.5}));
  EXPECT_EQ(CellNumber(1, 1), 60.0);
  EXPECT_EQ(CellNumber(1, 3), kMissing);
  EXPECT_EQ(CellText(2, 1), "ab");
  EXPECT_EQ(CellText(2, 3), "");
  EXPECT_EQ(CellNumber(4, 1), 5.5);
  EXPECT_EQ(CellNumber(4, 2), kMissing);  // past this column's end
  EXPECT_EQ(CellText(2, 4), "");
  EXPECT_EQ(CellNumber(1, 0), kMissing);
  // An unknown column reads as MissingValue, whose bytes are also an empty text.
  EXPECT_EQ(CellNumber(9, 1), kMissing);
  EXPECT_EQ(CellText(9, 1), "");
  EXPECT_EQ(CellText(0, 1), "");
}

TEST_F(GridOperationsTest, WritesCellsFromTheirText) {
  Load(kSheet);
  struct Row {
    int line;
    const char* text;
    double value;
  };
  const Row rows[] = {
      {__LINE__, "12.5", 12.5},   {__LINE__, "    -3", -3.0},    {__LINE__, "1,25", 1.25},
      {__LINE__, ".5", 0.5},      {__LINE__, "", kMissing},      {__LINE__, "abc", kMissing},
      {__LINE__, "1e3 ", 1000.0}, {__LINE__, "1,2,3", kMissing},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    GridPutCell(1, 2, row.text);
    EXPECT_EQ(CellNumber(1, 2), row.value);
  }
  // Writing past the end lengthens the column, padding with missing cells.
  GridPutCell(1, 6, "9");
  EXPECT_EQ(GridRowCount(), 6);
  EXPECT_EQ(Columns()[0].numbers,
            (std::vector<double>{60, kMissing, kMissing, kMissing, kMissing, 9}));
  // A character cell loses its padding and widens the column when longer.
  GridPutCell(2, 1, "longer   ");
  EXPECT_EQ(CellText(2, 1), "longer");
  EXPECT_EQ(GridColumnWidth(1), 6);
  // Out of range: ignored.
  GridPutCell(0, 1, "1");
  GridPutCell(4, 1, "1");
  GridPutCell(1, 0, "1");
  GridPutCell(1, zvgrid::kMaxRows + 1, "1");
  GridPutCell(1, 1, nullptr);
  EXPECT_EQ(CellNumber(1, 1), kMissing);
  EXPECT_EQ(GridRowCount(), 6);
}

// The write of Vsave: new and retyped columns, sized before their cells.
TEST_F(GridOperationsTest, SavesResultColumnsAsTheModuleDoes) {
  Load(kSheet);
  GridSetColumnType(2, 'N', 16, 1);  // an existing column overwritten with numbers
  GridClearColumn(2);
  GridAddColumn("Mean", 'N', 14, 1);
  GridAddColumn("  Codes  ", 'N', 14, 1);
  EXPECT_EQ(GridQueryFlag(23), 0);
  GridBeginAccess(0);
  EXPECT_EQ(zvgrid::AccessLevel(), 1);
  GridSetColumnLength(2, 2, 0);
  GridPutCell(2, 1, "1.5");
  GridPutCell(2, 2, "");
  GridSetColumnLength(4, 2, 0);
  GridPutCell(4, 1, "  3.25");
  GridPutCell(4, 2, "-1");
  GridSetColumnLength(5, 2, 0);
  GridSetColumnType(5, 'C', 20, 1);
  GridPutCell(5, 1, "north               ");
  GridPutCell(5, 2, "south               ");
  GridEndAccess();
  EXPECT_EQ(zvgrid::AccessLevel(), 0);

  const std::vector<Column>& columns = Columns();
  ASSERT_EQ(columns.size(), 5u);
  EXPECT_EQ(columns[1].name, "Group");
  EXPECT_EQ(columns[1].type, 'N');
  EXPECT_EQ(columns[1].numbers, (std::vector<double>{1.5, kMissing}));
  EXPECT_EQ(columns[3].name, "Mean");
  EXPECT_EQ(columns[3].width, 14);
  EXPECT_EQ(columns[3].numbers, (std::vector<double>{3.25, -1.0}));
  EXPECT_EQ(columns[4].name, "Codes");
  EXPECT_EQ(columns[4].type, 'C');
  EXPECT_EQ(columns[4].width, 20);
  EXPECT_EQ(columns[4].texts, (std::vector<std::string>{"north", "south"}));
  EXPECT_EQ(GridRowCount(), 3);
}

TEST_F(GridOperationsTest, RetypesResizesAndClearsColumns) {
  Load("N,C\n1.5,2\n,x\n-2,\n");
  GridSetColumnType(1, 'C', 3, 1);
  EXPECT_EQ(Columns()[0].texts, (std::vector<std::string>{"1.5", "", "-2"}));
  EXPECT_EQ(GridColumnWidth(0), 3);
  GridSetColumnType(2, 'N', 16, 1);
  EXPECT_EQ(Columns()[1].numbers, (std::vector<double>{2, kMissing, kMissing}));
  // Never narrower than the longest text it holds.
  Load("C\nabcdef\n");
  GridSetColumnType(1, 'C', 2, 1);
  EXPECT_EQ(GridColumnWidth(0), 6);
  GridSetColumnType(0, 'C', 2, 1);  // unknown column: nothing happens
  GridSetColumnLength(9, 2, 0);
  GridClearColumn(-1);
  EXPECT_EQ(Columns().size(), 1u);

  Load("N,C\n1,a\n2,b\n");
  GridSetColumnLength(1, 4, 0);
  EXPECT_EQ(Columns()[0].numbers, (std::vector<double>{1, 2, kMissing, kMissing}));
  GridSetColumnLength(2, 1, 0);
  EXPECT_EQ(Columns()[1].texts, (std::vector<std::string>{"a"}));
  GridClearColumn(1);
  EXPECT_TRUE(Columns()[0].numbers.empty());
  EXPECT_EQ(GridRowCount(), 1);
  GridSetColumnLength(2, -5, 0);
  EXPECT_EQ(GridRowCount(), 0);
}

TEST_F(GridOperationsTest, AddsColumnsWithUsableNames) {
  Load("Mean\n1\n");
  GridAddColumn("mean", 'N', 14, 1);
  GridAddColumn(std::string(40, 'L').c_str(), 'N', 14, 1);
  GridAddColumn(std::string(40, 'L').c_str(), 'N', 14, 1);
  GridAddColumn("", 'C', 500, 1);
  ASSERT_EQ(Columns().size(), 5u);
  EXPECT_EQ(Columns()[1].name, "mean.2");
  EXPECT_EQ(Columns()[2].name, std::string(32, 'L'));
  EXPECT_EQ(Columns()[3].name, std::string(30, 'L') + ".2");
  EXPECT_EQ(Columns()[4].name, "Column");
  EXPECT_EQ(Columns()[4].width, 127);
  for (int i = 5; i < 300; ++i) GridAddColumn(("c" + std::to_string(i)).c_str(), 'N', 14, 1);
  EXPECT_EQ(Columns().size(), 256u);
}

// ResolveVariable's path for a text that is not a plain name.
TEST_F(GridOperationsTest, NamesAColumnOnlyWhenTheExpressionIsJustIt) {
  Load(kSheet);
  struct Row {
    int line;
    const char* text;
    int32_t named;
  };
  const Row rows[] = {
      {__LINE__, "Weight", 0},          {__LINE__, "((weight))", 0},  {__LINE__, "'Group'", 1},
      {__LINE__, " ( \"SHORT\" ) ", 2}, {__LINE__, "Weight + 0", -1}, {__LINE__, "-Weight", -1},
      {__LINE__, "'Weight' * 1", -1},   {__LINE__, "3", -1},          {__LINE__, "'text'", -1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_EQ(GridOpenExpression(row.text), 1);
    EXPECT_EQ(GridExpressionInfo(3), row.named);
    GridExpressionStep(0, nullptr);
  }
  EXPECT_TRUE(WinMessageBoxLog().empty());
}

TEST_F(GridOperationsTest, StepsThroughTheRowsOfNumberAndTextExpressions) {
  Load(kSheet);
  ASSERT_EQ(GridOpenExpression("Weight / 10"), 1);
  EXPECT_EQ(GridExpressionInfo(0), 3);
  EXPECT_EQ(GridExpressionInfo(1), 'N');
  EXPECT_EQ(GridExpressionInfo(2), 1);
  EXPECT_EQ(GridExpressionInfo(3), -1);
  double values[5];
  for (double& value : values) GridExpressionStep(1, &value);
  GridExpressionStep(0, nullptr);
  EXPECT_EQ(values[0], 6.0);
  EXPECT_EQ(values[1], 7.0);
  EXPECT_EQ(values[2], kMissing);
  EXPECT_EQ(values[3], kMissing);  // past the end
  EXPECT_EQ(values[4], kMissing);
  // Closed: nothing is open any more.
  EXPECT_EQ(GridExpressionInfo(0), 0);
  EXPECT_EQ(GridExpressionInfo(3), -1);

  // A text expression delivers its width in characters per row.
  ASSERT_EQ(GridOpenExpression("'Group'"), 1);
  EXPECT_EQ(GridExpressionInfo(1), 'C');
  EXPECT_EQ(GridExpressionInfo(2), 2);
  char buffer[8];
  std::string rows;
  for (int i = 0; i < 4; ++i) {
    std::memset(buffer, '#', sizeof buffer);
    GridExpressionStep(1, buffer);
    rows += std::string(buffer, 3) + "|";
  }
  GridExpressionStep(0, buffer);
  // Two characters, blank padded, and the third byte untouched.
  EXPECT_EQ(rows, "ab#|c #|  #|  #|");

  // A text literal where no column has the name: as long as the sheet.
  ASSERT_EQ(GridOpenExpression("\"none such\""), 1);
  EXPECT_EQ(GridExpressionInfo(1), 'C');
  EXPECT_EQ(GridExpressionInfo(2), 9);
  EXPECT_EQ(GridExpressionInfo(0), 3);
  char wide[16] = {};
  GridExpressionStep(1, wide);
  EXPECT_STREQ(wide, "none such");
  GridExpressionStep(0, wide);
}

TEST_F(GridOperationsTest, ReportsAFaultInItsOwnMessageBox) {
  Load(kSheet);
  GridOpenExpression("Weight");
  ASSERT_EQ(GridOpenExpression("Wieght + 1"), 0);
  EXPECT_EQ(GridExpressionInfo(0), 0);  // the old expression is gone as well
  ASSERT_EQ(WinMessageBoxLog().size(), 1u);
  const MessageBoxCall& box = WinMessageBoxLog()[0];
  EXPECT_EQ(box.text, "Error in the expression at character 1: no column is named \"Wieght\".");
  EXPECT_EQ(box.caption, "Zivara Suite");
  EXPECT_EQ(box.style, static_cast<uint32_t>(kMbOk | kMbIconExclamation | kMbTaskModal));
  WinClearMessageBoxLog();
  EXPECT_EQ(GridOpenExpression(nullptr), 0);
  EXPECT_EQ(OnlyMessage(), "The expression is empty.");
}

TEST_F(GridOperationsTest, TakesItsLengthFromTheLongestColumn) {
  Load("Long,Short\n1,10\n2,\n3,\n");
  GridSetColumnLength(2, 1, 0);
  EXPECT_EQ(Numbers("Long + Short"), (std::vector<double>{11, kMissing, kMissing}));
  EXPECT_EQ(Numbers("Short * 2"), (std::vector<double>{20}));
  // Constants: the select length when set, else the sheet's rows.
  EXPECT_EQ(Numbers("1"), (std::vector<double>{1, 1, 1}));
  GridSetSelectLength(5);
  EXPECT_EQ(Numbers("2 > 1").size(), 5u);
  EXPECT_EQ(Numbers("Short").size(), 1u);
  Load("A\n1\n");  // a new sheet forgets the select length
  EXPECT_EQ(Numbers("0").size(), 1u);
}

TEST_F(GridOperationsTest, ChecksAndTriesFormulas) {
  Load("x,Name\n1,a\n2,b\n,c\n4,d\n5,e\n6,f\n");
  EXPECT_EQ(GridCheckFormula("LOG(x) * 2"), 1);
  EXPECT_TRUE(WinMessageBoxLog().empty());
  EXPECT_EQ(GridCheckFormula("LOG(x"), 0);
  EXPECT_EQ(OnlyMessage(),
            "Error in the expression at character 4: this parenthesis is not closed.");

  WinClearMessageBoxLog();
  EXPECT_EQ(GridTryFormula("x / 2"), 1);
  ASSERT_EQ(WinMessageBoxLog().size(), 1u);
  EXPECT_EQ(WinMessageBoxLog()[0].text,
            "The expression gives on its first rows:\nRow 1: 0.5\nRow 2: 1\nRow 3: missing\n"
            "Row 4: 2\nRow 5: 2.5");
  EXPECT_EQ(WinMessageBoxLog()[0].style,
            static_cast<uint32_t>(kMbOk | kMbIconInformation | kMbTaskModal));
  WinClearMessageBoxLog();
  EXPECT_EQ(GridTryFormula("(Name)"), 1);
  EXPECT_NE(OnlyMessage().find("Row 2: \"b\"\n"), std::string::npos);
  WinClearMessageBoxLog();
  EXPECT_EQ(GridTryFormula("x +"), 0);
  EXPECT_EQ(OnlyMessage(),
            "Error in the expression at character 4: a value is missing at the end.");
}

TEST_F(GridOperationsTest, HostEvaluationGivesAColumnOrAMessage) {
  Load(kSheet);
  Column result;
  std::string error;
  ASSERT_TRUE(zvgrid::EvaluateExpression("Weight * 2", &result, &error)) << error;
  EXPECT_EQ(result.type, 'N');
  EXPECT_EQ(result.numbers, (std::vector<double>{120, 140, kMissing}));
  ASSERT_TRUE(zvgrid::EvaluateExpression("Group", &result, &error)) << error;
  EXPECT_EQ(result.type, 'C');
  EXPECT_EQ(result.width, 2);
  EXPECT_EQ(result.texts, (std::vector<std::string>{"ab", "c", ""}));
  EXPECT_FALSE(zvgrid::EvaluateExpression("Group + 1", &result, &error));
  EXPECT_EQ(
      error,
      "Error in the expression at character 1: the column \"Group\" holds text, not numbers.");
  EXPECT_TRUE(WinMessageBoxLog().empty());
}

TEST_F(GridOperationsTest, HostColumnsReplaceByNameAndRefuseOverLimits) {
  ASSERT_TRUE(zvgrid::AddNumericColumn("A", {1, 2}));
  ASSERT_TRUE(zvgrid::AddTextColumn("a", {"x"}));  // the same name: replaced in place
  ASSERT_EQ(Columns().size(), 1u);
  EXPECT_EQ(Columns()[0].type, 'C');
  EXPECT_FALSE(zvgrid::AddTextColumn("B", {std::string(128, 'y')}));
  EXPECT_TRUE(zvgrid::AddNumericColumn("C", {std::numeric_limits<double>::infinity(), 2}));
  EXPECT_EQ(Columns()[1].numbers[0], kMissing);
  for (int i = 0; i < 254; ++i) ASSERT_TRUE(zvgrid::AddNumericColumn("c" + std::to_string(i), {}));
  EXPECT_FALSE(zvgrid::AddNumericColumn("one too many", {}));
  EXPECT_EQ(Columns().size(), 256u);
  zvgrid::DeleteColumn(" C ");
  EXPECT_EQ(Columns().size(), 255u);
  EXPECT_EQ(Columns()[1].name, "c0");
}

}  // namespace
