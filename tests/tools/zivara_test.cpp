// The zivara command end to end: the built program run on small sheets in a
// temporary folder, checked by exit status, stdout and stderr; its HTML page
// is opened in headless Chromium.
#include <cairo.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
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

int SvgCount(const std::string& text) {
  int n = 0;
  for (size_t at = text.find("<svg"); at != std::string::npos; at = text.find("<svg", at + 1)) ++n;
  return n;
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

TEST_F(ZivaraTest, PanesArePrintedExactlyAsTheModuleBuiltThem) {
  Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--select",
                      "Height > 60", "--pane", "1"});
  EXPECT_EQ(r.status, 0) << r.err;
  // Golden file; its numbers are worked out by hand in the session that uses it.
  EXPECT_EQ(r.out, ReadFile(fs::path(ZV_TEST_DATA_DIR) / "sessions/dotdiagram_pane1.txt"));
  EXPECT_EQ(r.out.find('\r'), std::string::npos);
  EXPECT_EQ(r.err, "");

  // Without --pane every text pane stands under its name.
  r = Zivara({"run", "dotdiagram", "--sheet", Sheet(), "--var", "1=Weight"});
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
  auto run = [&](std::vector<std::string> more, const std::string& on = "") {
    std::vector<std::string> args = {"run", "DotDiagram", "--sheet", on.empty() ? sheet : on,
                                     "--var"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
  };
  const Row rows[] = {
      // Ran, but no results: all values equal, or a select that keeps no row.
      // The summary pane's reason goes to stderr.
      {__LINE__, run({"1=Constant"}), {}, 3, "(status 1042): All values are equal"},
      {__LINE__, run({"1=Weight", "--select", "Weight > 1000"}), {}, 3, "(status 3): "},
      {__LINE__, {"run", "Nothing", "--sheet", sheet}, {}, 2, "unknown procedure"},
      {__LINE__,
       {"run", "DotDiagram", "--sheet", (folder_ / "none.csv").string()},
       {},
       2,
       "cannot read the sheet"},
      // Refused by the dialog: the message box goes to stderr.
      {__LINE__, run({"1=Sex"}), {}, 2, "Zivara Suite: "},
      {__LINE__, run({"1=Nope"}), {}, 2, "Zivara Suite: "},
      {__LINE__, {"run", "DotDiagram", "--sheet", sheet}, {}, 2, "Zivara Suite: "},
      // A character column refused: the Host names the cell that made it one.
      {__LINE__,
       run({"1=Weight"}, coded),
       {},
       2,
       "where numbers are needed.\nColumn \"Weight\" is text: row 3 holds \"n/a\".\n"},
      {__LINE__, run({"1=(Weight)", "--na", "NA,n/a,."}, coded), {}, 0, ""},
      {__LINE__,
       run({"1=Weight", "--na", ""}, coded),
       {},
       2,
       "Column \"Weight\" is text: row 2 holds \"NA\"."},
      {__LINE__, run({"1=Weight", "--select", "Height >"}), {}, 2, "Zivara Suite: "},
      {__LINE__, run({"2=Weight"}), {}, 2, "there is no field 2"},
      {__LINE__, run({"Weight"}), {}, 2, "N=TEXT or NAME=TEXT"},
      {__LINE__, run({"weight=Weight"}), {}, 2, "no field named \"weight\"; its fields are data"},
      {__LINE__, run({"1=Weight", "--pane", "15"}), {}, 2, "has no pane 15; its panes are 1, 8"},
      {__LINE__,
       {"run", "Life2", "--var", "1=Time", "--pane", "4"},
       {},
       2,
       "Life2 has no pane 4; its panes are 1-3, 8-10"},
      {__LINE__, run({"1=Weight", "--format", "xml"}), {}, 2, "text or json"},
      {__LINE__,
       run({"1=Weight"}),
       {"ZIVARA_MODULE=/nonexistent/libzvkeel4.so"},
       1,
       "cannot load the module"},
      {__LINE__, {"session", (folder_ / "none.session").string()}, {}, 2, "cannot read"},
      {__LINE__, {"frobnicate"}, {}, 2, "unknown command \"frobnicate\"; the commands are"},
      {__LINE__, {}, {}, 2, "Usage: zivara"},
      {__LINE__, {"describe", "Nothing"}, {}, 2, "unknown procedure"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Outcome r = Zivara(row.args, row.env);
    EXPECT_EQ(r.status, row.status) << r.err;
    EXPECT_NE(r.err.find(row.inStderr), std::string::npos) << r.err;
    if (row.status != 0 && row.status != 3) {
      EXPECT_EQ(r.out, "");
    }
  }
  // Help for the tool and each command, and the version, on stdout.
  for (const auto& args : std::vector<std::vector<std::string>>{{"--help"},
                                                                {"help"},
                                                                {"help", "run"},
                                                                {"run", "--help"},
                                                                {"describe", "--help"},
                                                                {"session", "--help"},
                                                                {"--version"}}) {
    SCOPED_TRACE(args.back());
    Outcome r = Zivara(args);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find(args.back() == "--version" ? "zivara 0." : "Usage: zivara"),
              std::string::npos)
        << r.out;
  }
  EXPECT_NE(Zivara({"--help"}).out.find("3  the analysis ran and reports no results"),
            std::string::npos);
}

