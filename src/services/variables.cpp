#include "services/variables.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <vector>

#include "frame/messages.h"
#include "frame/module_state.h"
#include "frame/string_ids.h"
#include "services/movable_block.h"
#include "zvgrid/zvgrid.h"

namespace zv {
namespace {

constexpr int32_t kExpressionBuffer = 128;

bool EqualNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (std::tolower(static_cast<unsigned char>(a[i])) !=
        std::tolower(static_cast<unsigned char>(b[i]))) {
      return false;
    }
  }
  return true;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t';
}

// The sheet's column names, each cut at its terminator.
std::vector<std::string> ColumnNames() {
  std::vector<char> buffer(static_cast<size_t>(kGridMaxColumns) * kGridNameBytes, '\0');
  const int32_t count = std::clamp(GridListColumns(buffer.data()), 0, kGridMaxColumns);
  std::vector<std::string> names;
  names.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; ++i) {
    const char* record = buffer.data() + static_cast<size_t>(i) * kGridNameBytes;
    names.emplace_back(record, strnlen(record, kGridNameBytes));
  }
  return names;
}

int32_t StateRowCount(int32_t slot) {
  return (slot >= 0 && slot < kSlotCount && gStates[slot]) ? gStates[slot]->rowCount : 0;
}

void SetStatus(int32_t slot, int32_t status) {
  if (slot >= 0 && slot < kSlotCount && gStates[slot]) gStates[slot]->status = status;
}

// Reads `rows` values of the open expression into a fresh block of
// `rowCount` rows, padding the rest.
bool ReadExpressionValues(Handle* data, int32_t slot, char type, int32_t width, int32_t rows) {
  const int32_t rowCount = StateRowCount(slot);
  const bool text = type == 'C';
  const uint32_t cell = text ? static_cast<uint32_t>(std::max(width, 1)) : 8u;
  FreeGlobal(data);
  *data = AllocGlobal(std::max<uint32_t>(cell * static_cast<uint32_t>(rowCount), 1));
  if (*data == 0) {
    SetStatus(slot, 1004);
    return false;
  }
  LockedBlock<char> block(*data);
  std::vector<char> value(std::max<size_t>(cell + 1, kExpressionBuffer), '\0');
  const int32_t taken = std::min(rows, rowCount);
  for (int32_t row = 0; row < rowCount; ++row) {
    char* target = block.get() + static_cast<size_t>(row) * cell;
    if (row < taken) {
      std::fill(value.begin(), value.end(), text ? ' ' : '\0');
      GridExpressionStep(1, value.data());
      std::memcpy(target, value.data(), cell);
    } else if (text) {
      std::memset(target, ' ', cell);
    } else {
      std::memcpy(target, &kMissingValue, sizeof kMissingValue);
    }
  }
  return true;
}

// Reads a sheet column, one cell at a time, into a fresh block.
bool ReadColumn(Handle* data, int32_t slot, int32_t column, char type, int32_t width) {
  const int32_t rowCount = StateRowCount(slot);
  const bool text = type == 'C';
  const uint32_t cell = text ? static_cast<uint32_t>(std::max(width, 1)) : 8u;
  FreeGlobal(data);
  *data = AllocGlobal(cell * static_cast<uint32_t>(rowCount) + (text ? 1 : 0) + 1);
  if (*data == 0) {
    SetStatus(slot, 1004);
    return false;
  }
  LockedBlock<char> block(*data);
  // The sheet writes a cell's text with its terminator: room for the widest.
  std::vector<char> buffer(std::max<size_t>(cell + 1, kExpressionBuffer), '\0');
  GridBeginAccess(1);
  for (int32_t row = 0; row < rowCount; ++row) {
    std::fill(buffer.begin(), buffer.end(), '\0');
    GridGetCell(column, row + 1, buffer.data());
    char* target = block.get() + static_cast<size_t>(row) * cell;
    if (text) {
      const size_t length = strnlen(buffer.data(), cell);
      std::memset(target, ' ', cell);
      std::memcpy(target, buffer.data(), length);
    } else {
      std::memcpy(target, buffer.data(), 8);
    }
  }
  GridEndAccess();
  return true;
}

}  // namespace

Handle AllocGlobal(uint32_t bytes) {
  const Handle block = WinGlobalAlloc(bytes);
  if (block == 0) ShowError(kNoMemoryText);
  return block;
}

uint32_t BlockBytes(uint64_t count, uint64_t size) {
  if (size != 0 && count > UINT32_MAX / size) return 0;
  return static_cast<uint32_t>(std::max<uint64_t>(count * size, 1));
}

Handle AllocItems(uint64_t count, uint64_t size) {
  const uint32_t bytes = BlockBytes(count, size);
  if (bytes == 0) {
    ShowError(kNoMemoryText);
    return 0;
  }
  return AllocGlobal(bytes);
}

void FreeGlobal(Handle* block) {
  if (*block != 0) WinGlobalFree(*block);
  *block = 0;
}

