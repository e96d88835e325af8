// Field exchange, range checks and their messages, run inside a real modal
// dialog driven by a scripted user.
#include "services/dialog_exchange.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "frame/module_state.h"
#include "support/module_fixture.h"

namespace {

using zvtest::ModuleFixture;

// A dialog on the two-field variable template whose OK runs `save`.
class ExchangeDialog : public WinDialog {
 public:
  explicit ExchangeDialog(std::function<void(zv::DataExchange&)> exchange)
      : WinDialog(9969), exchange_(std::move(exchange)) {}
  bool OnInitDialog() override {
    zv::DataExchange dx{*this, false};
    exchange_(dx);
    return true;
  }
  void OnOK() override {
    zv::DataExchange dx{*this, true};
    exchange_(dx);
    if (!dx.failed) EndDialog(kIdOk);
  }

 private:
  std::function<void(zv::DataExchange&)> exchange_;
};

class ExchangeTest : public ModuleFixture {};

TEST_F(ExchangeTest, NumbersParseWithTheLocaleAndRefuseGarbage) {
  struct Row {
    int line;
    const char* text;
    bool ok;
    double value;
  };
  constexpr Row kRows[] = {
      {__LINE__, "1.5", true, 1.5}, {__LINE__, " 2.5e3 ", true, 2500.0},
      {__LINE__, "0", true, 0.0},   {__LINE__, "-3", true, -3.0},
      {__LINE__, "1.5x", false, 0}, {__LINE__, "abc", false, 0},
      {__LINE__, "0abc", false, 0}, {__LINE__, ".0", false, 0},  // 0 not from a leading '0'
      {__LINE__, "", false, 0},     {__LINE__, "inf", false, 0},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    double v = -1.0;
    EXPECT_EQ(zv::ParseDialogNumber(r.text, &v), r.ok);
    if (r.ok) {
      EXPECT_EQ(v, r.value);
    }
  }
  zv::gDecimalChar = ',';
  double v = 0.0;
  EXPECT_TRUE(zv::ParseDialogNumber("1,5", &v));
  EXPECT_EQ(v, 1.5);
  EXPECT_EQ(zv::FormatDialogNumber(1.5), "1,5");
  zv::gDecimalChar = '.';
  EXPECT_EQ(zv::FormatDialogNumber(0.1), "0.1");
  EXPECT_EQ(zv::FormatDialogNumber(1.0 / 3.0), "0.333333333333333");
}

TEST_F(ExchangeTest, FailedSaveShowsMessageFocusesFieldAndKeepsDialogOpen) {
  double level = 95.0;
  int32_t count = 50;
  ExchangeDialog dialog([&](zv::DataExchange& dx) {
    zv::ExchangeDouble(dx, 116, &level);
    zv::CheckDoubleRange(dx, 116, level, 0.0001, 99.9999);
    zv::ExchangeInt(dx, 117, &count);
    zv::CheckIntRange(dx, 117, count, 2, 1000);
  });
  Script({{9969,
           {DialogAction::SetText(116, "1.5x"), DialogAction::Press(kIdOk),
            DialogAction::SetText(116, "100"), DialogAction::Press(kIdOk),
            DialogAction::SetText(116, "99.9999"), DialogAction::SetText(117, "1001"),
            DialogAction::Press(kIdOk),
            // Whole numbers beyond the int range are range faults too.
            DialogAction::SetText(117, "12345678901234567890"), DialogAction::Press(kIdOk),
            DialogAction::SetText(117, "-99999999999"), DialogAction::Press(kIdOk),
            DialogAction::SetText(117, "1000"), DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(dialog.DoModal(), kIdOk);
  const auto& boxes = WinMessageBoxLog();
  ASSERT_EQ(boxes.size(), 5u);
  EXPECT_EQ(boxes[3].text, "Please enter a whole number between 2 and 1000.");
  EXPECT_EQ(boxes[4].text, "Please enter a whole number between 2 and 1000.");
  EXPECT_EQ(boxes[0].text, "Please enter a number.");
  EXPECT_EQ(boxes[1].text, "Please enter a number between 0.0001 and 99.9999.");
  EXPECT_EQ(boxes[2].text, "Please enter a whole number between 2 and 1000.");
  EXPECT_EQ(boxes[1].style & 0xF0u, static_cast<uint32_t>(kMbIconExclamation));
  EXPECT_EQ(level, 99.9999);
  EXPECT_EQ(count, 1000);
}

TEST_F(ExchangeTest, LoadSetsTextOnlyWhenItDiffers) {
  double value = 2.5;
  ExchangeDialog dialog([&](zv::DataExchange& dx) { zv::ExchangeDouble(dx, 116, &value); });
  Script({{9969, {DialogAction::Press(kIdOk)}}});
  EXPECT_EQ(dialog.DoModal(), kIdOk);
  EXPECT_EQ(value, 2.5);
}

TEST_F(ExchangeTest, TextLengthLimit) {
  EXPECT_TRUE(zv::CheckTextLength(std::string(64, 'a'), 64));
  EXPECT_FALSE(zv::CheckTextLength(std::string(65, 'a'), 64));
  EXPECT_EQ(LastMessage(), "The text is too long: at most 64 characters are allowed.");
}

}  // namespace
