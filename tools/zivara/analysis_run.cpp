#include "analysis_run.h"

#include <cctype>
#include <charconv>
#include <ostream>

#include "procedure_catalog.h"
#include "zivara_exit.h"

namespace zivara {

namespace {

std::optional<int32_t> ParseNumber(std::string_view text) {
  int32_t value = 0;
  auto [ptr, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || ptr != text.data() + text.size() || text.empty()) return std::nullopt;
  return value;
}

// A control name as the dialog templates give it: a letter, then letters,
// digits and '-'.
bool IsControlName(std::string_view text) {
  if (text.empty() || !std::isalpha(static_cast<unsigned char>(text[0]))) return false;
  for (char c : text) {
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '-') return false;
  }
  return true;
}

// True when text starts with "NUMBER=" or "NAME=".
bool StartsWithSetting(std::string_view text) {
  const size_t eq = text.find('=');
  if (eq == std::string_view::npos || eq == 0) return false;
  const std::string_view key = text.substr(0, eq);
  return IsControlName(key) || ParseNumber(key).has_value();
}

// Reports the steps that the scripted user could not carry out; true when
// there were any.
bool ReportProblems(zvhost::Host& host, std::ostream& err) {
  const auto& problems = host.user().problems();
  for (const std::string& p : problems) err << "zivara: " << p << "\n";
  bool any = !problems.empty();
  host.user().ClearProblems();
  host.user().Clear();
  return any;
}

}  // namespace

std::vector<int32_t> VariableFieldControls(const zvhost::FamilySpec& family) {
  if (!family.fieldControls.empty()) return family.fieldControls;
  std::vector<int32_t> controls;
  if (const DialogTemplate* tmpl = zvhost::HostDialogTemplate(family.variableTemplate)) {
    for (const ControlTemplate& c : tmpl->controls) {
      bool edit = c.kind == ControlKind::kEdit || c.kind == ControlKind::kMultiLineEdit;
      if (edit && c.id != family.selectControl) controls.push_back(c.id);
    }
  }
  return controls;
}

bool ParseSettings(std::string_view text, std::vector<ControlSetting>* settings,
                   std::string* error) {
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t end = pos;
    while (true) {
      end = text.find(',', end);
      if (end == std::string_view::npos || StartsWithSetting(text.substr(end + 1))) break;
      ++end;
    }
    std::string_view part = text.substr(pos, end == std::string_view::npos ? text.npos : end - pos);
    size_t eq = part.find('=');
    const std::string_view key = eq == std::string_view::npos ? part : part.substr(0, eq);
    std::optional<int32_t> control = ParseNumber(key);
    if (eq == std::string_view::npos || (!control && !IsControlName(key))) {
      if (error) {
        *error = std::string(1, '"').append(part).append(
            "\" is not NAME=VALUE or NUMBER=VALUE (zivara describe lists the names)");
      }
      return false;
    }
    settings->push_back({control.value_or(0), std::string(part.substr(eq + 1)),
                         control ? std::string() : std::string(key)});
    if (end == std::string_view::npos) break;
    pos = end + 1;
  }
  return true;
}

