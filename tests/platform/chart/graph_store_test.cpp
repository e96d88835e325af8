// The chart library keeps what ChartDraw was given, and its option blocks.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "chart_support.h"

namespace {

using chart_test::GraphInput;
using zvchart::StoredGraph;

class GraphStore : public ::testing::Test {
 protected:
  void SetUp() override { zvchart::ReleaseAllGraphs(); }
  void TearDown() override { zvchart::ReleaseAllGraphs(); }
};

// Everything survives the caller's buffers being overwritten and freed.
TEST_F(GraphStore, KeepsADeepCopyOfEverythingPassed) {
  auto input = std::make_unique<GraphInput>();
  input->record.frameKind = 3;
  input->record.threeD = 0;
  input->record.legendOn = 1;
  input->record.legendBox[0] = 0.8;
  input->SetAxis(0, 0, 10, {0, 5, 10});
  input->AddElement(1, 0, {0, 1, -1, 5, 0.5, -1, 10, 0.25, -1});
  input->AddElement(0, 3, {2, 0.75, 4});
  input->AddMarks(-2, {{{1, 2, 3, 7}}, {{4, 5, 6, 8}}});
  input->AddShapes(1, {{{0.1, 0, 0.2, 0.5}}});
  input->AddText(6, "0", 0, -0.05);
  input->AddText(6, "5", 0.5, -0.05);
  input->AddText(1, "Survival of {1}", 0.5, 1.1);
  input->SetTitleLine(1, "Time");
  input->SetTitleLine(10, "group one");
  input->reals[8] = 42.5;
  input->words[16] = 1;
  input->pairX = {1, 2};
  input->pairY = {3, 4};
  input->pairZ = {5, 6};
  input->pairId = {0, 1};
  input->Draw(77, 12, 5, 31);
  // Scribble over the caller's memory before it goes, so a kept pointer shows.
  std::memset(&input->record, 0x5A, sizeof input->record);
  for (double& v : input->elementPoints) v = -99;
  std::fill(input->textStrings.begin(), input->textStrings.end(), '#');
  input.reset();

  const StoredGraph* g = zvchart::FindGraph(12);
  ASSERT_NE(g, nullptr);
  EXPECT_EQ(g->window, 77u);
  EXPECT_EQ(g->slot, 5);
  EXPECT_EQ(g->rowCount, 31);
  EXPECT_EQ(g->record.graphId, 12);
  EXPECT_EQ(g->record.frameKind, 3);
  EXPECT_DOUBLE_EQ(g->record.legendBox[0], 0.8);
  EXPECT_DOUBLE_EQ(g->record.ticks[0][3], 10.0);
  EXPECT_DOUBLE_EQ(g->record.scale[0].span, 10.0);
  EXPECT_EQ(g->record.tickLength, 20);  // from the defaults, behind `frame`

  ASSERT_EQ(g->elements.size(), 2u);
  EXPECT_EQ(g->elements[0].pen, 1);
  EXPECT_EQ(g->elements[0].values, (std::vector<double>{0, 1, -1, 5, 0.5, -1, 10, 0.25, -1}));
  EXPECT_EQ(g->elements[1].symbol, 3);
  EXPECT_EQ(g->elements[1].values, (std::vector<double>{2, 0.75, 4}));

  ASSERT_EQ(g->marks.size(), 1u);
  EXPECT_EQ(g->marks[0].style, -2);
  ASSERT_EQ(g->marks[0].values.size(), 24u);
  EXPECT_EQ(g->marks[0].values[15], 8);
  ASSERT_EQ(g->shapes.size(), 1u);
  EXPECT_EQ(g->shapes[0].values, (std::vector<double>{0.1, 0, 0.2, 0.5}));

  ASSERT_EQ(g->textItems.size(), 2u);
  EXPECT_EQ(g->textItems[0].kind, 6);
  ASSERT_EQ(g->textItems[0].strings.size(), 2u);
  EXPECT_EQ(g->textItems[0].strings[1].text, "5");
  EXPECT_DOUBLE_EQ(g->textItems[0].strings[1].x, 0.5);
  EXPECT_EQ(g->textItems[1].strings[0].text, "Survival of {1}");
  EXPECT_EQ(g->titleLines[0], "Time");
  EXPECT_EQ(g->titleLines[9], "group one");
  EXPECT_DOUBLE_EQ(g->reals[8], 42.5);
  EXPECT_EQ(g->words[16], 1);
  EXPECT_EQ(g->pairZ, (std::vector<double>{5, 6}));
  EXPECT_EQ(g->pairId, (std::vector<double>{0, 1}));
}

// An element table that asks for more points than were passed takes what
// there is and reads nothing beyond it (the address sanitizer watches).
TEST_F(GraphStore, ElementTableBeyondThePointsIsCut) {
  GraphInput input;
  input.AddElement(1, 0, {0, 0, -1, 1, 1, -1});
  input.elementTable[0] = 5;                                       // claims five points
  input.elementTable.insert(input.elementTable.end(), {4, 2, 0});  // and a second element
  input.Draw(1, 3);
  const StoredGraph* g = zvchart::FindGraph(3);
  ASSERT_NE(g, nullptr);
  ASSERT_EQ(g->elements.size(), 2u);
  EXPECT_EQ(g->elements[0].points, 5);
  EXPECT_EQ(g->elements[0].values.size(), 6u);
  EXPECT_TRUE(g->elements[1].values.empty());
}

TEST_F(GraphStore, ReleaseAndWindowLookup) {
  GraphInput input;
  input.Draw(100, 5);
  input.Draw(100, 6);
  input.Draw(200, 7);
  EXPECT_EQ(zvchart::GraphCount(), 3u);
  ASSERT_NE(zvchart::FindGraphByWindow(100), nullptr);
  EXPECT_EQ(zvchart::FindGraphByWindow(100)->graphId, 6);
  input.Draw(100, 5);  // redrawn: now the window's current graph
  EXPECT_EQ(zvchart::FindGraphByWindow(100)->graphId, 5);
  ChartRelease(5);
  EXPECT_EQ(zvchart::FindGraphByWindow(100)->graphId, 6);
  ChartRelease(999);  // unknown: nothing happens
  ChartRelease(6);
  EXPECT_EQ(zvchart::FindGraphByWindow(100), nullptr);
  EXPECT_EQ(zvchart::GraphCount(), 1u);
  EXPECT_EQ(zvchart::FindGraph(6), nullptr);
}

// The option words land at the record offsets of the pane record's table,
// written out here as numbers rather than taken from the structure.
TEST_F(GraphStore, OptionWordsMoveToTheirRecordOffsets) {
  std::vector<int32_t> words(zv::kIntegerOptionWords);
  std::vector<double> reals(zv::kRealOptionCount);
  for (size_t i = 0; i < words.size(); ++i) words[i] = 1000 + static_cast<int32_t>(i);
  for (size_t i = 0; i < reals.size(); ++i) reals[i] = 0.5 + static_cast<double>(i);
  zv::PaneRecord record{};
  zvchart::OptionsToRecord(words.data(), reals.data(), record);
  const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
  auto wordAt = [&](size_t offset) {
    int32_t v;
    std::memcpy(&v, bytes + offset, 4);
    return v;
  };
  auto realAt = [&](size_t offset) {
    double v;
    std::memcpy(&v, bytes + offset, 8);
    return v;
  };
  struct Row {
    int line;
    size_t offset;
    int word;
  };
  const Row kWords[] = {{__LINE__, 0x008, 0},   {__LINE__, 0x00C, 648}, {__LINE__, 0x014, 2},
                        {__LINE__, 0x07C, 3},   {__LINE__, 0x084, 5},   {__LINE__, 0x08C, 15},
                        {__LINE__, 0x090, 16},  {__LINE__, 0x0AC, 7},   {__LINE__, 0x0B4, 9},
                        {__LINE__, 0x0C8, 14},  {__LINE__, 0x0DC, 18},  {__LINE__, 0x118, 646},
                        {__LINE__, 0x180, 139}, {__LINE__, 0x2C0, 19},  {__LINE__, 0x4A0, 219},
                        {__LINE__, 0x4A4, 220}, {__LINE__, 0x590, 279}, {__LINE__, 0x5E0, 653},
                        {__LINE__, 0x5E4, 299}, {__LINE__, 0x774, 642}, {__LINE__, 0xD58, 640},
                        {__LINE__, 0xD64, 639}, {__LINE__, 0xE24, 654}, {__LINE__, 0xE28, 655},
                        {__LINE__, 0xE38, 659}};
  for (const Row& r : kWords) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(wordAt(r.offset), 1000 + r.word);
  }
  // Words 319 to 638 are one byte each from 0x634 on.
  EXPECT_EQ(bytes[0x634], (1000 + 319) & 0xFF);
  EXPECT_EQ(bytes[0x754], (1000 + 607) & 0xFF);
  EXPECT_EQ(bytes[0x773], (1000 + 638) & 0xFF);
  EXPECT_DOUBLE_EQ(realAt(0x160), 0.5);        // real 0
  EXPECT_DOUBLE_EQ(realAt(0x0E0), 4.5);        // real 4
  EXPECT_DOUBLE_EQ(realAt(0xD68), 11.5);       // real 11: legend x
  EXPECT_DOUBLE_EQ(realAt(0xD68 + 24), 14.5);  // real 14: line height

