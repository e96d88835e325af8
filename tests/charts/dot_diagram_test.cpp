// DotDiagram from the Host's calls to what the pane shows and what the chart
// library was handed.
#include "charts/dot_diagram.h"

#include <gtest/gtest.h>

#include <string>

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
