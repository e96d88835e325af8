// One analysis as the command line runs it: the variable dialog filled and
// accepted, Setup, Begin, the panes shown, then any pane options.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zvhost/host.h"

namespace zivara {

// A control set by its number, or by its NAME in the dialog template.
struct ControlSetting {
  int32_t control = 0;
  std::string value;
  std::string name;  // empty: by number
};

struct OptionsRequest {
  int32_t item = 0;
  std::vector<ControlSetting> settings;
};

struct AnalysisRequest {
  const zvhost::FamilySpec* family = nullptr;
  std::vector<std::pair<int32_t, std::string>> variables;  // field from 1, text
  std::optional<std::string> select;
  std::vector<OptionsRequest> options;
  // The panes built after Begin; empty: every pane, as the desktop shows them.
  std::vector<int32_t> shown;
};

struct AnalysisRun {
  int exitCode = 0;
  int32_t slot = -1;  // the analysis, once Setup has opened it
};

// Runs the request on the loaded sheet. Refusals and faults are written to
// err; message boxes reach the Host's observer.
AnalysisRun RunAnalysis(zvhost::Host& host, const AnalysisRequest& request, std::ostream& err);

// The edit controls of the family's variable fields in field order, the
// select field excluded.
std::vector<int32_t> VariableFieldControls(const zvhost::FamilySpec& family);

// "141=50,176=1" or "limits=1,level=90": control settings separated by
// commas, each control given by number or by name. A comma that is not
// followed by "NUMBER=" or "NAME=" belongs to the value ("141=1,5" sets 141
// to "1,5").
bool ParseSettings(std::string_view text, std::vector<ControlSetting>* settings,
                   std::string* error);

// Whether pane `item` of the analysis has an options dialog, by the masks
// that Begin wrote.
bool PaneHasOptions(const zv::ProcedureState& state, int32_t item);

// "1-3, 8-10": the panes of a family.
std::string PaneList(const zvhost::FamilySpec& family);

// Writes the Host's faults to err; kExitFault when there were any, else
// `exitCode`.
int WithFaults(const zvhost::Host& host, int exitCode, std::ostream& err);

}  // namespace zivara
