#include "run_command.h"

#include <charconv>
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

bool ParseWhole(const std::string& text, int32_t* value) {
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), *value);
  return ec == std::errc() && ptr == text.data() + text.size() && !text.empty();
}

// Turns the command line into a request; false after writing why not.
bool BuildRequest(const RunOptions& options, AnalysisRequest* request, std::ostream& err) {
  request->family = zvhost::FindFamily(options.procedure);
  if (request->family == nullptr) {
    err << "zivara: unknown procedure \"" << options.procedure << "\"; the procedures are";
    for (const zvhost::FamilySpec& f : zvhost::Families()) err << " " << f.name;
    err << "\n";
    return false;
  }
  const zvhost::FamilySpec& family = *request->family;
  for (const std::string& v : options.variables) {
    size_t eq = v.find('=');
    int32_t field = 0;
    if (eq == std::string::npos) {
      err << "zivara: --var takes N=TEXT or NAME=TEXT, not \"" << v << "\"\n";
      return false;
    }
    const std::string key = v.substr(0, eq);
    if (!ParseWhole(key, &field)) {
      field = FieldNumberOfName(family, key);
      if (field == 0) {
        err << "zivara: " << family.name << " has no field named \"" << key << "\"; its fields are "
            << FieldNames(family) << "\n";
        return false;
      }
    }
    request->variables.emplace_back(field, v.substr(eq + 1));
  }
  request->select = options.select;
  if (options.options.size() % 2 != 0) {
    err << "zivara: --opts takes ITEM and NAME=VALUE[,NAME=VALUE]...\n";
    return false;
  }
  for (size_t i = 0; i + 1 < options.options.size(); i += 2) {
    OptionsRequest o;
    std::string error;
    if (!ParseWhole(options.options[i], &o.item) || o.item < 1 || o.item > 14) {
      err << "zivara: --opts takes a pane number from 1 to 14, not \"" << options.options[i]
          << "\"\n";
      return false;
    }
    if (!ParseSettings(options.options[i + 1], &o.settings, &error)) {
      err << "zivara: --opts " << o.item << ": " << error << "\n";
      return false;
    }
    request->options.push_back(std::move(o));
  }
  for (int pane : options.panes) {
    if (!zvhost::HasItem(family, pane)) {
      err << "zivara: " << family.name << " has no pane " << pane << "; its panes are "
          << PaneList(family) << "\n";
      return false;
    }
  }
  if (options.format != "text" && options.format != "json") {
    err << "zivara: --format takes text or json, not \"" << options.format << "\"\n";
    return false;
  }
  return true;
}

// The reason that the summary pane gives in place of results: its last line
// that is not blank.
std::string StatusText(zvhost::Host& host, int32_t slot) {
  std::istringstream in(PaneOutput(host, slot, 1));
  std::string last;
  for (std::string line; std::getline(in, line);) {
    if (line.find_first_not_of(' ') != std::string::npos) last = line;
  }
  return last;
}

AnalysisInputs InputsOf(const RunOptions& options, const std::string& sheet,
                        const zvhost::FamilySpec& family) {
  AnalysisInputs inputs;
  inputs.sheet = sheet;
  const std::vector<VariableFieldInfo> fields = VariableFieldsOf(family);
  for (const std::string& v : options.variables) {
    const size_t eq = v.find('=');
    std::string label = v.substr(0, eq);
    for (const VariableFieldInfo& f : fields) {
      if (f.number > 0 && (std::to_string(f.number) == label || f.name == label)) label = f.label;
    }
    inputs.fields.emplace_back(label, v.substr(eq + 1));
  }
  if (options.select) inputs.fields.emplace_back("Select", *options.select);
  for (size_t i = 0; i + 1 < options.options.size(); i += 2) {
    inputs.options.push_back("pane " + options.options[i] + ": " + options.options[i + 1]);
  }
  return inputs;
}

}  // namespace

int RunCommand(const RunOptions& options, std::ostream& out, std::ostream& err) {
  AnalysisRequest request;
  if (!BuildRequest(options, &request, err)) return kExitRefused;
  const zvhost::FamilySpec& family = *request.family;
  const std::string sheet = options.sheet.empty() ? SampleSheetOf(family) : options.sheet;
  if (!LoadSheet(sheet, err, options.missingCodes)) return kExitRefused;
  std::unique_ptr<zvhost::Host> host = StartHost(err, err);
  if (!host) return kExitFault;
  std::vector<std::string> messages;
  host->SetMessageObserver([&](const MessageBoxCall& call) {
    err << call.caption << ": " << call.text << "\n";
    messages.push_back(call.text);
  });

  // Only the panes that this run prints or draws are built: a million-row
  // survival plot costs as much as the table. JSON and HTML show every pane.
  if (options.format == "text" && options.html.empty()) {
    request.shown.assign(options.panes.begin(), options.panes.end());
    if (options.panes.empty()) {
      for (int32_t i = family.firstText; i <= family.lastText; ++i) request.shown.push_back(i);
    }
    request.shown.push_back(1);  // its last line is the reason when there are no results
    if (!options.graphs.empty() && family.firstGraph != 0) {
      for (int32_t i = family.firstGraph; i <= family.lastGraph; ++i) request.shown.push_back(i);
    }
  }
  AnalysisRun run = RunAnalysis(*host, request, err);
  if (run.exitCode != kExitRan) return WithFaults(*host, run.exitCode, err);

  std::vector<int32_t> panes(options.panes.begin(), options.panes.end());
  if (options.format == "json") {
    if (panes.empty()) panes = zvhost::ItemsOf(family);
    out << AnalysisJson(*host, run.slot, panes).dump(1) << "\n";
  } else if (panes.size() == 1) {
    WritePaneOutput(out, *host, run.slot, panes.front());
  } else {
    if (panes.empty()) {
      for (int32_t i = family.firstText; i <= family.lastText; ++i) panes.push_back(i);
    }
    for (int32_t item : panes) {
      out << PaneHeading(family, item) << "\n";
      WritePaneOutput(out, *host, run.slot, item);
    }
  }
  out.flush();

  int exitCode = kExitRan;
  if (const int32_t status = host->State(run.slot)->status; status != 0) {
    err << "zivara: " << family.name << " ran but has no results (status " << status
        << "): " << StatusText(*host, run.slot) << "\n";
    exitCode = kExitNoResults;
  }
  if (!options.graphs.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(options.graphs, ec);
    if (ec) {
      err << "zivara: cannot create the folder " << options.graphs << ": " << ec.message() << "\n";
      exitCode = kExitFault;
    } else if (family.firstGraph != 0) {
      for (int32_t item = family.firstGraph; item <= family.lastGraph; ++item) {
        if (!WriteGraphFiles(*host, run.slot, item, options.graphs, err)) exitCode = kExitFault;
      }
    }
  }
  if (!options.html.empty()) {
    AnalysisInputs inputs = InputsOf(options, sheet, family);
    inputs.messages = messages;
    std::ofstream page(options.html, std::ios::binary);
    page << AnalysisHtml(*host, run.slot, inputs);
    if (!page) {
      err << "zivara: cannot write " << options.html << "\n";
      exitCode = kExitFault;
    }
  }
  return WithFaults(*host, exitCode, err);
}

}  // namespace zivara
