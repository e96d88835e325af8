// Module-wide state: created at load, filled by ModuleStart and the entry
// points, shared by every Part. One thread calls the module, so nothing here
// is locked, and nothing is reentrant: one report or graph at a time.
#pragma once

#include <cstdint>
#include <string>

#include "frame/host_records.h"

namespace zv {

inline constexpr int kSlotCount = 64;
inline constexpr int kAdviceBufferSize = 8192;
inline constexpr int kInterpretBufferSize = 2048;

extern ModuleRef gResourceModule;
extern char gAppTitle[44];
extern int32_t gPlatformId;   // 0 means Win32s
extern int32_t gLeadingZero;  // non-zero: a zero before a leading decimal point
extern char gDecimalChar;
extern char gDateOrder[4];       // three field letters and the separator
extern char gMonthYearOrder[3];  // two field letters and the separator
extern int32_t gTimeLeadingZero;
extern char gTimeSeparator;

extern HostRecord* gHost;
extern HostHelpRecord* gHostHelp;
extern SheetWindow* gSheetWindow;
extern FrameWindow* gFrameWindow;
extern ProcedureState* gStates[kSlotCount];
extern HostView* gViews[kSlotCount];
extern char* gAdviceBuffer;  // 8192 bytes, owned by the Host
extern int32_t gAdviceEnabled;
extern std::string gEntryText[5];  // fields of the last accepted variable dialog
extern char gInterpretBuffer[kInterpretBufferSize];
extern std::string gAddedText;
extern int32_t gAddedTextFlag;
extern PaneRecord* gCurrentPane;

// Restores the locale values to their defaults (month, day, year with '/').
void ResetLocaleDefaults();

}  // namespace zv
