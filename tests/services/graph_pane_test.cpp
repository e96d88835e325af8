// Graph panes: the keep rules of BeginGraph, text items with their encoded
// places, titles the user moved, the Host's added caption, list B, and what
// reaches the chart library (read back from its stored copy).
#include "services/graph_pane.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "services/movable_block.h"
#include "services/variables.h"
#include "support/module_fixture.h"
#include "zvchart/chart_host.h"

namespace {

using zvtest::ModuleFixture;

struct Text {
  int kind;
  std::string text;
  double x, y, z;
};

class GraphPaneTest : public ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    zv::gCurrentPane = paneRecord.get();
    NewState(0);
    zv::gAddedText.clear();
  }
  void TearDown() override {
    zv::gCurrentPane = nullptr;
    ModuleFixture::TearDown();
  }

  // One graph: BeginGraph, the plot writer's body, EndGraph; the library's copy.
  const zvchart::StoredGraph& Build(
      int32_t keep, const std::function<void()>& body = [] {}) {
    const int32_t id = zv::BeginGraph(keep, 7);
    EXPECT_NE(id, 0);
    body();
    zv::EndGraph(pane.get(), 0);
    const zvchart::StoredGraph* graph = zvchart::FindGraph(id);
    EXPECT_NE(graph, nullptr);
    static const zvchart::StoredGraph kNone;
    return graph ? *graph : kNone;
  }

  static std::vector<Text> Texts(const zvchart::StoredGraph& g) {
    std::vector<Text> out;
    for (const auto& item : g.textItems) {
      for (const auto& s : item.strings) out.push_back({item.kind, s.text, s.x, s.y, s.z});
    }
    return out;
  }
};

TEST_F(GraphPaneTest, PositionsAreStoredAsHundredThousandthsAboveAnOrigin) {
  // value x 100000 + 500000, truncated toward zero.
  struct Row {
    int line;
    double value;
    int32_t stored;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0.0, 500000},         {__LINE__, -5.0, 0},
      {__LINE__, 0.5, 550000},         {__LINE__, 1.05, 605000},
      {__LINE__, 0.123456789, 512345},  // 12345.6789 + 500000, cut
      {__LINE__, -0.000001, 499999},    // 499999.9, cut
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::EncodeTextPosition(r.value), r.stored);
  }
  // The library receives them as doubles again.
  const auto& g = Build(0, [] { zv::AddText("origin", zv::kTextFree, 0.0, -5.0, 0.5); });
  const std::vector<Text> texts = Texts(g);
  ASSERT_EQ(texts.size(), 1u);
  EXPECT_NEAR(texts[0].x, 0.0, 1e-12);
  EXPECT_NEAR(texts[0].y, -5.0, 1e-12);
  EXPECT_NEAR(texts[0].z, 0.5, 1e-12);
  EXPECT_EQ(g.textItems[0].strings[0].numbers[3], 6.0);  // the length
}

TEST_F(GraphPaneTest, TextsOfOneKindShareAnItemAndKeepTheirOrder) {
  const auto& g = Build(0, [] {
    zv::AddText("0", zv::kTextTickLabel, 0.0, -0.05, 0);
    zv::AddText("", zv::kTextTickLabel, 0.5, -0.05, 0);  // ignored
    zv::AddText("y", zv::kTextTickLabel + 1, -0.05, 0.0, 0);
    zv::AddText("10", zv::kTextTickLabel, 1.0, -0.05, 0);
    zv::AddText(std::string(90, 'w'), zv::kTextMessage, 0, 1.0, 0);
    zv::AddStyledText("styled", 0.5, 0.5, 0, 1, 2, 3, 0, 0);
  });
  ASSERT_EQ(g.textItems.size(), 4u);
  EXPECT_EQ(g.textItems[3].words[0], 1);
  EXPECT_EQ(g.textItems[3].words[3], 0);  // its own flag
  EXPECT_EQ(g.textItems[0].kind, 6);
  EXPECT_EQ(g.textItems[0].count, 2);
  EXPECT_EQ(g.textItems[0].strings[1].text, "10");
  EXPECT_EQ(g.textItems[1].kind, 7);
  EXPECT_EQ(g.textItems[1].strings[0].text, "y");
  EXPECT_EQ(g.textItems[2].strings[0].text, std::string(80, 'w'));  // strings hold 80
  EXPECT_EQ(g.textStringCount, 5);
}

