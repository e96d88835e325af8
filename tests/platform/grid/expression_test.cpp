// The expression language: precedence, functions, missing values, texts,
// faults with their words and positions, and the limits.
#include <gtest/gtest.h>

#include <cmath>

#include "grid_fixture.h"

namespace {

using zvgrid::kMissing;

using ExpressionTest = GridTest;

struct ValueRow {
  int line;
  const char* text;
  double value;
};

void ExpectValues(const ValueRow* begin, const ValueRow* end) {
  for (const ValueRow* row = begin; row != end; ++row) {
    SCOPED_TRACE(row->line);
    SCOPED_TRACE(row->text);
    const std::vector<double> values = GridTest::Numbers(row->text);
    ASSERT_FALSE(values.empty());
    if (row->value == kMissing) {
      EXPECT_EQ(values[0], kMissing);
    } else {
      EXPECT_NEAR(values[0], row->value, 1e-12 * std::max(1.0, std::fabs(row->value)));
    }
  }
}

// Values worked out by hand from the precedence, lowest first:
// | & NOT comparisons + - * / unary ^.
TEST_F(ExpressionTest, BindsOperatorsByPrecedence) {
  Load("A\n1\n");
  const ValueRow rows[] = {
      {__LINE__, "2 + 3 * 4", 14}, {__LINE__, "(2 + 3) * 4", 20},  {__LINE__, "10 - 4 - 3", 3},
      {__LINE__, "12 / 3 / 2", 2}, {__LINE__, "2 ^ 3 ^ 2", 512},   {__LINE__, "-2 ^ 2", -4},
      {__LINE__, "2 ^ -1", 0.5},   {__LINE__, "2 * -3", -6},       {__LINE__, "--3", 3},
      {__LINE__, "+3", 3},         {__LINE__, "1.5e1 + .5", 15.5}, {__LINE__, "2E+2", 200},
      {__LINE__, "1 + 2 = 3", 1},  {__LINE__, "1 < 2 = 1", 1},     {__LINE__, "3 <> 4", 1},
      {__LINE__, "3 <= 3", 1},     {__LINE__, "3 >= 4", 0},        {__LINE__, "-3 < -2", 1},
      {__LINE__, "NOT 1 = 2", 1},  {__LINE__, "NOT NOT 5", 1},     {__LINE__, "NOT 0 & 0", 0},
      {__LINE__, "1 | 1 & 0", 1},  {__LINE__, "1 = 1 & 2 = 3", 0}, {__LINE__, "2 > 1 | 1 > 2", 1},
      {__LINE__, "not(0)", 1},     {__LINE__, "A * 2 ^ 2 + 1", 5},
  };
  ExpectValues(std::begin(rows), std::end(rows));
}

TEST_F(ExpressionTest, ComputesItsFunctions) {
  Load("A\n1\n");
  const ValueRow rows[] = {
      {__LINE__, "LOG(EXP(2))", 2},
      {__LINE__, "log(1)", 0},
      {__LINE__, "LOG10(1000)", 3},
      {__LINE__, "EXP(0)", 1},
      {__LINE__, "Sqrt(16)", 4},
      {__LINE__, "ABS(-2.5)", 2.5},
      {__LINE__, "INT(2.7)", 2},
      {__LINE__, "INT(-2.5)", -3},
      {__LINE__, "ROUND(2.5)", 3},
      {__LINE__, "ROUND(-2.5)", -3},
      {__LINE__, "ROUND(1.2345, 2)", 1.23},
      {__LINE__, "ROUND(0.125, 2)", 0.13},
      {__LINE__, "ROUND(1250, -2)", 1300},
      {__LINE__, "ROUND(5.5, 30)", 5.5},
      {__LINE__, "ROUND(1.26, 0.6)", 1.3},
      {__LINE__, "MIN(3, 1, 2)", 1},
      {__LINE__, "MAX(3)", 3},
      {__LINE__, "MAX(1, 5, 2, 4)", 5},
      {__LINE__, "SIN(0)", 0},
      {__LINE__, "COS(0)", 1},
      {__LINE__, "TAN(0)", 0},
      {__LINE__, "ATAN(1) * 4", 3.141592653589793},
      {__LINE__, "SIGN(-4)", -1},
      {__LINE__, "SIGN(0)", 0},
      {__LINE__, "MOD(7, 3)", 1},
      {__LINE__, "MOD(-7, 3)", 2},
      {__LINE__, "MOD(7, -3)", -2},
      {__LINE__, "MAX(MIN(4, 9), 2) + A", 5},
  };
  ExpectValues(std::begin(rows), std::end(rows));
}

// A comparison with a missing operand is false, except that = holds for two
// missing operands and <> for one; & and | follow three-valued logic.
TEST_F(ExpressionTest, PropagatesMissingValues) {
  Load("v,m\n4,\n");
  const ValueRow rows[] = {
      {__LINE__, "m + 1", kMissing},
      {__LINE__, "1 - m", kMissing},
      {__LINE__, "m * 0", kMissing},
      {__LINE__, "0 / m", kMissing},
      {__LINE__, "m ^ 0", kMissing},
      {__LINE__, "-m", kMissing},
      {__LINE__, "LOG(m)", kMissing},
      {__LINE__, "MIN(1, m)", kMissing},
      {__LINE__, "ROUND(1, m)", kMissing},
      {__LINE__, "1 / 0", kMissing},
      {__LINE__, "v / (v - 4)", kMissing},
      {__LINE__, "0 ^ -1", kMissing},
      {__LINE__, "(-8) ^ (1/3)", kMissing},
      {__LINE__, "1e308 * 10", kMissing},
      {__LINE__, "LOG(-1)", kMissing},
      {__LINE__, "LOG(0)", kMissing},
      {__LINE__, "SQRT(-1)", kMissing},
      {__LINE__, "EXP(1000)", kMissing},
      {__LINE__, "MOD(1, 0)", kMissing},
      {__LINE__, "-32768 + 1", kMissing},
      {__LINE__, "m = m", 1},
      {__LINE__, "m = 1", 0},
      {__LINE__, "m <> 1", 1},
      {__LINE__, "m <> m", 0},
      {__LINE__, "m < 1", 0},
      {__LINE__, "m > 1", 0},
      {__LINE__, "m >= m", 0},
      {__LINE__, "m = -32768", 1},
      {__LINE__, "NOT m", kMissing},
      {__LINE__, "m & 0", 0},
      {__LINE__, "m & 1", kMissing},
      {__LINE__, "m | 1", 1},
      {__LINE__, "m | 0", kMissing},
      {__LINE__, "v > 3 & m = m", 1},
  };
  ExpectValues(std::begin(rows), std::end(rows));
}

TEST_F(ExpressionTest, ComparesTrimmedTexts) {
  Load("Name,Code,n\n\"  Ann \",x,1\nBob,,2\n");
  struct Row {
    int line;
    const char* text;
    std::vector<double> values;
  };
  const Row rows[] = {
      {__LINE__, "Name = 'Ann'", {1, 0}},
      {__LINE__, "name <> \"Ann\"", {0, 1}},
      {__LINE__, "Name < 'B'", {1, 0}},
      {__LINE__, "Name = 'ann'", {0, 0}},  // case counts in texts
      {__LINE__, "Code = ''", {0, 1}},     // a blank text is missing
      {__LINE__, "Code < 'z'", {1, 0}},
      {__LINE__, "Code <> ' '", {1, 0}},
      {__LINE__, "'a' < 'b'", {1, 1}},
      {__LINE__, "'n' * 2", {2, 4}},  // quotes name a column where one exists
      {__LINE__, "\"NAME\" = \"Bob\"", {0, 1}},
      {__LINE__, "(Name = 'Bob') + n", {1, 3}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(Numbers(row.text), row.values);
  }
}

TEST_F(ExpressionTest, ReportsWhatIsWrongAndWhere) {
  Load("Weight,Name\n60,Ann\n");
  struct Row {
    int line;
    std::string text;
    std::string message;  // after "Error in the expression at character "
  };
  const Row rows[] = {
      {__LINE__, "Wieght + 1", "1: no column is named \"Wieght\"."},
      {__LINE__, "1 + Wieght", "5: no column is named \"Wieght\"."},
      {__LINE__, "1 +", "4: a value is missing at the end."},
      {__LINE__, "1 + * 2", "5: a value is missing before \"*\"."},
      {__LINE__, "()", "2: a value is missing before \")\"."},
      {__LINE__, "(1 + 2", "1: this parenthesis is not closed."},
      {__LINE__, "LOG(1", "4: this parenthesis is not closed."},
      {__LINE__, "1 + 2)", "6: there is a \")\" without a matching \"(\"."},
      {__LINE__, "1 2", "3: an operator is missing before \"2\"."},
      {__LINE__, "2x", "2: an operator is missing before \"x\"."},
      {__LINE__, "MAX(1 2)", "7: an operator is missing before \"2\"."},
      {__LINE__, "Weight , 1", "8: an operator is missing before \",\"."},
      {__LINE__, "1 + 2 3 !", "7: an operator is missing before \"3\"."},
      {__LINE__, "Weight ! 2", "8: the character \"!\" is not allowed."},
      {__LINE__, "1 + \x01", "5: the character with code 1 is not allowed."},
      {__LINE__, "Name = 'abc", "8: this quote is not closed."},
      {__LINE__, "1e999 + 1", "1: the number 1e999 is too large."},
      {__LINE__, "FOO(1)", "1: there is no function named \"FOO\"."},
      {__LINE__, "Weight(1)", "1: \"Weight\" is a column, not a function."},
      {__LINE__, "LOG(1, 2)", "1: LOG takes 1 argument."},
      {__LINE__, "2 * ROUND()", "5: ROUND takes 1 or 2 arguments."},
      {__LINE__, "MIN()", "1: MIN takes at least 1 argument."},
      {__LINE__, "MOD(1)", "1: MOD takes 2 arguments."},
      {__LINE__, "Name + 1", "1: the column \"Name\" holds text, not numbers."},
      {__LINE__, "-Name", "2: the column \"Name\" holds text, not numbers."},
      {__LINE__, "1 + 'abc'", "5: \"abc\" is a text, not a number."},
      {__LINE__, "NOT 'a'", "5: \"a\" is a text, not a number."},
      {__LINE__, "SQRT(Name)", "6: the column \"Name\" holds text, not numbers."},
      {__LINE__, "Name = 1", "6: a text cannot be compared with a number."},
      {__LINE__, "3 + NOT 1", "5: NOT must begin a condition; put it in parentheses."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    WinClearMessageBoxLog();
    EXPECT_EQ(GridOpenExpression(row.text.c_str()), 0);
    EXPECT_EQ(OnlyMessage(), "Error in the expression at character " + row.message);
  }
}

TEST_F(ExpressionTest, RefusesEmptyOverlongAndDeeplyNestedTexts) {
  Load("A\n1\n");
  const std::string longest = "1" + std::string(126, ' ');
  EXPECT_EQ(GridOpenExpression(longest.c_str()), 1);
  GridExpressionStep(0, nullptr);
  struct Row {
    int line;
    std::string text;
    std::string message;
  };
  const Row rows[] = {
      {__LINE__, "", "The expression is empty."},
      {__LINE__, " \t ", "The expression is empty."},
      {__LINE__, longest + " ", "The expression is longer than 127 characters."},
      {__LINE__, std::string(5000, '('), "The expression is longer than 127 characters."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    WinClearMessageBoxLog();
    EXPECT_EQ(GridOpenExpression(row.text.c_str()), 0);
    EXPECT_EQ(OnlyMessage(), row.message);
  }

  const auto nested = [](int depth) {
    return std::string(static_cast<size_t>(depth), '(') + "A" +
           std::string(static_cast<size_t>(depth), ')');
  };
  EXPECT_EQ(Numbers(nested(32)), (std::vector<double>{1}));
  const std::string deep =
      "Error in the expression at character 33: the expression is nested too deeply.";
  const std::string texts[] = {nested(33), std::string(127, '('), std::string(40, '-') + "1",
                               std::string(40, '+') + "1", "NOT " + std::string(32, '(') + "NOT 1"};
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    WinClearMessageBoxLog();
    EXPECT_EQ(GridOpenExpression(text.c_str()), 0);
    const std::string message = OnlyMessage();
    EXPECT_NE(message.find("nested too deeply"), std::string::npos) << message;
  }
  WinClearMessageBoxLog();
  GridOpenExpression(nested(33).c_str());
  EXPECT_EQ(OnlyMessage(), deep);
  // A long flat chain is not nesting.
  std::string chain = "1";
  while (chain.size() + 2 <= 127) chain += "+1";
  EXPECT_EQ(Numbers(chain), (std::vector<double>{64}));
}

TEST_F(ExpressionTest, FindsColumnsWithoutRegardToCase) {
  Load("Body Mass,Ht_2.cm,Größe\n80,1.8,3\n");
  EXPECT_EQ(Value("'body mass' / HT_2.CM ^ 2"), 80 / (1.8 * 1.8));
  EXPECT_EQ(Value("Größe + \"  Body Mass \""), 83);
}

}  // namespace
