// Every export of the module with its prototype, so that a definition that
// disagrees with what the Host calls cannot compile. The names are listed
// once more, for the linker, in export_table.h.
#pragma once

#include <cstdint>

#include "frame/host_records.h"

#define ZV_API extern "C" __attribute__((visibility("default")))

ZV_API int32_t FilterDllMsg(const WinMsg* message);
ZV_API int32_t ProcessDllIdle();
ZV_API int32_t IsKeel4Loaded(zv::HostHelpRecord* help, char* adviceBuffer, int32_t adviceEnabled);
ZV_API int32_t CallKeel4Interpret(zv::ProcedureState* state, char* output, int32_t item);
ZV_API void Keel4SetAddedText(const char* text, int32_t flag);

// The eight entry points of a family (Custom has shorter forms of its own).
#define ZV_DECLARE_FAMILY_ENTRIES(Family)                                                     \
  ZV_API int32_t Family##Dialog(int32_t slot, zv::HostRecord* host, zv::SheetWindow* sheet,   \
                                zv::FrameWindow* frame, int32_t reopen, int32_t reserved);    \
  ZV_API void Family##Setup(int32_t slot, zv::ProcedureState* state, zv::HostView* view,      \
                            char* entryList, int32_t reopen, int32_t reserved);               \
  ZV_API int32_t Family##Begin(int32_t slot, int32_t reserved1, int32_t reserved2);           \
  ZV_API int32_t Family##BeginAgain(int32_t slot, zv::ProcedureState* state, zv::HostView* view, \
                                    zv::HostRecord* host, zv::SheetWindow* sheet,             \
                                    zv::FrameWindow* frame, int32_t reserved);                \
  ZV_API int32_t Family##Item(zv::PaneWindow* pane, int32_t slot, int32_t item,               \
                              zv::PaneRecord* record, int32_t reserved);                      \
  ZV_API int32_t Family##Opts(zv::PaneWindow* pane, int32_t slot, int32_t item,               \
                              zv::PaneRecord* record, int32_t reserved1, int32_t reserved2,   \
                              int32_t reserved3);                                             \
  ZV_API void Family##Vsave(int32_t slot);                                                    \
  ZV_API int32_t Family##RedoItem1(zv::PaneWindow* pane, int32_t slot, int32_t reserved1,     \
                                   int32_t reserved2, int32_t passThrough, int32_t reserved3)

ZV_DECLARE_FAMILY_ENTRIES(DotDiagram);
ZV_DECLARE_FAMILY_ENTRIES(Life2);