  std::vector<int32_t> back(zv::kIntegerOptionWords, -1);
  std::vector<double> backReals(zv::kRealOptionCount, -1);
  zvchart::RecordToOptions(record, back.data(), backReals.data());
  EXPECT_EQ(back[219], 1219);
  EXPECT_EQ(back[607], (1000 + 607) & 0xFF);
  EXPECT_EQ(backReals, reals);
}

TEST_F(GraphStore, DefaultsAreUsableAndPutOptionsKeepsThem) {
  std::vector<int32_t> words(zv::kIntegerOptionWords, -7);
  std::vector<double> reals(zv::kRealOptionCount, -7);
  ChartGetDefaults(words.data(), reals.data());
  EXPECT_EQ(words[3], 1);   // closed frame
  EXPECT_GT(words[15], 0);  // tick length
  EXPECT_GT(words[16], 0);  // tick gap
  EXPECT_EQ(words[12], 1);  // minor ticks on
  for (int kind = 1; kind <= 20; ++kind) {
    SCOPED_TRACE(kind);
    EXPECT_GE(words[219 + kind - 1], 8);  // a readable size for every text kind
  }
  EXPECT_GT(words[219], words[219 + 5]);  // main title above tick labels
  EXPECT_EQ(words[649], 0);               // words the library gives no meaning stay 0
  EXPECT_GT(reals[14], 0.0);              // legend line height
  EXPECT_GT(reals[13], 0.0);              // legend text offset

  words[646] = 45;
  ChartPutOptions(words.data(), reals.data(), 1);
  EXPECT_TRUE(zvchart::CurrentOptions().given);
  EXPECT_EQ(zvchart::CurrentOptions().words[646], 45);
  EXPECT_DOUBLE_EQ(zvchart::CurrentOptions().reals[11], reals[11]);
}

}  // namespace
