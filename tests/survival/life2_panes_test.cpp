// The three report panes against golden files, byte for byte, and the fields
// they leave for the interpretation.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

#include "frame/messages.h"
#include "life2_fixture.h"
#include "survival/life2.h"
#include "survival/life2_state.h"

namespace zvtest {
namespace {

using zv::Get;
using zv::kMissingValue;

// Two arms with a failure and a withdrawal at 4, tied failures at 6 and 5, a
// last withdrawal in arm A and a last failure in arm B; the select drops the
// row at 3.
constexpr char kTwoArms[] =
    "Weeks,Lost,Arm,Keep\n"
    "4,0,A,1\n4,1,A,1\n6,0,A,1\n6,0,A,1\n9,1,A,1\n"
    "2,0,B,1\n5,0,B,1\n5,0,B,1\n8,1,B,1\n12,0,B,1\n3,0,B,0\n";

class Life2Panes : public Life2Fixture {};

TEST_F(Life2Panes, TwoGroupsWithCensoringAndSelect) {
  zv::ProcedureState& state = Run(kTwoArms, "Weeks", "Lost", "Arm", "Keep");
  ASSERT_EQ(state.status, 0);
  ExpectGolden(zv::Life2SummaryText(0), "survival/two_arms_summary.txt");
  ExpectGolden(zv::Life2PercentileText(0), "survival/two_arms_percentiles.txt");
  ExpectGolden(zv::Life2ComparisonText(0), "survival/two_arms_comparison.txt");
  EXPECT_EQ(Get(state, zv::kFirstPercentile), 75.0);
  EXPECT_EQ(Get(state, zv::kFirstPercentileEstimate), 6.0);
  EXPECT_EQ(Get(state, zv::kSmallestPValue),
            std::min(Get(state, zv::kLogrankPValue), Get(state, zv::kWilcoxonPValue)));
}

// One group without censoring: no group line, no " for " part, no tests; a
// percentile slot of 0 is skipped and one never reached prints blank.
TEST_F(Life2Panes, OneGroupWithoutCensoring) {
  zv::ProcedureState& state = Run("T\n3\n1\n3\n7\n", "T");
  zv::Set(state, zv::kPercentiles, 0.0, 1);
  zv::Set(state, zv::kPercentiles, 10.0, 4);
  ExpectGolden(zv::Life2SummaryText(0), "survival/one_group_summary.txt");
  ExpectGolden(zv::Life2PercentileText(0), "survival/one_group_percentiles.txt");
  ExpectGolden(zv::Life2ComparisonText(0), "survival/one_group_comparison.txt");
  EXPECT_EQ(Get(state, zv::kSmallestPValue), kMissingValue);
}

TEST_F(Life2Panes, PublishedRemissionData) {
  std::ifstream file(std::string(ZV_DATA_DIR) + "/trial.csv");
  std::stringstream csv;
  csv << file.rdbuf();
  Run(csv.str(), "Time", "Censored", "Treatment");
  ExpectGolden(zv::Life2SummaryText(0), "survival/trial_summary.txt");
  ExpectGolden(zv::Life2PercentileText(0), "survival/trial_percentiles.txt");
  ExpectGolden(zv::Life2ComparisonText(0), "survival/trial_comparison.txt");
}

// A failed analysis: the summary keeps its heading and inputs and puts the
// reason in place of the table; the other panes say string 1101.
TEST_F(Life2Panes, FailedAnalysis) {
  zv::ProcedureState& state = Run("T,C\n3,0\n-1,0\n", "T", "C");
  ASSERT_EQ(state.status, 1069);
  ExpectGolden(zv::Life2SummaryText(0), "survival/failed_summary.txt");
  for (int32_t item : {2, 3}) {
    SCOPED_TRACE(item);
    WinSetWindowText(pane->window, "");
    EXPECT_EQ(PaneText(zv::kLife2Family, item), zv::LoadText(1101));
  }
}

// A group column without any value: no group table, and a Total line whose
// proportion has no value.
TEST_F(Life2Panes, NoAnalysedRow) {
  Run("T,G\n5,\n3,\n", "T", "", "G");
  ExpectGolden(zv::Life2SummaryText(0), "survival/no_rows_summary.txt");
  ExpectGolden(zv::Life2ComparisonText(0), "survival/no_rows_comparison.txt");
}

}  // namespace
}  // namespace zvtest
