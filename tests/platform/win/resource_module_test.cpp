#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "platform/win/resource_folder.h"
#include "zvwin/zvwin.h"

namespace {

using testing::HasSubstr;

// Loads the folder and returns what the loader said on stderr.
std::string LoadCapturing(ModuleRef* module) {
  testing::internal::CaptureStderr();
  *module = WinLoadLibrary("KEEL4RES.DLL");
  return testing::internal::GetCapturedStderr();
}

TEST(ResourceModule, StringTableWithEscapesAndReportedFaults) {
  TempResourceFolder folder;
  folder.Write("strings/a.txt",
               "# first area\n"
               "\n"
               "1001 \"Plain text.\"\n"
               "  1002   \"Tab\\there, quote \\\" and backslash \\\\ end\\r\\n\"  \n"
               "1003 \"unterminated\n"
               "1004 \"bad \\q escape\"\n"
               "x1005 \"not a number\"\n"
               "1006 \"trailing\" junk\n"
               "70000 \"too big\"\n"
               "1007 \"\"\r\n");
  folder.Write("strings/b.txt", "1001 \"Second definition.\"\n1008 \"Still loaded.\"\n");
  ModuleRef module = 0;
  const std::string said = LoadCapturing(&module);
  ASSERT_NE(module, 0u);

  struct Row {
    int line;
    uint32_t id;
    std::optional<std::string> text;
  };
  const Row rows[] = {
      {__LINE__, 1001, "Plain text."},
      {__LINE__, 1002, "Tab\there, quote \" and backslash \\ end\r\n"},
      {__LINE__, 1003, std::nullopt},
      {__LINE__, 1004, std::nullopt},
      {__LINE__, 1006, std::nullopt},
      {__LINE__, 1007, ""},
      {__LINE__, 1008, "Still loaded."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(WinFindString(module, row.id), row.text);
  }

  const std::string a = (folder.path() / "strings" / "a.txt").string();
  const std::string b = (folder.path() / "strings" / "b.txt").string();
  EXPECT_THAT(said, HasSubstr(a + ":5: the closing double quote is missing"));
  EXPECT_THAT(said, HasSubstr(a + ":6: unknown escape \\q"));
  EXPECT_THAT(said, HasSubstr(a + ":7: \"x1005\" is not a number"));
  EXPECT_THAT(said, HasSubstr(a + ":8: unexpected text after the closing quote"));
  EXPECT_THAT(said, HasSubstr(a + ":9: number 70000 is out of range"));
  EXPECT_THAT(said, HasSubstr(b + ":1: string 1001 is already defined at a.txt:3"));
  WinFreeLibrary(module);
}

TEST(ResourceModule, LoadStringCutsAndMissingNumbersAreRecorded) {
  TempResourceFolder folder;
  folder.Write("strings/a.txt", "57344 \"Zivara Suite\"\n");
  ModuleRef module = WinLoadLibrary("keel4res.dll");
  ASSERT_NE(module, 0u);
  WinClearMissingStrings();

  char buffer[44];
  EXPECT_EQ(WinLoadString(module, 57344, buffer, sizeof buffer), 12);
  EXPECT_STREQ(buffer, "Zivara Suite");
  EXPECT_EQ(WinLoadString(module, 57344, buffer, 7), 6);
  EXPECT_STREQ(buffer, "Zivara");
  EXPECT_TRUE(WinMissingStrings().empty());

  EXPECT_EQ(WinLoadString(module, 4242, buffer, sizeof buffer), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_FALSE(WinFindString(module, 4343));
  EXPECT_EQ(WinMissingStrings(), (std::vector<uint32_t>{4242, 4343}));
  WinClearMissingStrings();
  WinFreeLibrary(module);
  EXPECT_FALSE(WinFindString(module, 57344)) << "a freed module still answered";
  WinClearMissingStrings();
}

TEST(ResourceModule, OnlyTheResourceModuleLoads) {
  TempResourceFolder folder;
  EXPECT_EQ(WinLoadLibrary("other.dll"), 0u);
  EXPECT_EQ(WinLoadLibrary(nullptr), 0u);
  ModuleRef module = WinLoadLibrary("C:\\Zivara\\Keel4Res.Dll");
  EXPECT_NE(module, 0u);
  WinFreeLibrary(module);
  setenv("ZIVARA_RESOURCES", (folder.path() / "absent").c_str(), 1);
  testing::internal::CaptureStderr();
  EXPECT_EQ(WinLoadLibrary("keel4res.dll"), 0u);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("does not exist"));
}

TEST(ResourceModule, DialogTemplatesAndTheirFaults) {
  TempResourceFolder folder;
  folder.Write("dialogs/848.dlg",
               "# variable dialog\n"
               "DIALOG 848 \"Life \\\"2\\\"\"\n"
               "CONTROL 101 EDIT \"start\"\n"
               "CONTROL 201 RADIO \"Rank\" GROUP NAME method\n"
               "CONTROL 202 RADIO \"Likelihood\"\n"
               "CONTROL 301 CHECKBOX \"Sort\" GROUP DISABLED NAME sort-by\n"
               "CONTROL -1 STATIC \"Label\"\n"
               "CONTROL -1 STATIC \"Label 2\"\n"
               "CONTROL 101 BUTTON \"duplicate\"\n"
               "CONTROL 102 SLIDER \"unknown kind\"\n"
               "CONTROL 103 BUTTON \"x\" HIDDEN\n"
               "BUTTON 104\n"
               "CONTROL 105 EDIT \"\" NAME method\n"
               "CONTROL 106 EDIT \"\" NAME 2nd\n"
               "CONTROL 107 EDIT \"\" NAME\n"
               "CONTROL 1 BUTTON \"OK\"\n");
  folder.Write("dialogs/900.dlg", "DIALOG 901 \"wrong file\"\nCONTROL 1 BUTTON \"OK\"\n");
  folder.Write("dialogs/902.dlg", "CONTROL 1 BUTTON \"OK\"\n");
  ModuleRef module = 0;
  const std::string said = LoadCapturing(&module);
  ASSERT_NE(module, 0u);

  const DialogTemplate* dialog = WinFindDialogTemplate(module, 848);
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->caption, "Life \"2\"");
  struct Row {
    int32_t id;
    ControlKind kind;
    const char* text;
    bool group, disabled;
    const char* name;
  };
  const Row expected[] = {
      {101, ControlKind::kEdit, "start", false, false, ""},
      {201, ControlKind::kRadio, "Rank", true, false, "method"},
      {202, ControlKind::kRadio, "Likelihood", false, false, ""},
      {301, ControlKind::kCheckBox, "Sort", true, true, "sort-by"},
      {-1, ControlKind::kStatic, "Label", false, false, ""},
      {-1, ControlKind::kStatic, "Label 2", false, false, ""},
      {1, ControlKind::kButton, "OK", false, false, ""},
  };
  ASSERT_EQ(dialog->controls.size(), std::size(expected));
  for (size_t i = 0; i < std::size(expected); ++i) {
    SCOPED_TRACE(i);
    const ControlTemplate& c = dialog->controls[i];
    EXPECT_EQ(c.id, expected[i].id);
    EXPECT_EQ(c.kind, expected[i].kind);
    EXPECT_EQ(c.text, expected[i].text);
    EXPECT_EQ(c.groupStart, expected[i].group);
    EXPECT_EQ(c.disabled, expected[i].disabled);
    EXPECT_EQ(c.name, expected[i].name);
  }
  EXPECT_EQ(WinFindDialogTemplate(module, 900), nullptr);
  EXPECT_EQ(WinFindDialogTemplate(module, 901), nullptr);
  EXPECT_EQ(WinFindDialogTemplate(module, 902), nullptr);

  const std::string file = (folder.path() / "dialogs" / "848.dlg").string();
  EXPECT_THAT(said, HasSubstr(file + ":9: control 101 is already defined"));
  EXPECT_THAT(said, HasSubstr(file + ":10: unknown control kind \"SLIDER\""));
  EXPECT_THAT(said, HasSubstr(file + ":11: unknown flag \"HIDDEN\""));
  EXPECT_THAT(said, HasSubstr(file + ":12: expected CONTROL"));
  EXPECT_THAT(said, HasSubstr(file + ":13: the name method is already taken"));
  EXPECT_THAT(said, HasSubstr(file + ":14: NAME takes a word"));
  EXPECT_THAT(said, HasSubstr(file + ":15: NAME takes a word"));
  EXPECT_THAT(said, HasSubstr("900.dlg:1: dialog 901 must be in the file 901.dlg"));
  EXPECT_THAT(said, HasSubstr("902.dlg:1: the first line must be DIALOG"));
  WinFreeLibrary(module);
}

// The project's own resource folder must load without a single complaint,
// with the four arrow images that the variable dialogs use.
TEST(ResourceModule, ProjectResourcesLoadCleanly) {
  setenv("ZIVARA_RESOURCES", ZV_RESOURCE_DIR, 1);
  ModuleRef module = 0;
  const std::string said = LoadCapturing(&module);
  ASSERT_NE(module, 0u);
  EXPECT_EQ(said, "");
  for (const char* name : {"RARROWU", "RARROWD", "RARROWF", "RARROWX"}) {
    SCOPED_TRACE(name);
    uint32_t ref = WinLoadImage(module, name, true);
    ASSERT_NE(ref, 0u);
    const auto* image = static_cast<const WinImage*>(WinResolve(ref));
    EXPECT_GT(image->width, 0);
    EXPECT_EQ(image->pixels.size(), static_cast<size_t>(image->width * image->height));
  }
  WinFreeLibrary(module);
}

}  // namespace
