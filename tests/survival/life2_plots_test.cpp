// The step plots as the chart library receives them: confidence limits for
// one group and none for two, the end points, the legend, and the cap of 20
// drawn groups.
#include <gtest/gtest.h>

#include <boost/math/distributions/normal.hpp>
#include <string>

#include "frame/module_state.h"
#include "life2_fixture.h"
#include "survival/life2.h"
#include "survival/life2_state.h"
#include "zvchart/chart_host.h"

namespace zvtest {
namespace {

using zv::kMissingValue;

class Life2Plots : public Life2Fixture {
 protected:
  const zvchart::StoredGraph& Plot(zv::ProcedureState& state, int32_t kind) {
    zv::gCurrentPane = paneRecord.get();
    EXPECT_EQ(zv::Life2PlotPane(pane.get(), 0, 8 + kind, kind), 1);
    const zvchart::StoredGraph* graph = zvchart::FindGraph(state.graphIds[kind]);
    EXPECT_NE(graph, nullptr);
    EXPECT_EQ(view->graphMenu[8 + kind], 0xBB00);
    return *graph;
  }
};

// One group: 2, 4 (withdrawn), 5, 7 (withdrawn). Survival 3/4, 3/4, 3/8,
// 3/8; Greenwood errors 3/4 sqrt(1/12) and 3/8 sqrt(1/12 + 1/2).
// Limits step where the curve does: at 2 and 5 (failures) and at 7 (the last
// row), two polylines each, starting on level 1.
TEST_F(Life2Plots, ConfidenceLimitsForOneGroup) {
  zv::ProcedureState& state = Run("T,C\n2,0\n4,1\n5,0\n7,1\n", "T", "C");
  zv::Set(state, zv::kShowConfidenceLimits, 1);
  const zvchart::StoredGraph& graph = Plot(state, 0);
  ASSERT_EQ(graph.elements.size(), 7u);  // 3 x 2 limits, 1 series
  const double z = boost::math::quantile(boost::math::normal(), 0.975);
  const double e1 = 0.75 * std::sqrt(1.0 / 12);
  struct Segment {
    int line;
    double x0, x1, y;
  };
  const Segment kSegments[] = {
      {__LINE__, 0, 2, 1.0},
      {__LINE__, 0, 2, 1.0},
      {__LINE__, 2, 5, 0.75 - e1 * z},
      {__LINE__, 2, 5, 1.0},  // the upper limit is cut at 1
      {__LINE__, 5, 7, 0.375 - 0.375 * std::sqrt(7.0 / 12) * z},
      {__LINE__, 5, 7, 0.375 + 0.375 * std::sqrt(7.0 / 12) * z},
  };
  for (size_t i = 0; i < std::size(kSegments); ++i) {
    SCOPED_TRACE(kSegments[i].line);
    const zvchart::Polyline& p = graph.elements[i];
    EXPECT_EQ(p.pen, 6);
    ASSERT_EQ(p.values.size(), 6u);
    EXPECT_EQ(p.values[0], kSegments[i].x0);
    EXPECT_EQ(p.values[3], kSegments[i].x1);
    // Our normal quantile is an approximation; 1e-3 covers it.
    EXPECT_NEAR(p.values[1], std::max(0.0, kSegments[i].y), 1e-3);
    EXPECT_EQ(p.values[1], p.values[4]);
  }
  // The curve: start, two points per failure, and the end at the last
  // withdrawal's time.
  const zvchart::Polyline& curve = graph.elements[6];
  EXPECT_EQ(curve.pen, 1);
  EXPECT_EQ(curve.values, (std::vector<double>{0, 1, -1, 2, 1, -1, 2, 0.75, -1, 5, 0.75, -1, 5,
                                               0.375, -1, 7, 0.375, -1}));
}

// Two groups: no limits although asked for; one series each and a legend of
// two samples, the last group (no failure) a flat line to its last time.
TEST_F(Life2Plots, TwoGroupsHaveNoLimitsAndALegend) {
  zv::ProcedureState& state = Run("T,C,G\n2,0,1\n3,0,1\n4,1,2\n6,1,2\n", "T", "C", "G");
  zv::Set(state, zv::kShowConfidenceLimits, 1);
  const zvchart::StoredGraph& graph = Plot(state, 0);
  ASSERT_EQ(graph.elements.size(), 4u);
  for (const zvchart::Polyline& p : graph.elements) EXPECT_NE(p.pen, 6);
  EXPECT_EQ(graph.elements[1].values, (std::vector<double>{0, 1, -1, 6, 1, -1}));
  EXPECT_EQ(graph.elements[2].values[2], -2.0);
  EXPECT_EQ(graph.record.legendOn, 1);
  EXPECT_EQ(graph.titleLines[2], "G");
  EXPECT_EQ(graph.titleLines[10], "2");
}

// Kind 1 and 2: a last failure with survival 0 has no log survival; the
// missing value stays as the level of the end point, which lies at the end
// of the x axis.
TEST_F(Life2Plots, LastFailureInLogPlots) {
  zv::ProcedureState& state = Run("T\n1\n3\n", "T");
  const zvchart::StoredGraph& log = Plot(state, 1);
  ASSERT_EQ(log.elements.size(), 1u);
  const std::vector<double>& v = log.elements[0].values;
  ASSERT_EQ(v.size(), 18u);
  EXPECT_NEAR(v[7], std::log(0.5), 1e-15);
  EXPECT_EQ(v[13], kMissingValue);
  EXPECT_EQ(v[16], kMissingValue);
  EXPECT_EQ(v[15], paneRecord->scale[0].low + paneRecord->scale[0].span);
  const zvchart::StoredGraph& hazard = Plot(state, 2);
  EXPECT_NEAR(hazard.elements[0].values[7], std::log(2.0), 1e-15);
}

// 25 groups: only the first 20 are drawn and named in the legend.
TEST_F(Life2Plots, MoreThanTwentyGroups) {
  std::string csv = "T,G\n";
  for (int g = 1; g <= 25; ++g) csv += std::to_string(g) + "," + std::to_string(g) + "\n";
  zv::ProcedureState& state = Run(csv, "T", "", "G");
  ASSERT_EQ(zv::Get(state, zv::kGroupCount), 25);
  const zvchart::StoredGraph& graph = Plot(state, 0);
  EXPECT_EQ(graph.elements.size(), 40u);  // 20 series, 20 legend samples
  EXPECT_EQ(graph.titleLines[9 + 19], "20");
  EXPECT_EQ(graph.titleLines[9 + 20], "");
  // The x axis still spans all times.
  EXPECT_GE(paneRecord->scale[0].low + paneRecord->scale[0].span, 25.0);
}

TEST_F(Life2Plots, FailedAnalysisShowsTheMessage) {
  zv::ProcedureState& state = Run("T\n-1\n", "T");
  zv::gCurrentPane = paneRecord.get();
  zv::Life2PlotPane(pane.get(), 0, 8, 0);
  const zvchart::StoredGraph* graph = zvchart::FindGraphByWindow(pane->window);
  ASSERT_NE(graph, nullptr);
  EXPECT_TRUE(graph->elements.empty());
  ASSERT_FALSE(graph->textItems.empty());
  EXPECT_EQ(graph->textItems[0].kind, 20);
  // RedoItem1 passes no pane record: nothing is drawn, for a good analysis
  // as for a failed one, and nothing is read through the missing record.
  state.status = 0;
  zv::gCurrentPane = nullptr;
  EXPECT_EQ(zv::Life2PlotPane(pane.get(), 0, 8, 0), 0);
}

}  // namespace
}  // namespace zvtest
