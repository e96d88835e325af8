// Axis scales: NiceScale worked by hand, the first-call and fixed-axis rules,
// manual and period axes, minor ticks, frame words, tick label texts and the
// places of the labels as the chart library receives them.
#include "services/axes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "services/graph_pane.h"
#include "services/variables.h"
#include "support/module_fixture.h"
#include "zvchart/chart_host.h"

namespace {

using zv::kMissingValue;
using zvtest::ModuleFixture;

// A graph in progress on a pane with known sizes: tick length 20 (so e =
// 0.02), ticks inside, label text size 10 (h = 10 x 1.2 / 385 = 0.0311688,
// w = 0.02).
class AxesTest : public ModuleFixture {
 protected:
  void SetUp() override {
    ModuleFixture::SetUp();
    zv::gCurrentPane = paneRecord.get();
    NewState(0);
    ASSERT_NE(zv::BeginGraph(0, 0), 0);
    zv::PaneRecord& p = *paneRecord;
    p.tickLength = 20;
    p.tickGap = 10;
    for (int a = 0; a < 3; ++a) p.tickSide[a] = 0;
    for (int k = 5; k < 8; ++k) p.textStyleK[k] = 10;
    p.threeD = 0;
  }
  void TearDown() override {
    if (!drawn_) zv::EndGraph(pane.get(), 0);
    zv::gCurrentPane = nullptr;
    ModuleFixture::TearDown();
  }
  const zvchart::StoredGraph& Draw() {
    zv::EndGraph(pane.get(), 0);
    drawn_ = true;
    const zvchart::StoredGraph* g = zvchart::FindGraph(paneRecord->graphId);
    EXPECT_NE(g, nullptr);
    static const zvchart::StoredGraph kNone;
    return g ? *g : kNone;
  }
  static std::vector<zvchart::TextString> OfKind(const zvchart::StoredGraph& g, int kind) {
    std::vector<zvchart::TextString> out;
    for (const auto& item : g.textItems) {
      if (item.kind == kind) out.insert(out.end(), item.strings.begin(), item.strings.end());
    }
    return out;
  }
  static std::vector<std::string> Labels(const zvchart::StoredGraph& g, int kind) {
    std::vector<std::string> out;
    for (const auto& s : OfKind(g, kind)) out.push_back(s.text);
    return out;
  }
  std::vector<double> Ticks(int axis) const {
    const double* t = paneRecord->ticks[axis - 1];
    return std::vector<double>(t + 1, t + 1 + static_cast<int>(t[0]));
  }
  bool drawn_ = false;
};

TEST(NiceScale, WorkedExamples) {
  // Worked by hand with p = 10^floor(log10(high - low)), top and bottom in
  // units of p, candidates span/k then span/(k/10) up to 6:
  //  0..10: p 10, top 1.0, bottom 0, span 1: best 5, ticks 0..1 by .2 (one
  //         decimal after rounding); m = 10 from tick 1 vs 10, a silent factor.
  //  0..7:  p 1, span 7: candidates 1.4, 1.75, 2.33, 3.5, none whole: best 3.5,
  //         step 2, n 4, ticks 0..8; m from 8 vs 7 is 10^ceil(log10 .875) = 1.
  //  -3..7: p 10, top .7, bottom -.3, span 1: best 5, ticks -.3...7, times 10
  //         for the fraction: -3..7 by 2, m 1.
  //  0..1234: p 1000, top 1.3, span 1.3: best 4.33 (none whole), step .3,
  //         n 5, ticks 0..1.5, times 10: 0..15; m from 15 vs 1234 is 100.
  //  0..1000: as 0..10 but m = 1000, which stays as the factor.
  //  5..5:  widened to 4.5..5.5; p 1, span 1: ticks 4.5..5.5, times 10:
  //         45..55; m = 0.1 from 55 vs 5.5, silent.
  //  1..100: p 10, top 10, bottom .1 -> 0 (ratio 100 > 4), span 10: best 5,
  //         ticks 0..10 by 2, m 10: 0..100 by 20.
  //  -10..0: p 10, top 0, bottom -1, ticks -1..0 by .2, m 10 from -1 vs -10.
  //  600..660: p 10, top 66, bottom 60, span 6: candidate 6 is whole, n 6.
  //  0..0.5: p .1, span 5, ticks 0..5 by 1; m = 0.1 from 5 vs 0.5, silent.
  //  -1000..5: p 1000, top .1, bottom -1, span 1.1: best 5.5, step .2, n 6,
  //         ticks -1...2, times 10: -10..2; m 10 from 2 vs 5, but the low end
  //         -10 vs -1000 needs 100: -1000..200.
  struct Row {
    int line;
    double low, high, outLow, outHigh, factor;
    int32_t n;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0, 10, 0, 10, 1, 5},         {__LINE__, 0, 7, 0, 8, 1, 4},
      {__LINE__, -3, 7, -3, 7, 1, 5},         {__LINE__, 0, 1234, 0, 1500, 1, 5},
      {__LINE__, 0, 100, 0, 100, 1, 5},       {__LINE__, 0, 1000, 0, 1000, 1000, 5},
      {__LINE__, 5, 5, 4.5, 5.5, 1, 5},       {__LINE__, kMissingValue, kMissingValue, 0, 1, 1, 5},
      {__LINE__, 1, 100, 0, 100, 1, 5},       {__LINE__, -10, 0, -10, 0, 1, 5},
      {__LINE__, 600, 660, 600, 660, 1, 6},   {__LINE__, 0, 0.5, 0, 0.5, 1, 5},
      {__LINE__, -1000, 5, -1000, 200, 1, 6},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    double low = -1, high = -1, factor = -1;
    EXPECT_EQ(zv::NiceScale(r.low, r.high, &low, &high, &factor), r.n);
    EXPECT_NEAR(low, r.outLow, 1e-9);
    EXPECT_NEAR(high, r.outHigh, 1e-9);
    EXPECT_EQ(factor, r.factor);
  }
}

