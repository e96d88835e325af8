// zivara: the Host on the command line. Runs the module's procedures on a
// CSV sheet, shows every procedure on the bundled sheets, plays scripted
// sessions, and offers the probability calculator.
#include <CLI/CLI.hpp>

#include <iostream>
#include <string>
#include <vector>

#include "demo_command.h"
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

}  // namespace

int main(int argc, char** argv) {
  // The calculator reads its own arguments, minus signs and all.
  if (argc >= 2 && (std::string(argv[1]) == "dist" || std::string(argv[1]) == "fn")) {
    return Calculator(std::vector<std::string>(argv + 1, argv + argc));
  }

  CLI::App app{"zivara: runs the statistics module's procedures as the Host does"};
  app.require_subcommand(1);

  zivara::RunOptions run;
  CLI::App* runCommand = app.add_subcommand("run", "Run one procedure and print its panes");
  runCommand->add_option("procedure", run.procedure, "Procedure name, any case (DotDiagram, ...)")
      ->required();
  runCommand->add_option("--sheet", run.sheet, "CSV sheet; default: the bundled sample sheet");
  runCommand->add_option("--var", run.variables, "N=TEXT: type TEXT into variable field N");
  runCommand->add_option("--select", run.select, "The select expression");
  runCommand->add_option("--opts", run.options,
                         "ITEM CONTROL=VALUE[,CONTROL=VALUE]...: pane options after Begin")
      ->expected(2)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  runCommand->add_option("--pane", run.panes, "Pane to print (repeatable)");
  runCommand->add_option("--graphs", run.graphs, "Folder for the graph panes as SVG and PNG");
  runCommand->add_option("--na", run.missingCodes,
                         "LIST: comma-separated cell texts read as missing; default NA,NaN,.");

  std::string demoFolder;
  CLI::App* demoCommand =
      app.add_subcommand("demo", "Run every procedure on the bundled sheets into a folder");
  demoCommand->add_option("folder", demoFolder, "Output folder; default: a new temporary one");

  std::string sessionFile;
  std::string sessionOut;
  CLI::App* sessionCommand = app.add_subcommand("session", "Play a scripted session file");
  sessionCommand->add_option("file", sessionFile, "Session file")->required();
  sessionCommand->add_option("--out", sessionOut, "Folder for saved sheets; default: .");

  app.add_subcommand("dist", "Probability calculator: distributions (see README)");
  app.add_subcommand("fn", "Probability calculator: functions (see README)");

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    int code = app.exit(e);
    return code == 0 ? zivara::kExitRan : zivara::kExitRefused;
  }

  if (runCommand->parsed()) return zivara::RunCommand(run, std::cout, std::cerr);
  if (demoCommand->parsed()) return zivara::DemoCommand(demoFolder, std::cout, std::cerr);
  if (sessionCommand->parsed()) {
    return zivara::SessionCommand(sessionFile, sessionOut, std::cout, std::cerr);
  }
  return zivara::kExitRefused;
}
