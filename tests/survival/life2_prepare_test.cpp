// The product-limit computation over a Slot's state: status 1069, groups
// from numeric and character columns, rows left out by missing values and
// the select, and the published remission data of the bundled sample sheet.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <sstream>
#include <string>

#include "life2_fixture.h"
#include "survival/life2.h"
#include "survival/life2_state.h"

namespace zvtest {
namespace {

using zv::Get;
using zv::kMissingValue;

class Life2Prepare : public Life2Fixture {
 protected:
  std::string Labels(const zv::ProcedureState& state) const {
    const std::vector<char> labels =
        Block<char>(state, zv::kGroupLabelsBinding, 20 * Get(state, zv::kGroupCount));
    return std::string(labels.begin(), labels.end());
  }
};

// A time at or below 0 anywhere stops the analysis, even in a row that its
// group value would exclude; a row without a censoring value no longer counts.
TEST_F(Life2Prepare, NonPositiveTimeGivesStatus1069) {
  struct Row {
    int line;
    const char* csv;
    const char* censor;
    const char* group;
    int32_t status;
  };
  const Row kRows[] = {
      {__LINE__, "T,C,G\n3,0,1\n0,0,1\n", "", "", 1069},
      {__LINE__, "T,C,G\n3,0,1\n-2,0,\n", "", "G", 1069},
      {__LINE__, "T,C,G\n3,0,1\n-2,,1\n", "C", "", 0},
      {__LINE__, "T,C,G\n,0,1\n,0,1\n", "", "", 1069},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const zv::ProcedureState& state = Run(r.csv, "T", r.censor, r.group);
    EXPECT_EQ(state.status, r.status);
  }
}

// Numeric group values ascend: 1, 2, 2.5; whole values print by "%d", others
// by the general format. Missing times and missing groups leave the analysis.
TEST_F(Life2Prepare, NumericGroupsAndLabels) {
  const zv::ProcedureState& state =
      Run("T,C,G\n5,0,2.5\n3,1,2\n4,0,1\n,0,1\n6,0,\n7,0,2\n", "T", "C", "G");
  ASSERT_EQ(state.status, 0);
  EXPECT_EQ(Get(state, zv::kGroupCount), 3);
  EXPECT_EQ(state.graphOptionsMask, 0);
  EXPECT_EQ(Labels(state), "1                   2                   2.5                 ");
  EXPECT_EQ(Block<int32_t>(state, zv::kGroupIndexBinding, 6),
            (std::vector<int32_t>{2, 1, 0, zv::kExcludedRow, zv::kExcludedRow, 1}));
  // Rows per group, then failures per group.
  EXPECT_EQ(Block<int32_t>(state, zv::kGroupCountsBinding, 6),
            (std::vector<int32_t>{1, 2, 1, 1, 1, 1}));
  // The row with a missing group has lost its time.
  EXPECT_EQ(Block<double>(state, zv::kTimeBinding, 6)[4], kMissingValue);
  EXPECT_EQ(Block<int32_t>(state, zv::kSortOrderBinding, 6),
            (std::vector<int32_t>{2, 1, 5, 0, 3, 4}));
}

// Character groups: blank cells leave the analysis, labels are cut to 20
// characters, groups follow the byte order of the values.
TEST_F(Life2Prepare, CharacterGroupsAndLabels) {
  const zv::ProcedureState& state =
      Run("T,G\n5,beta\n3,alpha and a long name to cut\n4,\n6,beta\n", "T", "", "G");
  ASSERT_EQ(state.status, 0);
  EXPECT_EQ(Get(state, zv::kGroupCount), 2);
  EXPECT_EQ(Labels(state), "alpha and a long nambeta                ");
  EXPECT_EQ(Block<int32_t>(state, zv::kGroupCountsBinding, 4), (std::vector<int32_t>{1, 2, 1, 2}));
}

// A group column of only missing values: no group and no analysed row, but
// no failure either.
TEST_F(Life2Prepare, GroupColumnWithoutValues) {
  const zv::ProcedureState& state = Run("T,G\n5,\n3,\n", "T", "", "G");
  EXPECT_EQ(state.status, 0);
  EXPECT_EQ(Get(state, zv::kGroupCount), 0);
  EXPECT_EQ(state.graphOptionsMask, 1);
}

// One distinct group value is one group: no tests, limits stay available.
TEST_F(Life2Prepare, OneGroupValue) {
  const zv::ProcedureState& run = Run("T,G\n5,7\n3,7\n", "T", "", "G");
  EXPECT_EQ(Get(run, zv::kGroupCount), 1);
  EXPECT_EQ(run.graphOptionsMask, 1);
  EXPECT_EQ(Labels(run), "7                   ");
}

// The select drops rows before anything else.
TEST_F(Life2Prepare, SelectExcludesRows) {
  const zv::ProcedureState& state = Run("T,S\n5,1\n-3,0\n4,1\n", "T", "", "", "S");
  ASSERT_EQ(state.status, 0);
  EXPECT_EQ(Block<int32_t>(state, zv::kGroupCountsBinding, 2), (std::vector<int32_t>{2, 2}));
}

// The remission times of Freireich et al. (1963), as tabulated by Gehan
// (1965), in data/trial.csv. Published references: the product-limit
// estimates and Greenwood errors of the 6-MP group (Kalbfleisch and Prentice,
// 1980; also Kleinbaum and Klein), printed to 3 and 4 places, and the Logrank
// chi-square 16.79 on 1 degree of freedom and the Wilcoxon (Gehan) 13.458
// (Kleinbaum and Klein, Survival Analysis, ch. 2).
// The placebo group has no withdrawals, so its mean is the sample mean 182/21
// and its error (with the factor nf/(nf-1)) the sample standard error.
TEST_F(Life2Prepare, PublishedRemissionData) {
  std::ifstream file(std::string(ZV_DATA_DIR) + "/trial.csv");
  std::stringstream csv;
  csv << file.rdbuf();
  const zv::ProcedureState& state = Run(csv.str(), "Time", "Censored", "Treatment");
  ASSERT_EQ(state.status, 0);
  ASSERT_EQ(Labels(state).substr(0, 4), "6-MP");
  const std::vector<int32_t> order = Block<int32_t>(state, zv::kSortOrderBinding, 42);
  const std::vector<double> time = Block<double>(state, zv::kTimeBinding, 42);
  const std::vector<double> survival = Block<double>(state, zv::kSurvivalBinding, 42);
  const std::vector<double> error = Block<double>(state, zv::kSurvivalErrorBinding, 42);
  struct Step {
    int line;
    double time, survival, error;
  };
  const Step kSteps[] = {
      {__LINE__, 6, 0.857, 0.0764},  {__LINE__, 7, 0.807, 0.0869},  {__LINE__, 10, 0.753, 0.0963},
      {__LINE__, 13, 0.690, 0.1068}, {__LINE__, 16, 0.627, 0.1141}, {__LINE__, 22, 0.538, 0.1282},
      {__LINE__, 23, 0.448, 0.1346},
  };
  for (const Step& s : kSteps) {
    SCOPED_TRACE(s.line);
    int k = 0;
    while (k < 21 && time[order[k]] != s.time) ++k;
    ASSERT_LT(k, 21);
    EXPECT_NEAR(survival[k], s.survival, 0.0005);
    EXPECT_NEAR(error[k], s.error, 0.00005);
  }
  EXPECT_NEAR(Get(state, zv::kLogrankChiSquare), 16.79, 0.005);
  EXPECT_NEAR(Get(state, zv::kWilcoxonChiSquare), 13.458, 0.0005);

  const std::vector<double> means = Block<double>(state, zv::kMeanSurvivalBinding, 4);
  const double placebo[] = {1, 1, 2, 2, 3, 4, 4, 5, 5, 8, 8, 8, 8, 11, 11, 12, 12, 15, 17, 22, 23};
  double squares = 0;
  for (double t : placebo) squares += (t - 182.0 / 21) * (t - 182.0 / 21);
  EXPECT_NEAR(means[2], 182.0 / 21, 1e-12);
  EXPECT_NEAR(means[3], std::sqrt(squares / 20 / 21), 1e-12);
}

}  // namespace
}  // namespace zvtest
