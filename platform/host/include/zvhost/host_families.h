// What the Host knows of the eleven procedures of the module: their names,
// codes, panes, how the entry list that Setup writes is spread over the
// bindings, the variable dialog's fields, and the bundled sample sheet.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zvhost {

// A list whose length comes from the lines of a text of the entry list.
inline constexpr int32_t kCountedFromLines = -1;

struct FamilySpec {
  const char* name;  // "DotDiagram"
  int32_t procedureCode;
  int32_t firstText, lastText;    // text Items
  int32_t firstGraph, lastGraph;  // graph Items; 0 when none
  int32_t firstListCount;
  int32_t secondListCount;  // kCountedFromLines for a line list
  bool hasSelect;
  // Texts after the window title in the entry list, the select included.
  int32_t entryTexts;
  // Index among those texts of the one that holds a line list, or -1.
  int32_t lineListEntry;
  // The variable dialog: its template, the edit controls of the variable
  // fields in field order (the select excluded), and the select's control.
  // An empty field list means: the template's edit controls in order.
  uint32_t variableTemplate;
  std::vector<int32_t> fieldControls;
  int32_t selectControl;    // 0 when the family has none
  bool shortForms;          // Custom: the shorter argument lists
  const char* sampleSheet;  // file name in the data folder
};

const std::vector<FamilySpec>& Families();
// The family of a name in any case; nullptr when there is none.
const FamilySpec* FindFamily(std::string_view name);
const FamilySpec* FindFamilyByCode(int32_t procedureCode);

// Every Item of the family: text Items first, then graph Items.
std::vector<int32_t> ItemsOf(const FamilySpec& family);
bool HasItem(const FamilySpec& family, int32_t item);
inline bool IsGraphItem(int32_t item) {
  return item >= 8 && item <= 14;
}

}  // namespace zvhost
