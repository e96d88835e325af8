// Report panes: a whole pane built as one text with "\r\n" line ends and
// handed to the pane's window in a single call.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "frame/host_records.h"

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

}  // namespace zv
