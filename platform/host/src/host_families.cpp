#include "zvhost/host_families.h"

#include <cctype>

namespace zvhost {

const std::vector<FamilySpec>& Families() {
  // Control numbers are those of the variable dialogs in the resource
  // module. Rowwise's list control is taken from its template.
  static const std::vector<FamilySpec> kFamilies = {
      {"Life2",
       5764,
       1,
       3,
       8,
       10,
       3,
       0,
       true,
       4,
       -1,
       848,
       {116, 122, 261},
       117,
       false,
       "trial.csv"},
      {"Life1",
       5748,
       1,
       3,
       8,
       12,
       2,
       kCountedFromLines,
       false,
       3,
       2,
       846,
       {116, 122, 261, 265},
       0,
       false,
       "lifetable.csv"},
      {"Weibull",
       5732,
       1,
       3,
       8,
       14,
       3,
       0,
       true,
       4,
       -1,
       847,
       {116, 122, 261},
       117,
       false,
       "components.csv"},
      {"Uncensored",
       1648,
       1,
       7,
       8,
       14,
       1,
       0,
       true,
       2,
       -1,
       9969,
       {116},
       117,
       false,
       "measurements.csv"},
      {"Censored",
       5716,
       1,
       4,
       8,
       10,
       2,
       0,
       true,
       3,
       -1,
       3679,
       {116, 122},
       117,
       false,
       "components.csv"},
      {"Codebook",
       3032,
       1,
       3,
       8,
       13,
       0,
       3,
       true,
       4,
       -1,
       272,
       {116, 122, 261},
       117,
       false,
       "measurements.csv"},
      {"Rowwise",
       2890,
       1,
       3,
       8,
       13,
       0,
       kCountedFromLines,
       true,
       2,
       0,
       270,
       {},
       117,
       false,
       "measurements.csv"},
      {"BubbleChart",
       2858,
       1,
       1,
       8,
       8,
       0,
       4,
       true,
       5,
       -1,
       821,
       {261, 122, 265, 116},
       117,
       false,
       "measurements.csv"},
      {"DotDiagram",
       2842,
       1,
       1,
       8,
       8,
       1,
       0,
       true,
       2,
       -1,
       9969,
       {116},
       117,
       false,
       "measurements.csv"},
      {"Surfplot",
       2826,
       1,
       1,
       8,
       9,
       10,
       0,
       false,
       1,
       -1,
       815,
       {261, 141, 142, 143, 144},
       0,
       false,
       "measurements.csv"},
      {"Custom",
       5700,
       1,
       1,
       8,
       8,
       3,
       0,
       false,
       3,
       -1,
       453,
       {141, 142, 143, 144, 145, 146, 147, 148, 149},
       0,
       true,
       "measurements.csv"},
  };
  return kFamilies;
}

const FamilySpec* FindFamily(std::string_view name) {
  for (const FamilySpec& family : Families()) {
    std::string_view known = family.name;
    if (known.size() != name.size()) continue;
    bool same = true;
    for (size_t i = 0; i < name.size() && same; ++i) {
      same = std::tolower(static_cast<unsigned char>(known[i])) ==
             std::tolower(static_cast<unsigned char>(name[i]));
    }
    if (same) return &family;
  }
  return nullptr;
}

const FamilySpec* FindFamilyByCode(int32_t procedureCode) {
  for (const FamilySpec& family : Families()) {
    if (family.procedureCode == procedureCode) return &family;
  }
  return nullptr;
}

std::vector<int32_t> ItemsOf(const FamilySpec& family) {
  std::vector<int32_t> items;
  for (int32_t i = family.firstText; i <= family.lastText; ++i) items.push_back(i);
  if (family.firstGraph != 0) {
    for (int32_t i = family.firstGraph; i <= family.lastGraph; ++i) items.push_back(i);
  }
  return items;
}

bool HasItem(const FamilySpec& family, int32_t item) {
  if (item >= family.firstText && item <= family.lastText) return true;
  return family.firstGraph != 0 && item >= family.firstGraph && item <= family.lastGraph;
}

}  // namespace zvhost