TEST_F(GraphPaneTest, FirstGraphOfAPaneTakesTheLibraryDefaultsOnlyOnce) {
  int32_t words[zv::kIntegerOptionWords] = {};
  double reals[zv::kRealOptionCount] = {};
  ChartGetDefaults(words, reals);
  paneRecord->tickLength = 12345;
  Build(0);
  EXPECT_EQ(paneRecord->tickLength, words[15]);
  EXPECT_EQ(paneRecord->textStyleK[0], words[219]);
  EXPECT_EQ(paneRecord->legendBox[0], reals[11]);
  // A change the user made through the library stays, and goes back to it.
  paneRecord->tickLength = 77;
  paneRecord->textStyleK[0] = 31;
  Build(0);
  EXPECT_EQ(paneRecord->tickLength, 77);
  EXPECT_EQ(zvchart::CurrentOptions().words[15], 77);
  EXPECT_EQ(zvchart::CurrentOptions().words[219], 31);
}

TEST_F(GraphPaneTest, KeepRulesDecideWhetherAxesAreChosenAnew) {
  struct Row {
    int line;
    int32_t keepScales;
    bool keepId;
    int32_t rebuilds;
    const char* added;
    bool kept;
    int32_t rebuildsAfter;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0, false, 0, "", false, 0},     {__LINE__, 1, false, 0, "", true, 0},
      {__LINE__, 0, true, 0, "", true, 0},        // the Host names this graph
      {__LINE__, 0, false, 2, "", true, 1},       // the Host asks for rebuilds
      {__LINE__, 0, false, 0, "Draft", true, 0},  // the added caption keeps the axes
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    Build(0);
    paneRecord->axisSet[1] = 1;
    paneRecord->scale[1] = {3.0, 4.0};
    paneRecord->logScale[1] = 1;
    host->graphKeepId = r.keepId ? paneRecord->graphId : -1;
    host->graphRebuilds = r.rebuilds;
    zv::gAddedText = r.added;
    Build(r.keepScales);
    EXPECT_EQ(paneRecord->axisSet[1], r.kept ? 1 : 0);
    EXPECT_EQ(paneRecord->scale[1].low, r.kept ? 3.0 : 0.0);
    EXPECT_EQ(paneRecord->scale[1].span, r.kept ? 4.0 : 1.0);
    EXPECT_EQ(paneRecord->logScale[1], r.kept ? 1 : 0);
    EXPECT_EQ(host->graphKeepId, -1);
    EXPECT_EQ(host->graphRebuilds, r.rebuildsAfter);
  }
}

TEST_F(GraphPaneTest, AxesTheUserFixedSurviveAReset) {
  Build(0);  // from the second graph on, the record's axisFixed stays
  paneRecord->axisFixed[0] = 1;
  paneRecord->axisSet[0] = 1;
  paneRecord->scale[0] = {5.0, 10.0};
  paneRecord->axisSet[1] = 1;
  paneRecord->scale[1] = {5.0, 10.0};
  Build(0);
  EXPECT_EQ(paneRecord->axisFixed[0], 1);
  EXPECT_EQ(paneRecord->axisSet[0], 1);
  EXPECT_EQ(paneRecord->scale[0].span, 10.0);
  EXPECT_EQ(paneRecord->axisSet[1], 0);
  EXPECT_EQ(paneRecord->scale[1].span, 1.0);
}

