#include "frame/module_state.h"

namespace zv {

ModuleRef gResourceModule = 0;
char gAppTitle[44] = {};
int32_t gPlatformId = 2;
int32_t gLeadingZero = 1;
char gDecimalChar = '.';
char gDateOrder[4] = {'m', 'd', 'y', '/'};
char gMonthYearOrder[3] = {'m', 'y', '/'};
int32_t gTimeLeadingZero = 0;
char gTimeSeparator = ':';

HostRecord* gHost = nullptr;
HostHelpRecord* gHostHelp = nullptr;
SheetWindow* gSheetWindow = nullptr;
FrameWindow* gFrameWindow = nullptr;
ProcedureState* gStates[kSlotCount] = {};
HostView* gViews[kSlotCount] = {};
char* gAdviceBuffer = nullptr;
int32_t gAdviceEnabled = 0;
std::string gEntryText[5];
char gInterpretBuffer[kInterpretBufferSize] = {};
std::string gAddedText;
int32_t gAddedTextFlag = 0;
PaneRecord* gCurrentPane = nullptr;

void ResetLocaleDefaults() {
  gLeadingZero = 1;
  gDecimalChar = '.';
  gDateOrder[0] = 'm';
  gDateOrder[1] = 'd';
  gDateOrder[2] = 'y';
  gDateOrder[3] = '/';
  gMonthYearOrder[0] = 'm';
  gMonthYearOrder[1] = 'y';
  gMonthYearOrder[2] = '/';
  gTimeLeadingZero = 0;
  gTimeSeparator = ':';
}

}  // namespace zv
