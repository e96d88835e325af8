#include "procedure_catalog.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <ostream>
#include <sstream>

#include "analysis_run.h"
#include "demo_command.h"
#include "host_start.h"
#include "pane_output.h"
#include "protocol/families.h"
#include "zivara_exit.h"
#include "zvgrid/sheet.h"

namespace zivara {

namespace {

// "(Censoring:)" -> "Censoring".
std::string CleanLabel(std::string text) {
  while (!text.empty() && (text.front() == '(' || text.front() == ' ')) text.erase(0, 1);
  while (!text.empty() && (text.back() == ')' || text.back() == ':' || text.back() == ' ')) {
    text.pop_back();
  }
  return text;
}

// The template's text for a control: its own, or that of the last label
// before it.
std::string LabelOf(const DialogTemplate& tmpl, int32_t control) {
  std::string label;
  for (const ControlTemplate& c : tmpl.controls) {
    if (c.kind == ControlKind::kStatic && !c.text.empty()) label = c.text;
    if (c.id == control) return CleanLabel(c.text.empty() ? label : c.text);
  }
  return {};
}

const ControlTemplate* ControlOf(const DialogTemplate* tmpl, int32_t control) {
  if (tmpl == nullptr) return nullptr;
  for (const ControlTemplate& c : tmpl->controls) {
    if (c.id == control) return &c;
  }
  return nullptr;
}

std::string FirstLine(const std::string& text) {
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (line.find_first_not_of(' ') == std::string::npos) continue;
    line = line.substr(0, 60);
    return line.erase(line.find_last_not_of(' ') + 1);
  }
  return {};
}

// --- option dialogs, read by playing a user --------------------------------

struct OptionControl {
  int32_t id = 0;
  ControlKind kind = ControlKind::kEdit;
  std::string name;
  std::string text;
  std::vector<int32_t> group;  // a radio group: its buttons, the first names it
  std::string initial;         // the value shown when the dialog opens
  std::string range;           // found by entering a value out of any range
};

struct OptionDialogInfo {
  uint32_t templateId = 0;
  std::string caption;
  std::vector<OptionControl> controls;
};

// Plays one run of an option dialog through a function of the dialog and
// the number of the action asked for.
class PlayedUser : public WinDialogDriver {
 public:
  using Step = std::function<std::optional<DialogAction>(WinDialog&, int)>;
  explicit PlayedUser(Step step) : step_(std::move(step)) {}
  std::optional<DialogAction> NextAction(WinDialog& dialog) override {
    return step_(dialog, calls_++);
  }