TEST_F(AxesTest, AutomaticAxesLabelTheirTicksAndFactor) {
  struct Row {
    int line;
    double low, high;
    std::vector<std::string> labels;
    const char* factor;
  };
  const Row kRows[] = {
      {__LINE__, 0, 10, {"0", "2", "4", "6", "8", "10"}, nullptr},
      {__LINE__, 0, 1000, {"0", "0.2", "0.4", "0.6", "0.8", "1"}, "(X 1000)"},
      {__LINE__, -3, 7, {"-3", "-1", "1", "3", "5", "7"}, nullptr},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    paneRecord->axisSet[0] = 0;
    zv::gXTitle = "{1}";
    zv::SetAxisAuto(1, r.low, r.high, 'N');
    EXPECT_EQ(paneRecord->scale[0].low, r.low < 0 ? -3 : 0);
    EXPECT_EQ(paneRecord->dataRange[0].high, r.high);
    zv::DrawAxisLabels(1, 1, 1);
    const auto& g = Draw();
    EXPECT_EQ(Labels(g, 6), r.labels);
    EXPECT_EQ(Labels(g, 9),
              r.factor ? std::vector<std::string>{r.factor} : std::vector<std::string>{});
    EXPECT_EQ(Labels(g, 3), std::vector<std::string>{"{1}"});
    drawn_ = false;
    ASSERT_NE(zv::BeginGraph(0, 0), 0);
  }
}

TEST_F(AxesTest, TheFirstScalingWinsAndAFixedAxisIsLeftAlone) {
  zv::SetAxisAuto(2, 0, 10, 'N');
  zv::SetAxisAuto(2, 0, 1000, 'N');
  EXPECT_EQ(paneRecord->scale[1].span, 10.0);
  EXPECT_EQ(zv::SetAxisManual(2, 0, 50, 5, 0, 0), 1);  // no guard in SetAxisManual
  EXPECT_EQ(paneRecord->scale[1].span, 50.0);

  paneRecord->axisFixed[0] = 1;
  paneRecord->scale[0] = {5.0, 2.0};
  zv::SetAxisAuto(1, 0, 10, 'N');
  EXPECT_EQ(zv::SetAxisManual(1, 0, 100, 10, 1, 0), 1);
  EXPECT_EQ(paneRecord->scale[0].low, 5.0);
  EXPECT_EQ(paneRecord->scale[0].span, 2.0);
  EXPECT_EQ(paneRecord->axisSet[0], 0);
}

