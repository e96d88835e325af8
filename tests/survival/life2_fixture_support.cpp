#include <fstream>
#include <sstream>

#include "life2_fixture.h"
#include "services/variables.h"
#include "survival/life2.h"

namespace zvtest {

zv::ProcedureState& Life2Fixture::Run(std::string_view csv, std::string_view time,
                                      std::string_view censor, std::string_view group,
                                      std::string_view select) {
  LoadSheet(csv);
  zv::ProcedureState& state = NewState(0);
  state.procedureCode = 5764;
  state.firstListCount = 3;
  zv::Life2WriteDefaults(state);
  SetExpression(state, 0, time);
  SetExpression(state, 1, censor);
  SetExpression(state, 2, group);
  SetExpression(state, zv::kSelectBinding, select);
  zv::LoadSpecialVariables(0);
  EXPECT_EQ(zv::LoadVariable(0, &state.bindings[0]), 1);
  for (int optional : {1, 2}) {
    if (!zv::ExpressionOf(state.bindings[optional]).empty()) {
      EXPECT_EQ(zv::LoadVariable(0, &state.bindings[optional]), 1);
    }
  }
  state.status = 0;
  state.textOptionsMask = 2;
  state.graphOptionsMask = 1;
  zv::Life2Prepare(0, 0);
  return state;
}

void Life2Fixture::ExpectGolden(const std::string& text, const std::string& name) const {
  const std::string path = std::string(ZV_TEST_DATA_DIR) + "/survival/" + name;
  std::ifstream file(path, std::ios::binary);
  std::stringstream golden;
  golden << file.rdbuf();
  if (golden.str() != text) {
    std::ofstream(std::string(ZV_BIN_DIR) + "/" + name + ".actual", std::ios::binary) << text;
  }
  EXPECT_TRUE(file.is_open()) << "no golden file " << path;
  EXPECT_EQ(golden.str(), text) << "pane text differs from " << path;
}

}  // namespace zvtest