 private:
  Step step_;
  int calls_ = 0;
};

// The settable controls of an option template, radio buttons gathered into
// their groups.
std::vector<OptionControl> SettableControls(const DialogTemplate& tmpl) {
  std::vector<OptionControl> controls;
  OptionControl* group = nullptr;
  for (const ControlTemplate& c : tmpl.controls) {
    if (c.groupStart) group = nullptr;
    if (c.kind == ControlKind::kRadio && group != nullptr) {
      group->group.push_back(c.id);
      continue;
    }
    const bool settable = c.kind == ControlKind::kEdit || c.kind == ControlKind::kMultiLineEdit ||
                          c.kind == ControlKind::kCheckBox || c.kind == ControlKind::kRadio ||
                          c.kind == ControlKind::kListBox || c.kind == ControlKind::kComboBox;
    if (!settable) continue;
    controls.push_back({c.id, c.kind, c.name, c.text, {}, {}, {}});
    if (c.kind == ControlKind::kRadio) {
      controls.back().group.push_back(c.id);
      group = &controls.back();
    }
  }
  return controls;
}

std::string CurrentValue(const WinDialog& dialog, const OptionControl& c) {
  switch (c.kind) {
    case ControlKind::kEdit:
    case ControlKind::kMultiLineEdit:
    case ControlKind::kComboBox:
      return dialog.GetItemText(c.id);
    case ControlKind::kCheckBox:
      return dialog.IsChecked(c.id) != 0 ? "1 (on)" : "0 (off)";
    case ControlKind::kRadio:
      for (size_t i = 0; i < c.group.size(); ++i) {
        if (dialog.IsChecked(c.group[i]) != 0) return std::to_string(i);
      }
      return {};
    case ControlKind::kListBox:
      return std::to_string(dialog.ListCurSel(c.id));
    default:
      return {};
  }
}

// "Please enter a number between %1 and %2." against a message: the two
// limits, or false.
bool MatchFormat(const std::string& format, const std::string& message, std::string* low,
                 std::string* high) {
  const size_t p1 = format.find("%1");
  const size_t p2 = format.find("%2");
  if (p1 == std::string::npos || p2 == std::string::npos || p2 < p1) return false;
  const std::string prefix = format.substr(0, p1);
  const std::string middle = format.substr(p1 + 2, p2 - p1 - 2);
  const std::string suffix = format.substr(p2 + 2);
  if (message.size() < prefix.size() + suffix.size() || message.rfind(prefix, 0) != 0 ||
      message.compare(message.size() - suffix.size(), suffix.size(), suffix) != 0) {
    return false;
  }
  const std::string inner =
      message.substr(prefix.size(), message.size() - prefix.size() - suffix.size());
  const size_t m = inner.find(middle);
  if (middle.empty() || m == std::string::npos) return false;
  *low = inner.substr(0, m);
  *high = inner.substr(m + middle.size());
  return true;
}

// The range that the module's refusal of `message` states, from the string
// table's range formats (962 for numbers, 964 for whole numbers).
std::string RangeOf(const std::string& message) {
  ModuleRef resources = WinLoadLibrary("keel4res.dll");
  if (resources == 0) return {};
  std::string range;
  const std::pair<uint32_t, const char*> kFormats[] = {{962, "number"}, {964, "whole number"}};
  for (const auto& [id, kind] : kFormats) {
    std::optional<std::string> format = WinFindString(resources, id);
    std::string low, high;
    if (format && MatchFormat(*format, message, &low, &high)) {
      range = std::string(kind) + " from " + low + " to " + high;
      break;
    }
  }
  WinFreeLibrary(resources);
  return range;
}

// Opens the option dialog of pane `item` and cancels it, noting the
// template and what each control shows; then, for each edit control, enters
// a value below any sensible range and notes the range the refusal names.
// An edit that starts disabled is tried after each radio button in turn.
bool ReadOptionDialog(zvhost::Host& host, int32_t slot, int32_t item, OptionDialogInfo* info,
                      std::vector<std::string>* messages) {
  const DialogTemplate* tmpl = nullptr;
  PlayedUser reader([&](WinDialog& dialog, int) -> std::optional<DialogAction> {
    tmpl = zvhost::HostDialogTemplate(dialog.templateId());
    if (tmpl == nullptr) return std::nullopt;
    info->templateId = dialog.templateId();
    info->caption = dialog.Caption();
    info->controls = SettableControls(*tmpl);
    for (OptionControl& c : info->controls) c.initial = CurrentValue(dialog, c);
    return std::nullopt;
  });
  WinSetDialogDriver(&reader);
  host.Opts(slot, item);
  if (tmpl == nullptr) {
    WinSetDialogDriver(&host.user());
    return false;
  }
  std::vector<int32_t> radios;
  for (const OptionControl& c : info->controls)
    radios.insert(radios.end(), c.group.begin(), c.group.end());
  for (OptionControl& c : info->controls) {
    if (c.kind != ControlKind::kEdit) continue;
    // -1: the edit as it opens; then after each radio button.
    for (int32_t r = -1; r < static_cast<int32_t>(radios.size()) && c.range.empty(); ++r) {
      bool reached = true;
      int enterAt = r < 0 ? 0 : 1;
      PlayedUser prober([&](WinDialog& dialog, int call) -> std::optional<DialogAction> {
        if (call < enterAt) return DialogAction::SelectRadio(radios[static_cast<size_t>(r)]);
        if (call == enterAt) {
          reached = dialog.IsEnabled(c.id);
          if (!reached) return std::nullopt;
          return DialogAction::SetText(c.id, "-999999999");
        }
        if (call == enterAt + 1) return DialogAction::Press(kIdOk);
        return std::nullopt;
      });
      WinSetDialogDriver(&prober);
      messages->clear();
      host.Opts(slot, item);
      if (reached && !messages->empty()) c.range = RangeOf(messages->back());
    }
  }
  WinSetDialogDriver(&host.user());
  return true;
}

const char* KindWord(ControlKind kind) {
  switch (kind) {
    case ControlKind::kEdit:
      return "edit";
    case ControlKind::kMultiLineEdit:
      return "lines";
    case ControlKind::kCheckBox:
      return "check box";
    case ControlKind::kRadio:
      return "radio group";
    case ControlKind::kListBox:
      return "list";
    case ControlKind::kComboBox:
      return "combo box";
    default:
      return "control";
  }
}

void WriteOptionDialog(const OptionDialogInfo& info, int32_t item, std::ostream& out) {
  out << "\nOptions of pane " << item << ", \"" << info.caption << "\" (dialog " << info.templateId
      << "; --opts " << item << " NAME=VALUE,...):\n";
  for (const OptionControl& c : info.controls) {
    const std::string name = c.name.empty() ? std::to_string(c.id) : c.name;
    std::string values;
    if (c.kind == ControlKind::kCheckBox) {
      values = "1 or on, 0 or off";
    } else if (c.kind == ControlKind::kRadio) {
      const DialogTemplate* tmpl = zvhost::HostDialogTemplate(info.templateId);
      for (size_t i = 0; i < c.group.size(); ++i) {
        const ControlTemplate* button = ControlOf(tmpl, c.group[i]);
        values += (i == 0 ? "" : "; ") + std::to_string(i) + " " + (button ? button->text : "");
      }
    } else if (c.kind == ControlKind::kListBox) {
      values = "entry number from 0";
    } else {
      values = c.range.empty() ? "text" : c.range;
    }
    char line[160];
    std::snprintf(line, sizeof line, "  %-9s %-11s ", name.c_str(), KindWord(c.kind));
    out << line << values << "; default " << (c.initial.empty() ? "empty" : c.initial) << "\n";
  }
}

}  // namespace

