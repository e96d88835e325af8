#include "demo_command.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "analysis_run.h"
#include "host_start.h"
#include "pane_output.h"
#include "procedure_catalog.h"
#include "report_formats.h"
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
  std::vector<std::string> boxes;
  std::unique_ptr<zvhost::Host> host = StartHost(messages, err);
  if (!host) return kExitFault;
  host->SetMessageObserver([&](const MessageBoxCall& call) {
    messages << call.caption << ": " << call.text << "\n";
    boxes.push_back(call.text);
  });

  int exitCode = kExitRan;
  std::ostringstream rows;  // of the HTML index
  std::string missing;
  for (const DemoInput& input : DemoInputs()) {
    const zvhost::FamilySpec* family = zvhost::FindFamily(input.family);
    if (family == nullptr) continue;
    if (!host->HasProcedure(*family)) {
      missing += (missing.empty() ? "" : ", ") + std::string(family->name);
      continue;
    }
    const std::string dir = root + "/" + family->name;
    std::filesystem::create_directories(dir, ec);
    messages.str("");
    boxes.clear();
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
    std::string summary;
    if (outcome == kExitRan) {
      int texts = 0, graphs = 0;
      for (int32_t item : zvhost::ItemsOf(*family)) {
        if (zvhost::IsGraphItem(item)) {
          if (!WriteGraphFiles(*host, run.slot, item, dir, problems)) outcome = kExitFault;
          ++graphs;
        } else {
          std::ofstream pane(dir + "/pane" + std::to_string(item) + ".txt", std::ios::binary);
          pane << PaneOutput(*host, run.slot, item);
          ++texts;
        }
      }
      AnalysisInputs inputs;
      inputs.sheet = family->sampleSheet;
      const std::vector<VariableFieldInfo> fields = VariableFieldsOf(*family);
      for (const auto& [number, text] : input.variables) {
        std::string label = "Field " + std::to_string(number);
        for (const VariableFieldInfo& f : fields) {
          if (f.number == number && !f.label.empty()) label = f.label;
        }
        inputs.fields.emplace_back(label, text);
      }
      if (input.select != nullptr) inputs.fields.emplace_back("Select", input.select);
      inputs.messages = boxes;
      std::ofstream(dir + "/analysis.html", std::ios::binary)
          << AnalysisHtml(*host, run.slot, inputs);
      const int32_t status = host->State(run.slot)->status;
      summary = std::to_string(texts) + " text pane(s), " + std::to_string(graphs) + " graph(s)" +
                (status != 0 ? ", no results (status " + std::to_string(status) + ")" : "");
    }
    std::ofstream(dir + "/messages.txt") << messages.str() << problems.str();
    const char* word = outcome == kExitRan ? "ran" : outcome == kExitRefused ? "refused" : "fault";
    char line[200];
    std::snprintf(line, sizeof line, "  %-12s %-8s %s\n", family->name, word, summary.c_str());
    out << line;
    rows << "<tr><td>"
         << (outcome == kExitRan ? "<a href=\"" + std::string(family->name) + "/analysis.html\">" +
                                       family->name + "</a>"
                                 : std::string(family->name))
         << "</td><td>" << word << "</td><td>" << HtmlEscape(summary) << "</td></tr>\n";
    if (outcome != kExitRan) {
      err << problems.str();
      exitCode = kExitFault;
    }
  }
  std::ofstream(root + "/index.html", std::ios::binary)
      << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
      << "<title>zivara demo</title>\n</head>\n<body>\n<h1>Every procedure on its sample "
         "sheet</h1>\n<table>\n"
      << rows.str() << "</table>\n"
      << (missing.empty() ? "" : "<p>Not in this module yet: " + missing + "</p>\n")
      << "</body>\n</html>\n";
  if (!missing.empty()) out << "  Not in this module yet: " << missing << "\n";
  exitCode = WithFaults(*host, exitCode, err);
  out << "Pages, panes and pictures in " << root << "; open " << root << "/index.html\n";
  return exitCode;
}

}  // namespace zivara
