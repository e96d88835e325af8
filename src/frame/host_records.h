// The records that cross between the Host and the module. Their byte offsets
// are a wire format: the Host reads and writes the same bytes, and stored
// analyses are reloaded from them. On this 64-bit build every pointer-like
// field (virtual table, handle, counted text, window) is a 32-bit reference
// that the platform layer resolves, so the offsets are those of the 32-bit
// records. Each record is followed by compile-time checks of its size and of
// every offset it names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

#include "frame/missing_value.h"
#include "zvwin/zvwin.h"

namespace zv {

struct ProcedureState;
struct HostRecord;
struct HostHelpRecord;
struct HostView;
struct SheetWindow;
struct FrameWindow;
struct PaneWindow;
struct PaneRecord;

// Virtual tables of the Host's objects. The first word of each object is a
// reference to one of these; only the operations the module calls are listed.
struct ProcedureStateVtbl {
  void (*RefreshPanes)(ProcedureState* self, int32_t a, int32_t b, int32_t c);
};
struct HostRecordVtbl {
  void (*MarkModified)(HostRecord* self, int32_t modified);
};
struct HostHelpRecordVtbl {
  void (*WaitCursor)(HostHelpRecord* self, int32_t change);
};
struct HostViewVtbl {
  void (*DropHostBinding)(HostView* self, int32_t zero);
};
struct FrameWindowVtbl {
  // Lets the user edit the expression in a 64-byte buffer; non-zero when it
  // rewrote the buffer.
  int32_t (*EditExpression)(FrameWindow* self, char* buffer64);
};

// One variable of an analysis: 40 bytes.
struct VariableBinding {
  TextRef expression;  // counted text: length in the int32 8 bytes before the characters
  Handle data;         // movable block: rowCount doubles, or rowCount x width chars for 'C'
  double minimum;
  double maximum;
  int32_t count;
  int32_t reserved;
  char type;  // 'C' for characters, anything else numeric
  char pad[3];
  int32_t width;
};
static_assert(sizeof(VariableBinding) == 40);
static_assert(offsetof(VariableBinding, expression) == 0);
static_assert(offsetof(VariableBinding, data) == 4);
static_assert(offsetof(VariableBinding, minimum) == 8);
static_assert(offsetof(VariableBinding, maximum) == 16);
static_assert(offsetof(VariableBinding, count) == 24);
static_assert(offsetof(VariableBinding, type) == 32);
static_assert(offsetof(VariableBinding, width) == 36);

inline constexpr int kFirstList = 0;
inline constexpr int kSecondList = 64;
inline constexpr int kSelectBinding = 193;
inline constexpr int kHostTextBinding = 194;
inline constexpr int kHostNumberBinding = 195;
inline constexpr int kBindingCount = 196;

// The Host's record of one analysis. Only the common header is named here;
// family fields are typed offsets into the same block (FamilyField below).
struct ProcedureState {
  HostRef vtable;  // ProcedureStateVtbl
  uint8_t hostArea0[0x8C];
  int32_t paneStale[14];  // Item n at index n - 1
  int32_t extraStale;
  int32_t begun;
  int32_t slot;
  int32_t pad0;
  VariableBinding bindings[kBindingCount];
  int32_t procedureCode;
  int32_t rowsDiffer;
  int32_t hostWord1;
  int32_t hostWord2;
  int32_t rowCount;
  int32_t status;
  int32_t orderReady;
  int32_t keepScales;
  Handle order;  // int32 row numbers from 0, ascending by the sort key
  uint8_t familyArea0[0x2F28 - 0x1F9C];
  Handle hostBlock;
  uint8_t familyArea1[0x2F48 - 0x2F2C];
  int32_t secondListCount;
  int32_t firstListCount;
  uint8_t familyArea2[0x2F58 - 0x2F50];
  int32_t graphIds[7];  // Item n at index n - 8
  uint8_t familyArea3[0x2F90 - 0x2F74];
  Handle paneText[7];    // Win32s only; Item n at index n - 1
  int32_t paneWidth[7];  // Win32s only
  int32_t paneLines[7];  // Win32s only
  uint8_t familyArea4[0x35F4 - 0x2FE4];
  int32_t textOptionsMask;
  int32_t graphOptionsMask;
  int32_t tail;
};
static_assert(std::is_standard_layout_v<ProcedureState>);
static_assert(std::is_trivially_copyable_v<ProcedureState>);
static_assert(sizeof(ProcedureState) == 0x3600);
static_assert(sizeof(ProcedureState) >= 13820);
static_assert(offsetof(ProcedureState, paneStale) == 0x0090);
static_assert(offsetof(ProcedureState, extraStale) == 0x00C8);
static_assert(offsetof(ProcedureState, begun) == 0x00CC);
static_assert(offsetof(ProcedureState, slot) == 0x00D0);
static_assert(offsetof(ProcedureState, bindings) == 0x00D8);
static_assert(offsetof(ProcedureState, bindings) + 64 * 40 == 0x0AD8);
static_assert(offsetof(ProcedureState, bindings) + kSelectBinding * 40 == 0x1F00);
static_assert(offsetof(ProcedureState, bindings) + kHostTextBinding * 40 == 0x1F28);
static_assert(offsetof(ProcedureState, bindings) + kHostNumberBinding * 40 == 0x1F50);
static_assert(offsetof(ProcedureState, procedureCode) == 0x1F78);
static_assert(offsetof(ProcedureState, rowsDiffer) == 0x1F7C);
static_assert(offsetof(ProcedureState, hostWord1) == 0x1F80);
static_assert(offsetof(ProcedureState, hostWord2) == 0x1F84);
static_assert(offsetof(ProcedureState, rowCount) == 0x1F88);
static_assert(offsetof(ProcedureState, status) == 0x1F8C);
static_assert(offsetof(ProcedureState, orderReady) == 0x1F90);
static_assert(offsetof(ProcedureState, keepScales) == 0x1F94);
static_assert(offsetof(ProcedureState, order) == 0x1F98);
static_assert(offsetof(ProcedureState, familyArea0) == 0x1F9C);
static_assert(offsetof(ProcedureState, hostBlock) == 0x2F28);
static_assert(offsetof(ProcedureState, secondListCount) == 0x2F48);
static_assert(offsetof(ProcedureState, firstListCount) == 0x2F4C);
static_assert(offsetof(ProcedureState, graphIds) == 0x2F38 + 4 * 8);
static_assert(offsetof(ProcedureState, paneText) == 0x2F8C + 4 * 1);
static_assert(offsetof(ProcedureState, paneWidth) == 0x2FA8 + 4 * 1);
static_assert(offsetof(ProcedureState, paneLines) == 0x2FC4 + 4 * 1);
static_assert(offsetof(ProcedureState, textOptionsMask) == 0x35F4);
static_assert(offsetof(ProcedureState, graphOptionsMask) == 0x35F8);

// True when [offset, offset + size) lies wholly in the family option and
// result space of the state, clear of every field of the common header.
constexpr bool InFamilyArea(uint32_t offset, uint32_t size) {
  struct Range {
    uint32_t from, to;
  };
  constexpr Range kAreas[] = {
      {0x1F9C, 0x2F28}, {0x2F2C, 0x2F48}, {0x2F50, 0x2F58}, {0x2F74, 0x2F90}, {0x2FE4, 0x35F4}};
  for (const Range& r : kAreas) {
    if (offset >= r.from && offset + size <= r.to) return true;
  }
  return false;
}

// A family field: a value of type T at a fixed byte offset of the state.
// Declared with ZV_FAMILY_FIELD so that its place is checked at compile time.
template <class T, uint32_t N = 1>
struct FamilyField {
  static_assert(std::is_trivially_copyable_v<T>);
  uint32_t offset;
};

#define ZV_FAMILY_FIELD(name, T, offset_)                                              \
  inline constexpr ::zv::FamilyField<T> name{offset_};                                 \
  static_assert(::zv::InFamilyArea(offset_, sizeof(T)), #name " overlaps the header"); \
  static_assert((offset_) % alignof(T) == 0, #name " is misaligned")

#define ZV_FAMILY_ARRAY(name, T, count, offset_)                                                 \
  inline constexpr ::zv::FamilyField<T, count> name{offset_};                                    \
  static_assert(::zv::InFamilyArea(offset_, sizeof(T) * (count)), #name " overlaps the header"); \
  static_assert((offset_) % alignof(T) == 0, #name " is misaligned")

template <class T, uint32_t N>
inline T Get(const ProcedureState& s, FamilyField<T, N> f, uint32_t index = 0) {
  T v;
  std::memcpy(&v, reinterpret_cast<const std::byte*>(&s) + f.offset + index * sizeof(T), sizeof(T));
  return v;
}

template <class T, uint32_t N>
inline void Set(ProcedureState& s, FamilyField<T, N> f, T v, uint32_t index = 0) {
  std::memcpy(reinterpret_cast<std::byte*>(&s) + f.offset + index * sizeof(T), &v, sizeof(T));
}

// The Host's central record.
struct HostRecord {
  HostRef vtable;  // HostRecordVtbl
  uint8_t hostArea0[0x0A08 - 4];
  int32_t nextSlot;
  int32_t helpIds[64];
  uint8_t hostArea1[0x0C14 - 0x0B0C];
  int32_t rowCount;
  int32_t rowsDiffer;
  int32_t hostWord1;
  int32_t hostWord2;
  int32_t currentSlot;
  int32_t begunCount;
  int32_t nextGraphId;
  uint8_t hostArea2[0x0CA0 - 0x0C30];
  int32_t graphRebuilds;
  int32_t graphKeepId;
};
static_assert(std::is_standard_layout_v<HostRecord>);
static_assert(std::is_trivially_copyable_v<HostRecord>);
static_assert(sizeof(HostRecord) == 0x0CA8);
static_assert(offsetof(HostRecord, nextSlot) == 0x0A08);
static_assert(offsetof(HostRecord, helpIds) == 0x0A0C);
static_assert(offsetof(HostRecord, rowCount) == 0x0C14);
static_assert(offsetof(HostRecord, rowsDiffer) == 0x0C18);
static_assert(offsetof(HostRecord, hostWord1) == 0x0C1C);
static_assert(offsetof(HostRecord, hostWord2) == 0x0C20);
static_assert(offsetof(HostRecord, currentSlot) == 0x0C24);
static_assert(offsetof(HostRecord, begunCount) == 0x0C28);
static_assert(offsetof(HostRecord, nextGraphId) == 0x0C2C);
static_assert(offsetof(HostRecord, graphRebuilds) == 0x0CA0);
static_assert(offsetof(HostRecord, graphKeepId) == 0x0CA4);

// The Host's application object, handed to IsKeel4Loaded.
struct HostHelpRecord {
  HostRef vtable;  // HostHelpRecordVtbl
  uint8_t hostArea0[0xC0 - 4];
  int32_t helpContext;
  int32_t tail;
};
static_assert(std::is_standard_layout_v<HostHelpRecord>);
static_assert(offsetof(HostHelpRecord, helpContext) == 0xC0);
static_assert(sizeof(HostHelpRecord) == 0xC8);

// The analysis window of a Slot.
struct HostView {
  HostRef vtable;  // HostViewVtbl
  uint8_t hostArea0[0x51C - 4];
  int32_t graphMenu[15];  // index = Item number; 8 to 14 in use
};
static_assert(std::is_standard_layout_v<HostView>);
static_assert(offsetof(HostView, graphMenu) == 0x51C);
static_assert(offsetof(HostView, graphMenu) + 4 * 8 == 0x53C);
static_assert(sizeof(HostView) == 0x558);

struct SheetWindow {
  HostRef vtable;
  uint8_t hostArea0[0x50 - 4];
  int32_t sheetChanged;
};
static_assert(std::is_standard_layout_v<SheetWindow>);
static_assert(offsetof(SheetWindow, sheetChanged) == 0x50);
static_assert(sizeof(SheetWindow) == 0x54);

struct FrameWindow {
  HostRef vtable;  // FrameWindowVtbl
  uint8_t hostArea0[0x1C - 4];
  WindowRef window;
};
static_assert(std::is_standard_layout_v<FrameWindow>);
static_assert(offsetof(FrameWindow, window) == 0x1C);
static_assert(sizeof(FrameWindow) == 0x20);

struct PaneWindow {
  HostRef vtable;
  uint8_t hostArea0[0x1C - 4];
  WindowRef window;
};
static_assert(std::is_standard_layout_v<PaneWindow>);
static_assert(offsetof(PaneWindow, window) == 0x1C);
static_assert(sizeof(PaneWindow) == 0x20);

// One axis of a graph pane: five words.
struct PaneAxis {
  int32_t type;
  int32_t visible;
  int32_t majorTicks;
  int32_t minorTicks;
  int32_t tickOption;
};
static_assert(sizeof(PaneAxis) == 20);

struct AxisScale {
  double low;
  double span;  // high - low
};
struct AxisRange {
  double low;
  double high;
};

inline constexpr int kTickSlots = 42;  // tick count, then up to 41 values

// The Host's record of one graph pane, shared with the chart library. Arrays
// indexed by axis or text kind hold axis 1 (or kind 1) at index 0.
struct PaneRecord {
  WindowRef window;  // 0x000
  int32_t graphId;
  int32_t optionWord0;
  int32_t optionWord648;
  int32_t optionWord1;
  int32_t optionWord2;
  int32_t frameStyle;  // 0x018
  int32_t majorX;
  int32_t majorY;
  int32_t intervalsX;
  int32_t intervalsY;
  PaneAxis axes[4];   // 0x02C
  int32_t frameKind;  // 0x07C; word 3: 1 and 3 draw a closed frame
  int32_t optionWord4;
  int32_t optionWord5;
  int32_t threeD;      // 0x088
  int32_t tickLength;  // thousandths of the plot's side
  int32_t tickGap;
  int32_t optionWord17;
  int32_t logScale[4];  // 0x098: 1 logarithmic, 2 probability
  int32_t optionWords6to8[3];
  int32_t tickSide[3];  // 0x0B4: -1 = ticks outward
  int32_t minorOn[3];   // 0x0C0
  int32_t factorOn[4];  // 0x0CC
  int32_t optionWord18;
  double optionReals4to10[7];  // 0x0E0
  int32_t viewAngle;           // 0x118, degrees
  int32_t optionWord647;
  AxisScale scale[4];         // 0x120
  double optionReals0to3[4];  // 0x160
  int32_t textStyleA[20];     // 0x180; kinds 1 to 20
  int32_t textStyleB[20];
  int32_t textStyleC[20];
  int32_t textStyleD[20];
  int32_t textStyleE[20];  // 0x2C0
  int32_t textStyleF[20];
  int32_t textStyleG[20];
  int32_t textStyleH[20];
  int32_t textStyleI[20];
  int32_t textStyleJ[20];
  int32_t textStyleK[20];  // 0x4A0: text size
  int32_t textStyleL[20];
  int32_t textStyleM[20];
  int32_t textStyleN[20];
  int32_t optionWord653;     // 0x5E0
  int32_t textStyleO[20];    // 0x5E4
  uint8_t optionBytes[288];  // 0x634: words 319 to 638, one byte each
  uint32_t textColor[4];     // 0x754, inside the option bytes
  uint8_t optionBytesTail[16];
  int32_t axisFixed[4];  // 0x774
  int32_t pad1;
  AxisRange dataRange[4];       // 0x788
  int32_t axisSet[4];           // 0x7C8
  double ticks[4][kTickSlots];  // 0x7D8
  double factor[4];             // 0xD18
  Handle textItems;             // 0xD38: 44 bytes per item
  Handle textStrings;           // 80 bytes per string
  Handle textNumbers;           // 64 bytes per string
  Handle titleLines;            // 64 lines of 80 characters
  Handle titleLengths;          // 64 int32
  int32_t textItemCount;
  int32_t textStringCount;
  int32_t textNumberCount;
  int32_t optionWord640;  // 0xD58
  int32_t optionWord641;
  int32_t clearedWord;         // 0xD60
  int32_t legendOn;            // 0xD64
  double legendBox[4];         // 0xD68: x, y, text offset, line height
  int32_t secondAxisState[4];  // 0xD88
  int32_t rowCount;            // 0xD98
  int32_t pad2;
  double chartReals[12];  // 0xDA0
  uint8_t hostArea0[0xE20 - 0xE00];
  char axisType[4];                // 0xE20: 0, 'D', 'M', 'Q', 'T' or 'S'
  int32_t optionWord654;           // 0xE24
  int32_t optionWord655;           // 0xE28
  int32_t optionWords656to659[4];  // 0xE2C
  int32_t tail;
};
static_assert(std::is_standard_layout_v<PaneRecord>);
static_assert(std::is_trivially_copyable_v<PaneRecord>);
static_assert(offsetof(PaneRecord, graphId) == 0x004);
static_assert(offsetof(PaneRecord, optionWord0) == 0x008);
static_assert(offsetof(PaneRecord, optionWord648) == 0x00C);
static_assert(offsetof(PaneRecord, optionWord1) == 0x010);
static_assert(offsetof(PaneRecord, frameStyle) == 0x018);
static_assert(offsetof(PaneRecord, majorX) == 0x01C);
static_assert(offsetof(PaneRecord, majorY) == 0x020);
static_assert(offsetof(PaneRecord, intervalsX) == 0x024);
static_assert(offsetof(PaneRecord, intervalsY) == 0x028);
static_assert(offsetof(PaneRecord, axes) == 0x02C);
static_assert(offsetof(PaneRecord, frameKind) == 0x07C);
static_assert(offsetof(PaneRecord, threeD) == 0x088);
static_assert(offsetof(PaneRecord, tickLength) == 0x08C);
static_assert(offsetof(PaneRecord, tickGap) == 0x090);
static_assert(offsetof(PaneRecord, optionWord17) == 0x094);
static_assert(offsetof(PaneRecord, logScale) == 0x098);
static_assert(offsetof(PaneRecord, optionWords6to8) == 0x0A8);
static_assert(offsetof(PaneRecord, tickSide) == 0x0B4);
static_assert(offsetof(PaneRecord, minorOn) == 0x0C0);
static_assert(offsetof(PaneRecord, factorOn) == 0x0CC);
static_assert(offsetof(PaneRecord, optionWord18) == 0x0DC);
static_assert(offsetof(PaneRecord, optionReals4to10) == 0x0E0);
static_assert(offsetof(PaneRecord, viewAngle) == 0x118);
static_assert(offsetof(PaneRecord, optionWord647) == 0x11C);
static_assert(offsetof(PaneRecord, scale) == 0x120);
static_assert(offsetof(PaneRecord, optionReals0to3) == 0x160);
static_assert(offsetof(PaneRecord, textStyleA) == 0x180);
static_assert(offsetof(PaneRecord, textStyleB) == 0x1D0);
static_assert(offsetof(PaneRecord, textStyleC) == 0x220);
static_assert(offsetof(PaneRecord, textStyleD) == 0x270);
static_assert(offsetof(PaneRecord, textStyleE) == 0x2C0);
static_assert(offsetof(PaneRecord, textStyleF) == 0x310);
static_assert(offsetof(PaneRecord, textStyleG) == 0x360);
static_assert(offsetof(PaneRecord, textStyleH) == 0x3B0);
static_assert(offsetof(PaneRecord, textStyleI) == 0x400);
static_assert(offsetof(PaneRecord, textStyleJ) == 0x450);
static_assert(offsetof(PaneRecord, textStyleK) == 0x4A0);
static_assert(offsetof(PaneRecord, textStyleL) == 0x4F0);
static_assert(offsetof(PaneRecord, textStyleM) == 0x540);
static_assert(offsetof(PaneRecord, textStyleN) == 0x590);
static_assert(offsetof(PaneRecord, optionWord653) == 0x5E0);
static_assert(offsetof(PaneRecord, textStyleO) == 0x5E4);
static_assert(offsetof(PaneRecord, optionBytes) == 0x634);
static_assert(offsetof(PaneRecord, textColor) == 0x754);
static_assert(offsetof(PaneRecord, optionBytesTail) + 16 == 0x634 + 320);
static_assert(offsetof(PaneRecord, axisFixed) == 0x774);
static_assert(offsetof(PaneRecord, dataRange) == 0x788);
static_assert(offsetof(PaneRecord, axisSet) == 0x7C8);
static_assert(offsetof(PaneRecord, ticks) == 0x7D8);
static_assert(sizeof(PaneRecord::ticks) == 4 * 336);
static_assert(offsetof(PaneRecord, factor) == 0xD18);
static_assert(offsetof(PaneRecord, textItems) == 0xD38);
static_assert(offsetof(PaneRecord, textStrings) == 0xD3C);
static_assert(offsetof(PaneRecord, textNumbers) == 0xD40);
static_assert(offsetof(PaneRecord, titleLines) == 0xD44);
static_assert(offsetof(PaneRecord, titleLengths) == 0xD48);
static_assert(offsetof(PaneRecord, textItemCount) == 0xD4C);
static_assert(offsetof(PaneRecord, textStringCount) == 0xD50);
static_assert(offsetof(PaneRecord, textNumberCount) == 0xD54);
static_assert(offsetof(PaneRecord, optionWord640) == 0xD58);
static_assert(offsetof(PaneRecord, optionWord641) == 0xD5C);
static_assert(offsetof(PaneRecord, clearedWord) == 0xD60);
static_assert(offsetof(PaneRecord, legendOn) == 0xD64);
static_assert(offsetof(PaneRecord, legendBox) == 0xD68);
static_assert(offsetof(PaneRecord, secondAxisState) == 0xD88);
static_assert(offsetof(PaneRecord, rowCount) == 0xD98);
static_assert(offsetof(PaneRecord, chartReals) == 0xDA0);
static_assert(offsetof(PaneRecord, axisType) == 0xE20);
static_assert(offsetof(PaneRecord, optionWord654) == 0xE24);
static_assert(offsetof(PaneRecord, optionWord655) == 0xE28);
static_assert(offsetof(PaneRecord, optionWords656to659) == 0xE2C);
static_assert(sizeof(PaneRecord) == 0xE40);

inline constexpr uint32_t kIntegerOptionWords = 660;  // 2640 bytes
inline constexpr uint32_t kRealOptionCount = 15;      // 120 bytes

// Virtual calls through the Host's tables.
template <class Vtbl, class Object>
inline const Vtbl& VtblOf(const Object* object) {
  return *static_cast<const Vtbl*>(WinResolve(object->vtable));
}

// The characters of a counted text that the Host stored: the reference
// resolves to the characters, and the int32 8 bytes before them is the length.
inline std::string_view CountedText(TextRef ref) {
  if (ref == 0) return {};
  const char* chars = static_cast<const char*>(WinResolve(ref));
  if (chars == nullptr) return {};
  int32_t length;
  std::memcpy(&length, chars - 8, sizeof length);
  return {chars, static_cast<size_t>(length < 0 ? 0 : length)};
}

}  // namespace zv
