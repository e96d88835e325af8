// The entry points of every family: each is one line into the shared
// protocol with the family's row.
#include "frame/exports.h"
#include "frame/protocol.h"

using namespace zv;

#define ZV_DEFINE_FAMILY_ENTRIES(Family, info)                                                  \
  ZV_API int32_t Family##Dialog(int32_t slot, HostRecord* host, SheetWindow* sheet,             \
                                FrameWindow* frame, int32_t reopen, int32_t) {                  \
    return ProtocolDialog(info, slot, host, sheet, frame, reopen);                              \
  }                                                                                             \
  ZV_API void Family##Setup(int32_t slot, ProcedureState* state, HostView* view,                \
                            char* entryList, int32_t reopen, int32_t) {                         \
    ProtocolSetup(info, slot, state, view, entryList, reopen);                                  \
  }                                                                                             \
  ZV_API int32_t Family##Begin(int32_t slot, int32_t, int32_t) {                                \
    return ProtocolBegin(info, slot);                                                           \
  }                                                                                             \
  ZV_API int32_t Family##BeginAgain(int32_t slot, ProcedureState* state, HostView* view,        \
                                    HostRecord* host, SheetWindow* sheet, FrameWindow* frame,   \
                                    int32_t) {                                                  \
    return ProtocolBeginAgain(info, slot, state, view, host, sheet, frame);                     \
  }                                                                                             \
  ZV_API int32_t Family##Item(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record, \
                              int32_t) {                                                        \
    return ProtocolItem(info, pane, slot, item, record);                                        \
  }                                                                                             \
  ZV_API int32_t Family##Opts(PaneWindow* pane, int32_t slot, int32_t item, PaneRecord* record, \
                              int32_t, int32_t, int32_t) {                                      \
    return ProtocolOpts(info, pane, slot, item, record);                                        \
  }                                                                                             \
  ZV_API void Family##Vsave(int32_t slot) { ProtocolVsave(info, slot); }                        \
  ZV_API int32_t Family##RedoItem1(PaneWindow* pane, int32_t slot, int32_t, int32_t,            \
                                   int32_t passThrough, int32_t) {                              \
    return ProtocolRedoItem1(info, pane, slot, passThrough);                                    \
  }

ZV_DEFINE_FAMILY_ENTRIES(DotDiagram, kDotDiagramFamily)
ZV_DEFINE_FAMILY_ENTRIES(Life2, kLife2Family)