TEST_F(GraphPaneTest, AUserMovedTitleSurvivesARebuildAndTickLabelsDoNot) {
  Build(0, [] {
    zv::gMainTitle = "Survival of {1}";
    zv::PlaceTitles();
    zv::AddText("0", zv::kTextTickLabel, 0.0, -0.05, 0);
  });
  ASSERT_EQ(paneRecord->textItemCount, 2);
  {  // The user drags the main title (item 0, string 0) in the library.
    zv::LockedBlock<double> numbers(paneRecord->textNumbers);
    numbers[0] = 0.3;
    numbers[1] = 0.9;
  }
  const auto& g = Build(0, [] {
    zv::gMainTitle = "Fresh title";
    zv::PlaceTitles();
    zv::AddText("5", zv::kTextTickLabel, 0.5, -0.05, 0);
    zv::AddStyledText("styled", 0.5, 0.5, 0, 1, 2, 3, 0, 0);  // only on a first graph
  });
  const std::vector<Text> texts = Texts(g);
  ASSERT_EQ(texts.size(), 2u);
  EXPECT_EQ(texts[0].kind, 1);
  EXPECT_EQ(texts[0].text, "Survival of {1}");
  EXPECT_NEAR(texts[0].x, 0.3, 1e-12);
  EXPECT_NEAR(texts[0].y, 0.9, 1e-12);
  EXPECT_EQ(texts[1].kind, 6);
  EXPECT_EQ(texts[1].text, "5");
}

TEST_F(GraphPaneTest, TheAddedCaptionShowsOnceAtTheTop) {
  Build(0);
  zv::gAddedText = "Draft copy";
  zv::gAddedTextFlag = 3;
  auto countDrafts = [](const zvchart::StoredGraph& g) {
    int n = 0;
    for (const Text& t : Texts(g)) n += t.text == "Draft copy";
    return n;
  };
  const auto& second = Build(0);
  EXPECT_TRUE(zv::gAddedText.empty());
  ASSERT_EQ(countDrafts(second), 1);
  const auto& item = second.textItems.back();
  EXPECT_EQ(item.kind, 0);
  // Style words of text kind 19, the Host's flag, then 4.
  EXPECT_EQ((std::vector<int32_t>(item.words.begin(), item.words.begin() + 5)),
            (std::vector<int32_t>{paneRecord->textStyleK[18], paneRecord->textStyleL[18],
                                  paneRecord->textStyleM[18], 3, 4}));
  EXPECT_EQ((std::vector<double>{item.strings[0].x, item.strings[0].y, item.strings[0].z}),
            (std::vector<double>{0.5, 1.05, 1.05}));
  // The next build does not place it again.
  EXPECT_EQ(countDrafts(Build(0)), 1);
}

TEST_F(GraphPaneTest, TitlesStandAboveThePlot) {
  // t = 0.020 + 0.010 (outward ticks) = 0.03; h = 77 / 385 = 0.2.
  // Flat: main y = 1 + t + 0.1 + 1.5 h = 1.43, subtitle 5 h lower = 0.43.
  // 3-D: y = 1 + t = 1.03; main z = 1.15 + t + 1.5 h = 1.48, subtitle 0.48.
  // Without a subtitle the main title does not move up: y = 1.13.
  struct Row {
    int line;
    int32_t threeD;
    const char* sub;
    double mainY, mainZ, subY, subZ;
  };
  constexpr Row kRows[] = {{__LINE__, 0, "Sub", 1.43, 0.0, 0.43, 0.0},
                           {__LINE__, 1, "Sub", 1.03, 1.48, 1.03, 0.48},
                           {__LINE__, 0, "", 1.13, 0.0, 0.0, 0.0}};
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const auto& g = Build(0, [&] {
      paneRecord->tickLength = 20;
      paneRecord->tickGap = 10;
      paneRecord->tickSide[0] = -1;
      paneRecord->textStyleK[1] = 77;
      paneRecord->threeD = r.threeD;
      zv::gMainTitle = "Main";
      zv::gSubTitle = r.sub;
      zv::PlaceTitles();
    });
    const std::vector<Text> texts = Texts(g);
    ASSERT_EQ(texts.size(), *r.sub ? 2u : 1u);
    EXPECT_NEAR(texts[0].x, 0.5, 1e-9);
    EXPECT_NEAR(texts[0].y, r.mainY, 2e-5);
    EXPECT_NEAR(texts[0].z, r.mainZ, 2e-5);
    if (*r.sub) {
      EXPECT_NEAR(texts[1].y, r.subY, 2e-5);
      EXPECT_NEAR(texts[1].z, r.subZ, 2e-5);
    }
    // A rebuild would keep these places; start each row on a fresh pane.
    for (Handle* h : {&paneRecord->textItems, &paneRecord->textStrings, &paneRecord->textNumbers}) {
      zv::FreeGlobal(h);
    }
  }
}

