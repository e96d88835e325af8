// zivara list and zivara describe: what each procedure asks for and shows,
// read from the module's own Families table, the dialog templates of the
// resource module (captions, labels, control names) and, for the panes and
// their options, a run on the bundled sample sheet. Nothing here lists a
// procedure's fields or options by hand, so a new family or a control added
// to a template shows up by itself.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "zvhost/host.h"

namespace zivara {

// A field of a variable dialog, numbered as --var numbers them.
struct VariableFieldInfo {
  int32_t number = 0;  // from 1; 0 for the select field
  int32_t control = 0;
  std::string name;       // the template's NAME; empty when it has none
  std::string label;      // what the dialog shows beside the field
  int32_t maxLength = 0;  // 0 when the module's table does not say
  bool known = false;     // the module's table describes the field
  bool required = false;
  bool allowText = false;
  bool isList = false;
};
std::vector<VariableFieldInfo> VariableFieldsOf(const zvhost::FamilySpec& family);

// The --var number of a variable field named in the template; 0 when none
// has the name.
int32_t FieldNumberOfName(const zvhost::FamilySpec& family, std::string_view name);
// The names the variable fields answer to, for messages.
std::string FieldNames(const zvhost::FamilySpec& family);

int ListCommand(std::ostream& out, std::ostream& err);
int DescribeCommand(const std::string& procedure, std::ostream& out, std::ostream& err);

// A line for stderr when the column in the field named "censoring" looks
// coded the other way round (every value 1 or 2, or more than 80 % of the
// rows withdrawn); empty otherwise. Reads the loaded column after Begin.
std::string CensoringNote(zvhost::Host& host, int32_t slot);

}  // namespace zivara
