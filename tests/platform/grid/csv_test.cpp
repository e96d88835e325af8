// CSV reading and writing of the sheet.
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "grid_fixture.h"

namespace {

using zvgrid::Column;
using zvgrid::Columns;
using zvgrid::kMissing;

using CsvTest = GridTest;
using namespace std::string_literals;

TEST_F(CsvTest, TypesColumnsByTheirNonEmptyCells) {
  Load(
      "Weight,Group,Empty,Mixed,Code\n"
      "70.5,a,,1,\"01\"\n"
      ",b,,x,\"02\"\n"
      "-1e3,,,2,\n");
  const std::vector<Column>& columns = Columns();
  ASSERT_EQ(columns.size(), 5u);
  EXPECT_EQ(columns[0].type, 'N');
  EXPECT_EQ(columns[0].numbers, (std::vector<double>{70.5, kMissing, -1000.0}));
  EXPECT_EQ(columns[1].type, 'C');
  EXPECT_EQ(columns[1].texts, (std::vector<std::string>{"a", "b", ""}));
  EXPECT_EQ(columns[1].width, 1);
  // No value at all: numeric, every cell missing.
  EXPECT_EQ(columns[2].type, 'N');
  EXPECT_EQ(columns[2].numbers, (std::vector<double>{kMissing, kMissing, kMissing}));
  // One cell that is not a number makes the whole column text.
  EXPECT_EQ(columns[3].type, 'C');
  EXPECT_EQ(columns[3].texts, (std::vector<std::string>{"1", "x", "2"}));
  // Numbers in quotes are texts.
  EXPECT_EQ(columns[4].type, 'C');
  EXPECT_EQ(columns[4].width, 2);
  EXPECT_EQ(zvgrid::RowCount(), 3);
  // Short rows are padded; empty fields beyond the header are accepted.
  Load("A,B,C\n1,x\n2,y,3,,\n4\n");
  EXPECT_EQ(Columns()[0].numbers, (std::vector<double>{1, 2, 4}));
  EXPECT_EQ(Columns()[1].texts, (std::vector<std::string>{"x", "y", ""}));
  EXPECT_EQ(Columns()[2].numbers, (std::vector<double>{kMissing, 3, kMissing}));
}

TEST_F(CsvTest, ReadsQuotesLineEndsAndBlanks) {
  struct Row {
    int line;
    std::string csv;
    std::vector<std::string> texts;  // column B
  };
  const Row rows[] = {
      {__LINE__, "A,B\r\n1,x\r\n2,y\r\n", {"x", "y"}},
      {__LINE__, "A,B\n1,x\n2,y", {"x", "y"}},
      {__LINE__, "A,B\r1,x\r2,y\r", {"x", "y"}},
      {__LINE__,
       "\xEF\xBB\xBF"
       "A,B\n1,x\n2,y\n",
       {"x", "y"}},
      {__LINE__, "A,B\n1,\"x,\"\"q\"\"\"\n2,\"two\r\nlines\"\n", {"x,\"q\"", "two\r\nlines"}},
      {__LINE__, "A,B\n1,  x y  \n2,\" padded \"  \n", {"x y", " padded "}},
      {__LINE__, "A,B\n\n1,x\n   \n2,y\n\n\n", {"x", "y"}},
      {__LINE__, "A,B\n1,5'11\"\n2,y\n", {"5'11\"", "y"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Load(row.csv);
    ASSERT_EQ(Columns().size(), 2u);
    EXPECT_EQ(Columns()[0].name, "A");
    EXPECT_EQ(Columns()[0].numbers, (std::vector<double>{1.0, 2.0}));
    EXPECT_EQ(Columns()[1].texts, row.texts);
  }
}

TEST_F(CsvTest, TypesEachCellByOneGrammar) {
  // 'N' a number, 'M' missing, 'C' a text, 'R' the file is refused.
  struct Row {
    int line;
    std::string cell;
    char kind;
    double value;
  };
  const Row rows[] = {
      {__LINE__, "12", 'N', 12.0},     {__LINE__, "+1.5", 'N', 1.5},
      {__LINE__, "-.25", 'N', -0.25},  {__LINE__, "3.", 'N', 3.0},
      {__LINE__, "1E-2", 'N', 0.01},   {__LINE__, "2e+3", 'N', 2000.0},
      {__LINE__, "1e-400", 'N', 0},    {__LINE__, "-0", 'N', -0.0},
      {__LINE__, "0x10", 'C', 0},      {__LINE__, "1e", 'C', 0},
      {__LINE__, "1 2", 'C', 0},       {__LINE__, "--1", 'C', 0},
      {__LINE__, "+-1", 'C', 0},       {__LINE__, "1.2.3", 'C', 0},
      {__LINE__, "na", 'C', 0},        {__LINE__, "\"NA\"", 'C', 0},
      {__LINE__, "\"12\"", 'C', 0},    {__LINE__, "NA", 'M', 0},
      {__LINE__, " NaN ", 'M', 0},     {__LINE__, ".", 'M', 0},
      {__LINE__, "\"\"", 'M', 0},      {__LINE__, "1e400", 'R', 0},
      {__LINE__, "-1e309", 'R', 0},    {__LINE__, "inf", 'R', 0},
      {__LINE__, "-Infinity", 'R', 0}, {__LINE__, "nan", 'R', 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    std::string error;
    const bool loaded = zvgrid::LoadCsvText("A\n7\n" + row.cell + "\n", &error);
    ASSERT_EQ(loaded, row.kind != 'R') << error;
    if (!loaded) {
      EXPECT_EQ(error,
                "Line 3: column \"A\" holds \"" + row.cell + "\", which is not a finite number.");
    } else if (row.kind == 'C') {
      ASSERT_EQ(Columns()[0].type, 'C');
      EXPECT_EQ(Columns()[0].texts[0], "7");
      EXPECT_EQ(Columns()[0].textRow, 2);
    } else {
      ASSERT_EQ(Columns()[0].type, 'N');
      const double value = row.kind == 'M' ? kMissing : row.value;
      EXPECT_EQ(Columns()[0].numbers, (std::vector<double>{7.0, value}));
      EXPECT_EQ(std::signbit(Columns()[0].numbers[1]), std::signbit(value));
    }
  }
}

TEST_F(CsvTest, MissingCodesAndTheCellThatMakesAColumnText) {
  // A text column keeps its cells exactly, also those before its first text;
  // missing codes are empty texts there, and a cell that is not finite is an
  // ordinary text.
  Load("Dose,Group,Size\n1.50,NA,1\n2,b,2\nNA,\"NA\",1e309\n.,a, n/a \n");
  const std::vector<Column>& columns = Columns();
  EXPECT_EQ(columns[0].numbers, (std::vector<double>{1.5, 2.0, kMissing, kMissing}));
  EXPECT_EQ(columns[1].texts, (std::vector<std::string>{"", "b", "NA", "a"}));
  EXPECT_EQ(columns[2].texts, (std::vector<std::string>{"1", "2", "1e309", "n/a"}));
  EXPECT_EQ(columns[2].width, 5);
  EXPECT_EQ(columns[1].textRow, 2);
  EXPECT_EQ(columns[1].textCell, "b");
  EXPECT_EQ(columns[2].textRow, 4);
  EXPECT_EQ(columns[2].textCell, "n/a");
  EXPECT_FALSE(columns[2].textQuoted);
  // Texts that would read back as missing or as numbers keep their quotes.
  const std::string saved = zvgrid::SaveCsvText();
  EXPECT_EQ(saved, "Dose,Group,Size\r\n1.5,,\"1\"\r\n2,b,\"2\"\r\n,\"NA\",\"1e309\"\r\n,a,n/a\r\n");

  zvgrid::SetMissingCodes(zvgrid::ParseMissingCodes(" -99 ,, n/a"));
  EXPECT_EQ(zvgrid::MissingCodes(), (std::vector<std::string>{"-99", "n/a"}));
  Load("A,B\n-99,NA\n3,n/a\n");
  EXPECT_EQ(Columns()[0].numbers, (std::vector<double>{kMissing, 3.0}));
  EXPECT_EQ(Columns()[1].texts, (std::vector<std::string>{"NA", ""}));
  EXPECT_EQ(Columns()[1].width, 2);
  zvgrid::SetMissingCodes({});
  Load("A\n\"7\"\n.\n");
  EXPECT_EQ(Columns()[0].texts, (std::vector<std::string>{"7", "."}));
  EXPECT_TRUE(Columns()[0].textQuoted);
}

TEST_F(CsvTest, RefusesMalformedInputNamingTheLine) {
  struct Row {
    int line;
    std::string csv;
    std::string error;
  };
  const std::string wide = std::string(33, 'n');
  std::string manyColumns = "c1";
  for (int i = 2; i <= 257; ++i) manyColumns += ",c" + std::to_string(i);
  const Row rows[] = {
      {__LINE__, "A,a\n1,2\n", "Line 1: the name \"a\" appears twice."},
      {__LINE__, "\n\nA,,B\n", "Line 3: column 2 has no name."},
      {__LINE__, "A, \"\" \n", "Line 1: column 2 has no name."},
      {__LINE__, wide + "\n", "Line 1: the name \"" + wide + "\" is longer than 32 characters."},
      {__LINE__, manyColumns + "\n",
       "Line 1: the header names 257 columns; a sheet holds at most 256."},
      {__LINE__, "A,B\n1,2\n3,4,5\n", "Line 3: 3 fields, but the header names 2 columns."},
      {__LINE__, "A\n1\n\"two\nlines\n", "Line 3: a quoted field is not closed."},
      {__LINE__, "A\n\"x\"y\n", "Line 2: text follows the closing quote of a field."},
      {__LINE__, "A\n1\n2\0\n"s, "Line 3: the text holds a zero byte."},
      {__LINE__, "A\n" + std::string(128, 'x') + "\n",
       "Line 2: the cell of column \"A\" is longer than 127 characters."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Load("Kept\n1\n");
    std::string error;
    EXPECT_FALSE(zvgrid::LoadCsvText(row.csv, &error));
    EXPECT_EQ(error, row.error);
    // A refused file leaves the sheet as it was.
    ASSERT_EQ(Columns().size(), 1u);
    EXPECT_EQ(Columns()[0].name, "Kept");
  }
}

TEST_F(CsvTest, AcceptsTheLimits) {
  std::string header = "c1";
  for (int i = 2; i <= 256; ++i) header += ",c" + std::to_string(i);
  Load(header + "\n" + std::string(127, 'x') + "\n");
  EXPECT_EQ(Columns().size(), 256u);
  EXPECT_EQ(Columns()[0].width, 127);
  Load(std::string(32, 'n') + "\n1\n");
  EXPECT_EQ(Columns()[0].name, std::string(32, 'n'));
  Load("");
  EXPECT_TRUE(Columns().empty());
  EXPECT_EQ(zvgrid::SaveCsvText(), "");
}

TEST_F(CsvTest, SavesWhatItReadsBack) {
  const std::string original =
      "Name,Weight,Code,Note,Only missing\r\n"
      "Ann,70.25,\"007\",\"a, \"\"b\"\"\",\r\n"
      "Bob,,\"-3\",\" lead\",\r\n"
      ",0.1,x,\"two\nlines\",\r\n";
  Load(original);
  EXPECT_EQ(zvgrid::SaveCsvText(), original);

  zvgrid::ClearSheet();
  ASSERT_TRUE(zvgrid::AddNumericColumn("x", {1e-300, -0.0, 123456789012345678.0, 1.0 / 3.0}));
  ASSERT_TRUE(zvgrid::AddTextColumn("t", {"1e5", "", "  ", "q\"q"}));
  const std::vector<Column> before = Columns();
  Load(zvgrid::SaveCsvText());
  ASSERT_EQ(Columns().size(), 2u);
  EXPECT_EQ(Columns()[0].numbers, before[0].numbers);
  EXPECT_EQ(Columns()[1].type, 'C');
  EXPECT_EQ(Columns()[1].texts, before[1].texts);

  // Shorter columns are padded; a one-column sheet keeps its trailing
  // missing rows as quoted empty cells, which read back as missing.
  zvgrid::ClearSheet();
  ASSERT_TRUE(zvgrid::AddNumericColumn("long", {1, 2, 3}));
  ASSERT_TRUE(zvgrid::AddTextColumn("short", {"a"}));
  EXPECT_EQ(zvgrid::SaveCsvText(), "long,short\r\n1,a\r\n2,\r\n3,\r\n");
  zvgrid::ClearSheet();
  ASSERT_TRUE(zvgrid::AddNumericColumn("x", {1.0, kMissing, kMissing}));
  const std::string saved = zvgrid::SaveCsvText();
  EXPECT_EQ(saved, "x\r\n1\r\n\"\"\r\n\"\"\r\n");
  Load(saved);
  EXPECT_EQ(zvgrid::RowCount(), 3);
  EXPECT_EQ(Columns()[0].type, 'N');
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::vector<std::string> FolderEntries(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

// A fresh, empty folder under the test's temporary directory.
std::string FreshFolder(const std::string& name) {
  const std::string folder =
      ::testing::TempDir() + "zvgrid_" + name + "_" + std::to_string(getpid());
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  return folder;
}

TEST_F(CsvTest, LoadsAndSavesFiles) {
  const std::string folder = FreshFolder("files");
  const std::string path = folder + "/a.csv";
  Load("A,B\n1,x\n");
  std::string error;
  ASSERT_TRUE(zvgrid::SaveCsvFile(path, &error)) << error;
  Load("A\n2\n");
  ASSERT_TRUE(zvgrid::SaveCsvFile(path, &error)) << error;  // replaces the file
  EXPECT_EQ(ReadFile(path), "A\r\n2\r\n");
  EXPECT_EQ(FolderEntries(folder), std::vector<std::string>{"a.csv"});
  ASSERT_TRUE(zvgrid::LoadCsvFile(path, &error)) << error;
  EXPECT_EQ(Columns()[0].numbers, std::vector<double>{2.0});

  struct Row {
    int line;
    std::string path;
    std::string error;
  };
  const Row rows[] = {
      {__LINE__, folder + "/missing.csv", "Cannot open \"" + folder + "/missing.csv\"."},
      {__LINE__, "/nonexistent-folder/x.csv",
       "Cannot write \"/nonexistent-folder/x.csv\": no such folder."},
      {__LINE__, folder, "Cannot write \"" + folder + "\": is a folder."},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    const bool saving = row.error.rfind("Cannot write", 0) == 0;
    EXPECT_FALSE(saving ? zvgrid::SaveCsvFile(row.path, &error)
                        : zvgrid::LoadCsvFile(row.path, &error));
    EXPECT_EQ(error, row.error);
  }
  EXPECT_EQ(FolderEntries(folder), std::vector<std::string>{"a.csv"});
}

// A save that fails while writing leaves the file it would replace as it was,
// creates no file under a new name, and leaves no temporary file behind.
// Two real failures: a full file system (a small tmpfs mounted in a mount
// namespace of this process alone, where the process may do that) and the
// process's file size limit.
bool MountSmallFileSystem(const std::string& folder) {
  return ::unshare(CLONE_NEWNS) == 0 &&
         ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=16k") == 0;
}

TEST_F(CsvTest, FailedSaveLeavesTheTargetAsItWas) {
  std::vector<double> many(20000);
  for (size_t i = 0; i < many.size(); ++i) many[i] = 1.0 / static_cast<double>(i + 3);
  for (const bool fullDevice : {true, false}) {
    SCOPED_TRACE(fullDevice ? "full device" : "file size limit");
    const std::string folder = FreshFolder("full");
    if (fullDevice && !MountSmallFileSystem(folder)) {
      std::printf("no tmpfs can be mounted here: only the file size limit is tried\n");
      continue;
    }
    const std::string path = folder + "/a.csv";
    Load("A\n1\n");
    std::string error;
    ASSERT_TRUE(zvgrid::SaveCsvFile(path, &error)) << error;
    const std::string before = ReadFile(path);

    zvgrid::ClearSheet();
    ASSERT_TRUE(zvgrid::AddNumericColumn("A", many));
    rlimit saved{};
    ::getrlimit(RLIMIT_FSIZE, &saved);
    void (*oldHandler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    if (!fullDevice) {
      rlimit small = saved;
      small.rlim_cur = 4096;
      ::setrlimit(RLIMIT_FSIZE, &small);
    }
    const bool replaced = zvgrid::SaveCsvFile(path, &error);
    const std::string replaceError = error;
    const bool created = zvgrid::SaveCsvFile(folder + "/b.csv", &error);
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, oldHandler);

    EXPECT_FALSE(replaced);
    EXPECT_FALSE(created);
    const std::string reason = fullDevice ? "no space left on device" : "the file is too large";
    EXPECT_EQ(replaceError, "Cannot write \"" + path + "\": " + reason + ".");
    EXPECT_EQ(error, "Cannot write \"" + folder + "/b.csv\": " + reason + ".");
    const std::string after = ReadFile(path);
    EXPECT_TRUE(after == before) << "a.csv now has " << after.size() << " bytes";
    EXPECT_EQ(FolderEntries(folder), std::vector<std::string>{"a.csv"});
    if (fullDevice) ::umount(folder.c_str());
  }
}

}  // namespace