TEST_F(GraphPaneTest, ListBIsInterleavedIntoListA) {
  struct Row {
    int line;
    int32_t width;
    std::vector<double> points;
  };
  const Row kRows[] = {{__LINE__, 3, {1, 2, 0, 3, 4, 1}}, {__LINE__, 4, {1, 2, 9, 0, 3, 4, 8, 1}}};
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    const auto& g = Build(0, [&] {
      zv::GraphLists& lists = zv::CurrentGraphLists();
      lists.pointWidth = r.width;
      lists.elementTable = {2, 1, 0};
      lists.pairX = {1, 3};
      lists.pairY = {2, 4};
      lists.pairZ = {9, 8};
      lists.pairId = {0, 1};
    });
    EXPECT_EQ(g.pointCount, 2);
    ASSERT_EQ(g.elements.size(), 1u);
    EXPECT_EQ(g.elements[0].values, r.points);
    EXPECT_TRUE(g.pairX.empty());  // passed with a count of 0
  }
  EXPECT_TRUE(zv::CurrentGraphLists().elementTable.empty());
}

TEST_F(GraphPaneTest, TitleLinesHoldEightyCharacters) {
  const std::string longText(85, 'x');
  const auto& g = Build(0, [&] {
    zv::SetTitleLine("Weight", 1);
    zv::SetTitleLine(longText, 64);
    zv::SetTitleLine("nowhere", 65);
  });
  EXPECT_EQ(g.titleLines[0], "Weight");
  EXPECT_EQ(g.titleLines[1], "");
  EXPECT_EQ(g.titleLines[63], longText.substr(0, 80));
}

TEST_F(GraphPaneTest, EachBuildReleasesTheOldGraphAndTakesANewIdentifier) {
  const int32_t first = Build(0).graphId;
  const int32_t second = Build(0).graphId;
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(host->nextGraphId, second + 1);
  EXPECT_EQ(zvchart::FindGraph(first), nullptr);
  EXPECT_EQ(paneRecord->rowCount, 7);
}

TEST_F(GraphPaneTest, NoMemoryForTheTitleLinesDrawsNothing) {
  Build(0);
  const size_t graphs = zvchart::GraphCount();
  WinFailAllocationsAfter(0);
  EXPECT_EQ(zv::BeginGraph(0, 7), 0);
  WinFailAllocationsAfter(-1);
  EXPECT_EQ(LastMessage(), zv::LoadText(1001));
  zv::AddText("lost", zv::kTextFree, 0, 0, 0);
  zv::EndGraph(pane.get(), 0);
  EXPECT_EQ(zvchart::GraphCount(), graphs - 1);  // the old graph was released
  // The stored text of the earlier graph is still there for the next build.
  EXPECT_NE(paneRecord->textItems, 0u);
}

// A plot writer that counted list A short cannot write past it: the excess is
// dropped and reported.
TEST_F(GraphPaneTest, ElementWriterStopsAtTheCountedSize) {
  zv::GraphLists lists;
  lists.elementTable.assign(3, 0);
  lists.elementPoints.assign(6, 0.0);
  zv::ElementWriter writer(lists, true);
  writer.Begin(2, 1);
  writer.Point(1, 2, -1);
  writer.Point(3, 4, -1);
  EXPECT_FALSE(writer.overflowed());
  writer.Begin(1, 2);
  writer.Point(5, 6, -1);
  EXPECT_TRUE(writer.overflowed());
  EXPECT_EQ(lists.elementTable, (std::vector<int32_t>{2, 1, 0}));
  EXPECT_EQ(lists.elementPoints, (std::vector<double>{1, 2, -1, 3, 4, -1}));
}

}  // namespace
