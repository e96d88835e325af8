#include "run_command.h"

#include <charconv>
#include <filesystem>
#include <iostream>

#include "analysis_run.h"
#include "host_start.h"
#include "pane_output.h"
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
  for (const std::string& v : options.variables) {
    size_t eq = v.find('=');
    int32_t field = 0;
    if (eq == std::string::npos || !ParseWhole(v.substr(0, eq), &field)) {
      err << "zivara: --var takes N=TEXT, not \"" << v << "\"\n";
      return false;
    }
    request->variables.emplace_back(field, v.substr(eq + 1));
  }
  request->select = options.select;
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
  if (options.options.size() % 2 != 0) {
    err << "zivara: --opts takes ITEM and CONTROL=VALUE[,CONTROL=VALUE]...\n";
    return false;
  }
  for (int pane : options.panes) {
    if (pane < 1 || pane > 14) {
      err << "zivara: --pane takes a pane number from 1 to 14, not " << pane << "\n";
      return false;
    }
  }
  return true;
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

  AnalysisRun run = RunAnalysis(*host, request, err);
  if (run.exitCode != kExitRan) return WithFaults(*host, run.exitCode, err);

  if (options.panes.size() == 1) {
    out << PaneOutput(*host, run.slot, options.panes.front());
  } else {
    std::vector<int32_t> panes(options.panes.begin(), options.panes.end());
    if (panes.empty()) {
      for (int32_t i = family.firstText; i <= family.lastText; ++i) panes.push_back(i);
    }
    for (int32_t item : panes) {
      out << PaneHeading(family, item) << "\n" << PaneOutput(*host, run.slot, item);
    }
  }
  out.flush();

  int exitCode = kExitRan;
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
  return WithFaults(*host, exitCode, err);
}

}  // namespace zivara