int32_t ResolveVariable(std::string_view expression, Handle* data, int32_t slot, char* type,
                        int32_t* width, int32_t* rows) {
  if (IsBlankText(expression)) {
    ShowError(kVariableNeededText);
    return 0;
  }
  const std::string trimmed = TrimBlanks(expression);
  std::string bare = trimmed;
  if (bare.size() >= 2 && bare.front() == '(' && bare.back() == ')') {
    bare = bare.substr(1, bare.size() - 2);
  }
  int32_t column = 0;
  for (const std::string& name : ColumnNames()) {
    if (EqualNoCase(TrimBlanks(name), bare)) {
      const int32_t index = ColumnIndexOf(bare);
      if (index < 0) continue;
      column = index + 1;
      break;
    }
  }

  if (column == 0) {
    char buffer[kExpressionBuffer] = {};
    std::memcpy(buffer, trimmed.data(), std::min<size_t>(trimmed.size(), sizeof buffer - 1));
    if (GridOpenExpression(buffer) == 0) return 0;
    *rows = GridExpressionInfo(0);
    *type = static_cast<char>(GridExpressionInfo(1));
    *width = GridExpressionInfo(2);
    if (slot < 0) {
      GridExpressionStep(0, buffer);
      return 1;
    }
    const int32_t named = GridExpressionInfo(3);
    if (named < 0) {
      const bool ok = ReadExpressionValues(data, slot, *type, *width, *rows);
      GridExpressionStep(0, buffer);
      return ok ? 1 : 0;
    }
    GridExpressionStep(0, buffer);
    column = named + 1;
  }

  *type = GridColumnType(column - 1);
  *width = *type == 'C' ? GridColumnWidth(column - 1) : 1;
  *rows = GridRowCount();
  if (slot < 0) return 1;
  return ReadColumn(data, slot, column, *type, *width) ? 1 : 0;
}

int32_t LoadVariable(int32_t slot, VariableBinding* binding) {
  const bool applySelect = slot >= 0;
  if (slot < 0) slot = -1 - slot;
  ProcedureState& state = *gStates[slot];
  FreeGlobal(&binding->data);
  char type = 'N';
  int32_t width = 1;
  int32_t rows = 0;
  if (ResolveVariable(ExpressionOf(*binding), &binding->data, slot, &type, &width, &rows) == 0) {
    return 0;
  }
  binding->type = type;
  binding->width = width;
  binding->minimum = kMissingValue;
  binding->maximum = kMissingValue;
  binding->count = 0;

  const int32_t n = state.rowCount;
  const Handle selectData = state.bindings[kSelectBinding].data;
  const bool select = applySelect && selectData != 0;
  LockedBlock<double> selection(select ? selectData : 0);

  if (type == 'C') {
    LockedBlock<char> cells(binding->data);
    const size_t w = static_cast<size_t>(std::max(width, 1));
    for (int32_t row = 0; row < n; ++row) {
      const char* cell = cells.get() + row * w;
      if (std::any_of(cell, cell + w, [](char c) { return c != ' '; })) ++binding->count;
    }
    // A select value of 0 or missing blanks a text row; the count stays.
    if (select) {
      for (int32_t row = 0; row < n; ++row) {
        if (selection[row] == 0.0 || selection[row] == kMissingValue) {
          std::memset(cells.get() + row * w, ' ', w);
        }
      }
    }
    return 1;
  }

  LockedBlock<double> values(binding->data);
  if (select) {
    // Unlike a text row, a numeric row with a missing select value stays.
    for (int32_t row = 0; row < n; ++row) {
      if (selection[row] == 0.0) values[row] = kMissingValue;
    }
  }
  for (int32_t row = 0; row < n; ++row) {
    const double v = values[row];
    if (v == kMissingValue) continue;
    if (binding->count == 0) {
      binding->minimum = v;
      binding->maximum = v;
    } else {
      if (v < binding->minimum) binding->minimum = v;
      if (v > binding->maximum) binding->maximum = v;
    }
    ++binding->count;
  }
  return 1;
}

int32_t LoadSpecialVariables(int32_t slot) {
  ProcedureState& state = *gStates[slot];
  struct Step {
    int32_t binding;
    int32_t message;
    bool numeric;
  };
  constexpr Step kSteps[] = {
      {kHostTextBinding, 1027, false},
      {kHostNumberBinding, 1028, true},
      {kSelectBinding, 1026, true},
  };
  for (const Step& step : kSteps) {
    VariableBinding& binding = state.bindings[step.binding];
    FreeGlobal(&binding.data);
    if (step.binding == kSelectBinding) GridSetSelectLength(gHost ? gHost->rowCount : 0);
    const std::string_view text = ExpressionOf(binding);
    if (text.empty()) continue;
    char type = 'N';
    int32_t width = 1;
    int32_t rows = 0;
    bool ok = ResolveVariable(text, nullptr, -1 - slot, &type, &width, &rows) != 0;
    if (ok && step.numeric && type == 'C') ok = false;
    if (ok) {
      const int32_t loadSlot = step.binding == kSelectBinding ? -1 - slot : slot;
      ok = LoadVariable(loadSlot, &binding) != 0;
    }
    if (!ok) {
      ShowError(step.message);
      FreeGlobal(&binding.data);
      if (step.binding == kHostNumberBinding && gViews[slot] != nullptr) {
        VtblOf<HostViewVtbl>(gViews[slot]).DropHostBinding(gViews[slot], 0);
      }
    }
  }
  return 1;
}