std::vector<VariableFieldInfo> VariableFieldsOf(const zvhost::FamilySpec& family) {
  std::vector<VariableFieldInfo> fields;
  const DialogTemplate* tmpl = zvhost::HostDialogTemplate(family.variableTemplate);
  const zv::FamilyInfo* row = zv::FamilyOfCode(family.procedureCode);
  auto describe = [&](int32_t number, int32_t control) {
    VariableFieldInfo f;
    f.number = number;
    f.control = control;
    if (const ControlTemplate* c = ControlOf(tmpl, control)) f.name = c->name;
    if (tmpl != nullptr) f.label = LabelOf(*tmpl, control);
    if (row != nullptr && row->dialog != nullptr) {
      for (const zv::VariableField& v : row->dialog->fields) {
        if (v.control != control) continue;
        f.known = true;
        f.maxLength = v.maxLength;
        f.required = !v.allowEmpty;
        f.allowText = v.allowText;
        f.isList = v.isList;
      }
    }
    fields.push_back(std::move(f));
  };
  int32_t number = 0;
  for (int32_t control : VariableFieldControls(family)) describe(++number, control);
  if (family.selectControl != 0) describe(0, family.selectControl);
  return fields;
}

int32_t FieldNumberOfName(const zvhost::FamilySpec& family, std::string_view name) {
  for (const VariableFieldInfo& f : VariableFieldsOf(family)) {
    if (f.number > 0 && f.name == name) return f.number;
  }
  return 0;
}

std::string FieldNames(const zvhost::FamilySpec& family) {
  std::string names;
  for (const VariableFieldInfo& f : VariableFieldsOf(family)) {
    if (f.number == 0 || f.name.empty()) continue;
    names += (names.empty() ? "" : ", ") + f.name;
  }
  return names.empty() ? "none" : names;
}

