// Inputs that once broke the statistical functions, kept in
// tests/data/failures as stats-*, replayed through the fuzz target's check.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "stats_properties.h"

namespace {

TEST(StatisticsFailures, KeptInputsPassTheFuzzCheck) {
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(ZV_TEST_DATA_DIR) + "/failures")) {
    const std::string name = entry.path().filename().string();
    if (name.rfind("stats-", 0) != 0) continue;
    SCOPED_TRACE(name);
    std::ifstream in(entry.path(), std::ios::binary);
    const std::vector<uint8_t> input((std::istreambuf_iterator<char>(in)),
                                     std::istreambuf_iterator<char>());
    EXPECT_EQ(zvfuzz::CheckStatistics(input.data(), input.size(), 0), "");
  }
}

}  // namespace
