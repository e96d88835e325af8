// The zivara command end to end: the built program run on small sheets in a
// temporary folder, checked by exit status, stdout and stderr.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

std::string ReadFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class ZivaraTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = (fs::temp_directory_path() / "zivara-test-XXXXXX").string();
    ASSERT_NE(mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    // weights.csv: by hand, Weight has seven values 150 ... 210 (one row
    // missing) with mean 180 and standard deviation sqrt(2800 / 6) = 21.6025.
    std::ofstream(folder_ / "weights.csv") << "Weight,Height,Sex,Constant\n"
                                              "150,58,F,5\n160,62,M,5\n170,64,F,5\n"
                                              "180,66,M,5\n190,68,F,5\n,70,M,5\n"
                                              "200,72,F,5\n210,74,M,5\n";
  }
  void TearDown() override { fs::remove_all(folder_); }

  // Runs zivara with the arguments; `env` adds NAME=VALUE settings.
  Outcome Zivara(const std::vector<std::string>& args, const std::vector<std::string>& env = {}) {
    const fs::path out = folder_ / "stdout.txt";
    const fs::path err = folder_ / "stderr.txt";
    pid_t child = fork();
    if (child == 0) {
      if (!freopen(out.c_str(), "w", stdout) || !freopen(err.c_str(), "w", stderr)) _exit(127);
      for (const std::string& setting : env) putenv(const_cast<char*>(setting.c_str()));
      std::vector<char*> argv;
      std::string program = std::string(ZV_BIN_DIR) + "/zivara";
      argv.push_back(program.data());
      for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
      argv.push_back(nullptr);
      execv(program.c_str(), argv.data());
      _exit(127);
    }
    Outcome outcome;
    int wstatus = 0;
    waitpid(child, &wstatus, 0);
    outcome.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : -1;
    outcome.out = ReadFile(out);
    outcome.err = ReadFile(err);
    return outcome;
  }
  std::string Sheet() const { return (folder_ / "weights.csv").string(); }

  fs::path folder_;
};

TEST_F(ZivaraTest, OnePaneIsPrintedExactlyAsTheModuleBuiltIt) {
  Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--select",
                      "Height > 60", "--pane", "1"});
  EXPECT_EQ(r.status, 0) << r.err;
  // Golden file; its numbers are worked out by hand in the session that uses it.
  EXPECT_EQ(r.out, ReadFile(fs::path(ZV_TEST_DATA_DIR) / "sessions/dotdiagram_pane1.txt"));
  EXPECT_EQ(r.out.find('\r'), std::string::npos);
  EXPECT_EQ(r.err, "");
}

TEST_F(ZivaraTest, WithoutPaneEveryTextPaneStandsUnderItsName) {
  Outcome r = Zivara({"run", "dotdiagram", "--sheet", Sheet(), "--var", "1=Weight"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.rfind("--- DotDiagram pane 1 ---\n", 0), 0u) << r.out;
  EXPECT_NE(r.out.find("21.6025"), std::string::npos) << r.out;
}

TEST_F(ZivaraTest, ExitStatusesAndRefusals) {
  struct Row {
    int line;
    std::vector<std::string> args;
    std::vector<std::string> env;
    int status;
    std::string inStderr;
  };
  const std::string sheet = Sheet();
  const std::string coded = (folder_ / "coded.csv").string();
  std::ofstream(coded) << "Weight\n150\nNA\nn/a\n170\n.\n";
  const Row rows[] = {
      // The analysis ran, though it ends with a status (all values equal).
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Constant"}, {}, 0, ""},
      {__LINE__, {"run", "Nothing", "--sheet", sheet}, {}, 2, "unknown procedure"},
      {__LINE__, {"run", "DotDiagram", "--sheet", (folder_ / "none.csv").string()}, {}, 2,
       "cannot read the sheet"},
      // Refused by the dialog: the message box goes to stderr.
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Sex"}, {}, 2,
       "Zivara Suite: "},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Nope"}, {}, 2,
       "Zivara Suite: "},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet}, {}, 2, "Zivara Suite: "},
      // A character column refused: the Host names the cell that made it one.
      {__LINE__, {"run", "DotDiagram", "--sheet", coded, "--var", "1=Weight"}, {}, 2,
       "where numbers are needed.\nColumn \"Weight\" is text: row 3 holds \"n/a\".\n"},
      {__LINE__, {"run", "DotDiagram", "--sheet", coded, "--var", "1=(Weight)", "--na", "NA,n/a,."},
       {}, 0, ""},
      {__LINE__, {"run", "DotDiagram", "--sheet", coded, "--var", "1=Weight", "--na", ""}, {}, 2,
       "Column \"Weight\" is text: row 2 holds \"NA\"."},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Weight", "--select", "Height >"},
       {}, 2, "Zivara Suite: "},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "2=Weight"}, {}, 2,
       "there is no field 2"},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "Weight"}, {}, 2, "N=TEXT"},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Weight", "--pane", "15"}, {},
       2, "1 to 14"},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet, "--var", "1=Weight"},
       {"ZIVARA_MODULE=/nonexistent/libzvkeel4.so"}, 1, "cannot load the module"},
      {__LINE__, {"session", (folder_ / "none.session").string()}, {}, 2, "cannot read"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Outcome r = Zivara(row.args, row.env);
    EXPECT_EQ(r.status, row.status) << r.err;
    EXPECT_NE(r.err.find(row.inStderr), std::string::npos) << r.err;
    if (row.status != 0) {
      EXPECT_EQ(r.out, "");
    }
  }
}

