// Report panes: a whole pane built as one text with "\r\n" line ends and
// handed to the pane's window in a single call.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "frame/host_records.h"
#include "frame/string_ids.h"

namespace zv {

inline constexpr char kLineEnd[] = "\r\n";
inline constexpr size_t kReportReserve = 10240;

// Hands the text to the pane. Off Win32s it becomes the window's text; on
// Win32s it is kept in the state as zero-ended lines with the longest line's
// width and the line count. 0 when no block could be had.
int32_t SetPaneText(PaneWindow* pane, int32_t slot, int32_t item, std::string_view text);

// Asks the advice library for this pane's advice and appends it to `text`
// when advice is enabled. Call only with every data block unlocked.
void AppendAdvice(std::string& text, int32_t slot, int32_t item);

// Asks the advice library for a graph pane's advice; the text goes nowhere.
void WriteGraphAdvice(int32_t slot, int32_t item);

// The text of every pane but the summary of a failed analysis.
int32_t WriteFailedPane(PaneWindow* pane, int32_t slot, int32_t item);

// A family's status table: the string that its summary pane shows for a
// `status`. The last row, with status kAnyOtherStatus, covers every other
// value; its string kStatusOwnString shows the string of the status's own
// number.
struct StatusText {
  int32_t status;
  int32_t string;
};
inline constexpr int32_t kAnyOtherStatus = INT32_MIN;
inline constexpr int32_t kStatusOwnString = 0;

// The string number of `status` in `table`.
int32_t StatusString(std::span<const StatusText> table, int32_t status);

// The tables that several families share: the survival and Weibull
// procedures (Life1, Life2, Weibull), and the charts over columns
// (BubbleChart, DotDiagram).
inline constexpr StatusText kLifeStatusTexts[] = {
    {1, 1005}, {2, 1004}, {3, 1007}, {kAnyOtherStatus, kStatusOwnString}};
inline constexpr StatusText kChartStatusTexts[] = {
    {1, 1005}, {2, 1004},    {1004, 1004},           {3, 3023},
    {4, 3903}, {1042, 1042}, {kAnyOtherStatus, 1025}};

}  // namespace zv