int ListCommand(std::ostream& out, std::ostream& err) {
  std::unique_ptr<zvhost::Host> host = StartHost(err, err);
  if (!host) return kExitFault;
  std::string missing;
  for (const zvhost::FamilySpec& family : zvhost::Families()) {
    if (!host->HasProcedure(family)) {
      missing += (missing.empty() ? "" : ", ") + std::string(family.name);
      continue;
    }
    const DialogTemplate* tmpl = zvhost::HostDialogTemplate(family.variableTemplate);
    char line[200];
    std::snprintf(line, sizeof line, "%-12s %s\n", family.name,
                  tmpl != nullptr ? tmpl->caption.c_str() : "");
    out << line;
  }
  if (!missing.empty()) out << "\nNot in this module yet: " << missing << "\n";
  return kExitRan;
}

int DescribeCommand(const std::string& procedure, std::ostream& out, std::ostream& err) {
  const zvhost::FamilySpec* family = zvhost::FindFamily(procedure);
  if (family == nullptr) {
    err << "zivara: unknown procedure \"" << procedure << "\"; zivara list shows them\n";
    return kExitRefused;
  }
  std::ostringstream quiet;
  std::vector<std::string> messages;
  std::unique_ptr<zvhost::Host> host = StartHost(quiet, err);
  if (!host) return kExitFault;
  if (!host->HasProcedure(*family)) {
    err << "zivara: this module has no " << family->name << " procedure yet\n";
    return kExitRefused;
  }
  host->SetMessageObserver([&](const MessageBoxCall& call) { messages.push_back(call.text); });

  const DialogTemplate* tmpl = zvhost::HostDialogTemplate(family->variableTemplate);
  out << family->name << ": " << (tmpl ? tmpl->caption : std::string()) << "\n"
      << "Sample sheet: " << family->sampleSheet << "\n\n"
      << "Fields (--var N=TEXT or --var NAME=TEXT; the select field: --select TEXT):\n";
  bool censoring = false;
  for (const VariableFieldInfo& f : VariableFieldsOf(*family)) {
    censoring = censoring || f.name == "censoring";
    std::string needs;
    if (f.known) {
      needs = std::string(f.required ? "required" : "optional") + ", " +
              (f.number == 0 ? "select expression"
               : f.isList    ? "list of numeric columns, one per line (';' separates them)"
               : f.allowText ? "numeric or text column"
                             : "numeric column") +
              ", at most " + std::to_string(f.maxLength) + " characters";
    }
    char line[200];
    std::snprintf(line, sizeof line, "  %-2s %-10s %-12s ",
                  f.number == 0 ? "" : std::to_string(f.number).c_str(),
                  f.name.empty() ? "-" : f.name.c_str(), f.label.c_str());
    out << line << needs << "\n";
  }
  if (censoring) {
    out << "\nCensoring: a value above 0 marks a withdrawn (censored) row, 0 a failure\n"
           "(the opposite of R's status, where 1 is the event). For a 0/1 event column\n"
           "give \"1 - status\"; for R's 1/2 coding give \"status = 1\".\n";
  }

  // The panes and their options come from a run on the sample sheet with
  // the required fields only (a group variable can take options away: Life2
  // offers none on its plots for several groups): the demo's inputs, or for
  // a procedure the demo does not know, the sheet's numeric columns in turn.
  const DemoInput* input = DemoInputOf(family->name);
  AnalysisRun run;
  if (LoadSheet(SampleSheetOf(*family), quiet)) {
    AnalysisRequest request;
    request.family = family;
    std::vector<std::string> numeric;
    for (const zvgrid::Column& c : zvgrid::Columns()) {
      if (c.type != 'C') numeric.push_back(c.name);
    }
    size_t next = 0;
    auto column = [&] {
      return numeric.empty() ? std::string() : numeric[next++ % numeric.size()];
    };
    for (const VariableFieldInfo& f : VariableFieldsOf(*family)) {
      if (f.number == 0 || (f.known && !f.required)) continue;
      std::string text;
      if (input != nullptr) {
        for (const auto& [number, given] : input->variables) {
          if (number == f.number) text = given;
        }
      } else if (f.known) {
        text = f.isList ? column() + ";" + column() : column();
      }
      if (!text.empty()) request.variables.emplace_back(f.number, text);
    }
    run = RunAnalysis(*host, request, quiet);
  }
  const zv::ProcedureState* state = run.exitCode == kExitRan ? host->State(run.slot) : nullptr;
  out << "\nPanes (--pane N; 1 to 7 text, 8 to 14 graph):\n";
  for (int32_t item : zvhost::ItemsOf(*family)) {
    const bool options = state != nullptr && PaneHasOptions(*state, item);
    const std::string title = state != nullptr ? FirstLine(PaneOutput(*host, run.slot, item)) : "";
    char line[200];
    std::snprintf(line, sizeof line, "  %-2d %-5s %-8s %s\n", item,
                  zvhost::IsGraphItem(item) ? "graph" : "text", options ? "options" : "",
                  title.c_str());
    out << line;
  }
  if (state == nullptr) {
    out << "  (titles and options are shown once the procedure runs on its sample sheet)\n";
  } else {
    for (int32_t item : zvhost::ItemsOf(*family)) {
      if (!PaneHasOptions(*host->State(run.slot), item)) continue;
      OptionDialogInfo info;
      if (ReadOptionDialog(*host, run.slot, item, &info, &messages)) {
        WriteOptionDialog(info, item, out);
      }
    }
  }
  return WithFaults(*host, kExitRan, err);
}

