// Inputs that once broke the sheet, kept in tests/data/failures, replayed
// through the checks of the fuzz targets: csv-* through the CSV reader,
// expression-* through the expression parser.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
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

}  // namespace
