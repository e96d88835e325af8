// A test fixture that stands where the Host stands: it starts the module,
// owns the Host's records with their virtual tables, loads a sheet, and
// calls entry points directly. Message boxes and dialogs go through the
// window system's logs and scripted driver.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "frame/host_records.h"
#include "protocol/families.h"
#include "protocol/protocol.h"
#include "services/movable_block.h"
#include "zvwin/zvwin.h"

namespace zvtest {

class ModuleFixture : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Replaces the sheet with this CSV text; fails the test on a parse error.
  void LoadSheet(std::string_view csv);
  // A zeroed ProcedureState bound to `slot` as Setup would leave it for a
  // family: gStates[slot], rowCount from the sheet.
  zv::ProcedureState& NewState(int32_t slot = 0);
  // Stores a counted text in a binding's expression, replacing any, as the
  // Host does.
  void SetExpression(zv::ProcedureState& state, int binding, std::string_view text);
  // Stores the entry list that Setup wrote into the bindings, as the Host does.
  void StoreEntryList(zv::ProcedureState& state, const char* entryList, bool hasSelect);
  // The text of the last message box, or "" when none was shown.
  std::string LastMessage() const;
  // Installs a scripted user for the next dialogs.
  void Script(std::vector<ScriptedDialogDriver::Script> scripts);

  // A new analysis of `family` on `slot` through the family's exported entry
  // points, as the Host makes it: Dialog with a scripted user who types
  // fields[i] into the i-th variable field and `select` into the select
  // field and presses OK, then Setup, the entry list stored, and Begin.
  // Fails the test when Dialog or Begin refuses.
  zv::ProcedureState& RunFamily(const zv::FamilyInfo& family,
                                const std::vector<std::string>& fields,
                                std::string_view select = {}, int32_t slot = 0);
  // The same without Begin.
  zv::ProcedureState& OpenFamily(const zv::FamilyInfo& family,
                                 const std::vector<std::string>& fields,
                                 std::string_view select = {}, int32_t slot = 0);
  // Item `item` of the analysis on `slot` through the family's Item entry;
  // the text the pane's window then holds.
  std::string PaneText(const zv::FamilyInfo& family, int32_t item, int32_t slot = 0);
  // Compares `text` byte for byte with tests/data/<name>; on a difference
  // the text is written beside the build as <file name>.actual.
  void ExpectGolden(const std::string& text, const std::string& name) const;

  // The first `count` elements of a binding's data block.
  template <class T>
  std::vector<T> Block(const zv::ProcedureState& state, int binding, size_t count) const {
    zv::LockedBlock<const T> block(state.bindings[binding].data);
    return std::vector<T>(block.get(), block.get() + count);
  }

  char entryList[zv::kEntryListBytes] = {};

  std::unique_ptr<zv::HostRecord> host;
  std::unique_ptr<zv::HostHelpRecord> help;
  std::unique_ptr<zv::HostView> view;
  std::unique_ptr<zv::SheetWindow> sheet;
  std::unique_ptr<zv::FrameWindow> frame;
  std::unique_ptr<zv::PaneWindow> pane;
  std::unique_ptr<zv::PaneRecord> paneRecord;
  std::vector<std::unique_ptr<zv::ProcedureState>> states;
  std::vector<char> advice;
  std::unique_ptr<ScriptedDialogDriver> driver;

 public:
  // Calls the module made to the Host view's drop operation.
  static int dropCalls;
};

}  // namespace zvtest