AnalysisRun RunAnalysis(zvhost::Host& host, const AnalysisRequest& request, std::ostream& err) {
  AnalysisRun run;
  const zvhost::FamilySpec& family = *request.family;
  if (!host.HasProcedure(family)) {
    err << "zivara: this module has no " << family.name << " procedure yet\n";
    run.exitCode = kExitRefused;
    return run;
  }
  const std::vector<int32_t> fields = VariableFieldControls(family);
  std::vector<zvhost::UserStep> steps;
  for (const auto& [field, text] : request.variables) {
    if (field < 1 || static_cast<size_t>(field) > fields.size()) {
      err << "zivara: " << family.name << " has " << fields.size()
          << " variable field(s); there is no field " << field << "\n";
      run.exitCode = kExitRefused;
      return run;
    }
    steps.push_back(zvhost::UserStep::Set(fields[static_cast<size_t>(field) - 1], text));
  }
  if (request.select) {
    if (family.selectControl == 0) {
      err << "zivara: " << family.name << " has no select field\n";
      run.exitCode = kExitRefused;
      return run;
    }
    steps.push_back(zvhost::UserStep::Set(family.selectControl, *request.select));
  }
  steps.push_back(zvhost::UserStep::Ok());

  const int32_t slot = host.NewSlot();
  host.user().Clear();
  host.user().Queue(steps);
  const int32_t accepted = host.Dialog(family, slot, false);
  if (ReportProblems(host, err) || accepted == 0) {
    if (accepted == 0) err << "zivara: the " << family.name << " variables were not accepted\n";
    run.exitCode = kExitRefused;
    return run;
  }
  if (!host.Setup(slot, false)) {
    err << "zivara: " << family.name << "Setup did not complete\n";
    run.exitCode = kExitFault;
    return run;
  }
  run.slot = slot;
  if (host.Begin(slot) == 0) {
    err << "zivara: " << family.name << " could not load its variables\n";
    run.exitCode = kExitRefused;
    return run;
  }
  host.ShowStalePanes(slot, request.shown);
  err << CensoringNote(host, slot);

  for (const OptionsRequest& options : request.options) {
    const zv::ProcedureState& state = *host.State(slot);
    if (!zvhost::HasItem(family, options.item)) {
      err << "zivara: " << family.name << " has no pane " << options.item << "; its panes are "
          << PaneList(family) << "\n";
      run.exitCode = kExitRefused;
      return run;
    }
    if (!PaneHasOptions(state, options.item)) {
      std::string with;
      for (int32_t item : zvhost::ItemsOf(family)) {
        if (PaneHasOptions(state, item)) with += (with.empty() ? "" : ", ") + std::to_string(item);
      }
      err << "zivara: pane " << options.item << " of " << family.name << " has no options"
          << (state.status != 0 ? " while the analysis has no results" : "") << "; "
          << (with.empty() ? std::string("no pane has them") : "panes with options: " + with)
          << "\n";
      run.exitCode = kExitRefused;
      return run;
    }
    std::vector<zvhost::UserStep> optionSteps;
    for (const ControlSetting& s : options.settings) {
      optionSteps.push_back(s.name.empty() ? zvhost::UserStep::Set(s.control, s.value)
                                           : zvhost::UserStep::SetNamed(s.name, s.value));
    }
    optionSteps.push_back(zvhost::UserStep::Ok());
    host.user().Queue(optionSteps);
    const int32_t done = host.Opts(slot, options.item);
    if (ReportProblems(host, err) || done == 0) {
      if (done == 0)
        err << "zivara: the options of pane " << options.item << " were not accepted\n";
      run.exitCode = kExitRefused;
      return run;
    }
  }
  run.exitCode = kExitRan;
  return run;
}

bool PaneHasOptions(const zv::ProcedureState& state, int32_t item) {
  // Opts refuses every pane but the summary of an analysis without results.
  if (state.status != 0 && item != 1) return false;
  if (zvhost::IsGraphItem(item)) return (state.graphOptionsMask >> (item - 8) & 1) != 0;
  return item >= 1 && item <= 7 && (state.textOptionsMask >> (item - 1) & 1) != 0;
}

std::string PaneList(const zvhost::FamilySpec& family) {
  auto range = [](int32_t first, int32_t last) {
    return first == last ? std::to_string(first)
                         : std::to_string(first) + "-" + std::to_string(last);
  };
  std::string list = range(family.firstText, family.lastText);
  if (family.firstGraph != 0) list += ", " + range(family.firstGraph, family.lastGraph);
  return list;
}

int WithFaults(const zvhost::Host& host, int exitCode, std::ostream& err) {
  for (const std::string& fault : host.faults()) err << "zivara: internal fault: " << fault << "\n";
  return host.faults().empty() ? exitCode : kExitFault;
}

}  // namespace zivara