TEST_F(AxesTest, ManualAxesTakeTheGivenStep) {
  struct Row {
    int line;
    double low, high, step;
    int32_t log;
    std::vector<double> ticks;
  };
  const Row kRows[] = {
      {__LINE__, 0, 10, 2, 0, {0, 2, 4, 6, 8, 10}},
      {__LINE__, 0, 10, 3, 0, {0, 3, 6, 9, 12}},  // 3.33 intervals: one more
      {__LINE__, 0, 41, 1, 0, {0, 41}},           // 41 intervals: one of the whole range
      {__LINE__, 1, 1000, 0, 1, {0, 1, 2, 3}},    // decades
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    paneRecord->axisSet[0] = 0;
    EXPECT_EQ(zv::SetAxisManual(1, r.low, r.high, r.step, 0, r.log), 1);
    EXPECT_EQ(Ticks(1), r.ticks);
    EXPECT_EQ(paneRecord->scale[0].span, r.ticks.back() - r.ticks.front());
    EXPECT_EQ(paneRecord->logScale[0], r.log);
    EXPECT_EQ(paneRecord->axisSet[0], 1);
  }
  EXPECT_EQ(zv::SetAxisManual(1, 0, 100, 0, 0, 1), 0);
  EXPECT_EQ(LastMessage(), zv::LoadText(1023));
}

TEST_F(AxesTest, PeriodAxesStartAtTheFirstPeriodWithWholeYears) {
  // 605..650 months: NiceScale gives 600..650 in 5; moved to start at 605,
  // step (floor((50/5 - 1)/12) + 1) x 12 = 12, so 605..665.
  // 600..660: 600..660 in 6; step 12 reaches 672, one interval too many.
  // Quarters 200..230: 200..230 in 6; step (floor((5 - 1)/4) + 1) x 4 = 8,
  // 248 is lowered to 232 while a step less still covers 230.
  // Quarters 200..206: 200..206 in 6; step 4, 224 lowered down to n = 2.
  struct Row {
    int line;
    double low, high;
    char type;
    std::vector<double> ticks;
  };
  const Row kRows[] = {
      {__LINE__, 605, 650, 'M', {605, 617, 629, 641, 653, 665}},
      {__LINE__, 600, 660, 'M', {600, 612, 624, 636, 648, 660}},
      {__LINE__, 200, 230, 'Q', {200, 208, 216, 224, 232}},
      {__LINE__, 200, 206, 'Q', {200, 204, 208}},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    paneRecord->axisSet[0] = 0;
    zv::SetAxisAuto(1, r.low, r.high, r.type);
    EXPECT_EQ(Ticks(1), r.ticks);
    EXPECT_EQ(paneRecord->factor[0], 1.0);
    EXPECT_EQ(paneRecord->axisType[0], r.type);
  }
}

TEST_F(AxesTest, ATinyTickIsLabelledZero) {
  // -0.3 + 3 x 0.1 is 5.55e-17 in doubles, on a span of 0.6.
  zv::SetAxisManual(1, -0.3, 0.3, 0.1, 0, 0);
  ASSERT_EQ(Ticks(1).size(), 7u);
  EXPECT_NE(Ticks(1)[3], 0.0);
  zv::DrawAxisLabels(1, 0, 1);
  EXPECT_EQ(Ticks(1)[3], 0.0);
  EXPECT_EQ(Labels(Draw(), 6),
            (std::vector<std::string>{"-0.3", "-0.2", "-0.1", "0", "0.1", "0.2", "0.3"}));
}

TEST_F(AxesTest, LabelsStandBesideTheirTicks) {
  // Flat x: tick i at (i/5, -t - h) = (0.2 i, -0.0511688); title 5 h below
  // the axis: -0.02 - 0.1558442 = -0.1758442.
  // Flat y of 0..1000, labels "0".."1" with the factor 1000, "0.2" the
  // longest (3 characters): at x = -t - w = -0.04, the title at -t - (3 + 4) w
  // = -0.16, the factor label at y = 1 + e + 1.5 h = 1.0667532.
  zv::gXTitle = "x";
  zv::gYTitle = "y";
  zv::SetAxisManual(1, 0, 10, 2, 0, 0);
  zv::SetAxisAuto(2, 0, 1000, 'N');
  zv::DrawAxisLabels(1, 1, 1);
  zv::DrawAxisLabels(2, 1, 1);
  zv::DrawAxisLabels(3, 1, 1);  // no third axis in a flat graph
  const auto& g = Draw();
  const auto x = OfKind(g, 6);
  ASSERT_EQ(x.size(), 6u);
  EXPECT_NEAR(x[1].x, 0.2, 2e-5);
  EXPECT_NEAR(x[1].y, -0.0511688, 2e-5);
  EXPECT_NEAR(OfKind(g, 3)[0].y, -0.1758442, 2e-5);
  const auto y = OfKind(g, 7);
  ASSERT_EQ(y.size(), 6u);
  EXPECT_NEAR(y[5].x, -0.04, 2e-5);
  EXPECT_NEAR(y[5].y, 1.0, 2e-5);
  EXPECT_NEAR(OfKind(g, 4)[0].x, -0.16, 2e-5);
  EXPECT_NEAR(OfKind(g, 10)[0].y, 1.0667532, 2e-5);
  EXPECT_TRUE(OfKind(g, 8).empty());
  EXPECT_TRUE(OfKind(g, 5).empty());
}

