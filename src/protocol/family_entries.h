// The entry points of a family, declared and defined by one macro each for
// the two forms of the family list: every definition is one call into the
// shared protocol with the family's row, so a family never copies the
// protocol.
#pragma once

#include <cstdint>

#include "frame/host_records.h"

#define ZV_API extern "C" __attribute__((visibility("default")))

// The names of each form, for the export table.
#define ZV_FAMILY_ENTRY_NAMES_6(F, X) \
  X(F##Dialog) X(F##Setup) X(F##Begin) X(F##BeginAgain) X(F##Item) X(F##Opts)
#define ZV_FAMILY_ENTRY_NAMES_8(F, X) ZV_FAMILY_ENTRY_NAMES_6(F, X) X(F##Vsave) X(F##RedoItem1)

// The full set, with the argument lists the Host calls them with.
#define ZV_DECLARE_FAMILY_ENTRIES_8(F)                                                             \
  ZV_API int32_t F##Dialog(int32_t slot, zv::HostRecord* host, zv::SheetWindow* sheet,             \
                           zv::FrameWindow* frame, int32_t reopen, int32_t reserved);              \
  ZV_API void F##Setup(int32_t slot, zv::ProcedureState* state, zv::HostView* view,                \
                       char* entryList, int32_t reopen, int32_t reserved);                         \
  ZV_API int32_t F##Begin(int32_t slot, int32_t reserved1, int32_t reserved2);                     \
  ZV_API int32_t F##BeginAgain(int32_t slot, zv::ProcedureState* state, zv::HostView* view,        \
                               zv::HostRecord* host, zv::SheetWindow* sheet,                       \
                               zv::FrameWindow* frame, int32_t reserved);                          \
  ZV_API int32_t F##Item(zv::PaneWindow* pane, int32_t slot, int32_t item, zv::PaneRecord* record, \
                         int32_t reserved);                                                        \
  ZV_API int32_t F##Opts(zv::PaneWindow* pane, int32_t slot, int32_t item, zv::PaneRecord* record, \
                         int32_t reserved1, int32_t reserved2, int32_t reserved3);                 \
  ZV_API void F##Vsave(int32_t slot);                                                              \
  ZV_API int32_t F##RedoItem1(zv::PaneWindow* pane, int32_t slot, int32_t reserved1,               \
                              int32_t reserved2, int32_t passThrough, int32_t reserved3);

// The short forms: no reserved arguments, and Dialog takes the HostRecord
// alone (the sheet and frame windows of the last Dialog stay in force).
#define ZV_DECLARE_FAMILY_ENTRIES_6(F)                                                      \
  ZV_API int32_t F##Dialog(int32_t slot, zv::HostRecord* host, int32_t reopen);             \
  ZV_API void F##Setup(int32_t slot, zv::ProcedureState* state, zv::HostView* view,         \
                       char* entryList, int32_t reopen);                                    \
  ZV_API int32_t F##Begin(int32_t slot);                                                    \
  ZV_API int32_t F##BeginAgain(int32_t slot, zv::ProcedureState* state, zv::HostView* view, \
                               zv::HostRecord* host, zv::SheetWindow* sheet,                \
                               zv::FrameWindow* frame);                                     \
  ZV_API int32_t F##Item(zv::PaneWindow* pane, int32_t slot, int32_t item,                  \
                         zv::PaneRecord* record);                                           \
  ZV_API int32_t F##Opts(zv::PaneWindow* pane, int32_t slot, int32_t item, zv::PaneRecord* record);

// Definitions; `row` is the family's row of the Families table. They need
// protocol/protocol.h and
// frame/module_state.h.
#define ZV_DEFINE_FAMILY_ENTRIES_8(F, row)                                                         \
  ZV_API int32_t F##Dialog(int32_t slot, zv::HostRecord* host, zv::SheetWindow* sheet,             \
                           zv::FrameWindow* frame, int32_t reopen, int32_t) {                      \
    return zv::ProtocolDialog(row, slot, host, sheet, frame, reopen);                              \
  }                                                                                                \
  ZV_API void F##Setup(int32_t slot, zv::ProcedureState* state, zv::HostView* view,                \
                       char* entryList, int32_t reopen, int32_t) {                                 \
    zv::ProtocolSetup(row, slot, state, view, entryList, reopen);                                  \
  }                                                                                                \
  ZV_API int32_t F##Begin(int32_t slot, int32_t, int32_t) {                                        \
    return zv::ProtocolBegin(row, slot);                                                           \
  }                                                                                                \
  ZV_API int32_t F##BeginAgain(int32_t slot, zv::ProcedureState* state, zv::HostView* view,        \
                               zv::HostRecord* host, zv::SheetWindow* sheet,                       \
                               zv::FrameWindow* frame, int32_t) {                                  \
    return zv::ProtocolBeginAgain(row, slot, state, view, host, sheet, frame);                     \
  }                                                                                                \
  ZV_API int32_t F##Item(zv::PaneWindow* pane, int32_t slot, int32_t item, zv::PaneRecord* record, \
                         int32_t) {                                                                \
    return zv::ProtocolItem(row, pane, slot, item, record);                                        \
  }                                                                                                \
  ZV_API int32_t F##Opts(zv::PaneWindow* pane, int32_t slot, int32_t item, zv::PaneRecord* record, \
                         int32_t, int32_t, int32_t) {                                              \
    return zv::ProtocolOpts(row, pane, slot, item, record);                                        \
  }                                                                                                \
  ZV_API void F##Vsave(int32_t slot) {                                                             \
    zv::ProtocolVsave(row, slot);                                                                  \
  }                                                                                                \
  ZV_API int32_t F##RedoItem1(zv::PaneWindow* pane, int32_t slot, int32_t, int32_t,                \
                              int32_t passThrough, int32_t) {                                      \
    return zv::ProtocolRedoItem1(row, pane, slot, passThrough);                                    \
  }

#define ZV_DEFINE_FAMILY_ENTRIES_6(F, row)                                                  \
  ZV_API int32_t F##Dialog(int32_t slot, zv::HostRecord* host, int32_t reopen) {            \
    return zv::ProtocolDialog(row, slot, host, zv::gSheetWindow, zv::gFrameWindow, reopen); \
  }                                                                                         \
  ZV_API void F##Setup(int32_t slot, zv::ProcedureState* state, zv::HostView* view,         \
                       char* entryList, int32_t reopen) {                                   \
    zv::ProtocolSetup(row, slot, state, view, entryList, reopen);                           \
  }                                                                                         \
  ZV_API int32_t F##Begin(int32_t slot) {                                                   \
    return zv::ProtocolBegin(row, slot);                                                    \
  }                                                                                         \
  ZV_API int32_t F##BeginAgain(int32_t slot, zv::ProcedureState* state, zv::HostView* view, \
                               zv::HostRecord* host, zv::SheetWindow* sheet,                \
                               zv::FrameWindow* frame) {                                    \
    return zv::ProtocolBeginAgain(row, slot, state, view, host, sheet, frame);              \
  }                                                                                         \
  ZV_API int32_t F##Item(zv::PaneWindow* pane, int32_t slot, int32_t item,                  \
                         zv::PaneRecord* record) {                                          \
    return zv::ProtocolItem(row, pane, slot, item, record);                                 \
  }                                                                                         \
  ZV_API int32_t F##Opts(zv::PaneWindow* pane, int32_t slot, int32_t item,                  \
                         zv::PaneRecord* record) {                                          \
    return zv::ProtocolOpts(row, pane, slot, item, record);                                 \
  }
