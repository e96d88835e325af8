// What must hold for any input to the sheet's CSV reader, its save path and
// the expression parser. The fuzz targets abort on a broken property; the failures test
// replays the inputs kept in tests/data/failures through the same checks.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "csv_reference.h"
#include "zvgrid/sheet.h"
#include "zvgrid/zvgrid.h"

namespace zvfuzz {

// The loaded sheet keeps its own rules: names of 1 to 32 bytes, at most 256
// columns, finite numbers, texts no wider than their column's width of at
// most 127, every column as long as the sheet.
inline std::string CheckSheetShape() {
  const std::vector<zvgrid::Column>& columns = zvgrid::Columns();
  if (columns.size() > 256) return "too many columns";
  for (const zvgrid::Column& column : columns) {
    if (column.name.empty() || column.name.size() > 32) return "a name of the wrong length";
    if (column.type == 'C') {
      if (column.width < 1 || column.width > 127) return "a width out of range: " + column.name;
      for (const std::string& text : column.texts) {
        if (text.size() > static_cast<size_t>(column.width)) return "a text wider than its column";
      }
      if (static_cast<int32_t>(column.texts.size()) != zvgrid::RowCount()) return "a short column";
    } else {
      for (double value : column.numbers) {
        if (!std::isfinite(value)) return "a number that is not finite";
      }
      if (static_cast<int32_t>(column.numbers.size()) != zvgrid::RowCount())
        return "a short column";
    }
  }
  return {};
}

// The sheet equals what the reference reader makes of the text, or both
// refuse it with the same message.
inline std::string CompareWithReference(std::string_view text, bool loaded,
                                        const std::string& error) {
  std::vector<zvgrid::Column> expected;
  const std::string refusal = ReferenceLoad(text, zvgrid::MissingCodes(), &expected);
  if (!loaded || !refusal.empty()) {
    return loaded || error != refusal
               ? "refused as \"" + error + "\", the rules say \"" + refusal + "\""
               : "";
  }
  const std::vector<zvgrid::Column>& columns = zvgrid::Columns();
  if (columns.size() != expected.size()) return "a different number of columns";
  for (size_t c = 0; c < columns.size(); ++c) {
    const zvgrid::Column& got = columns[c];
    const zvgrid::Column& want = expected[c];
    const bool sameNumbers =
        got.numbers.size() == want.numbers.size() &&
        std::equal(got.numbers.begin(), got.numbers.end(), want.numbers.begin(),
                   [](double a, double b) { return a == b && std::signbit(a) == std::signbit(b); });
    if (got.name != want.name || got.type != want.type || got.width != want.width || !sameNumbers ||
        got.texts != want.texts || got.textRow != want.textRow || got.textCell != want.textCell ||
        got.textQuoted != want.textQuoted)
      return "column " + std::to_string(c + 1) + " differs from the rules' reading";
  }
  return {};
}

// Under the default missing codes and under others: the text loads as the
// rules say, into a sheet of the right shape that saves, loads again and
// saves to the same text. Empty when all holds, else what broke.
inline std::string CheckCsv(std::string_view text) {
  const std::vector<std::vector<std::string>> codeLists = {zvgrid::DefaultMissingCodes(),
                                                           {"0", "x y", "-"}};
  std::string fault;
  for (const std::vector<std::string>& codes : codeLists) {
    zvgrid::SetMissingCodes(codes);
    std::string error;
    const bool loaded = zvgrid::LoadCsvText(text, &error);
    fault = CompareWithReference(text, loaded, error);
    if (fault.empty() && loaded) fault = CheckSheetShape();
    if (fault.empty() && loaded) {
      const std::string saved = zvgrid::SaveCsvText();
      if (!zvgrid::LoadCsvText(saved, &error)) {
        fault = "the saved text does not load: " + error;
      } else if (const std::string again = zvgrid::SaveCsvText(); again != saved) {
        fault = "the saved text changes when loaded and saved:\n" + saved + "\n---\n" + again;
      }
    }
    if (!fault.empty()) break;
  }
  zvgrid::SetMissingCodes(zvgrid::DefaultMissingCodes());
  return fault;
}

// A sheet that the text loads into, saved to `path` and loaded from there,
// is the same sheet; the file is removed. Empty when all holds.
inline std::string CheckSaveFile(std::string_view text, const std::string& path) {
  std::string error;
  if (!zvgrid::LoadCsvText(text, &error)) return {};
  const std::string saved = zvgrid::SaveCsvText();
  std::string fault;
  if (!zvgrid::SaveCsvFile(path, &error)) {
    fault = "the save failed: " + error;
  } else if (!zvgrid::LoadCsvFile(path, &error)) {
    fault = "the saved file does not load: " + error;
  } else if (zvgrid::SaveCsvText() != saved) {
    fault = "the sheet changed on its way through the file";
  }
  std::remove(path.c_str());
  return fault;
}

// The sheet the expression checks run over: numeric, text, empty and short
// columns.
inline void LoadExpressionSheet() {
  std::string error;
  zvgrid::LoadCsvText(
      "x,y,Name,Empty,Short\n"
      "1,2.5,ab,,7\n"
      "-3,,\"c d\",,\n"
      ",1e10,,,\n"
      "0,-32768,x,,\n",
      &error);
  GridSetColumnLength(5, 1, 0);
}

// One message box: "Error in the expression at character N: ..." with N
// inside the text or just past it, or a sentence about the whole text.
inline std::string CheckFaultMessage(const std::string& text) {
  const std::vector<MessageBoxCall>& log = WinMessageBoxLog();
  if (log.size() != 1) return std::to_string(log.size()) + " message boxes";
  const std::string& message = log[0].text;
  static const std::string kLead = "Error in the expression at character ";
  if (message.rfind(kLead, 0) == 0) {
    const long position = std::strtol(message.c_str() + kLead.size(), nullptr, 10);
    if (position < 1 || position > static_cast<long>(text.size()) + 1)
      return "position: " + message;
    return {};
  }
  if (message != "The expression is empty." &&
      message != "The expression is longer than 127 characters.") {
    return "an unknown message: " + message;
  }
  return {};
}

// The text up to its first zero byte (the module passes terminated texts)
// through the module's operations, the host's evaluation and the pair
// formula, over LoadExpressionSheet's sheet.
inline std::string CheckExpression(std::string_view input) {
  const std::string text(input.substr(0, input.find('\0')));
  std::string fault;
  WinClearMessageBoxLog();
  if (GridOpenExpression(text.c_str()) != 0) {
    const int32_t rows = GridExpressionInfo(0);
    const int32_t width = GridExpressionInfo(2);
    const int32_t named = GridExpressionInfo(3);
    if (rows < 0 || rows > 4 || width < 1 || width > 127 || named < -1 || named > 4) {
      fault = "what GridExpressionInfo tells";
    }
    char buffer[128];
    for (int32_t row = 0; row <= rows; ++row) GridExpressionStep(1, buffer);
    GridExpressionStep(0, buffer);
    if (GridCheckFormula(text.c_str()) == 0) fault = "opens but does not check";
  } else {
    fault = CheckFaultMessage(text);
    if (GridCheckFormula(text.c_str()) != 0) fault = "checks but does not open";
  }
  WinClearMessageBoxLog();

  zvgrid::Column column;
  std::string error;
  zvgrid::EvaluateExpression(text, &column, &error);

  if (GridCompileFormula(text.c_str()) != 0) {
    const double pairs[][2] = {{1.5, -2.0}, {0.0, 0.0}, {zvgrid::kMissing, 1e300}};
    for (const auto& pair : pairs) {
      double result = 0.0;
      if (GridEvaluateFormula(pair, &result, 0, 1) == 0) fault = "a compiled formula fails";
    }
    GridReleaseFormula();
  }
  if (!WinMessageBoxLog().empty()) fault = "a silent operation showed a message";
  return fault.empty() ? fault : fault + " for: " + text;
}

}  // namespace zvfuzz
