// zivara: the Host on the command line. Lists and describes the module's
// procedures, runs them on a CSV sheet, shows every procedure on the bundled
// sheets, plays scripted sessions, and offers the probability calculator.
#include <CLI/CLI.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "demo_command.h"
#include "procedure_catalog.h"
#include "run_command.h"
#include "session_script.h"
#include "zivara_exit.h"

#if __has_include("probability_calculator.h")
#include "probability_calculator.h"
#define ZIVARA_HAS_CALCULATOR 1
#endif

namespace {

int Calculator(const std::vector<std::string>& args) {
#ifdef ZIVARA_HAS_CALCULATOR
  return RunProbabilityCommand(args, std::cout, std::cerr);
#else
  (void)args;
  std::cerr << "zivara: the probability calculator is not part of this build\n";
  return zivara::kExitFault;
#endif
}

constexpr const char* kExitStatuses =
    "Exit status (run, demo, list, describe):\n"
    "  0  the analysis ran and has results\n"
    "  1  internal fault (the module cannot be loaded, a block left locked, ...)\n"
    "  2  input refused (unknown procedure, pane or option, a bad field or value)\n"
    "  3  the analysis ran and reports no results; the reason is on stderr\n"
    "zivara session: 0 every check held, 1 a check or a call failed, 2 a line is\n"
    "malformed (nothing runs). Message boxes go to stderr as \"Zivara Suite: TEXT\".";

}  // namespace

int main(int argc, char** argv) {
  // The calculator reads its own arguments, minus signs and all.
  if (argc >= 2 && (std::string(argv[1]) == "dist" || std::string(argv[1]) == "fn")) {
    return Calculator(std::vector<std::string>(argv + 1, argv + argc));
  }

  CLI::App app{"zivara: runs the statistics module's procedures as the Host does", "zivara"};
  app.set_version_flag("--version", std::string("zivara ") + ZIVARA_VERSION);
  app.footer(kExitStatuses);
  app.require_subcommand(1);

  CLI::App* listCommand =
      app.add_subcommand("list", "List the procedures of the module, one line each");

  std::string describeName;
  CLI::App* describeCommand = app.add_subcommand(
      "describe", "Show a procedure's fields, panes and options with their names");
  describeCommand->add_option("procedure", describeName, "Procedure name, any case")->required();

  zivara::RunOptions run;
  CLI::App* runCommand = app.add_subcommand("run", "Run one procedure and print its panes");
  runCommand->add_option("procedure", run.procedure, "Procedure name, any case (Life2, ...)")
      ->required();
  runCommand->add_option("--sheet", run.sheet, "CSV sheet; default: the bundled sample sheet");
  runCommand->add_option("--var", run.variables,
                         "N=TEXT or NAME=TEXT: type TEXT into a variable field");
  runCommand->add_option("--select", run.select, "The select expression");
  runCommand
      ->add_option("--opts", run.options,
                   "ITEM NAME=VALUE[,NAME=VALUE]...: pane options after Begin (zivara "
                   "describe lists the names; control numbers work too)")
      ->expected(2)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  runCommand->add_option("--pane", run.panes, "Pane to print (repeatable)");
  runCommand->add_option("--graphs", run.graphs, "Folder for the graph panes as SVG and PNG");
  runCommand->add_option("--na", run.missingCodes,
                         "LIST: comma-separated cell texts read as missing; default NA,NaN,.");
  runCommand->add_option("--format", run.format, "text (default) or json");
  runCommand->add_option("--html", run.html, "Write the analysis as one HTML page to FILE");

  std::string demoFolder;
  CLI::App* demoCommand = app.add_subcommand(
      "demo", "Run every procedure on the bundled sheets into a folder, with an HTML index");
  demoCommand->add_option("folder", demoFolder, "Output folder; default: a new temporary one");

  std::string sessionFile;
  std::string sessionOut;
  CLI::App* sessionCommand = app.add_subcommand("session", "Play a scripted session file");
  sessionCommand->add_option("file", sessionFile, "Session file")->required();
  sessionCommand->add_option("--out", sessionOut, "Folder for saved sheets; default: .");

  app.add_subcommand("dist", "Probability calculator: distributions (see README)");
  app.add_subcommand("fn", "Probability calculator: functions (see README)");

  if (argc < 2) {
    std::cerr << app.help();
    return zivara::kExitRefused;
  }
  // `zivara help [COMMAND]`, and a word that names no command.
  if (argv[1][0] != '-') {
    const std::string word = argv[1];
    if (word == "help") {
      CLI::App* about = &app;
      if (argc >= 3) {
        try {
          about = app.get_subcommand(argv[2]);
        } catch (const CLI::OptionNotFound&) {
          std::cerr << "zivara: unknown command \"" << argv[2] << "\"\n";
          return zivara::kExitRefused;
        }
      }
      std::cout << (about == &app ? app.help() : about->help("zivara"));
      return zivara::kExitRan;
    }
    bool known = false;
    for (const CLI::App* sub : app.get_subcommands({})) known = known || sub->get_name() == word;
    if (!known) {
      std::cerr << "zivara: unknown command \"" << word
                << "\"; the commands are list, describe, run, demo, session, dist, fn "
                   "(zivara --help)\n";
      return zivara::kExitRefused;
    }
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    int code = app.exit(e);
    return code == 0 ? zivara::kExitRan : zivara::kExitRefused;
  }

  if (listCommand->parsed()) return zivara::ListCommand(std::cout, std::cerr);
  if (describeCommand->parsed()) {
    return zivara::DescribeCommand(describeName, std::cout, std::cerr);
  }
  if (runCommand->parsed()) return zivara::RunCommand(run, std::cout, std::cerr);
  if (demoCommand->parsed()) return zivara::DemoCommand(demoFolder, std::cout, std::cerr);
  if (sessionCommand->parsed()) {
    return zivara::SessionCommand(sessionFile, sessionOut, std::cout, std::cerr);
  }
  return zivara::kExitRefused;
}
