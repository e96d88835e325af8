// Inputs that once broke the sheet, kept in tests/data/failures, replayed
// through the checks of the fuzz targets: csv-* through the CSV reader and
// the save path, expression-* through the expression parser. Random CSV
// texts go through the CSV reader's check, which compares the reader with a
// plain reading of the rules.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

#include "grid_fixture.h"
#include "sheet_properties.h"

namespace {

using FailuresTest = GridTest;

std::string Read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

TEST_F(FailuresTest, KeptInputsPassTheFuzzChecks) {
  int replayed = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(ZV_TEST_DATA_DIR) + "/failures")) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("stats-", 0) == 0) continue;  // replayed by the statistics tests
    SCOPED_TRACE(name);
    const std::string input = Read(entry.path());
    if (name.rfind("csv-", 0) == 0) {
      EXPECT_EQ(zvfuzz::CheckCsv(input), "");
      EXPECT_EQ(zvfuzz::CheckSaveFile(input, ::testing::TempDir() + "zvgrid_failure_" +
                                                 std::to_string(getpid()) + ".csv"),
                "");
    } else if (name.rfind("expression-", 0) == 0) {
      zvfuzz::LoadExpressionSheet();
      EXPECT_EQ(zvfuzz::CheckExpression(input), "");
    } else {
      ADD_FAILURE() << "a kept input without csv- or expression- in front";
    }
    ++replayed;
  }
  EXPECT_GE(replayed, 2);
}

// Texts made of the pieces that the reader treats specially: quotes, line
// ends, blanks, missing codes, numbers at the edges of a double's range,
// texts that look like numbers.
TEST_F(FailuresTest, RandomTextsReadAsTheRulesSay) {
  const std::vector<std::string> pieces = {
      ",",    ",",    ",",     "\n",     "\r\n",   "\r",           "\"",
      "\"\"", " ",    "\t",    "1",      "-2.5",   "+.5",          "3.",
      "1e5",  "1E-3", "1e309", "-1e400", "1e-310", "1e-400",       "-0",
      "0x1",  "1e",   "--1",   "inf",    "-NaN",   "nan",          "NA",
      "NaN",  ".",    "na",    "x",      "x y",    "\xEF\xBB\xBF", "-32768",
      "0",    "-",    "abc",   "\"1\"",  "\"NA\"", "\"a\"\"b\"",   "A",
      "a",    "B"};
  std::mt19937 random(20261123);
  int refused = 0;
  for (int text = 0; text < 3000; ++text) {
    std::string csv = random() % 2 ? "A,B,C\n" : "";
    const size_t length = random() % 40;
    for (size_t i = 0; i < length; ++i) csv += pieces[random() % pieces.size()];
    SCOPED_TRACE(csv);
    ASSERT_EQ(zvfuzz::CheckCsv(csv), "");
    std::string error;
    refused += !zvgrid::LoadCsvText(csv, &error);
  }
  // Both accepted and refused texts were compared.
  EXPECT_GT(refused, 300);
  EXPECT_LT(refused, 2700);
}

}  // namespace