TEST_F(ZivaraTest, PaneOptionsByNameOrNumberAndGraphPictures) {
  struct Row {
    int line;
    std::string item, settings;
    int status;
    std::string inStderr;
  };
  // The dot diagram's options on pane 8: radio group 176 (stacks), class
  // count 141 (classes, 2 to 1000, enabled by the second radio button).
  const Row rows[] = {
      {__LINE__, "8", "176=1,141=10", 0, ""},
      {__LINE__, "8", "stacks=1,classes=10", 0, ""},
      {__LINE__, "8", "stacks=1,classes=1", 2, "Zivara Suite: "},
      {__LINE__, "8", "classes=10", 2, "control 141 is disabled"},
      {__LINE__, "8", "999=1", 2, "there is no control 999"},
      {__LINE__, "8", "foo=1", 2,
       "\"foo\" is not a control of \"Dot Diagram Options\"; its names "
       "are stacks, classes"},
      {__LINE__, "8", "=1", 2, "is not NAME=VALUE or NUMBER=VALUE"},
      // A pane without options is refused before any dialog.
      {__LINE__, "1", "141=3", 2, "pane 1 of DotDiagram has no options; panes with options: 8"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "data=Weight", "--opts",
                        row.item, row.settings, "--pane", "8"});
    EXPECT_EQ(r.status, row.status) << r.err;
    EXPECT_NE(r.err.find(row.inStderr), std::string::npos) << r.err;
  }
  // Names and numbers reach the same controls: the survival plot with 90 %
  // limits either way, unlike the plot without them.
  const std::vector<std::string> life2 = {"run", "Life2",    "--var", "time=Time", "--pane",
                                          "8",   "--format", "json",  "--opts",    "8"};
  auto plot = [&](const std::string& settings) {
    std::vector<std::string> args = life2;
    args.push_back(settings);
    Outcome r = Zivara(args);
    EXPECT_EQ(r.status, 0) << r.err;
    return r.out;
  };
  const std::string byName = plot("limits=on,level=90");
  EXPECT_EQ(byName, plot("107=1,141=90"));
  EXPECT_NE(byName, plot("limits=off"));

  const fs::path graphs = folder_ / "graphs";
  Outcome r = Zivara({"run", "DotDiagram", "--sheet", Sheet(), "--var", "1=Weight", "--pane", "8",
                      "--graphs", graphs.string()});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("Frequency"), std::string::npos) << r.out;
  EXPECT_EQ(ReadFile(graphs / "item8.svg").rfind("<?xml", 0), 0u);
  EXPECT_EQ(ReadFile(graphs / "item8.png").substr(1, 3), "PNG");
}

