// Status tables: the string each summary pane shows for a status, as the
// families' failure tables give them.
#include "services/report_pane.h"

#include <gtest/gtest.h>

namespace {

TEST(StatusTables, EachStatusFindsItsString) {
  struct Row {
    int line;
    int32_t status, life, chart;
  };
  constexpr Row kRows[] = {
      {__LINE__, 1, 1005, 1005},    {__LINE__, 2, 1004, 1004},    {__LINE__, 3, 1007, 3023},
      {__LINE__, 4, 4, 3903},       {__LINE__, 1042, 1042, 1042}, {__LINE__, 1004, 1004, 1004},
      {__LINE__, 1069, 1069, 1025}, {__LINE__, 1143, 1143, 1025},
  };
  for (const Row& r : kRows) {
    SCOPED_TRACE(r.line);
    EXPECT_EQ(zv::StatusString(zv::kLifeStatusTexts, r.status), r.life);
    EXPECT_EQ(zv::StatusString(zv::kChartStatusTexts, r.status), r.chart);
  }
}

}  // namespace
