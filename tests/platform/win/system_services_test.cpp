#include <gtest/gtest.h>

#include "zvwin/zvwin.h"

namespace {

TEST(MessageBox, DefaultAnswersAndTheResponderAreRecorded) {
  WinClearMessageBoxLog();
  WinSetMessageBoxResponder(nullptr);
  WindowRef owner = WinCreateWindow("frame");
  EXPECT_EQ(WinMessageBox(owner, "Saved.", "Zivara Suite", kMbOk | kMbIconInformation), kIdOk);
  EXPECT_EQ(WinMessageBox(0, "Replace?", "Zivara Suite", kMbYesNo | kMbIconQuestion | kMbTaskModal),
            kIdNo);
  WinSetMessageBoxResponder([](const MessageBoxCall& call) {
    return call.text == "Replace?" ? kIdYes : 0;  // 0 leaves the default
  });
  EXPECT_EQ(WinMessageBox(0, "Replace?", "Zivara Suite", kMbYesNo), kIdYes);
  EXPECT_EQ(WinMessageBox(0, "Other?", "Zivara Suite", kMbYesNo), kIdNo);
  WinSetMessageBoxResponder(nullptr);

  const std::vector<MessageBoxCall>& log = WinMessageBoxLog();
  ASSERT_EQ(log.size(), 4u);
  EXPECT_EQ(log[0].owner, owner);
  EXPECT_EQ(log[0].text, "Saved.");
  EXPECT_EQ(log[0].caption, "Zivara Suite");
  EXPECT_EQ(log[0].style, uint32_t{kMbOk | kMbIconInformation});
  EXPECT_EQ(log[1].style, uint32_t{kMbYesNo | kMbIconQuestion | kMbTaskModal});
  EXPECT_EQ(log[2].answer, kIdYes);
  EXPECT_EQ(log[3].answer, kIdNo);
  WinClearMessageBoxLog();
  EXPECT_TRUE(WinMessageBoxLog().empty());
  WinDestroyWindow(owner);
}

TEST(VersionQuery, NeedsTheRecordSizeAndReportsThePlatform) {
  WinOsVersionInfo info{};
  EXPECT_EQ(WinGetVersionEx(&info), 0);
  info.size = 148;
  ASSERT_EQ(WinGetVersionEx(&info), 1);
  EXPECT_EQ(info.platformId, 2u);
  WinSetPlatformId(0);
  ASSERT_EQ(WinGetVersionEx(&info), 1);
  EXPECT_EQ(info.platformId, 0u);
  WinSetPlatformId(2);
}

TEST(Windows, DestroyedWindowIsNoLongerActive) {
  WindowRef pane = WinCreateWindow("pane");
  WinSetActiveWindow(pane);
  EXPECT_EQ(WinGetActiveWindow(), pane);
  WinDestroyWindow(pane);
  EXPECT_EQ(WinGetActiveWindow(), 0u);
  WinSetActiveWindow(pane);
  EXPECT_EQ(WinGetActiveWindow(), 0u) << "a destroyed window became active";
}

}  // namespace