TEST_F(ZivaraTest, PaneOptionsAndGraphPictures) {
  struct Row {
    int line;
    std::string settings;
    int status;
    std::string inStderr;
  };
  // The dot diagram's options on pane 8: radio group 176, class count 141
  // (2 to 1000, enabled by the second radio button).
  const Row rows[] = {
      {__LINE__, "176=1,141=10", 0, ""},
      {__LINE__, "176=1,141=1", 2, "Zivara Suite: "},
      {__LINE__, "141=10", 2, "control 141 is disabled"},
      {__LINE__, "999=1", 2, "there is no control 999"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--opts",
                        "8", row.settings, "--pane", "1"});
    EXPECT_EQ(r.status, row.status) << r.err;
    EXPECT_NE(r.err.find(row.inStderr), std::string::npos) << r.err;
  }
  // A pane without options: a note, and the analysis stands.
  Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--opts", "1",
                      "141=3", "--pane", "1"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.err.find("Zivara Suite: "), std::string::npos) << r.err;

  const fs::path graphs = folder_ / "graphs";
  r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--pane", "8",
              "--graphs", graphs.string()});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("Frequency"), std::string::npos) << r.out;
  EXPECT_EQ(ReadFile(graphs / "item8.svg").rfind("<?xml", 0), 0u);
  EXPECT_EQ(ReadFile(graphs / "item8.png").substr(1, 3), "PNG");
}

TEST_F(ZivaraTest, EverySessionFileHolds) {
  int sessions = 0;
  for (const auto& entry : fs::directory_iterator(fs::path(ZV_TEST_DATA_DIR) / "sessions")) {
    if (entry.path().extension() != ".session") continue;
    SCOPED_TRACE(entry.path().string());
    ++sessions;
    Outcome r = Zivara({"session", entry.path().string(), "--out", (folder_ / "out").string()});
    EXPECT_EQ(r.status, 0) << r.err;
  }
  EXPECT_GE(sessions, 3);
}

TEST_F(ZivaraTest, SessionReportsAFailedCheckAndAMalformedLine) {
  std::ofstream(folder_ / "failing.session") << "sheet weights.csv\n"
                                                "dialog DotDiagram v1=Weight\n"
                                                "setup\n"
                                                "begin\n"
                                                "expect status 3\n"
                                                "expect state rowCount 8\n";
  Outcome r = Zivara({"session", (folder_ / "failing.session").string()});
  EXPECT_EQ(r.status, 1);
  EXPECT_NE(r.err.find("failing.session:5: expected status 3, got 0"), std::string::npos) << r.err;
  EXPECT_EQ(r.err.find("failing.session:6"), std::string::npos) << r.err;

  std::ofstream(folder_ / "malformed.session") << "sheet weights.csv\nfrobnicate 3\nbegin\n";
  r = Zivara({"session", (folder_ / "malformed.session").string()});
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("malformed.session:2: unknown command \"frobnicate\""), std::string::npos)
      << r.err;
}

TEST_F(ZivaraTest, DemoWritesWhatItShowsIntoTheFolderItNames) {
  const fs::path demo = folder_ / "demo";
  Outcome r = Zivara({"demo", demo.string()});
  EXPECT_EQ(r.out, demo.string() + "\n");
  const std::string index = ReadFile(demo / "index.txt");
  EXPECT_NE(index.find("DotDiagram: ran"), std::string::npos) << index;
  // Other procedures come and go as they are built; the status says whether
  // every one that the module has ran.
  const bool allRan = index.find(": refused") == std::string::npos &&
                      index.find(": fault") == std::string::npos;
  EXPECT_EQ(r.status, allRan ? 0 : 1) << index << r.err;
  EXPECT_NE(ReadFile(demo / "DotDiagram" / "pane1.txt").find("Weight"), std::string::npos);
}

}  // namespace