int32_t CheckVariable(int32_t position, std::string_view expression, bool allowEmpty,
                      bool allowText) {
  if (allowEmpty && IsBlankText(expression)) return 1;
  if (position >= 1 && IsBlankText(expression)) {
    ShowErrorNumber(kFieldRequiredText, position);
    return 0;
  }
  char type = 'N';
  int32_t width = 1;
  int32_t rows = 0;
  if (ResolveVariable(expression, nullptr, -1, &type, &width, &rows) == 0) return 0;
  if (type == 'C') {
    if (allowText) return 1;
    if (position >= 1) ShowErrorNumber(kFieldIsCharacterText, position);
    return 0;
  }
  if (gHost != nullptr && rows != gHost->rowCount) {
    gHost->rowsDiffer = 1;
    if (rows > gHost->rowCount) gHost->rowCount = rows;
  }
  return 1;
}

int32_t SplitVariableLines(std::string_view lines, std::string* out, int32_t capacity) {
  // Lines end at a carriage return; line feeds are ignored. A final line
  // without its end counts as if it had one.
  int32_t count = 0;
  std::string current;
  auto finish = [&] {
    std::string line = TrimBlanks(current);
    current.clear();
    if (line.empty()) return;
    if (count < capacity && out != nullptr) out[count] = std::move(line);
    ++count;
  };
  for (char c : lines) {
    if (c == '\r') {
      finish();
    } else if (c != '\n') {
      current.push_back(c);
    }
  }
  finish();
  return count;
}

int32_t CheckVariableList(int32_t position, std::string_view lines, bool allowEmpty, bool allowText,
                          int32_t maximum) {
  const int32_t count = SplitVariableLines(lines, nullptr, 0);
  std::vector<std::string> entries(static_cast<size_t>(count));
  SplitVariableLines(lines, entries.data(), count);
  for (const std::string& line : entries) {
    if (CheckVariable(position, line, allowEmpty, allowText) == 0) return 0;
  }
  if (count == 0 && !allowEmpty) {
    ShowErrorNumber(kFieldRequiredText, position);
    return 0;
  }
  if (count > maximum) {
    ShowErrorText(FormatText(kFieldListTooLongText, 92, position, maximum));
    return 0;
  }
  return 1;
}

void CountVariableLines(int32_t slot, std::string_view lines) {
  gStates[slot]->secondListCount = SplitVariableLines(lines, nullptr, 0);
}

int32_t ColumnIndexOf(std::string_view name) {
  const std::string wanted = StripBlanksAndQuotes(name);
  const std::vector<std::string> names = ColumnNames();
  for (size_t i = 0; i < names.size(); ++i) {
    if (EqualNoCase(StripBlanksAndQuotes(names[i]), wanted)) return static_cast<int32_t>(i);
  }
  return -1;
}

std::string TrimBlanks(std::string_view text) {
  size_t from = 0;
  size_t to = text.size();
  while (from < to && IsBlank(text[from])) ++from;
  while (to > from && IsBlank(text[to - 1])) --to;
  return std::string(text.substr(from, to - from));
}

void TrimBlanksInPlace(char* buffer) {
  const std::string trimmed = TrimBlanks(buffer);
  std::memcpy(buffer, trimmed.c_str(), trimmed.size() + 1);
}

std::string StripBlanksAndQuotes(std::string_view text) {
  const std::string trimmed = TrimBlanks(text);
  std::string out;
  bool inDouble = false;
  bool inSingle = false;
  for (char c : trimmed) {
    if (c == '"') {
      inDouble = !inDouble;
    } else if (c == '\'') {
      inSingle = !inSingle;
    } else if (c == ' ') {
      if (inDouble || inSingle) out.push_back(c);
    } else {
      out.push_back(c);
    }
  }
  return out;
}

void StripBlanksAndQuotesInPlace(char* buffer) {
  const std::string stripped = StripBlanksAndQuotes(buffer);
  std::memcpy(buffer, stripped.c_str(), stripped.size() + 1);
}

int32_t IsBlankText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsBlank) ? 1 : 0;
}

int32_t IsValidColumnName(std::string_view name) {
  const size_t end = std::min(name.find(' '), name.size());
  if (end == 0) return 0;
  const auto first = static_cast<unsigned char>(name[0]);
  if (!std::isalpha(first) && name[0] != '_' && name[0] != '#') return 0;
  for (size_t i = 1; i < end && i < 32; ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    if (!std::isalnum(c) && std::strchr("_@#$%?.", c) == nullptr) return 0;
  }
  return 1;
}

}  // namespace zv
