#include "demo_command.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "analysis_run.h"
#include "host_start.h"
#include "pane_output.h"
#include "zivara_exit.h"

namespace zivara {

namespace {

// The variables each procedure is shown with, on its bundled sample sheet.
const std::vector<DemoInput>& DemoInputs() {
  static const std::vector<DemoInput> kInputs = {
      {"Life2", {{1, "Time"}, {2, "Censored"}, {3, "Treatment"}}, nullptr},
      {"Life1",
       {{1, "Years"},
        {2, "FailedDrug;FailedPlacebo"},
        {3, "WithdrawnDrug;WithdrawnPlacebo"},
        {4, "Treatment"}},
       nullptr},
      {"Weibull", {{1, "Hours"}, {2, "Censored"}, {3, "Batch"}}, nullptr},
      {"Uncensored", {{1, "Weight"}}, nullptr},
      {"Censored", {{1, "Hours"}, {2, "Censored"}}, nullptr},
      {"Codebook", {{1, "Systolic"}, {2, "Group"}}, nullptr},
      {"Rowwise", {{1, "Pulse1;Pulse2;Pulse3"}}, nullptr},
      {"BubbleChart", {{1, "Weight"}, {2, "Height"}, {3, "Age"}, {4, "Sex"}}, nullptr},
      {"DotDiagram", {{1, "Weight"}}, "Height > 60"},
      {"Surfplot", {{1, "X*EXP(-(X^2+Y^2))"}, {2, "-2"}, {3, "2"}, {4, "-2"}, {5, "2"}}, nullptr},
      {"Custom",
       {{1, "Dose and response"},
        {2, "Response"},
        {3, "Dose"},
        {4, "0"},
        {5, "100"},
        {6, "20"},
        {7, "0"},
        {8, "100"},
        {9, "20"}},
       nullptr},
  };
  return kInputs;
}

}  // namespace

const DemoInput* DemoInputOf(std::string_view family) {
  for (const DemoInput& input : DemoInputs()) {
    if (family == input.family) return &input;
  }
  return nullptr;
}

namespace {

std::string NewTemporaryFolder() {
  std::string pattern = (std::filesystem::temp_directory_path() / "zivara-demo-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return {};
  return pattern;
}

}  // namespace

int DemoCommand(const std::string& folder, std::ostream& out, std::ostream& err) {
  std::string root = folder.empty() ? NewTemporaryFolder() : folder;
  std::error_code ec;
  if (root.empty() || (std::filesystem::create_directories(root, ec), ec)) {
    err << "zivara: cannot create the demo folder " << root << "\n";
    return kExitFault;
  }
  std::ostringstream messages;
  std::unique_ptr<zvhost::Host> host = StartHost(messages, err);
  if (!host) return kExitFault;

  int exitCode = kExitRan;
  std::ofstream index(root + "/index.txt");
  for (const DemoInput& input : DemoInputs()) {
    const zvhost::FamilySpec* family = zvhost::FindFamily(input.family);
    if (family == nullptr || !host->HasProcedure(*family)) continue;
    const std::string dir = root + "/" + family->name;
    std::filesystem::create_directories(dir, ec);
    messages.str("");
    std::ostringstream problems;
    int outcome = kExitRefused;
    AnalysisRun run;
    if (LoadSheet(SampleSheetOf(*family), problems)) {
      AnalysisRequest request;
      request.family = family;
      request.variables = input.variables;
      if (input.select != nullptr) request.select = input.select;
      run = RunAnalysis(*host, request, problems);
      outcome = run.exitCode;
    }
    if (outcome == kExitRan) {
      for (int32_t item : zvhost::ItemsOf(*family)) {
        if (zvhost::IsGraphItem(item)) {
          if (!WriteGraphFiles(*host, run.slot, item, dir, problems)) outcome = kExitFault;
        } else {
          std::ofstream pane(dir + "/pane" + std::to_string(item) + ".txt", std::ios::binary);
          pane << PaneOutput(*host, run.slot, item);
        }
      }
    }
    std::ofstream(dir + "/messages.txt") << messages.str() << problems.str();
    index << family->name << ": "
          << (outcome == kExitRan       ? "ran"
              : outcome == kExitRefused ? "refused"
                                        : "fault")
          << "\n";
    if (outcome != kExitRan) {
      err << problems.str();
      exitCode = kExitFault;
    }
  }
  exitCode = WithFaults(*host, exitCode, err);
  out << root << "\n";
  return exitCode;
}

}  // namespace zivara
