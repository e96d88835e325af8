// CallKeel4Interpret: the sentences for one pane, written by the generator
// of the family that the state's procedure code names.
#include <cstring>
#include <string>

#include "protocol/exports.h"
#include "protocol/families.h"

namespace zv {
namespace {

// The families of the family list, found by procedure code.
const FamilyInfo* const kFamilies[] = {
#define ZV_FAMILY(Name, entries) &k##Name##Family,
#include "protocol/family_list.h"
#undef ZV_FAMILY
};

}  // namespace

const FamilyInfo* FamilyOfCode(int32_t procedureCode) {
  for (const FamilyInfo* family : kFamilies) {
    if (family->procedureCode == procedureCode) return family;
  }
  return nullptr;
}

}  // namespace zv

using namespace zv;

ZV_API int32_t CallKeel4Interpret(ProcedureState* state, char* output, int32_t item) {
  std::string text;
  const FamilyInfo* family = FamilyOfCode(state->procedureCode);
  if (family != nullptr && family->interpret != nullptr) family->interpret(*state, item, text);
  std::memcpy(output, text.c_str(), text.size() + 1);
  return 1;
}