std::string CensoringNote(zvhost::Host& host, int32_t slot) {
  zvhost::Analysis* analysis = host.AnalysisOf(slot);
  if (analysis == nullptr) return {};
  const zv::FamilyInfo* row = zv::FamilyOfCode(analysis->family->procedureCode);
  if (row == nullptr || row->dialog == nullptr) return {};
  int32_t binding = -1;
  for (const VariableFieldInfo& f : VariableFieldsOf(*analysis->family)) {
    if (f.name != "censoring") continue;
    for (const zv::VariableField& v : row->dialog->fields) {
      if (v.control == f.control) binding = v.binding;
    }
  }
  if (binding < 0 || binding >= zv::kBindingCount) return {};
  const zv::ProcedureState& state = *analysis->state;
  const zv::VariableBinding& b = state.bindings[binding];
  if (b.data == 0 || b.type == 'C' || zv::CountedText(b.expression).empty()) return {};
  const size_t rows = std::min<size_t>(static_cast<size_t>(std::max(state.rowCount, 0)),
                                       WinGlobalSize(b.data) / sizeof(double));
  const auto* values = static_cast<const double*>(WinGlobalLock(b.data));
  if (values == nullptr) return {};
  size_t n = 0, withdrawn = 0, oneOrTwo = 0;
  for (size_t i = 0; i < rows; ++i) {
    if (values[i] == zv::kMissingValue) continue;
    ++n;
    withdrawn += values[i] > 0 ? 1 : 0;
    oneOrTwo += values[i] == 1 || values[i] == 2 ? 1 : 0;
  }
  WinGlobalUnlock(b.data);
  if (n == 0) return {};
  std::string why;
  if (oneOrTwo == n) {
    why = "every value is 1 or 2";
  } else if (withdrawn * 5 > n * 4) {
    why = std::to_string(withdrawn * 100 / n) + " % of the rows are withdrawn";
  } else {
    return {};
  }
  const std::string column(zv::CountedText(b.expression));
  return "zivara: note: in the censoring column \"" + column + "\" " + why +
         ". Here a value above 0 marks a withdrawn (censored) row and 0 a failure, the "
         "opposite of R's status. If the column marks the event as R does, give \"1 - " +
         column + "\" (0/1 coding) or \"" + column +
         " = 1\" (1/2 coding) instead. The analysis ran as given.\n";
}

}  // namespace zivara