TEST_F(AxesTest, ThreeDimensionalLabelsLeanWithTheViewAngle) {
  // viewAngle 30: sin 0.5, cos 0.8660254; g = max(h, w) = 0.0311688.
  // x tick 1 of 0..10 by 2: (0.2 - 0.5 g, -t - 0.8660254 g, -t)
  //   = (0.1844156, -0.0469931, -0.02).
  // Third axis 0..4 by 1, tick 2: (-t - w, -e, 0.5) = (-0.04, -0.02, 0.5).
  paneRecord->threeD = 1;
  paneRecord->viewAngle = 30;
  zv::SetAxisManual(1, 0, 10, 2, 0, 0);
  zv::SetAxisManual(3, 0, 4, 1, 0, 0);
  zv::DrawAxisLabels(1, 0, 1);
  zv::DrawAxisLabels(3, 0, 1);
  const auto& g = Draw();
  const auto x = OfKind(g, 6);
  ASSERT_EQ(x.size(), 6u);
  EXPECT_NEAR(x[1].x, 0.1844156, 2e-5);
  EXPECT_NEAR(x[1].y, -0.0469931, 2e-5);
  EXPECT_NEAR(x[1].z, -0.02, 2e-5);
  const auto z = OfKind(g, 8);
  ASSERT_EQ(z.size(), 5u);
  EXPECT_NEAR(z[2].x, -0.04, 2e-5);
  EXPECT_NEAR(z[2].y, -0.02, 2e-5);
  EXPECT_NEAR(z[2].z, 0.5, 2e-5);
}

TEST_F(AxesTest, ProbabilityAxisLabelsFollowTheirTable) {
  zv::SetAxisManual(2, 0, 16, 1, 0, 0);
  paneRecord->logScale[1] = 2;
  zv::DrawAxisLabels(2, 0, 1);
  const auto y = OfKind(Draw(), 7);
  ASSERT_EQ(y.size(), 17u);
  EXPECT_NEAR(y[1].y, 0.18229, 2e-5);
  EXPECT_NEAR(y[2].y, 0.26100, 2e-5);  // 0.18229 + 0.07871
  EXPECT_NEAR(y[15].y, 0.97, 2e-5);    // all but the last increment
  EXPECT_NEAR(y[16].y, 1.0, 2e-5);
}

TEST_F(AxesTest, FrameWordsCountIntervalsAndMarks) {
  // x: decades 1..1000 (3 intervals) with minor ticks: 3 x 9 = 27 marks, less
  // one with a closed frame. y: 0..10 by 2, 5 intervals, 4 inner marks.
  // 3-D: the third axis (2 intervals, 1 mark) rides in the thousands.
  struct Row {
    int line;
    int32_t frameKind, threeD, majorX, intervalsY, majorY;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0, 0, 27, 5, 4}, {__LINE__, 1, 0, 26, 5, 4}, {__LINE__, 0, 1, 26, 2005, 1004}};
  zv::SetAxisManual(1, 1, 1000, 0, 0, 1);
  zv::SetAxisManual(2, 0, 10, 2, 0, 0);
  zv::SetAxisManual(3, 0, 2, 1, 0, 0);
  paneRecord->minorOn[0] = 1;
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    paneRecord->frameKind = r.frameKind;
    paneRecord->threeD = r.threeD;
    zv::ComputeFrame();
    EXPECT_EQ(paneRecord->intervalsX, 3);
    EXPECT_EQ(paneRecord->majorX, r.majorX);
    EXPECT_EQ(paneRecord->intervalsY, r.intervalsY);
    EXPECT_EQ(paneRecord->majorY, r.majorY);
  }
  zv::SetAxisTicksByScale(2);  // step 2: m = 20, divisible by 4
  EXPECT_EQ(paneRecord->axes[1].visible, 1);
  EXPECT_EQ(paneRecord->axes[1].majorTicks, 5);
  EXPECT_EQ(paneRecord->axes[1].minorTicks, 4);
}