// Names, kinds and ranges come from the templates and the module: a control
// added to a template shows up without any change to zivara, and every
// name of every option dialog that describe reaches is listed.
TEST_F(ZivaraTest, DescribeFollowsTheDialogTemplates) {
  const fs::path resources = folder_ / "resources";
  fs::copy(ZV_RESOURCE_DIR, resources, fs::copy_options::recursive);
  std::ofstream(resources / "dialogs" / "852.dlg", std::ios::app)
      << "CONTROL 150 EDIT \"\" NAME added-here\n";
  Outcome r = Zivara({"describe", "life2"}, {"ZIVARA_RESOURCES=" + resources.string()});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("added-here"), std::string::npos) << r.out;
  EXPECT_EQ(Zivara({"describe", "Life2"}).out.find("added-here"), std::string::npos);

  struct Row {
    int line;
    std::string procedure;
    std::vector<std::string> lines;  // each must appear
  };
  const Row rows[] = {
      {__LINE__,
       "Life2",
       {"  1  time       Time         required, numeric column",
        "  2  censoring  Censoring    optional, numeric column",
        "  3  groups     Groups       optional, numeric or text column",
        "a value above 0 marks a withdrawn (censored) row, 0 a failure",
        "  2  text  options  Percentile Table", "  8  graph options  Estimated Survival Function",
        "Options of pane 8, \"Confidence Limits\" (dialog 852",
        "  limits    check box   1 or on, 0 or off; default 0 (off)",
        "  level     edit        number from 0.0001 to 99.9999; default 95",
        "  p1        edit        number from 0 to 99.99; default 75"}},
      {__LINE__,
       "DotDiagram",
       {"  1  data       Data         required, numeric column, at most 64 characters",
        "  stacks    radio group 0 A stack for each distinct value; 1 Stacks over equal classes;",
        "  classes   edit        whole number from 2 to 1000; default 50"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    r = Zivara({"describe", row.procedure});
    ASSERT_EQ(r.status, 0) << r.err;
    for (const std::string& line : row.lines) {
      EXPECT_NE(r.out.find(line), std::string::npos) << line << "\n" << r.out;
    }
    for (size_t at = r.out.find("(dialog "); at != std::string::npos;
         at = r.out.find("(dialog ", at + 1)) {
      const std::string id = r.out.substr(at + 8, r.out.find(';', at) - at - 8);
      std::istringstream tmpl(ReadFile(fs::path(ZV_RESOURCE_DIR) / "dialogs" / (id + ".dlg")));
      for (std::string line; std::getline(tmpl, line);) {
        const size_t name = line.find(" NAME ");
        if (name == std::string::npos) continue;
        EXPECT_NE(r.out.find("  " + line.substr(name + 6) + " "), std::string::npos)
            << "dialog " << id << ": " << line;
      }
    }
  }
  r = Zivara({"list"});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("Life2        Product-Limit Survival Analysis\n"), std::string::npos);
  EXPECT_NE(r.out.find("DotDiagram   Dot Diagram\n"), std::string::npos);
}

