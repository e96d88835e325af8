// The library's dynamic symbol table holds exactly the export table's names.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

#include "protocol/family_entries.h"  // before the table, which is read inside a function

namespace {

std::set<std::string> TableNames() {
  std::set<std::string> names;
#define ZV_EXPORT(name, ordinal) names.insert(#name);
#include "protocol/export_table.h"
#undef ZV_EXPORT
  return names;
}

TEST(ExportTable, LibraryExportsExactlyTheTable) {
  const std::string library = std::string(ZV_BIN_DIR) + "/libzvkeel4.so";
  const std::string command = "nm -D --defined-only " + library + " 2>/dev/null";
  FILE* pipe = popen(command.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::set<std::string> exported;
  char line[512];
  while (std::fgets(line, sizeof line, pipe) != nullptr) {
    char type = 0;
    char name[400];
    // "0000000000012340 T Name"
    if (std::sscanf(line, "%*s %c %399s", &type, name) == 2 && (type == 'T' || type == 'W')) {
      exported.insert(name);
    }
  }
  ASSERT_EQ(pclose(pipe), 0) << "nm failed on " << library;
  EXPECT_EQ(exported, TableNames());
  // Five module-level exports and the entry count of each family's line: a
  // name that two families share, or a form that loses a name, shows here.
  constexpr size_t kExpected = 5
#define ZV_FAMILY(Name, entries) +entries
#include "protocol/family_list.h"
#undef ZV_FAMILY
      ;
  EXPECT_EQ(TableNames().size(), kExpected);
}

}  // namespace