// Out to the ends of the double range: a range that fits gets finite neat
// limits that hold it; one that does not is refused by AxisRangeFits (once
// 1e308 and 1.797e308 gave the limits 0.1 and 0).
TEST(NiceScale, RangesNearTheEndsOfTheDoubleRange) {
  constexpr double kMax = std::numeric_limits<double>::max();
  constexpr double kInf = std::numeric_limits<double>::infinity();
  struct Row {
    int line;
    double low, high;
    bool fits;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0, 10, true},
      {__LINE__, 1.5e308, 1.6e308, true},
      {__LINE__, 1.7e308, 1.79e308, true},  // the neat top 1.8e308 overflows
      {__LINE__, -1.79e308, -1.7e308, true},
      {__LINE__, -1e300, 1e300, true},
      {__LINE__, 1e-300, 2e-300, true},
      {__LINE__, 3e-308, 5e-308, true},  // the tick to limit ratio overflows
      {__LINE__, -1e308, 1.797e308, false},
      {__LINE__, -kMax, kMax, false},
      {__LINE__, 1.7e308, 1.7e308, false},  // widened past the range
      {__LINE__, 0, kInf, false},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::AxisRangeFits(r.low, r.high), r.fits);
    if (!r.fits) continue;
    double low = 0, high = 0, factor = 0;
    const int32_t n = zv::NiceScale(r.low, r.high, &low, &high, &factor);
    EXPECT_GE(n, 1);
    EXPECT_LE(n, zv::kMaxIntervals);
    EXPECT_LE(low, r.low);
    EXPECT_GE(high, r.high);
    EXPECT_TRUE(std::isfinite(high - low));
    EXPECT_TRUE(std::isfinite(factor) && factor > 0);
  }
}

TEST(PickMinorTicks, TheFirstDivisorOfTheLeadingDigits) {
  // m = step x 10^ceil(log10(1/step)), x 10 below 7; first of 7, 4, 3, 5, 2.
  struct Row {
    int line;
    double step;
    int32_t minor;
  };
  constexpr Row kRows[] = {
      {__LINE__, 0.2, 4},    {__LINE__, 5, 5},     {__LINE__, 0, 1},
      {__LINE__, 0.3, 3},    {__LINE__, 0.07, 7},  {__LINE__, 2.5, 5},
      {__LINE__, 1, 5},      {__LINE__, 0.255, 1},  // m = 25.5 has no divisor
      {__LINE__, 110, 1},                           // m = 11
      {__LINE__, 1e-310, 1},                        // 1 / step overflows: no digits
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::PickMinorTicks(r.step), r.minor);
  }
}

TEST(FormatAxisNumber, TheTickLabelForms) {
  struct Row {
    int line;
    double value;
    int32_t width;
    int32_t leadingZero;
    const char* text;
  };
  constexpr Row kRows[] = {
      {__LINE__, 100, 16, 1, "100"},
      {__LINE__, 123456, 16, 1, "123456"},
      {__LINE__, 12.5, 16, 1, "12.5"},
      {__LINE__, -0.5, 16, 1, "-0.5"},
      {__LINE__, -0.5, 16, 0, "-.5"},
      {__LINE__, 0, 16, 1, "0"},
      {__LINE__, 0, 16, 0, ""},
      {__LINE__, 1000000, 16, 1, "1.E6"},
      {__LINE__, 1234567, 16, 1, "1.23457E6"},
      {__LINE__, kMissingValue, 16, 1, ""},
      {__LINE__, 1234, 3, 1, ""},
      {__LINE__, 0.05, 16, 1, "0.05"},
  };
  const int32_t saved = zv::gLeadingZero;
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    zv::gLeadingZero = r.leadingZero;
    char buffer[32];
    zv::FormatAxisNumber(buffer, r.value, r.width);
    EXPECT_STREQ(buffer, r.text);
  }
  zv::gLeadingZero = saved;
}

}  // namespace