TEST_F(ZivaraTest, JsonParsesAndRoundTripsThePanes) {
  Outcome r = Zivara({"run", "Life2", "--var", "1=Time", "--var", "2=Censored", "--var",
                      "3=Treatment", "--format", "json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json analysis = nlohmann::json::parse(r.out);
  EXPECT_EQ(analysis["procedure"], "Life2");
  EXPECT_EQ(analysis["status"], 0);
  ASSERT_EQ(analysis["panes"].size(), 6u);
  for (const nlohmann::json& pane : analysis["panes"]) {
    const int item = pane["item"];
    SCOPED_TRACE(item);
    Outcome one = Zivara({"run", "Life2", "--var", "1=Time", "--var", "2=Censored", "--var",
                          "3=Treatment", "--pane", std::to_string(item)});
    std::string text;
    if (pane["kind"] == "text") {
      for (const nlohmann::json& line : pane["lines"]) text += line.get<std::string>() + "\n";
    } else {
      for (const nlohmann::json& t : pane["texts"]) text += t["text"].get<std::string>() + "\n";
      // Two groups: one survival curve each, in data units within the x
      // axis; points with the id -2 are legend samples beside the plot.
      ASSERT_EQ(pane["axes"].size(), 2u);
      const nlohmann::json& x = pane["axes"][0];
      int curves = 0;
      for (const nlohmann::json& series : pane["series"]) {
        if (series["points"].empty() || series["points"][0][2] == -2.0) continue;
        ++curves;
        for (const nlohmann::json& point : series["points"]) {
          EXPECT_GE(point[0].get<double>(), x["low"].get<double>());
          EXPECT_LE(point[0].get<double>(), x["high"].get<double>());
        }
      }
      EXPECT_EQ(curves, 2);
    }
    EXPECT_EQ(text, one.out);
  }
}

// The page opens in headless Chromium: the DOM holds the report and the
// pictures, and the screenshot is not blank.
TEST_F(ZivaraTest, HtmlPageRendersInHeadlessChromium) {
  const fs::path page = folder_ / "life2.html";
  Outcome r = Zivara({"run", "Life2", "--var", "1=Time", "--var", "2=Censored", "--html",
                      page.string(), "--pane", "1"});
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string html = ReadFile(page);
  EXPECT_NE(html.find("<pre>Analysis Summary"), std::string::npos);
  EXPECT_EQ(html.find("<?xml"), std::string::npos);  // the SVG is inline
  EXPECT_NE(html.find("<h3>Interpretation</h3>"), std::string::npos);

  std::string browser;
  for (const char* candidate : {"/usr/bin/chromium", "/usr/bin/chromium-browser"}) {
    if (fs::exists(candidate)) browser = candidate;
  }
  if (browser.empty()) {
    GTEST_SKIP() << "chromium not found: run scripts/setup.sh --tests to install it";
  }
  const fs::path dom = folder_ / "dom.html";
  const fs::path shot = folder_ / "shot.png";
  const std::string flags =
      " --headless --no-sandbox --disable-gpu --hide-scrollbars"
      " --user-data-dir=" +
      (folder_ / "profile").string() + " --window-size=900,1200 ";
  const std::string url = "file://" + page.string();
  ASSERT_EQ(std::system(("timeout 120 " + browser + flags + "--dump-dom " + url + " > " +
                         dom.string() + " 2>/dev/null")
                            .c_str()),
            0);
  const std::string rendered = ReadFile(dom);
  EXPECT_NE(rendered.find("Product-Limit (Kaplan-Meier) Estimates"), std::string::npos);
  EXPECT_EQ(SvgCount(rendered), 3);
  ASSERT_EQ(std::system(("timeout 120 " + browser + flags + "--screenshot=" + shot.string() + " " +
                         url + " > /dev/null 2>&1")
                            .c_str()),
            0);
  cairo_surface_t* image = cairo_image_surface_create_from_png(shot.c_str());
  ASSERT_EQ(cairo_surface_status(image), CAIRO_STATUS_SUCCESS);
  cairo_surface_flush(image);
  const int width = cairo_image_surface_get_width(image);
  const int height = cairo_image_surface_get_height(image);
  const int stride = cairo_image_surface_get_stride(image);
  const unsigned char* pixels = cairo_image_surface_get_data(image);
  long dark = 0;
  for (int y = 0; y < height; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(pixels + y * stride);
    for (int x = 0; x < width; ++x) dark += (row[x] & 0xFF) < 128 ? 1 : 0;
  }
  cairo_surface_destroy(image);
  EXPECT_EQ(width, 900);
  EXPECT_GT(dark, 1000) << "the screenshot is blank";
}

// A censoring column coded as R codes its status draws a note; the numbers
// stay as they are.
TEST_F(ZivaraTest, CensoringCodedTheOtherWayIsNoted) {
  std::ofstream(folder_ / "r.csv")
      << "T,Status12,Status01\n1,1,1\n2,2,0\n3,1,1\n4,2,1\n5,2,1\n6,1,1\n";
  const std::string sheet = (folder_ / "r.csv").string();
  struct Row {
    int line;
    std::string censoring;
    std::string note;  // empty: none
  };
  const Row rows[] = {
      {__LINE__, "Status12", "every value is 1 or 2"},
      {__LINE__, "Status01", "83 % of the rows are withdrawn"},
      {__LINE__, "Status12 = 1", ""},
      {__LINE__, "1 - Status01", ""},
  };
  const Outcome plain = Zivara(
      {"run", "Life2", "--sheet", sheet, "--var", "1=T", "--var", "2=Status12", "--pane", "1"});
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    Outcome r = Zivara({"run", "Life2", "--sheet", sheet, "--var", "1=T", "--var",
                        "2=" + row.censoring, "--pane", "1"});
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err.find("note:") != std::string::npos, !row.note.empty()) << r.err;
    EXPECT_NE(r.err.find(row.note), std::string::npos) << r.err;
  }
  EXPECT_EQ(plain.out.find("FAILED"), std::string::npos);  // every row withdrawn, as given
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

// Malformed lines are all found before anything runs (exit 2); calls that
// cannot be made and failed checks are reported at their line (exit 1).
TEST_F(ZivaraTest, SessionReportsEveryProblemAtItsLine) {
  std::ofstream(folder_ / "malformed.session") << "sheet weights.csv\n"
                                                  "print 1\n"
                                                  "item 0\nitem 99\nitem -1\nopts 99\n"
                                                  "redraw 99\nredraw 1\nslot 99\n"
                                                  "print 0\ninterpret 99\nbegin now\n"
                                                  "frobnicate 3\nexpect pane 1 line x y\n";
  Outcome r = Zivara({"session", (folder_ / "malformed.session").string()});
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
  const std::string where = (folder_ / "malformed.session").string() + ":";
  for (int line = 3; line <= 14; ++line) {
    SCOPED_TRACE(line);
    EXPECT_NE(r.err.find(where + std::to_string(line) + ": "), std::string::npos) << r.err;
  }
  EXPECT_EQ(r.err.find(where + "2:"), std::string::npos);
  EXPECT_EQ(r.err.find("internal fault"), std::string::npos);

  std::ofstream(folder_ / "failing.session") << "sheet weights.csv\n"
                                                "dialog DotDiagram v1=Weight\n"
                                                "setup\n"
                                                "begin\n"
                                                "expect status 3\n"
                                                "slot 5\n"
                                                "slot 0\n"
                                                "delete-column NoSuch\n"
                                                "print 5\n"
                                                "save " +
                                                    (folder_ / "no/such/x.csv").string() +
                                                    "\n"
                                                    "delete-column Weight\n"
                                                    "beginagain\n"
                                                    "expect status 1025\n";
  r = Zivara({"session", (folder_ / "failing.session").string()});
  EXPECT_EQ(r.status, 1);
  const std::string at = (folder_ / "failing.session").string() + ":";
  for (const std::string& said :
       {at + "5: expected status 3, got 0", at + "6: no analysis is open in slot 5",
        at + "8: the sheet has no column \"NoSuch\"",
        at + "9: DotDiagram has no pane 5; its panes are 1, 8", at + "10: cannot save the sheet",
        at + "12: note: DotDiagramBeginAgain failed (status 1025)"}) {
    EXPECT_NE(r.err.find(said), std::string::npos) << said << "\n" << r.err;
  }
  EXPECT_EQ(r.err.find(at + "13"), std::string::npos) << r.err;
}

TEST_F(ZivaraTest, DemoSummarisesAndIndexesEveryAnalysis) {
  const fs::path demo = folder_ / "demo";
  Outcome r = Zivara({"demo", demo.string()});
  EXPECT_NE(r.out.find("  DotDiagram   ran      1 text pane(s), 1 graph(s)\n"), std::string::npos)
      << r.out;
  EXPECT_NE(r.out.find("open " + (demo / "index.html").string() + "\n"), std::string::npos);
  // Other procedures come and go as they are built; the status says whether
  // every one that the module has ran.
  const bool allRan =
      r.out.find(" refused ") == std::string::npos && r.out.find(" fault ") == std::string::npos;
  EXPECT_EQ(r.status, allRan ? 0 : 1) << r.out << r.err;
  const std::string index = ReadFile(demo / "index.html");
  EXPECT_NE(index.find("<a href=\"DotDiagram/analysis.html\">"), std::string::npos) << index;
  EXPECT_NE(ReadFile(demo / "DotDiagram" / "analysis.html").find("<td>Height &gt; 60</td>"),
            std::string::npos);
  EXPECT_NE(ReadFile(demo / "DotDiagram" / "pane1.txt").find("Weight"), std::string::npos);
}

}  // namespace
