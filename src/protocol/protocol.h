// The procedure protocol, written once for every family: each entry point of
// a family calls these with its row of the Families table.
#pragma once

#include <cstdint>

#include "protocol/families.h"

namespace zv {

// The Host's buffer for the entry list that Setup writes: at least this long.
inline constexpr int32_t kEntryListBytes = 16384;

int32_t ProtocolDialog(const FamilyInfo& family, int32_t slot, HostRecord* host, SheetWindow* sheet,
                       FrameWindow* frame, int32_t reopen);
void ProtocolSetup(const FamilyInfo& family, int32_t slot, ProcedureState* state, HostView* view,
                   char* entryList, int32_t reopen);
int32_t ProtocolBegin(const FamilyInfo& family, int32_t slot);
int32_t ProtocolBeginAgain(const FamilyInfo& family, int32_t slot, ProcedureState* state,
                           HostView* view, HostRecord* host, SheetWindow* sheet,
                           FrameWindow* frame);
int32_t ProtocolItem(const FamilyInfo& family, PaneWindow* pane, int32_t slot, int32_t item,
                     PaneRecord* record);
int32_t ProtocolOpts(const FamilyInfo& family, PaneWindow* pane, int32_t slot, int32_t item,
                     PaneRecord* record);
void ProtocolVsave(const FamilyInfo& family, int32_t slot);
int32_t ProtocolRedoItem1(const FamilyInfo& family, PaneWindow* pane, int32_t slot,
                          int32_t passThrough);

// Raises the wait cursor for its lifetime, also when an exception passes.
class WaitCursorScope {
 public:
  WaitCursorScope() { WaitCursor(1); }
  ~WaitCursorScope() { WaitCursor(-1); }
  WaitCursorScope(const WaitCursorScope&) = delete;
  WaitCursorScope& operator=(const WaitCursorScope&) = delete;
};

}  // namespace zv
