// The product-limit procedure run as Begin runs it, on a sheet given as CSV,
// with helpers to read its result blocks and to compare pane texts with the
// golden files of tests/data/survival.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "services/movable_block.h"
#include "support/module_fixture.h"

namespace zvtest {

class Life2Fixture : public ModuleFixture {
 protected:
  // Loads the sheet, binds Slot 0 with the option defaults and the
  // expressions, loads the variables as Begin does and runs Life2Prepare.
  zv::ProcedureState& Run(std::string_view csv, std::string_view time, std::string_view censor = {},
                          std::string_view group = {}, std::string_view select = {});

  template <class T>
  std::vector<T> Block(const zv::ProcedureState& state, int binding, size_t count) const {
    zv::LockedBlock<const T> block(state.bindings[binding].data);
    return std::vector<T>(block.get(), block.get() + count);
  }

  // Compares `text` byte for byte with tests/data/survival/<name>; on a
  // difference the text is written beside the build as <name>.actual.
  void ExpectGolden(const std::string& text, const std::string& name) const;
};

}  // namespace zvtest
