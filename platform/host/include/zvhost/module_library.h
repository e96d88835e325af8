// The statistics module as the Host sees it: a shared library opened at run
// time, whose exports are found by name.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "frame/host_records.h"
#include "zvhost/host_families.h"

namespace zvhost {

// The argument lists of the entry points. Reserved arguments are passed as
// 0. Custom has the shorter forms.
using DialogEntry = int32_t (*)(int32_t slot, zv::HostRecord* host, zv::SheetWindow* sheet,
                                zv::FrameWindow* frame, int32_t reopen, int32_t reserved);
using CustomDialogEntry = int32_t (*)(int32_t slot, zv::HostRecord* host, int32_t reopen);
using SetupEntry = void (*)(int32_t slot, zv::ProcedureState* state, zv::HostView* view,
                            char* entryList, int32_t reopen, int32_t reserved);
using CustomSetupEntry = void (*)(int32_t slot, zv::ProcedureState* state, zv::HostView* view,
                                  char* entryList, int32_t reopen);
using BeginEntry = int32_t (*)(int32_t slot, int32_t reserved1, int32_t reserved2);
using CustomBeginEntry = int32_t (*)(int32_t slot);
using BeginAgainEntry = int32_t (*)(int32_t slot, zv::ProcedureState* state, zv::HostView* view,
                                    zv::HostRecord* host, zv::SheetWindow* sheet,
                                    zv::FrameWindow* frame, int32_t reserved);
using CustomBeginAgainEntry = int32_t (*)(int32_t slot, zv::ProcedureState* state,
                                          zv::HostView* view, zv::HostRecord* host,
                                          zv::SheetWindow* sheet, zv::FrameWindow* frame);
using ItemEntry = int32_t (*)(zv::PaneWindow* pane, int32_t slot, int32_t item,
                              zv::PaneRecord* record, int32_t reserved);
using CustomItemEntry = int32_t (*)(zv::PaneWindow* pane, int32_t slot, int32_t item,
                                    zv::PaneRecord* record);
using OptsEntry = int32_t (*)(zv::PaneWindow* pane, int32_t slot, int32_t item,
                              zv::PaneRecord* record, int32_t reserved1, int32_t reserved2,
                              int32_t reserved3);
using CustomOptsEntry = int32_t (*)(zv::PaneWindow* pane, int32_t slot, int32_t item,
                                    zv::PaneRecord* record);
using VsaveEntry = void (*)(int32_t slot);
using RedoItem1Entry = int32_t (*)(zv::PaneWindow* pane, int32_t slot, int32_t reserved1,
                                   int32_t reserved2, int32_t passThrough, int32_t reserved3);

using IsKeel4LoadedEntry = int32_t (*)(zv::HostHelpRecord* help, char* adviceBuffer,
                                       int32_t adviceEnabled);
using CallKeel4InterpretEntry = int32_t (*)(zv::ProcedureState* state, char* output, int32_t item);
using Keel4SetAddedTextEntry = void (*)(const char* text, int32_t flag);

// The entry points of one family; nullptr where the library lacks one.
struct FamilyEntries {
  void* dialog = nullptr;
  void* setup = nullptr;
  void* begin = nullptr;
  void* beginAgain = nullptr;
  void* item = nullptr;
  void* opts = nullptr;
  void* vsave = nullptr;      // none in Custom
  void* redoItem1 = nullptr;  // none in Custom
};

class ModuleLibrary {
 public:
  ModuleLibrary() = default;
  ~ModuleLibrary();
  ModuleLibrary(const ModuleLibrary&) = delete;
  ModuleLibrary& operator=(const ModuleLibrary&) = delete;

  // Opens the library and looks up every export by name. False with a
  // message when the library cannot be opened or lacks IsKeel4Loaded.
  bool Open(const std::string& path, std::string* error);
  void Close();
  bool IsOpen() const { return handle_ != nullptr; }
  const std::string& path() const { return path_; }

  void* Find(const char* name) const;  // nullptr when not exported
  const FamilyEntries& EntriesOf(const FamilySpec& family) const;
  // True when the library exports every entry point that the family has.
  bool HasFamily(const FamilySpec& family) const;

  IsKeel4LoadedEntry isKeel4Loaded = nullptr;
  CallKeel4InterpretEntry callKeel4Interpret = nullptr;
  Keel4SetAddedTextEntry keel4SetAddedText = nullptr;
  int32_t (*filterDllMsg)(const WinMsg* message) = nullptr;
  int32_t (*processDllIdle)() = nullptr;

 private:
  void* handle_ = nullptr;
  std::string path_;
  std::array<FamilyEntries, 11> entries_{};
};

// Where the Host looks for the module: $ZIVARA_MODULE, else libzvkeel4.so in
// the folder of the running program.
std::string DefaultModulePath();
// The folder of the running program.
std::string ProgramFolder();

}  // namespace zvhost
