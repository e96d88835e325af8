// The procedure as the Host drives it: the variable dialog with its checks
// and reopening, Begin and the panes, the option dialogs with their ranges,
// and the interpretation sentences of each pane.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "frame/messages.h"
#include "life2_fixture.h"
#include "protocol/exports.h"
#include "protocol/protocol.h"
#include "survival/life2.h"
#include "survival/life2_state.h"

namespace zvtest {
namespace {

using zv::Get;
using zv::kMissingValue;
using zv::LoadText;

constexpr char kSheet[] =
    "Weeks,Lost,Arm,Note\n"
    "4,0,1,a\n6,1,1,b\n8,0,1,c\n3,0,2,d\n5,0,2,e\n9,1,2,f\n";

class Life2Session : public Life2Fixture {
 protected:
  zv::ProcedureState& Open(const char* time, const char* censor, const char* group) {
    return RunFamily(zv::kLife2Family, {time, censor, group});
  }
  std::string Interpret(zv::ProcedureState& state, int32_t item) {
    char output[4096] = {};
    CallKeel4Interpret(&state, output, item);
    return output;
  }
};

TEST_F(Life2Session, DialogSetupBeginAndPanes) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open("Weeks", "Lost", "Arm");
  EXPECT_STREQ(entryList, "Product-Limit Survival Analysis - Weeks");
  EXPECT_EQ(state.status, 0);
  EXPECT_EQ(state.textOptionsMask, 2);
  EXPECT_EQ(state.graphOptionsMask, 0);  // two groups: no limits
  EXPECT_EQ(Get(state, zv::kPercentiles, 1), 50.0);
  EXPECT_EQ(Get(state, zv::kConfidenceLevel), 95.0);
  for (int32_t item : {1, 2, 3, 8, 9, 10}) {
    SCOPED_TRACE(item);
    EXPECT_EQ(Life2Item(pane.get(), 0, item, paneRecord.get(), 0), 1);
  }
  EXPECT_EQ(WinGetWindowText(pane->window).rfind("Comparison of Groups", 0), 0u);

