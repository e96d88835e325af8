// The product-limit procedure run through its entry points on a sheet given
// as CSV.
#pragma once

#include <string>
#include <string_view>

#include "support/module_fixture.h"
#include "survival/life2.h"

namespace zvtest {

class Life2Fixture : public ModuleFixture {
 protected:
  zv::ProcedureState& Run(std::string_view csv, std::string_view time, std::string_view censor = {},
                          std::string_view group = {}, std::string_view select = {}) {
    LoadSheet(csv);
    return RunFamily(zv::kLife2Family, {std::string(time), std::string(censor), std::string(group)},
                     select);
  }
};

}  // namespace zvtest
