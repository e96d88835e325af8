// The formula of two values: 1.2345e40 stands for x, 1.2345e41 for y.
#include <gtest/gtest.h>

#include "grid_fixture.h"

namespace {

using zvgrid::kMissing;

using PairFormulaTest = GridTest;

double Evaluate(double x, double y) {
  const double pair[2] = {x, y};
  double result = 123.45;
  EXPECT_EQ(GridEvaluateFormula(pair, &result, 0, 1), 1);
  return result;
}

TEST_F(PairFormulaTest, EvaluatesThePairThroughItsMarks) {
  struct Row {
    int line;
    const char* text;
    double x, y, value;  // worked out by hand
  };
  const Row rows[] = {
      {__LINE__, "1.2345e40 * 2 + 1.2345e41", 3, 4, 10},
      {__LINE__, "SQRT(1.2345e40^2 + 1.2345e41^2)", 3, 4, 5},
      {__LINE__, "-1.2345e40 / 1.2345E41", 1, 4, -0.25},
      {__LINE__, "1.2345e40 > 1.2345e41", 1, 2, 0},
      {__LINE__, "12345e36 - 1.2345e40", 7, 0, 0},  // the same value, spelled otherwise
      {__LINE__, "MAX(1.2345e40, 1.2345e41, 0)", -1, -2, 0},
      {__LINE__, "LOG(1.2345e40)", -1, 0, kMissing},
      {__LINE__, "1.2345e40 + 1", kMissing, 0, kMissing},
      {__LINE__, "1.2345e41 / 1.2345e40", 0, 1, kMissing},
      {__LINE__, "1.2345e40 = -32768", kMissing, 0, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_EQ(GridCompileFormula(row.text), 1);
    EXPECT_EQ(Evaluate(row.x, row.y), row.value);
    GridReleaseFormula();
  }
  EXPECT_TRUE(WinMessageBoxLog().empty());
}

TEST_F(PairFormulaTest, RefusesSilentlyWhatIsNotANumberFormula) {
  Load("Z,T\n1,a\n");
  const char* texts[] = {"Z + 1.2345e40", "'T'", "'a' ", "1.2345e40 +", "", "X * 2", "FOO(1)"};
  for (const char* text : texts) {
    SCOPED_TRACE(text);
    EXPECT_EQ(GridCompileFormula(text), 0);
  }
  EXPECT_EQ(GridCompileFormula("'a' = 'a'"), 1);  // a comparison of texts is a number
  EXPECT_EQ(Evaluate(0, 0), 1);
  EXPECT_TRUE(WinMessageBoxLog().empty());
}

TEST_F(PairFormulaTest, FailsWithoutACurrentFormula) {
  const double pair[2] = {1, 2};
  double result = 123.45;
  EXPECT_EQ(GridEvaluateFormula(pair, &result, 0, 1), 0);
  ASSERT_EQ(GridCompileFormula("1.2345e40 + 1.2345e41"), 1);
  EXPECT_EQ(GridEvaluateFormula(nullptr, &result, 0, 1), 0);
  EXPECT_EQ(GridEvaluateFormula(pair, nullptr, 0, 1), 0);
  EXPECT_EQ(Evaluate(1, 2), 3);
  // A formula that does not compile leaves none current.
  EXPECT_EQ(GridCompileFormula("1 +"), 0);
  EXPECT_EQ(GridEvaluateFormula(pair, &result, 0, 1), 0);
  ASSERT_EQ(GridCompileFormula("1.2345e41"), 1);
  GridReleaseFormula();
  EXPECT_EQ(GridEvaluateFormula(pair, &result, 0, 1), 0);
  EXPECT_EQ(result, 123.45);
}

}  // namespace