  // A redo and a stored analysis brought back compute the same again.
  const double logrank = Get(state, zv::kLogrankChiSquare);
  EXPECT_EQ(Life2RedoItem1(pane.get(), 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(Life2BeginAgain(0, &state, view.get(), host.get(), sheet.get(), frame.get(), 0), 1);
  EXPECT_EQ(state.status, 0);
  EXPECT_EQ(Get(state, zv::kLogrankChiSquare), logrank);
}

// The checks of OK: a required time, no character column for the censoring;
// reopening shows the analysis's texts.
TEST_F(Life2Session, VariableDialogChecksAndReopening) {
  LoadSheet(kSheet);
  Script({{848,
           {DialogAction::Press(kIdOk), DialogAction::SetText(116, "Weeks"),
            DialogAction::SetText(122, "Note"), DialogAction::Press(kIdOk),
            DialogAction::SetText(122, "Lost"), DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(Life2Dialog(0, host.get(), sheet.get(), frame.get(), 0, 0), 1);
  const auto& log = WinMessageBoxLog();
  ASSERT_EQ(log.size(), 2u);
  EXPECT_NE(log[0].text.find('1'), std::string::npos);  // field 1 is required
  EXPECT_NE(log[1].text.find('2'), std::string::npos);  // field 2 names a character column

  zv::ProcedureState& state = Open("Weeks", "Lost", "Note");
  EXPECT_EQ(Get(state, zv::kGroupCount), 6);
  Script({{848, {DialogAction::Press(kIdCancel)}}});
  EXPECT_EQ(Life2Dialog(0, host.get(), sheet.get(), frame.get(), 1, 0), 0);
  const DialogRun& run = WinDialogLog().back();
  auto field = [&run](int32_t control) {
    for (const auto& [id, text] : run.finalTexts) {
      if (id == control) return text;
    }
    return std::string("?");
  };
  EXPECT_EQ(field(116), "Weeks");
  EXPECT_EQ(field(122), "Lost");
  EXPECT_EQ(field(261), "Note");
}

// Percentiles 0 to 99.99: 100 is refused and the dialog stays open; 0 clears
// a slot. The level runs from 0.0001 to 99.9999.
TEST_F(Life2Session, OptionDialogsAndTheirRanges) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open("Weeks", "Lost", "");
  Script({{113,
           {DialogAction::SetText(141, "100"), DialogAction::Press(kIdOk),
            DialogAction::SetText(141, "90"), DialogAction::SetText(142, "0"),
            DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(Life2Opts(pane.get(), 0, 2, paneRecord.get(), 0, 0, 0), 1);
  EXPECT_EQ(WinMessageBoxLog().size(), 1u);
  EXPECT_EQ(Get(state, zv::kPercentiles, 0), 90.0);
  EXPECT_EQ(Get(state, zv::kPercentiles, 1), 0.0);
  EXPECT_EQ(Get(state, zv::kFirstPercentile), 90.0);  // the pane was rebuilt

  Script(
      {{852,
        {DialogAction::Check(107, 1), DialogAction::SetText(141, "100"), DialogAction::Press(kIdOk),
         DialogAction::SetText(141, "99.9999"), DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(Life2Opts(pane.get(), 0, 8, paneRecord.get(), 0, 0, 0), 1);
  EXPECT_EQ(Get(state, zv::kShowConfidenceLimits), 1);
  EXPECT_EQ(Get(state, zv::kConfidenceLevel), 99.9999);

  // Pane 1 has no dialog; after a failure no other pane's options open.
  WinClearMessageBoxLog();
  EXPECT_EQ(Life2Opts(pane.get(), 0, 1, paneRecord.get(), 0, 0, 0), 1);
  EXPECT_EQ(LastMessage(), LoadText(1100));
  state.status = 1069;
  EXPECT_EQ(Life2Opts(pane.get(), 0, 2, paneRecord.get(), 0, 0, 0), 0);
}

TEST_F(Life2Session, InterpretationOfEachPane) {
  LoadSheet(kSheet);
  zv::ProcedureState& state = Open("Weeks", "Lost", "Arm");
  auto join = [](std::initializer_list<std::string> s) {
    std::string text = "   ";
    for (auto it = s.begin(); it != s.end(); ++it) text += (it == s.begin() ? "" : "  ") + *it;
    return text + "\r\n\r\n";
  };
  std::string first = LoadText(8997);
  first.replace(first.find("%s"), 2, "Weeks");
  EXPECT_EQ(Interpret(state, 1), join({first, LoadText(8998), LoadText(8999), LoadText(5600),
                                       LoadText(5601), LoadText(5602)}));
  EXPECT_EQ(Interpret(state, 4), "");
  EXPECT_EQ(Interpret(state, 9), join({LoadText(8989), LoadText(8990)}));
  EXPECT_EQ(Interpret(state, 10), join({LoadText(8991), LoadText(8992)}));
  // Two groups: no limits sentence in pane 8.
  EXPECT_EQ(Interpret(state, 8), join({LoadText(8984), LoadText(8985)}));

  // Pane 2 after its build; a percentile never reached prints no estimate.
  zv::Set(state, zv::kFirstPercentile, 25.0);
  zv::Set(state, zv::kFirstPercentileEstimate, kMissingValue);
  EXPECT_EQ(Interpret(state, 2),
            join({LoadText(8977), LoadText(8978), LoadText(8979) + "25.0" + LoadText(8980) + ".",
                  LoadText(8981)}));
  zv::Set(state, zv::kFirstPercentile, kMissingValue);
  EXPECT_EQ(Interpret(state, 2), join({LoadText(8977), LoadText(8978), LoadText(8981)}));

  // Pane 3: the conclusion rests on the smaller P-value, with strict bounds.
  std::string groups = LoadText(5603);
  groups.replace(groups.find("%d"), 2, "2");
  struct Row {
    int line;
    double p;
    int32_t string;
  };
  const Row kRows[] = {{__LINE__, 0.0099, 5604},
                       {__LINE__, 0.01, 5605},
                       {__LINE__, 0.05, 5606},
                       {__LINE__, 0.0999, 5606},
                       {__LINE__, 0.1, 5607}};
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    zv::Set(state, zv::kSmallestPValue, r.p);
    EXPECT_EQ(Interpret(state, 3),
              join({LoadText(8982), LoadText(8983), groups, LoadText(r.string)}));
  }
  zv::Set(state, zv::kSmallestPValue, kMissingValue);
  EXPECT_EQ(Interpret(state, 3), join({LoadText(8982), LoadText(8983)}));

  // One group: the limits sentence, off and on with the level.
  zv::Set(state, zv::kGroupCount, 1);
  EXPECT_EQ(Interpret(state, 8), join({LoadText(8984), LoadText(8985), LoadText(8986)}));
  zv::Set(state, zv::kShowConfidenceLimits, 1);
  EXPECT_EQ(Interpret(state, 8),
            join({LoadText(8984), LoadText(8985), LoadText(8987) + "95.0" + LoadText(8988)}));
}

}  // namespace
}  // namespace zvtest
