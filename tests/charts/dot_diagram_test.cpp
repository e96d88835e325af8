// DotDiagram from the Host's calls to what the pane shows and what the chart
// library was handed.
#include "charts/dot_diagram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "protocol/exports.h"
#include "protocol/protocol.h"
#include "support/module_fixture.h"
#include "zvchart/chart_host.h"

namespace {

using zvtest::ModuleFixture;

class DotDiagramTest : public ModuleFixture {
 protected:
  zv::ProcedureState& Run(const char* csv, const char* variable, const char* select) {
    LoadSheet(csv);
    return RunFamily(zv::kDotDiagramFamily, {variable}, select);
  }
  std::string Pane(int32_t item) { return PaneText(zv::kDotDiagramFamily, item); }
  // The dots the chart library received for the pane's graph.
  std::vector<double> Dots() {
    const zvchart::StoredGraph* graph = zvchart::FindGraph(paneRecord->graphId);
    if (graph == nullptr || graph->elements.empty()) return {};
    return graph->elements[0].values;
  }
};

TEST_F(DotDiagramTest, SummaryPaneText) {
  Run("X,G\n1,1\n2,1\n2,0\n4,1\n", "X", "G");
  EXPECT_EQ(Pane(1),
            "Dot Diagram\r\n-----------\r\nData variable: X\r\nSelect: G\r\n\r\n"
            "Number of observations: 3\r\nMean:                   2.33333\r\n"
            "Standard deviation:     1.52753\r\n\r\n");
}

TEST_F(DotDiagramTest, FailedAnalysisKeepsHeadingAndGivesItsReason) {
  Run("X\n3\n3\n3\n", "X", "");
  EXPECT_EQ(Pane(1),
            "Dot Diagram\r\n-----------\r\nData variable: X\r\n\r\n"
            "Number of observations: 0\r\nMean:                   0.0\r\n"
            "Standard deviation:     0.0\r\n\r\n" +
                zv::LoadText(1042) + "\r\n");
  Pane(8);
  const zvchart::StoredGraph* graph = zvchart::FindGraph(paneRecord->graphId);
  ASSERT_NE(graph, nullptr);
  EXPECT_TRUE(graph->elements.empty());
  ASSERT_FALSE(graph->textItems.empty());
  EXPECT_EQ(graph->textItems.back().kind, 20);
  EXPECT_EQ(graph->textItems.back().strings[0].text, zv::LoadText(1101));
}

TEST_F(DotDiagramTest, EqualValuesStackFromHalfUpAndSetTheYAxis) {
  Run("X\n5\n7\n7\n7\n9\n", "X", "");
  Pane(8);
  // (x, y, row) per dot; the three 7s stand at 0.5, 1.5, 2.5.
  EXPECT_EQ(Dots(), (std::vector<double>{5, 0.5, 0, 7, 0.5, 1, 7, 1.5, 2, 7, 2.5, 3, 9, 0.5, 4}));
  // H = 2, so the y axis runs 0 to 3 with the marks 0 and 3 only.
  EXPECT_EQ(paneRecord->scale[1].low, 0.0);
  EXPECT_EQ(paneRecord->scale[1].span, 3.0);
  EXPECT_EQ(paneRecord->ticks[1][0], 2.0);
  EXPECT_EQ(view->graphMenu[8], 0x1917);
  EXPECT_EQ(zv::gStates[0]->graphIds[0], paneRecord->graphId);
}

TEST_F(DotDiagramTest, ClassesTakeTheLowerEdgeInTheFirstClassAndInnerEdgesBelow) {
  // NiceScale(0, 10) gives the x axis 0..10; two classes: (0, 5] and (5, 10],
  // the first also taking 0. The 5 lies on the inner edge: the class below.
  zv::ProcedureState& state = Run("X\n0\n5\n6\n10\n", "X", "");
  zv::Set(state, zv::kDotClasses, 2);
  Pane(8);
  EXPECT_EQ(Dots(), (std::vector<double>{2.5, 0.5, 0, 2.5, 1.5, 1, 7.5, 0.5, 2, 7.5, 1.5, 3}));
}

// Values near the ends of the double range; means and deviations worked
// exactly in rationals. Where no axis spans the values the diagram is
// refused with its reason; otherwise every dot stands on a finite axis.
TEST_F(DotDiagramTest, ValuesNearTheDoubleRange) {
  struct Row {
    int line;
    const char* csv;
    int32_t classes;
    int32_t status;
    double mean, deviation;
  };
  const Row kRows[] = {
      {__LINE__, "X\n1e308\n-1e308\n1.797e308\n2\n", 0, 4, 4.4925e307, 1.21407e308},
      {__LINE__, "X\n1.5e308\n1.6e308\n1.55e308\n", 0, 0, 1.55e308, 5e306},
      {__LINE__, "X\n1.5e308\n1.6e308\n1.55e308\n", 7, 0, 1.55e308, 5e306},
      {__LINE__, "X\n1.7e308\n1.79e308\n", 0, 0, 1.745e308, 6.36396e306},
      {__LINE__, "X\n-1e300\n1e300\n", 3, 0, 0.0, 1.41421e300},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    zv::ProcedureState& state = Run(r.csv, "X", "");
    EXPECT_EQ(state.status, r.status);
    EXPECT_NEAR(zv::Get(state, zv::kDotMean), r.mean, 1e-5 * std::fabs(r.mean));
    EXPECT_NEAR(zv::Get(state, zv::kDotDeviation), r.deviation, 1e-5 * r.deviation);
    const std::string summary = Pane(1);
    if (r.status != 0) {
      EXPECT_EQ(summary.substr(summary.rfind("\r\n\r\n") + 4), zv::LoadText(3903) + "\r\n");
      continue;
    }
    zv::Set(state, zv::kDotClasses, r.classes);
    Pane(8);
    const std::vector<double> dots = Dots();
    ASSERT_EQ(dots.size(), 3 * zv::Get(state, zv::kDotCount));
    const double low = paneRecord->scale[0].low;
    const double high = low + paneRecord->scale[0].span;
    ASSERT_TRUE(std::isfinite(high));
    for (size_t i = 0; i < dots.size(); i += 3) {
      EXPECT_GE(dots[i], low);
      EXPECT_LE(dots[i], high);
    }
  }
}

TEST_F(DotDiagramTest, OptionsDialogRangeAndRedrawWithoutRecomputing) {
  zv::ProcedureState& state = Run("X\n0\n5\n6\n10\n", "X", "");
  Script(
      {{818,
        {DialogAction::SelectRadio(177), DialogAction::SetText(141, "1"),
         DialogAction::Press(kIdOk), DialogAction::SetText(141, "1001"), DialogAction::Press(kIdOk),
         DialogAction::SetText(141, "2"), DialogAction::Press(kIdOk)}}});
  zv::Set(state, zv::kDotMean, 123.0);  // a recomputation would overwrite it
  EXPECT_EQ(DotDiagramOpts(pane.get(), 0, 8, paneRecord.get(), 0, 0, 0), 1);
  EXPECT_EQ(WinMessageBoxLog().size(), 2u);  // 1 and 1001 refused
  EXPECT_EQ(zv::Get(state, zv::kDotClasses), 2);
  EXPECT_EQ(zv::Get(state, zv::kDotMean), 123.0);
  EXPECT_EQ(Dots().size(), 12u);
  // Cancel leaves the field.
  Script({{818, {DialogAction::SelectRadio(176)}}});
  EXPECT_EQ(DotDiagramOpts(pane.get(), 0, 8, paneRecord.get(), 0, 0, 0), 0);
  EXPECT_EQ(zv::Get(state, zv::kDotClasses), 2);
  // Any other pane has no options.
  EXPECT_EQ(DotDiagramOpts(pane.get(), 0, 1, paneRecord.get(), 0, 0, 0), 1);
  EXPECT_EQ(LastMessage(), zv::LoadText(1100));
}

}  // namespace
