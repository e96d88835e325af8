// The zivara command's own parsing: --opts settings and session lines; the
// line ends of the pane text it prints.
#include <gtest/gtest.h>

#include <tuple>

#include "analysis_run.h"
#include "pane_output.h"
#include "session_script.h"

namespace {

TEST(ZivaraParsing, ControlSettings) {
  struct Row {
    int line;
    const char* text;
    bool ok;
    std::vector<std::tuple<int32_t, std::string, std::string>> settings;  // number, name, value
  };
  const Row rows[] = {
      {__LINE__, "141=50", true, {{141, "", "50"}}},
      {__LINE__, "176=1,141=20", true, {{176, "", "1"}, {141, "", "20"}}},
      // A comma not followed by CONTROL= belongs to the value.
      {__LINE__, "141=1,5,107=1", true, {{141, "", "1,5"}, {107, "", "1"}}},
      {__LINE__, "141=", true, {{141, "", ""}}},
      {__LINE__, "141=a=b", true, {{141, "", "a=b"}}},
      {__LINE__, "141=1,,107=1", true, {{141, "", "1,"}, {107, "", "1"}}},
      // Controls by name, mixed with numbers; a name is a letter, then
      // letters, digits and '-'.
      {__LINE__, "limits=on,level=1,5", true, {{0, "limits", "on"}, {0, "level", "1,5"}}},
      {__LINE__, "p-2=3,141=x", true, {{0, "p-2", "3"}, {141, "", "x"}}},
      {__LINE__, "level=1,2b=3", true, {{0, "level", "1,2b=3"}}},
      {__LINE__, "", false, {}},
      {__LINE__, "141", false, {}},
      {__LINE__, "=1", false, {}},
      {__LINE__, "2b=1", false, {}},
      {__LINE__, "a b=1", false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    std::vector<zivara::ControlSetting> settings;
    std::string error;
    ASSERT_EQ(zivara::ParseSettings(row.text, &settings, &error), row.ok) << error;
    if (!row.ok) {
      EXPECT_FALSE(error.empty());
      continue;
    }
    std::vector<std::tuple<int32_t, std::string, std::string>> got;
    for (const auto& s : settings) got.emplace_back(s.control, s.name, s.value);
    EXPECT_EQ(got, row.settings);
  }
}

TEST(ZivaraParsing, SessionLines) {
  struct Row {
    int line;
    const char* text;
    bool ok;
    std::vector<std::string> words;
  };
  const Row rows[] = {
      {__LINE__, "dialog DotDiagram v1=Weight", true, {"dialog", "DotDiagram", "v1=Weight"}},
      {__LINE__, "  begin  \r", true, {"begin"}},
      {__LINE__, "dialog X select=\"Height > 60\"", true, {"dialog", "X", "select=Height > 60"}},
      {__LINE__, "\"select=Height > 60\" ok", true, {"select=Height > 60", "ok"}},
      {__LINE__,
       "expect pane 1 contains \"a \\\"b\\\" \\\\ c\"",
       true,
       {"expect", "pane", "1", "contains", "a \"b\" \\ c"}},
      {__LINE__,
       "expect pane 1 contains \"x\\r\\ny\"",
       true,
       {"expect", "pane", "1", "contains", "x\r\ny"}},
      {__LINE__, "item 1 # a comment", true, {"item", "1"}},
      {__LINE__, "add-column A a#b", true, {"add-column", "A", "a#b"}},
      {__LINE__, "# only a comment", true, {}},
      {__LINE__, "v1=\"\"", true, {"v1="}},
      {__LINE__, "select=\"Height", false, {}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    std::vector<std::string> words;
    std::string error;
    ASSERT_EQ(zivara::SplitSessionLine(row.text, &words, &error), row.ok);
    if (row.ok) {
      EXPECT_EQ(words, row.words);
    }
  }
}

// Only a carriage return that stands before a line feed goes; a lone one,
// even right before such a pair, stays.
TEST(ZivaraParsing, UnixLines) {
  struct Row {
    int line;
    std::string_view text, expected;
  };
  const Row rows[] = {
      {__LINE__, "", ""},
      {__LINE__, "a\r\nb\r\n", "a\nb\n"},
      {__LINE__, "\r", "\r"},
      {__LINE__, "a\r\r\nb\r", "a\r\nb\r"},
      {__LINE__, "\r\n\r\n", "\n\n"},
      {__LINE__, "no line end", "no line end"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    EXPECT_EQ(zivara::UnixLines(row.text), row.expected);
  }
}

}  // namespace
