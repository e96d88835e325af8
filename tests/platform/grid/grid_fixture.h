// A fresh sheet, no open expression or formula, and an empty message-box log
// for every test of the data sheet.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"

class GridTest : public ::testing::Test {
 protected:
  void SetUp() override {
    zvgrid::ClearSheet();
    zvgrid::SetMissingCodes(zvgrid::DefaultMissingCodes());
    zvgrid::ClearSentCommands();
    GridExpressionStep(0, nullptr);
    GridReleaseFormula();
    WinClearMessageBoxLog();
  }

 public:
  static void Load(std::string_view csv) {
    std::string error;
    ASSERT_TRUE(zvgrid::LoadCsvText(csv, &error)) << error;
  }

  // The values of a numeric expression as the module reads them.
  static std::vector<double> Numbers(const std::string& expression) {
    std::vector<double> values;
    if (GridOpenExpression(expression.c_str()) == 0) {
      ADD_FAILURE() << "refused: " << expression;
      return values;
    }
    EXPECT_EQ(GridExpressionInfo(1), 'N') << expression;
    for (int32_t row = GridExpressionInfo(0); row > 0; --row) {
      double value = 0.0;
      GridExpressionStep(1, &value);
      values.push_back(value);
    }
    GridExpressionStep(0, nullptr);
    return values;
  }

  static double Value(const std::string& expression) {
    const std::vector<double> values = Numbers(expression);
    return values.empty() ? -1.0e300 : values.front();
  }

  // The text of the one message box shown since the log was cleared.
  static std::string OnlyMessage() {
    const std::vector<MessageBoxCall>& log = WinMessageBoxLog();
    if (log.size() != 1) {
      ADD_FAILURE() << log.size() << " message boxes";
      return {};
    }
    return log.front().text;
  }
};
